#include <ipc_runtime/sequence.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace {

using ByteSequence =
    hosipc_detail::stdcpp_v1::Sequence<hosipc_detail::stdcpp_v1::Primitive<unsigned char, unsigned char>,
                                       128ul>;

constexpr unsigned char kUntouched = 0xA5;

struct Arena {
    explicit Arena(std::size_t size) : memory(size, kUntouched) {
        arena = nk_arena{memory.data(), memory.data(), memory.data() + memory.size()};
    }
    std::vector<unsigned char> memory;
    nk_arena arena;
};

std::vector<unsigned char> Bytes(std::size_t count, unsigned char first) {
    std::vector<unsigned char> bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<unsigned char>(first + i);
    }
    return bytes;
}

TEST(SequencePackArgument, EmptySequenceTakesNoSpaceAndGetsCurrentOffset) {
    Arena arena(128);
    arena.arena.cursor = arena.memory.data() + 40;
    const std::vector<unsigned char> empty;
    nk_ptr_t ref{99, 99};

    ByteSequence::PackArgument(&empty, &ref, &arena.arena);

    EXPECT_EQ(ref.offset, 40U);
    EXPECT_EQ(ref.size, 0U);
    EXPECT_EQ(arena.arena.cursor, arena.memory.data() + 40);
    EXPECT_EQ(arena.memory[40], kUntouched);
}

TEST(SequencePackArgument, ExactlyMaxBytesFillTheArena) {
    Arena arena(128);
    const auto value = Bytes(128, 1);
    nk_ptr_t ref{};

    ByteSequence::PackArgument(&value, &ref, &arena.arena);

    EXPECT_EQ(ref.offset, 0U);
    EXPECT_EQ(ref.size, 128U);
    EXPECT_EQ(arena.arena.cursor, arena.arena.end);
    EXPECT_EQ(arena.memory, value);
}

TEST(SequencePackArgument, OneByteOverMaxIsRefusedBeforeTheArenaIsTouched) {
    Arena arena(256);
    const auto value = Bytes(129, 1);
    nk_ptr_t ref{7, 7};

    try {
        ByteSequence::PackArgument(&value, &ref, &arena.arena);
        FAIL() << "129 bytes were packed";
    } catch (const std::length_error& error) {
        EXPECT_STREQ(error.what(), "?");
    }
    EXPECT_EQ(arena.arena.cursor, arena.memory.data());
    EXPECT_EQ(arena.memory, std::vector<unsigned char>(256, kUntouched));
    EXPECT_EQ(ref.offset, 7U);
    EXPECT_EQ(ref.size, 7U);
}

TEST(SequencePackArgument, ThreeMaxSequencesLieBackToBack) {
    Arena arena(384);
    const std::array<std::vector<unsigned char>, 3> values{Bytes(128, 0), Bytes(128, 50), Bytes(128, 100)};
    std::array<nk_ptr_t, 3> refs{};

    for (std::size_t i = 0; i < values.size(); ++i) {
        ByteSequence::PackArgument(&values[i], &refs[i], &arena.arena);
    }

    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(refs[i].offset, 128U * i);
        EXPECT_EQ(refs[i].size, 128U);
        EXPECT_EQ(0, std::memcmp(arena.memory.data() + refs[i].offset, values[i].data(), 128));
    }
    EXPECT_EQ(arena.arena.cursor, arena.arena.end);
}

TEST(SequencePackArgument, SequenceBehindTheArenaEndIsRefusedUntouched) {
    Arena arena(128);
    arena.arena.cursor = arena.memory.data() + 100;
    const auto value = Bytes(29, 1);
    nk_ptr_t ref{};

    try {
        ByteSequence::PackArgument(&value, &ref, &arena.arena);
        FAIL() << "the arena was overrun";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "failed to allocate space in the arena");
    }
    EXPECT_EQ(arena.arena.cursor, arena.memory.data() + 100);
    EXPECT_EQ(arena.memory, std::vector<unsigned char>(128, kUntouched));
}

TEST(SequencePackArgument, CursorBeforeStartIsRefused) {
    Arena arena(128);
    arena.arena.start = arena.memory.data() + 10;
    const auto value = Bytes(1, 1);
    nk_ptr_t ref{};

    EXPECT_THROW(ByteSequence::PackArgument(&value, &ref, &arena.arena), std::runtime_error);
    EXPECT_EQ(arena.memory[0], kUntouched);
}

TEST(SequenceUnpackArgument, ReadsBackWhatWasPackedAndRefusesRefsOutsideTheArena) {
    Arena arena(128);
    const auto value = Bytes(20, 3);
    nk_ptr_t ref{};
    ByteSequence::PackArgument(&value, &ref, &arena.arena);

    EXPECT_EQ(ByteSequence::UnpackArgument(ref, &arena.arena), value);
    EXPECT_THROW(ByteSequence::UnpackArgument(nk_ptr_t{120, 9}, &arena.arena), std::runtime_error);
    EXPECT_THROW(ByteSequence::UnpackArgument(nk_ptr_t{0, 129}, &arena.arena), std::runtime_error);
    EXPECT_THROW(ByteSequence::UnpackArgument(nk_ptr_t{0xffffffffU, 2}, &arena.arena), std::runtime_error);
    const nk_arena empty{nullptr, nullptr, nullptr};
    EXPECT_THROW(ByteSequence::UnpackArgument(nk_ptr_t{0, 1}, &empty), std::runtime_error);
    EXPECT_TRUE(ByteSequence::UnpackArgument(nk_ptr_t{5, 0}, &empty).empty());
}

}  // namespace
