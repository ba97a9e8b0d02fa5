// HandleArg, the handle field of a response: what it writes into a descriptor and what it reads.
#include <ipc_runtime/idl/interface_description.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace {

using hosipc_detail::idl_traits::HandleArg;
using Descriptor = HandleArg<24>;

TEST(HandleArgTest, StoreWritesTheLow24BitsAndClearsTheRestOfTheDescriptorOnly) {
    struct Case {
        unsigned int handle;
        std::uint32_t word;
    };
    for (const Case item :
         {Case{7, 7}, Case{0xffffff, 0xffffff}, Case{0xffffffffU, 0xffffff}, Case{0x12345678, 0x345678}}) {
        alignas(8) std::array<unsigned char, 48> message;
        message.fill(0xCC);
        Descriptor::Store(reinterpret_cast<nk_message*>(message.data()), item.handle);
        std::uint32_t words[4];
        std::memcpy(words, message.data() + 24, sizeof words);
        EXPECT_EQ(words[0], item.word) << item.handle;
        EXPECT_EQ(words[1] | words[2] | words[3], 0u) << item.handle;
        EXPECT_TRUE(
            std::all_of(message.begin(), message.begin() + 24, [](unsigned char b) { return b == 0xCC; }));
        EXPECT_TRUE(
            std::all_of(message.begin() + 40, message.end(), [](unsigned char b) { return b == 0xCC; }));
    }
}

TEST(HandleArgTest, LoadIgnoresTheHighBitsAndMapsNoHandleToTheInvalidHandle) {
    struct Case {
        std::uint32_t word;
        unsigned int handle;
    };
    for (const Case item : {Case{5, 5}, Case{0xAB000005, 5}, Case{0x00ffffff, 0xffffffffU},
                            Case{0xFFffffff, 0xffffffffU}, Case{0, 0}}) {
        alignas(8) std::array<unsigned char, 40> message{};
        std::memcpy(message.data() + 24, &item.word, sizeof item.word);
        unsigned int handle = 1234;
        Descriptor::Load(reinterpret_cast<const nk_message*>(message.data()), handle);
        EXPECT_EQ(handle, item.handle) << std::hex << item.word;
    }
}

}  // namespace
