// The frame check and the delivery of frames into a caller's buffers.
#include <gtest/gtest.h>

#include <cstring>

#include <platform/nk_result.h>

#include "core/handle_table.h"
#include "ipc/frame.h"
#include "ipc/message_codec.h"
#include "support/raw_socket.h"

namespace hos::platform {
namespace {

using testing::MakePacket;

std::vector<unsigned char> Descriptor(uint32_t handleWord) {
    std::vector<unsigned char> bytes(16, 0);
    std::memcpy(bytes.data(), &handleWord, sizeof(handleWord));
    return bytes;
}

TEST(FrameTest, HeaderRoundTripsThroughTheWireLayout) {
    FrameHeader header;
    header.iid = 0x1234;
    header.mid = 7;
    header.sizeFlags = nk_size_word(40, 1) | NK_MESSAGE_FAILED_FLAG;
    header.kind = FrameKind::Refused;
    header.arenaSize = 99;
    header.sequence = 0xDEADBEEF;
    header.result = NK_ETOOBIG;
    uint8_t bytes[24];
    EncodeHeader(header, bytes);
    EXPECT_EQ(bytes[0], 0x34);
    EXPECT_EQ(bytes[1], 0x12);
    EXPECT_EQ(bytes[7], 0x80);
    EXPECT_EQ(bytes[8], 5);
    const FrameHeader back = DecodeHeader(bytes);
    EXPECT_EQ(back.iid, header.iid);
    EXPECT_EQ(back.mid, header.mid);
    EXPECT_EQ(back.Size(), 40u);
    EXPECT_EQ(back.HandleCount(), 1u);
    EXPECT_EQ(back.kind, FrameKind::Refused);
    EXPECT_EQ(back.arenaSize, 99u);
    EXPECT_EQ(back.sequence, 0xDEADBEEFu);
    EXPECT_EQ(back.result, NK_ETOOBIG);
}

TEST(FrameTest, WellFormedFrameSplitsIntoMessageAndArena) {
    auto tail = Descriptor(5);
    tail.insert(tail.end(), {9, 9, 9, 9, 9, 9, 9, 9});  // fields
    tail.insert(tail.end(), {'a', 'b', 'c'});           // arena
    const auto packet = MakePacket(1, nk_size_word(48, 1), 3, 2, tail);
    ParsedFrame frame;
    std::string reason;
    ASSERT_EQ(ParseFrame(packet, 1, frame, reason), 0) << reason;
    EXPECT_EQ(frame.message.size(), 48u);
    ASSERT_EQ(frame.arena.size(), 3u);
    EXPECT_EQ(frame.arena[0], 'a');
    EXPECT_EQ(frame.passedHandles, 1u);
}

TEST(FrameTest, InvalidDescriptorsNeedNoPassedDescriptor) {
    const auto packet = MakePacket(1, nk_size_word(40, 1), 0, 1, Descriptor(0xFFFFFFFF));
    ParsedFrame frame;
    std::string reason;
    EXPECT_EQ(ParseFrame(packet, 0, frame, reason), 0) << reason;
    EXPECT_EQ(ParseFrame(packet, 1, frame, reason), NK_EBADMSG);
    EXPECT_NE(reason.find("passed"), std::string::npos);
}

TEST(FrameTest, FrameLargerThanTheLimitIsTooBig) {
    std::vector<unsigned char> tail(kMaxFrameSize, 0);
    const auto packet = MakePacket(1, nk_size_word(static_cast<uint32_t>(kMaxFrameSize + 24), 0), 0, 1, tail);
    ParsedFrame frame;
    std::string reason;
    EXPECT_EQ(ParseFrame(packet, 0, frame, reason), NK_ETOOBIG);
}

class DeliveryTest : public ::testing::Test {
protected:
    ParsedFrame Parse(const std::vector<unsigned char>& packet, size_t fds) {
        m_packet = packet;
        ParsedFrame frame;
        std::string reason;
        EXPECT_EQ(ParseFrame(m_packet, fds, frame, reason), 0) << reason;
        return frame;
    }
    std::vector<unsigned char> m_packet;
};

TEST_F(DeliveryTest, FrameWithinTheRoomIsCopiedAndTheArenaCursorSetBehindIt) {
    std::vector<unsigned char> tail{1, 2, 3, 4, 'x', 'y'};
    const auto frame = Parse(MakePacket(2, nk_size_word(28, 0), 2, 1, tail), 0);
    std::vector<unsigned char> message(64, 0xEE);
    reinterpret_cast<nk_message*>(message.data())->sizeFlags = nk_size_word(64, 0);
    std::vector<unsigned char> arenaBytes(8, 0);
    nk_arena arena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + 8};
    std::vector<UniqueFd> fds;
    std::string reason;
    ASSERT_EQ(DeliverFrame(frame, fds, reinterpret_cast<nk_message*>(message.data()), &arena, reason), 0);
    EXPECT_EQ(nk_message_size(reinterpret_cast<nk_message*>(message.data())), 28u);
    EXPECT_EQ(message[24], 1);
    EXPECT_EQ(message[28], 0xEE);  // bytes past the message stay as they were
    EXPECT_EQ(arena.cursor, arena.start + 2);
    EXPECT_EQ(arenaBytes[1], 'y');
}

TEST_F(DeliveryTest, FrameBeyondTheRoomLeavesTheBuffersUntouched) {
    const auto frame = Parse(MakePacket(2, nk_size_word(32, 0), 4, 1, std::vector<unsigned char>(12, 1)), 0);
    std::vector<unsigned char> message(24, 0);
    auto* header = reinterpret_cast<nk_message*>(message.data());
    header->sizeFlags = nk_size_word(24, 0);
    std::vector<UniqueFd> fds;
    std::string reason;
    EXPECT_EQ(DeliverFrame(frame, fds, header, nullptr, reason), NK_ETOOBIG);
    EXPECT_EQ(nk_message_size(header), 24u);

    std::vector<unsigned char> big(64, 0);
    auto* bigHeader = reinterpret_cast<nk_message*>(big.data());
    bigHeader->sizeFlags = nk_size_word(64, 0);
    std::vector<unsigned char> arenaBytes(3, 0);
    nk_arena arena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + 3};
    EXPECT_EQ(DeliverFrame(frame, fds, bigHeader, &arena, reason), NK_ETOOBIG);
    EXPECT_EQ(arena.cursor, arena.start);
}

