#include "ipc/stub/access_arbiter.h"

#include <diagnostics/check.h>

#include <utility>

namespace access_arbiter::stub {

AccessArbiter::AccessArbiter(std::shared_ptr<windows::components::IWindow> window,
                             std::shared_ptr<interactors::IUserDecisionGetter> userDecisionGetter)
    : m_window(std::move(window)), m_userDecisionGetter(std::move(userDecisionGetter)) {
    HCA_CHECK(m_window != nullptr) << "AccessArbiterWindow is null!";
    HCA_CHECK(m_userDecisionGetter != nullptr) << "User decision getter is null!";
}

std::uint8_t AccessArbiter::GetUserDecision() {
    m_window->Show();
    auto decision = ui::mode::UserDecision::Decline;
    // A failure is logged by the queue and answers Decline.
    static_cast<void>(m_userDecisionGetter->GetUserDecision(decision));
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(decision) & 0xFFu);
}

}  // namespace access_arbiter::stub
