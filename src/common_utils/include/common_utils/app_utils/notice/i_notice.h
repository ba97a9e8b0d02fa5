#pragma once

// A platform notice with typed arguments and result codes of the program's own family
// (0, 0x8000004C "Not found", 0x80000221 "Operation timeout", 0x8000004B otherwise).
// Const operations may run at once on several threads: one waits while another drops and wakes.

#include <platform/kn_notice.h>

#include <chrono>
#include <cstdint>
#include <vector>

namespace common_utils::app_utils::notice {

class INotice {
public:
    virtual ~INotice() = default;
    virtual std::int32_t SubscribeToObject(const unsigned int& handle, unsigned int mask,
                                           unsigned long eventId) const = 0;
    // Waits up to `timeout` for at most maxCount events; `events` is replaced only on success.
    virtual std::int32_t WaitForEvents(const std::chrono::milliseconds& timeout, unsigned long maxCount,
                                       std::vector<EventDesc>& events) const = 0;
    // The same without a time limit.
    virtual std::int32_t WaitEvents(unsigned long maxCount, std::vector<EventDesc>& events) const = 0;
    virtual std::int32_t UnsubscribeFromObject(const unsigned int& handle) const = 0;
    virtual std::int32_t UnsubscribeFromEvent(unsigned long eventId) const = 0;
    // Wakes a waiter on another thread; it and every later wait return 0x8000004C.
    virtual std::int32_t DropAndWake() const = 0;
    virtual std::int32_t SetObjectEvent(const unsigned int& handle, unsigned int mask) const = 0;
};

}  // namespace common_utils::app_utils::notice
