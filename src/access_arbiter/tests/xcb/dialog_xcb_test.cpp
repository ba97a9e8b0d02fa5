// The dialog on a real X server (the test script runs ctest under xvfb-run), not the offscreen
// platform: window creation, exposure and mouse input go through the xcb platform plugin.

#include "business/interactors/user_decision_interactor.h"
#include "ui/window_factory/window_factory.h"

#include "support/dialog_fixture.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQmlContext>
#include <QTest>

#include <thread>

namespace {

using access_arbiter::testing::ClickItem;
using access_arbiter::testing::DialogRectangle;
using access_arbiter::testing::DialogWindow;
using access_arbiter::testing::FindItemsOfType;
using access_arbiter::ui::mode::UserDecision;

TEST(DialogOnX, ApproveClickedOnTheShownWindowReachesTheQueueAndHidesIt) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        GTEST_SKIP() << "DISPLAY is not set: this test needs an X server (run ctest under xvfb-run -a)";
    }
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    ASSERT_EQ(QGuiApplication::platformName(), QStringLiteral("xcb"));
    QQmlApplicationEngine engine;
    engine.rootContext()->setContextProperty(QStringLiteral("paletteProvider"), nullptr);
    auto queue = std::make_shared<access_arbiter::interactors::UserDecisionInteractor>();
    access_arbiter::ui::WindowFactory factory(&engine, queue);
    const auto window = factory.CreateWindow();
    ASSERT_NE(window, nullptr);
    QQuickWindow* dialog = DialogWindow(engine);
    ASSERT_NE(dialog, nullptr);

    // Shown as the dispatcher does it, from a thread of its own; the main loop then shows the window.
    std::thread dispatcher([&window] { window->Show(); });
    dispatcher.join();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
    const auto buttons = FindItemsOfType(DialogRectangle(*dialog), "PushButton");
    ASSERT_EQ(buttons.size(), 2U);
    ClickItem(*dialog, *buttons[1]);
    EXPECT_FALSE(dialog->isVisible());

    // A Decline pushed after the click keeps the get from blocking when the click pushed nothing.
    queue->SetUserDecision(UserDecision::Decline);
    UserDecision decision = UserDecision::Decline;
    EXPECT_EQ(queue->GetUserDecision(decision), 0);
    EXPECT_EQ(static_cast<int>(decision), 1);
}

}  // namespace
