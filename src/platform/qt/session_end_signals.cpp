#include "session_end_signals.h"

#include <diagnostics/log.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QThread>
#include <QTimer>

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace hos::platform {

namespace {

constexpr std::array<int, 3> kSignals{SIGTERM, SIGINT, SIGHUP};

// The write end of the pipe of the object that currently listens; read by the signal handler.
std::atomic<int> g_writeEnd{-1};
// Set once the application's event loop turns: before that nothing reads the pipe.
std::atomic<bool> g_loopRunning{false};
// The line written when a signal comes before the loop, one per signal of kSignals; made before any
// handler is installed, since a handler may not format.
std::array<std::array<char, 160>, 3> g_beforeLoopLines{};

void EndBeforeTheLoop(int signalNumber) {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        if (kSignals[i] == signalNumber) {
            const char* line = g_beforeLoopLines[i].data();
            [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line, std::strlen(line));
        }
    }
    // Delivered as soon as this handler returns, with the default action: the process ends by the
    // signal, as it would have without a handler.
    ::signal(signalNumber, SIG_DFL);
    ::raise(signalNumber);
}

void OnSessionEndSignal(int signalNumber) {
    const int savedErrno = errno;
    if (!g_loopRunning.load()) {
        EndBeforeTheLoop(signalNumber);
        errno = savedErrno;
        return;
    }
    const int writeEnd = g_writeEnd.load();
    if (writeEnd >= 0) {
        const auto byte = static_cast<unsigned char>(signalNumber);
        // A full pipe already holds a request to end; nothing is lost by dropping this one.
        [[maybe_unused]] const ssize_t written = ::write(writeEnd, &byte, 1);
    }
    errno = savedErrno;
}

// Marks the loop as running at its first turn; a turn of a bare processEvents during the start does
// not count, so the check is made again at the next one.
void MarkTheLoopRunningOnceItTurns(QObject* context) {
    QTimer::singleShot(0, context, [context] {
        if (QThread::currentThread()->loopLevel() > 0) {
            g_loopRunning.store(true);
        } else {
            MarkTheLoopRunningOnceItTurns(context);
        }
    });
}

void InstallSessionEndSignals() {
    // A child of the application: it goes with it.
    new SessionEndSignals(QCoreApplication::instance());
}

}  // namespace

SessionEndSignals::SessionEndSignals(QObject* parent) : QObject(parent) {
    if (::pipe2(m_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        HL_LOG(hos::logger::LogLevel::Error,
               "Hosted platform: no pipe for the session's end signals ({}); they end the process at once",
               std::strerror(errno));
        return;
    }
    m_notifier = new QSocketNotifier(m_pipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SessionEndSignals::OnSignalArrived);
    g_writeEnd.store(m_pipe[1]);
    g_loopRunning.store(false);
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        std::snprintf(g_beforeLoopLines[i].data(), g_beforeLoopLines[i].size(),
                      "Hosted platform: signal %d (%s) came before the event loop runs; the process ends "
                      "now, as without a handler\n",
                      kSignals[i], ::strsignal(kSignals[i]));
    }
    MarkTheLoopRunningOnceItTurns(this);

    struct sigaction action {};
    action.sa_handler = OnSessionEndSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        struct sigaction previous {};
        if (::sigaction(kSignals[i], nullptr, &previous) != 0 || previous.sa_handler == SIG_IGN) {
            continue;
        }
        m_installed[i] = ::sigaction(kSignals[i], &action, &m_previous[i]) == 0;
    }
}

SessionEndSignals::~SessionEndSignals() {
    RestoreActions();
    g_writeEnd.store(-1);
    for (int& end : m_pipe) {
        if (end >= 0) {
            ::close(end);
            end = -1;
        }
    }
}

void SessionEndSignals::RestoreActions() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        if (m_installed[i]) {
            ::sigaction(kSignals[i], &m_previous[i], nullptr);
            m_installed[i] = false;
        }
    }
}

void SessionEndSignals::OnSignalArrived() {
    unsigned char signalNumber = 0;
    bool arrived = false;
    while (::read(m_pipe[0], &signalNumber, 1) == 1) {
        arrived = true;
    }
    if (!arrived) {
        return;
    }
    // A second signal is no longer a request: it ends the process the default way.
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        if (m_installed[i]) {
            ::signal(kSignals[i], SIG_DFL);
        }
    }
    m_installed = {};
    HL_LOG(hos::logger::LogLevel::Info,
           "Hosted platform: signal {} ({}) ends the session; quitting the event loop",
           static_cast<int>(signalNumber), ::strsignal(signalNumber));
    QCoreApplication::quit();
}

// Runs whenever a QCoreApplication is constructed, so main adds no step of its own.
Q_COREAPP_STARTUP_FUNCTION(InstallSessionEndSignals)

}  // namespace hos::platform
