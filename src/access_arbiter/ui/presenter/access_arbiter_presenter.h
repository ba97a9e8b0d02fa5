#pragma once

#include "business/interactors/i_user_decision_setter.h"
#include "ui/presenter/i_access_arbiter_presenter.h"
#include "ui/view/i_access_arbiter_view.h"
#include "ui/window_factory/i_window.h"

#include <memory>

namespace access_arbiter::ui {

// The dialog as a window: Show may come from any thread and reaches the view on the Qt main
// thread; a decision from the view goes to the decision queue and hides the view. Owns the view.
// Hide, Close and Resize do nothing, and IsVisible reports its own flag, which never changes.
class AccessArbiterPresenter : public IAccessArbiterPresenter, public windows::components::IWindow {
public:
    // Throws hca::CheckFailedException when either argument is null.
    AccessArbiterPresenter(std::unique_ptr<IAccessArbiterView> view,
                           std::shared_ptr<interactors::IUserDecisionSetter> userDecisionSetter);

    void OnAccessDecisionReceived(mode::UserDecision decision) override;

    void Show() override;
    bool IsVisible() const override;
    void Hide() override;
    void Close() override;
    void Resize(int width, int height) override;

private:
    std::unique_ptr<IAccessArbiterView> m_view;
    std::shared_ptr<interactors::IUserDecisionSetter> m_userDecisionSetter;
    bool m_isVisible = false;
};

}  // namespace access_arbiter::ui
