#pragma once

#include "ui/user_decision.h"

namespace access_arbiter::ui {

// Receives the user's answer from the view. Called on the Qt main thread.
class IAccessArbiterPresenter {
public:
    virtual ~IAccessArbiterPresenter() = default;

    virtual void OnAccessDecisionReceived(mode::UserDecision decision) = 0;
};

}  // namespace access_arbiter::ui
