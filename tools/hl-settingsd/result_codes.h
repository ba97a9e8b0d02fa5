#pragma once
// The result codes hl-settingsd answers with (negative: failure), named for its own code.

#include <cstdint>

namespace hl_settingsd {

inline constexpr std::int32_t kOk = 0;
inline constexpr std::int32_t kInvalidArgument = static_cast<std::int32_t>(0x80000046u);
inline constexpr std::int32_t kNotMatched = static_cast<std::int32_t>(0x8000004Au);
inline constexpr std::int32_t kNotFound = static_cast<std::int32_t>(0x8000004Cu);
inline constexpr std::int32_t kFound = static_cast<std::int32_t>(0x8000004Du);
inline constexpr std::int32_t kMediaError = static_cast<std::int32_t>(0x80000059u);
inline constexpr std::int32_t kLessThan = static_cast<std::int32_t>(0x80000064u);
inline constexpr std::int32_t kMoreThan = static_cast<std::int32_t>(0x80000065u);
inline constexpr std::int32_t kInsufficientResources = static_cast<std::int32_t>(0x8000006Cu);

}  // namespace hl_settingsd
