#include <access_arbiter/ui/presenter/access_arbiter_presenter.h>
#include <access_arbiter/ui/view/access_arbiter_view.h>

#include <common_utils_ui/qt_callable_guard.h>
#include <diagnostics/log_capture_for_testing.h>

#include "support/ui_test_doubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQmlApplicationEngine>

#include <thread>

namespace {

using access_arbiter::testing::FailureText;
using access_arbiter::testing::MockView;
using access_arbiter::testing::RecordingSetter;
using access_arbiter::ui::AccessArbiterPresenter;
using access_arbiter::ui::AccessArbiterView;
using access_arbiter::ui::IAccessArbiterPresenter;
using access_arbiter::ui::mode::UserDecision;
using ::testing::HasSubstr;
using ::testing::InSequence;
using ::testing::StrictMock;

TEST(AccessArbiterPresenter, MissingViewOrSetterIsRejected) {
    EXPECT_THAT(FailureText([] { AccessArbiterPresenter(nullptr, std::make_shared<RecordingSetter>()); }),
                HasSubstr("AccessArbiterView is null"));
    EXPECT_THAT(FailureText([] { AccessArbiterPresenter(std::make_unique<MockView>(), nullptr); }),
                HasSubstr("User Decision Setter is null!"));
}

TEST(AccessArbiterPresenter, DecisionIsLoggedPushedAndThenTheViewHidden) {
    hos::logger::LogCaptureForTesting capture;
    auto view = std::make_unique<StrictMock<MockView>>();
    auto* viewPtr = view.get();
    auto setter = std::make_shared<RecordingSetter>();
    bool hiddenAtPush = true;
    bool hidden = false;
    setter->onSet = [&] { hiddenAtPush = hidden; };
    EXPECT_CALL(*viewPtr, Hide()).WillOnce([&] { hidden = true; });
    AccessArbiterPresenter presenter(std::move(view), setter);

    presenter.OnAccessDecisionReceived(UserDecision::Approve);

    EXPECT_EQ(setter->decisions, std::vector<UserDecision>{UserDecision::Approve});
    EXPECT_FALSE(hiddenAtPush);
    EXPECT_TRUE(hidden);
    EXPECT_TRUE(capture.Contains("OnAccessDecisionReceived: decision = 1"));
}

TEST(AccessArbiterPresenter, FailedPushStillHidesTheView) {
    auto view = std::make_unique<StrictMock<MockView>>();
    EXPECT_CALL(*view, Hide()).Times(1);
    auto setter = std::make_shared<RecordingSetter>();
    setter->result = static_cast<std::int32_t>(0x8000004Bu);
    AccessArbiterPresenter presenter(std::move(view), setter);
    presenter.OnAccessDecisionReceived(UserDecision::Decline);
    EXPECT_EQ(setter->decisions.size(), 1U);
}

TEST(AccessArbiterPresenter, WindowOperationsOtherThanShowLeaveTheViewAlone) {
    auto view = std::make_unique<StrictMock<MockView>>();
    AccessArbiterPresenter presenter(std::move(view), std::make_shared<RecordingSetter>());
    presenter.Hide();
    presenter.Close();
    presenter.Resize(10, 20);
    EXPECT_FALSE(presenter.IsVisible());
    EXPECT_EQ(presenter.GetId(), 0);
}

TEST(AccessArbiterPresenter, ShowOnTheMainThreadReachesTheViewAtOnce) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    auto view = std::make_unique<StrictMock<MockView>>();
    EXPECT_CALL(*view, Show()).Times(1);
    AccessArbiterPresenter presenter(std::move(view), std::make_shared<RecordingSetter>());
    presenter.Show();
}

// A QObject view that counts its calls in a counter outside itself, so that the count can be
// read after the view has died.
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

TEST(AccessArbiterPresenter, ShowPostedForAViewThatDiesBeforeItRunsIsDropped) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    int shows = 0;
    auto presenter = std::make_shared<AccessArbiterPresenter>(std::make_unique<CountingView>(shows),
                                                              std::make_shared<RecordingSetter>());
    std::thread dispatcher([&] { presenter->Show(); });
    dispatcher.join();
    presenter.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(shows, 0);
}

TEST(AccessArbiterPresenter, ShowPostedForALiveViewRunsOnce) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    int shows = 0;
    auto presenter = std::make_shared<AccessArbiterPresenter>(std::make_unique<CountingView>(shows),
                                                              std::make_shared<RecordingSetter>());
    std::thread dispatcher([&] { presenter->Show(); });
    dispatcher.join();
    EXPECT_EQ(shows, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(shows, 1);
}

// A real view on an engine, owned by a presenter, as the factory wires them.
class PresenterWithViewTest : public ::testing::Test {
protected:
    PresenterWithViewTest() {
        auto view = std::make_unique<AccessArbiterView>(&m_engine, nullptr);
        m_view = view.get();
        m_presenter = std::make_shared<AccessArbiterPresenter>(std::move(view), m_setter);
        m_view->SetPresenter(std::weak_ptr<IAccessArbiterPresenter>(m_presenter));
    }

    int m_argc = 0;
    QGuiApplication m_app{m_argc, nullptr};
    QQmlApplicationEngine m_engine;
    std::shared_ptr<RecordingSetter> m_setter = std::make_shared<RecordingSetter>();
    AccessArbiterView* m_view = nullptr;
    std::shared_ptr<AccessArbiterPresenter> m_presenter;
};

TEST_F(PresenterWithViewTest, ShowFromAnotherThreadReturnsBeforeTheFlagChanges) {
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
    // The presenter's own flag never follows the view.
    EXPECT_FALSE(m_presenter->IsVisible());
}

TEST_F(PresenterWithViewTest, ShowOnTheMainThreadChangesTheFlagBeforeReturning) {
    m_presenter->Show();
    EXPECT_TRUE(m_view->IsVisible());
}

TEST_F(PresenterWithViewTest, ClickPushesTheDecisionWhileVisibleThenHides) {
    m_presenter->Show();
    bool visibleAtPush = false;
    m_setter->onSet = [&] { visibleAtPush = m_view->IsVisible(); };
    m_view->OnUserDecisionReceived(UserDecision::Decline);
    EXPECT_EQ(m_setter->decisions, std::vector<UserDecision>{UserDecision::Decline});
    EXPECT_TRUE(visibleAtPush);
    EXPECT_FALSE(m_view->IsVisible());
}

TEST_F(PresenterWithViewTest, ClickWhileHiddenStillPushes) {
    m_view->OnUserDecisionReceived(UserDecision::Approve);
    EXPECT_EQ(m_setter->decisions, std::vector<UserDecision>{UserDecision::Approve});
}

}  // namespace
