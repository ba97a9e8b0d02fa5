#include "ui/window_factory/window_factory.h"

#include "ui/user_decision.h"
#include "ui/presenter/access_arbiter_presenter.h"
#include "ui/view/access_arbiter_view.h"
#include <diagnostics/check.h>
#include <diagnostics/log.h>

#include <QtQml>

#include <exception>

namespace access_arbiter::ui {

WindowFactory::WindowFactory(QPointer<QQmlApplicationEngine> engine,
                             std::shared_ptr<interactors::IUserDecisionSetter> userDecisionSetter)
    : m_engine(std::move(engine)), m_userDecisionSetter(std::move(userDecisionSetter)) {
    HCA_CHECK(!m_engine.isNull()) << "QQmlEngine is null";
    HCA_CHECK(m_userDecisionSetter != nullptr) << "User decision setter is null!";
}

std::shared_ptr<windows::components::IWindow> WindowFactory::CreateWindow() noexcept {
    try {
        // The document imports this module, so it must exist before the view loads it.
        qmlRegisterUncreatableMetaObject(mode::staticMetaObject, "accessArbiter.UserDecision", 1, 0,
                                         "UserDecision", QStringLiteral("Error: only enums"));
        auto view = std::make_unique<AccessArbiterView>(m_engine, nullptr);
        AccessArbiterView& viewRef = *view;
        auto presenter = std::make_shared<AccessArbiterPresenter>(
            std::unique_ptr<IAccessArbiterView>(std::move(view)), m_userDecisionSetter);
        viewRef.SetPresenter(std::weak_ptr<IAccessArbiterPresenter>(presenter));
        return presenter;
    } catch (const std::exception& exception) {
        HL_LOG(hos::logger::LogLevel::Error, "Creation failed, with {} error!", exception.what());
        return nullptr;
    }
}

}  // namespace access_arbiter::ui
