#pragma once

#include <platform/nk_message.h>

#include <cstdint>
#include <cstring>

namespace hosipc_detail::stdcpp_v1 {

// Access to the common header of every message and to the fixed fields behind it. Offsets count from
// the start of the message; integers are little-endian (the host order of every supported target).
struct MessageHeader {
    static constexpr std::uint32_t kHeaderSize = NK_MESSAGE_HEADER_SIZE;
    static constexpr std::uint32_t kIidOffset = 0;
    static constexpr std::uint32_t kMidOffset = 2;
    static constexpr std::uint32_t kSizeWordOffset = 4;
    static constexpr std::uint32_t kHandleDescriptorSize = NK_HANDLE_DESC_SIZE;
    static constexpr std::uint32_t kSizeMask = NK_MESSAGE_SIZE_MASK;
    static constexpr unsigned kHandleCountShift = NK_MESSAGE_HANDLES_SHIFT;
    static constexpr std::uint32_t kHandleCountMask = NK_MESSAGE_HANDLES_MASK;
    // A failed server's whole response: the failure bit and a bare header.
    static constexpr std::uint32_t kServerFailureWord = NK_SERVER_FAILURE_WORD;

    static constexpr std::uint32_t MakeSizeWord(std::uint32_t size, std::uint32_t handles) {
        return (size & kSizeMask) | ((handles & kHandleCountMask) << kHandleCountShift);
    }

    template <typename T>
    static T Read(const nk_message* message, std::uint32_t offset) {
        T value;
        std::memcpy(&value, reinterpret_cast<const unsigned char*>(message) + offset, sizeof value);
        return value;
    }

    template <typename T>
    static void Write(nk_message* message, std::uint32_t offset, const T& value) {
        std::memcpy(reinterpret_cast<unsigned char*>(message) + offset, &value, sizeof value);
    }

    static std::uint16_t Iid(const nk_message* message) { return Read<std::uint16_t>(message, kIidOffset); }
    static std::uint16_t Mid(const nk_message* message) { return Read<std::uint16_t>(message, kMidOffset); }
    static std::uint32_t SizeWord(const nk_message* message) {
        return Read<std::uint32_t>(message, kSizeWordOffset);
    }
    static std::uint32_t Size(const nk_message* message) { return SizeWord(message) & kSizeMask; }
    static bool IsServerFailure(const nk_message* message) {
        return static_cast<std::int32_t>(SizeWord(message)) < 0;
    }

    static void SetIid(nk_message* message, std::uint16_t iid) { Write(message, kIidOffset, iid); }
    static void SetMid(nk_message* message, std::uint16_t mid) { Write(message, kMidOffset, mid); }
    static void SetSizeWord(nk_message* message, std::uint32_t word) {
        Write(message, kSizeWordOffset, word);
    }
};

}  // namespace hosipc_detail::stdcpp_v1
