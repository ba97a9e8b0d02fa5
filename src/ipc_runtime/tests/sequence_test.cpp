// Packing byte sequences of at most 128 bytes into an arena, and reading them back.
#include <ipc_runtime/sequence.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace {

using ByteSequence =
    hosipc_detail::stdcpp_v1::Sequence<hosipc_detail::stdcpp_v1::Primitive<unsigned char, unsigned char>,
                                       128ul>;

constexpr unsigned char kUntouched = 0xA5;

TEST(SequencePackArgument, PacksBehindTheCursorWithinBoundsAndRefusesOthersUntouched) {
    const struct {
        std::size_t cursor;
        std::vector<std::size_t> sizes;  // packed one after the other
        std::size_t refusedAt;           // index of the first refused size, or sizes.size()
    } cases[] = {
        {40, {0}, 1},             // empty: the current offset, no space
        {0, {128}, 1},            // exactly the limit
        {0, {129}, 0},            // over the limit: refused before the arena is touched
        {0, {128, 128, 128}, 3},  // back to back at 0, 128 and 256
        {100, {29}, 0},           // beyond the arena's end
    };
    for (const auto& item : cases) {
        SCOPED_TRACE(::testing::Message() << item.cursor << " " << item.sizes[0]);
        std::vector<unsigned char> memory(384, kUntouched);
        std::vector<unsigned char> expected = memory;
        nk_arena arena{memory.data(), memory.data() + item.cursor, memory.data() + (item.cursor ? 128 : 384)};
        for (std::size_t i = 0; i < item.sizes.size(); ++i) {
            std::vector<unsigned char> value(item.sizes[i], static_cast<unsigned char>(i + 1));
            nk_ptr_t ref{7, 7};
            unsigned char* const before = arena.cursor;
            if (i >= item.refusedAt) {
                EXPECT_ANY_THROW(ByteSequence::PackArgument(&value, &ref, &arena));
                EXPECT_EQ(arena.cursor, before);
                EXPECT_EQ(ref.offset, 7U);
                continue;
            }
            ByteSequence::PackArgument(&value, &ref, &arena);
            EXPECT_EQ(ref.offset, static_cast<std::uint32_t>(before - memory.data()));
            EXPECT_EQ(ref.size, value.size());
            EXPECT_EQ(arena.cursor, before + value.size());
            std::copy(value.begin(), value.end(), expected.begin() + ref.offset);
            EXPECT_EQ(ByteSequence::UnpackArgument(ref, &arena), value);
        }
        EXPECT_EQ(memory, expected);
    }
}

TEST(SequenceUnpackArgument, RefsOutsideTheReceivedBytesAreNotReadAndTooLongNamesItsCause) {
    std::vector<unsigned char> memory(128, kUntouched);
    nk_arena arena{memory.data(), memory.data() + 100, memory.data() + memory.size()};
    const std::vector<unsigned char> tooLong(129);
    nk_ptr_t ref{};
    try {
        ByteSequence::PackArgument(&tooLong, &ref, &arena);
        ADD_FAILURE() << "129 bytes were packed";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "?");
    }
    // {96, 8} and {100, 1} lie inside the arena's memory but behind its received bytes.
    for (const nk_ptr_t outside :
         {nk_ptr_t{120, 9}, nk_ptr_t{0, 129}, nk_ptr_t{0xffffffffU, 2}, nk_ptr_t{96, 8}, nk_ptr_t{100, 1}}) {
        EXPECT_THROW(ByteSequence::UnpackArgument(outside, &arena), std::runtime_error) << outside.offset;
    }
    const nk_arena empty{nullptr, nullptr, nullptr};
    EXPECT_THROW(ByteSequence::UnpackArgument(nk_ptr_t{0, 1}, &empty), std::runtime_error);
    EXPECT_TRUE(ByteSequence::UnpackArgument(nk_ptr_t{5, 0}, &empty).empty());
}

}  // namespace
