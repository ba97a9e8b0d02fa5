#pragma once

#include "business/interactors/i_user_decision_setter.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace access_arbiter::testing {

// Records every decision; `onSet` lets a test look at the world at the moment of the push.
class RecordingSetter : public interactors::IUserDecisionSetter {
public:
    std::int32_t SetUserDecision(ui::mode::UserDecision decision) override {
        decisions.push_back(decision);
        if (onSet) {
            onSet();
        }
        return result;
    }

    std::vector<ui::mode::UserDecision> decisions;
    std::function<void()> onSet;
    std::int32_t result = 0;
};

}  // namespace access_arbiter::testing