TEST_F(DeliveryTest, OutgoingArenaWithItsCursorOutsideIsRefused) {
    std::vector<unsigned char> message(24, 0);
    auto* header = reinterpret_cast<nk_message*>(message.data());
    header->sizeFlags = nk_size_word(24, 0);
    std::vector<unsigned char> arenaBytes(8, 0);
    nk_arena arena{arenaBytes.data(), arenaBytes.data() + 9, arenaBytes.data() + 8};
    OutgoingPacket out;
    std::string reason;
    EXPECT_EQ(PrepareOutgoing(header, &arena, FrameHeader{}, out, reason), NK_EINVAL);
    arena.cursor = arenaBytes.data() + 5;
    ASSERT_EQ(PrepareOutgoing(header, &arena, FrameHeader{}, out, reason), 0);
    EXPECT_EQ(DecodeHeader(out.header.data()).arenaSize, 5u);
}

TEST_F(DeliveryTest, OutgoingSizeWordBelowTheHeaderOrWithUnfittingDescriptorsIsRefused) {
    std::vector<unsigned char> message(40, 0);
    auto* header = reinterpret_cast<nk_message*>(message.data());
    OutgoingPacket out;
    std::string reason;
    header->sizeFlags = nk_size_word(20, 0);
    EXPECT_EQ(PrepareOutgoing(header, nullptr, FrameHeader{}, out, reason), NK_EINVAL);
    header->sizeFlags = nk_size_word(40, 2);
    EXPECT_EQ(PrepareOutgoing(header, nullptr, FrameHeader{}, out, reason), NK_EINVAL);
}

}  // namespace
}  // namespace hos::platform
