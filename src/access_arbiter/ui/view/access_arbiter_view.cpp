#include "ui/view/access_arbiter_view.h"

#include <common_utils_ui/qt_callable_guard.h>
#include <diagnostics/check.h>

#include <QQmlContext>
#include <QUrl>

namespace access_arbiter::ui {

AccessArbiterView::AccessArbiterView(const QPointer<QQmlApplicationEngine>& engine, QObject* parent)
    : QObject(parent) {
    HCA_CHECK(!engine.isNull()) << "QQmlApplicationEngine is null";
    // The document reads accessArbiterView.isVisible while it loads, so the property comes first.
    engine->rootContext()->setContextProperty(QStringLiteral("accessArbiterView"), this);
    engine->load(QUrl(QStringLiteral("qrc:/qml/access_arbiter_view")));
}

std::unique_ptr<common::utils::ICallableGuard> AccessArbiterView::GetGuardView() const {
    return std::make_unique<vdi::common_utils_ui::QtCallableGuard>(this);
}

void AccessArbiterView::Show() noexcept {
    m_isVisible = true;
    emit VisibleChanged(QPrivateSignal());
}

void AccessArbiterView::Hide() noexcept {
    m_isVisible = false;
    emit VisibleChanged(QPrivateSignal());
}

bool AccessArbiterView::IsVisible() const {
    return m_isVisible;
}

void AccessArbiterView::SetPresenter(std::weak_ptr<IAccessArbiterPresenter> presenter) {
    m_presenter = std::move(presenter);
}

void AccessArbiterView::OnUserDecisionReceived(mode::UserDecision userDecision) {
    if (auto presenter = m_presenter.lock()) {
        presenter->OnAccessDecisionReceived(userDecision);
    }
}

}  // namespace access_arbiter::ui
