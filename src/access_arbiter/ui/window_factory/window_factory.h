#pragma once

#include "business/interactors/i_user_decision_setter.h"
#include "ui/window_factory/i_window_factory.h"

#include <QPointer>
#include <QQmlApplicationEngine>

#include <memory>

namespace access_arbiter::ui {

// Puts the dialog together: registers the decision enum with QML, makes the view (which loads
// the document) and its presenter. Used on the Qt main thread; keeps nothing of what it made.
class WindowFactory : public windows::components::IWindowFactory {
public:
    // Throws hca::CheckFailedException when the engine or the setter is null.
    WindowFactory(QPointer<QQmlApplicationEngine> engine,
                  std::shared_ptr<interactors::IUserDecisionSetter> userDecisionSetter);

    std::shared_ptr<windows::components::IWindow> CreateWindow() noexcept override;

private:
    QPointer<QQmlApplicationEngine> m_engine;
    std::shared_ptr<interactors::IUserDecisionSetter> m_userDecisionSetter;
};

}  // namespace access_arbiter::ui
