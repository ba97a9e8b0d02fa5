#include "ui/presenter/access_arbiter_presenter.h"
#include "ui/view/access_arbiter_view.h"

#include <common_utils_ui/qt_callable_guard.h>
#include <diagnostics/log_capture_for_testing.h>

#include "support/ui_test_doubles.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQmlApplicationEngine>

#include <thread>

namespace {

using access_arbiter::testing::RecordingSetter;
using access_arbiter::ui::AccessArbiterPresenter;
using access_arbiter::ui::AccessArbiterView;
using access_arbiter::ui::mode::UserDecision;

// A QObject view that counts its shows outside itself, so that the count can be read after it died.
class CountingView : public QObject, public access_arbiter::ui::IAccessArbiterView {
public:
    explicit CountingView(int& shows) : m_shows(shows) {}
    std::unique_ptr<common::utils::ICallableGuard> GetGuardView() const override {
        return std::make_unique<vdi::common_utils_ui::QtCallableGuard>(this);
    }
    void Hide() noexcept override {}
    void Show() noexcept override { ++m_shows; }

private:
    int& m_shows;
};

// A real view on an engine, owned by a presenter, as the factory wires them.
class PresenterTest : public ::testing::Test {
protected:
    PresenterTest() { m_view->SetPresenter(m_presenter); }

    int m_argc = 0;
    QGuiApplication m_app{m_argc, nullptr};
    QQmlApplicationEngine m_engine;
    std::shared_ptr<RecordingSetter> m_setter = std::make_shared<RecordingSetter>();
    AccessArbiterView* m_view = new AccessArbiterView(&m_engine, nullptr);
    std::shared_ptr<AccessArbiterPresenter> m_presenter = std::make_shared<AccessArbiterPresenter>(
        std::unique_ptr<access_arbiter::ui::IAccessArbiterView>(m_view), m_setter);
};

TEST_F(PresenterTest, ShowFromAnotherThreadReturnsBeforeTheFlagChangesFromTheMainThreadAtOnce) {
    bool visibleWhenShowReturned = true;
    std::thread dispatcher([&] {
        m_presenter->Show();
        visibleWhenShowReturned = m_view->IsVisible();
    });
    dispatcher.join();
    EXPECT_FALSE(visibleWhenShowReturned);
    EXPECT_FALSE(m_view->IsVisible());
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_view->IsVisible());

    m_view->Hide();
    m_presenter->Show();
    EXPECT_TRUE(m_view->IsVisible());
    EXPECT_FALSE(m_presenter->IsVisible()) << "the presenter's own flag never follows the view";
}

TEST_F(PresenterTest, ClickLogsAndPushesTheDecisionWhileVisibleThenHidesEvenIfThePushFails) {
    hos::logger::LogCaptureForTesting capture;
    m_presenter->Show();
    bool visibleAtPush = false;
    m_setter->onSet = [&] { visibleAtPush = m_view->IsVisible(); };
    m_setter->result = static_cast<std::int32_t>(0x8000004Bu);
    m_view->OnUserDecisionReceived(UserDecision::Approve);
    EXPECT_EQ(m_setter->decisions, std::vector<UserDecision>{UserDecision::Approve});
    EXPECT_TRUE(visibleAtPush);
    EXPECT_FALSE(m_view->IsVisible());
    EXPECT_TRUE(capture.Contains("OnAccessDecisionReceived: decision = 1"));
}

TEST_F(PresenterTest, ClickBeforeSetPresenterOrAfterThePresenterDiedIsIgnored) {
    AccessArbiterView view(&m_engine, nullptr);
    view.OnUserDecisionReceived(UserDecision::Approve);
    int shows = 0;
    auto presenter =
        std::make_shared<AccessArbiterPresenter>(std::make_unique<CountingView>(shows), m_setter);
    view.SetPresenter(presenter);
    view.OnUserDecisionReceived(UserDecision::Decline);
    presenter.reset();
    view.OnUserDecisionReceived(UserDecision::Approve);
    EXPECT_EQ(m_setter->decisions, std::vector<UserDecision>{UserDecision::Decline});
}

TEST(AccessArbiterPresenter, ShowPostedForAViewThatDiesBeforeItRunsIsDropped) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    int shows = 0;
    auto presenter = std::make_unique<AccessArbiterPresenter>(std::make_unique<CountingView>(shows),
                                                              std::make_shared<RecordingSetter>());
    std::thread([&] { presenter->Show(); }).join();
    presenter.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(shows, 0);
}

}  // namespace
