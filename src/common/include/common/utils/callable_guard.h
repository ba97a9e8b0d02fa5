#pragma once

namespace common::utils {

// Tells whether the object behind a callable is still alive. Made on the thread that posts a call
// and read on the thread that runs it; the implementation decides how liveness is observed.
class ICallableGuard {
public:
    virtual ~ICallableGuard() = default;

    // True once the guarded object has died (or the guard never had one).
    virtual bool IsNull() const = 0;
};

}  // namespace common::utils
