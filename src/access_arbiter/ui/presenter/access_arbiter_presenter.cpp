#include "ui/presenter/access_arbiter_presenter.h"

#include <common_utils_ui/qt_invoker.h>
#include <diagnostics/check.h>
#include <diagnostics/log.h>

#include <type_traits>

namespace access_arbiter::ui {

AccessArbiterPresenter::AccessArbiterPresenter(
    std::unique_ptr<IAccessArbiterView> view,
    std::shared_ptr<interactors::IUserDecisionSetter> userDecisionSetter)
    : m_view(std::move(view)), m_userDecisionSetter(std::move(userDecisionSetter)) {
    HCA_CHECK(m_view != nullptr) << "AccessArbiterView is null";
    HCA_CHECK(m_userDecisionSetter != nullptr) << "User Decision Setter is null!";
}

void AccessArbiterPresenter::OnAccessDecisionReceived(mode::UserDecision decision) {
    HL_LOG(hos::logger::LogLevel::Info, "OnAccessDecisionReceived: decision = {}",
           static_cast<std::underlying_type_t<mode::UserDecision>>(decision));
    // The setter logs its own failure; the dialog closes either way.
    static_cast<void>(m_userDecisionSetter->SetUserDecision(decision));
    m_view->Hide();
}

void AccessArbiterPresenter::Show() {
    vdi::common_utils_ui::QtInvoker<IAccessArbiterView>(m_view.get()).Invoke(&IAccessArbiterView::Show);
}

bool AccessArbiterPresenter::IsVisible() const {
    return m_isVisible;
}

void AccessArbiterPresenter::Hide() {}

void AccessArbiterPresenter::Close() {}

void AccessArbiterPresenter::Resize(int /*width*/, int /*height*/) {}

}  // namespace access_arbiter::ui
