#pragma once

#include <cstdint>

namespace access_arbiter {

// The decision service's logic, free of IPC types. Called on the dispatcher thread.
class IAccessArbiter {
public:
    virtual ~IAccessArbiter() = default;
    // Shows the dialog and waits, without limit, for the person's decision: 0 decline, 1 approve.
    virtual std::uint8_t GetUserDecision() = 0;
};

}  // namespace access_arbiter
