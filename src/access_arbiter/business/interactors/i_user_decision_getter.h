#pragma once

// The IPC half of the decision queue: takes the oldest decision out, waiting for one.
// Called on the dispatcher thread. Held by shared_ptr; the queue lives as long as any holder.

#include "ui/user_decision.h"

#include <cstdint>

namespace access_arbiter::interactors {

class IUserDecisionGetter {
public:
    virtual ~IUserDecisionGetter() = default;

    // Blocks without limit until a decision is queued and writes it to `decision`. Returns 0, or
    // 0x8000004B ("Unspecified error") after logging the failure, with `decision` left as it was.
    virtual std::int32_t GetUserDecision(ui::mode::UserDecision& decision) const = 0;
};

}  // namespace access_arbiter::interactors
