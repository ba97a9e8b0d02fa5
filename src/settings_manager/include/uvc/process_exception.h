#pragma once
// Maps the exception being handled to a code and a text. Call only inside a catch handler:
//
//   catch (...) { return uvc::ProcessException(); }
//
// Tested in this order: a thrown uvc::Result gives its code and its text (moved out); uvc::Error its
// code and what(); std::bad_variant_access 0x8000004A "uvc: std::bad_variant_access"; another
// std::exception 0x8000004B "uvc: std::exception: <what>"; anything else 0x80000072
// "uvc: non-std exception".

#include <uvc/error.h>

namespace uvc {
Result ProcessException();
}  // namespace uvc
