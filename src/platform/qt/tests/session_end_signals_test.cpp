// The hosted platform's Qt side: each of the session's end signals ends a running event loop with
// exit code 0, after which the signal has its default action again; an ignored signal stays ignored.
// Nothing in the test installs anything: linking hl_platform_qt is all an executable does.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTimer>

#include <signal.h>

namespace {

sighandler_t ActionOf(int signalNumber) {
    struct sigaction current {};
    sigaction(signalNumber, nullptr, &current);
    return current.sa_handler;
}

TEST(SessionEndSignals, EachEndSignalQuitsTheEventLoopAndASecondWouldEndTheProcess) {
    for (const int signalNumber : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signalNumber);
        int argc = 1;
        char name[] = "session_end_signals_test";
        char* argv[] = {name, nullptr};
        QCoreApplication app(argc, argv);
        EXPECT_NE(ActionOf(signalNumber), SIG_DFL) << "no handler while the application lives";
        QTimer::singleShot(0, [signalNumber] { raise(signalNumber); });
        // Without the handler the signal would end the test process; a hang is ended by this timer.
        QTimer::singleShot(10000, [] { QCoreApplication::exit(7); });
        EXPECT_EQ(QCoreApplication::exec(), 0);
        EXPECT_EQ(ActionOf(signalNumber), SIG_DFL);
    }
}

TEST(SessionEndSignals, ASignalIgnoredAtStartStaysIgnored) {
    signal(SIGHUP, SIG_IGN);
    int argc = 1;
    char name[] = "session_end_signals_test";
    char* argv[] = {name, nullptr};
    {
        QCoreApplication app(argc, argv);
        EXPECT_EQ(ActionOf(SIGHUP), SIG_IGN);
        EXPECT_NE(ActionOf(SIGTERM), SIG_DFL);
    }
    EXPECT_EQ(ActionOf(SIGTERM), SIG_DFL) << "the application's end puts the actions back";
    signal(SIGHUP, SIG_DFL);
}

}  // namespace
