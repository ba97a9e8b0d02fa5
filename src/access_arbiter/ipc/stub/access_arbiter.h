#pragma once

#include "business/interactors/i_user_decision_getter.h"
#include "ipc/i_access_arbiter.h"
#include "ui/window_factory/i_window.h"

#include <cstdint>
#include <memory>

namespace access_arbiter::stub {

// Asks the person: shows the window, then blocks in the decision queue until a click answers.
// The window is hidden by the click, never here. Owns its share of the window (in the program, the
// only one) and of the queue. GetUserDecision runs on the dispatcher thread.
class AccessArbiter final : public IAccessArbiter {
public:
    // Throws hca::CheckFailedException "AccessArbiterWindow is null!" or "User decision getter is null!".
    AccessArbiter(std::shared_ptr<windows::components::IWindow> window,
                  std::shared_ptr<interactors::IUserDecisionGetter> userDecisionGetter);

    // The decision's value cut to 8 bits; Decline when the queue fails (its result is not looked at).
    std::uint8_t GetUserDecision() override;

private:
    std::shared_ptr<windows::components::IWindow> m_window;
    std::shared_ptr<interactors::IUserDecisionGetter> m_userDecisionGetter;
};

}  // namespace access_arbiter::stub
