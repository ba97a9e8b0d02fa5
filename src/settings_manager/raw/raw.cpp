#include <settings_manager/raw.h>

#include <diagnostics/result_code.h>
#include <uvc/error.h>

#include <fmt/format.h>

#include <cstring>

namespace settings_manager::impl {

std::uint64_t Raw::Data(std::span<const unsigned char> view) {
    if (view.size() > sizeof(std::uint64_t)) {
        throw uvc::Error(hca::result_code::kBufferTooSmall,
                         fmt::format("[RawSetting] Too big data view size: {}", view.size()));
    }
    std::uint64_t word = 0;
    std::memcpy(&word, view.data(), view.size());
    return word;
}

void Raw::Check(std::span<const unsigned char> bytes, std::uint64_t plan) {
    if (bytes.size() < plan) {
        throw uvc::Error(
            hca::result_code::kInvalidSize,
            fmt::format("[RawSetting] Insufficient raw data size: fact/plan = {}/{}", bytes.size(), plan));
    }
}

std::uint64_t Raw::Word(std::span<const unsigned char> bytes, std::size_t offset) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + offset, sizeof word);
    return word;
}

}  // namespace settings_manager::impl
