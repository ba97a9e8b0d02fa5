#include <access_arbiter/ui/view/access_arbiter_view.h>

#include <diagnostics/log_capture_for_testing.h>

#include "support/ui_test_doubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QMetaProperty>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QSignalSpy>

namespace {

using access_arbiter::testing::FailureText;
using access_arbiter::ui::AccessArbiterView;
using access_arbiter::ui::IAccessArbiterPresenter;
using access_arbiter::ui::mode::UserDecision;
using ::testing::HasSubstr;

class MockPresenter : public IAccessArbiterPresenter {
public:
    MOCK_METHOD(void, OnAccessDecisionReceived, (UserDecision), (override));
};

class AccessArbiterViewTest : public ::testing::Test {
protected:
    int m_argc = 0;
    QGuiApplication m_app{m_argc, nullptr};
    QQmlApplicationEngine m_engine;
};

TEST_F(AccessArbiterViewTest, NullOrDeadEngineIsRejected) {
    EXPECT_THAT(FailureText([] { AccessArbiterView(QPointer<QQmlApplicationEngine>(), nullptr); }),
                HasSubstr("QQmlApplicationEngine is null"));
    QPointer<QQmlApplicationEngine> dead;
    {
        QQmlApplicationEngine engine;
        dead = &engine;
    }
    EXPECT_THAT(FailureText([&] { AccessArbiterView(dead, nullptr); }), HasSubstr("QQmlApplicationEngine is null"));
}

TEST_F(AccessArbiterViewTest, PublishesItselfOnTheRootContextAndStartsHidden) {
    QObject parent;
    auto* view = new AccessArbiterView(&m_engine, &parent);
    EXPECT_EQ(view->parent(), &parent);
    EXPECT_EQ(m_engine.rootContext()->contextProperty("accessArbiterView").value<QObject*>(), view);
    EXPECT_FALSE(view->IsVisible());
}

TEST_F(AccessArbiterViewTest, ShowAndHideEmitEveryTimeEvenWithoutChange) {
    AccessArbiterView view(&m_engine, nullptr);
    QSignalSpy spy(&view, SIGNAL(VisibleChanged()));
    view.Hide();
    EXPECT_FALSE(view.IsVisible());
    view.Show();
    EXPECT_TRUE(view.IsVisible());
    view.Show();
    EXPECT_TRUE(view.IsVisible());
    view.Hide();
    EXPECT_FALSE(view.IsVisible());
    EXPECT_EQ(spy.count(), 4);
}

TEST_F(AccessArbiterViewTest, MetaObjectOffersTheReadOnlyPropertyAndTheSlot) {
    AccessArbiterView view(&m_engine, nullptr);
    const QMetaObject* meta = view.metaObject();
    EXPECT_STREQ(meta->className(), "access_arbiter::ui::AccessArbiterView");
    const QMetaProperty property = meta->property(meta->indexOfProperty("isVisible"));
    ASSERT_TRUE(property.isValid());
    EXPECT_FALSE(property.isWritable());
    EXPECT_STREQ(property.notifySignal().name().constData(), "VisibleChanged");
    EXPECT_GE(meta->indexOfSlot("OnUserDecisionReceived(access_arbiter::ui::mode::UserDecision)"), 0);

    view.Show();
    EXPECT_TRUE(view.property("isVisible").toBool());
}

TEST_F(AccessArbiterViewTest, DecisionGoesToALivePresenter) {
    AccessArbiterView view(&m_engine, nullptr);
    auto presenter = std::make_shared<MockPresenter>();
    EXPECT_CALL(*presenter, OnAccessDecisionReceived(UserDecision::Approve)).Times(1);
    view.SetPresenter(presenter);
    ASSERT_TRUE(QMetaObject::invokeMethod(&view, "OnUserDecisionReceived",
                                          Q_ARG(access_arbiter::ui::mode::UserDecision, UserDecision::Approve)));
}

TEST_F(AccessArbiterViewTest, DecisionBeforeSetPresenterOrAfterItDiedIsIgnored) {
    AccessArbiterView view(&m_engine, nullptr);
    hos::logger::LogCaptureForTesting capture;
    view.OnUserDecisionReceived(UserDecision::Approve);

    auto presenter = std::make_shared<::testing::StrictMock<MockPresenter>>();
    view.SetPresenter(presenter);
    presenter.reset();
    view.OnUserDecisionReceived(UserDecision::Decline);
    EXPECT_FALSE(view.IsVisible());
    EXPECT_TRUE(capture.Records().empty());
}

TEST_F(AccessArbiterViewTest, SetPresenterReplacesTheEarlierOne) {
    AccessArbiterView view(&m_engine, nullptr);
    auto first = std::make_shared<::testing::StrictMock<MockPresenter>>();
    auto second = std::make_shared<MockPresenter>();
    EXPECT_CALL(*second, OnAccessDecisionReceived(UserDecision::Decline)).Times(1);
    view.SetPresenter(first);
    view.SetPresenter(second);
    view.OnUserDecisionReceived(UserDecision::Decline);
}

}  // namespace
