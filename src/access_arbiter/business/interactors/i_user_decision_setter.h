#pragma once

// The dialog's half of the decision queue: puts the user's decision in.
// Called on the Qt main thread. Held by shared_ptr; the queue lives as long as any holder.

#include "ui/user_decision.h"

#include <cstdint>

namespace access_arbiter::interactors {

class IUserDecisionSetter {
public:
    virtual ~IUserDecisionSetter() = default;

    // Appends the decision and never blocks. Returns 0, or 0x8000004B ("Unspecified error") after
    // logging the failure.
    virtual std::int32_t SetUserDecision(ui::mode::UserDecision decision) = 0;
};

}  // namespace access_arbiter::interactors
