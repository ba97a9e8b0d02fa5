#pragma once

#include <common/utils/callable_guard.h>

#include <memory>

namespace common::utils {

// An object whose member functions may be called later, from another thread's queue. Before a
// call is posted, the poster takes a guard so that the call can be dropped if the object dies
// in between.
class ICallable {
public:
    virtual ~ICallable() = default;

    // A new guard over this object; the caller owns it.
    virtual std::unique_ptr<ICallableGuard> GetGuardView() const = 0;
};

}  // namespace common::utils
