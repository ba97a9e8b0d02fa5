#pragma once

#include "ui/user_decision.h"
#include "ui/presenter/i_access_arbiter_presenter.h"
#include "ui/view/i_access_arbiter_view.h"

#include <QObject>
#include <QPointer>
#include <QQmlApplicationEngine>

#include <memory>

namespace access_arbiter::ui {

// The QObject the dialog document talks to, as the context property "accessArbiterView".
// Construction publishes it on the engine's root context and loads the document, which binds the
// window's visibility to isVisible. Lives on the Qt main thread; owned by the presenter, which it
// observes weakly.
class AccessArbiterView : public QObject, public IAccessArbiterView {
    Q_OBJECT
    Q_PROPERTY(bool isVisible READ IsVisible NOTIFY VisibleChanged)

public:
    // Throws hca::CheckFailedException when the engine is null or has died.
    AccessArbiterView(const QPointer<QQmlApplicationEngine>& engine, QObject* parent);

    std::unique_ptr<common::utils::ICallableGuard> GetGuardView() const override;
    void Show() noexcept override;
    void Hide() noexcept override;

    bool IsVisible() const;
    void SetPresenter(std::weak_ptr<IAccessArbiterPresenter> presenter);

public slots:
    // A button's click. Ignored while no live presenter is set.
    void OnUserDecisionReceived(access_arbiter::ui::mode::UserDecision userDecision);

signals:
    void VisibleChanged(QPrivateSignal);

private:
    std::weak_ptr<IAccessArbiterPresenter> m_presenter;
    bool m_isVisible = false;
};

}  // namespace access_arbiter::ui
