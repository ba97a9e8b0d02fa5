#pragma once
// Byte helpers of the raw item codec. Integers of the raw form are little-endian.

#include <cstddef>
#include <cstdint>
#include <span>

namespace settings_manager::impl {

struct Raw {
    // Widens a view of at most 8 bytes to a zeroed 64-bit word, byte for byte, never sign-extended.
    // Throws uvc::Error 0x80000044 "[RawSetting] Too big data view size: {}" for a longer view.
    static std::uint64_t Data(std::span<const unsigned char> view);

    // Throws uvc::Error 0x8000005C "[RawSetting] Insufficient raw data size: fact/plan = {}/{}" when
    // bytes holds fewer than plan bytes. Longer blocks pass: bytes behind the plan are ignored.
    static void Check(std::span<const unsigned char> bytes, std::uint64_t plan);

    // The little-endian 64-bit word at offset; the caller has checked the size.
    static std::uint64_t Word(std::span<const unsigned char> bytes, std::size_t offset);
};

}  // namespace settings_manager::impl
