#pragma once
// Turns whatever is being handled into a result code and a message. Call only inside a catch block:
//
//   catch (...) { auto [code, message] = fdn::utils::ProcessException(); ... }
//
// hca::ResultCodeException: its result code, DisplayText; other hca::Exception: 0x8000004B,
// DisplayText; std::invalid_argument 0x80000046, std::length_error 0x8000005C, std::out_of_range
// 0x8000005E, each with what(); other std::exception 0x8000004B "std::exception: <what>"; anything
// else 0x8000004B "non-std exception". Outside a catch block the rethrow ends the process.

#include <string>
#include <utility>

namespace fdn::utils {
std::pair<int, std::string> ProcessException();
}  // namespace fdn::utils

namespace common::utils {
// The same as fdn::utils::ProcessException, for the component dispatcher.
std::pair<int, std::string> ProcessException();
}  // namespace common::utils
