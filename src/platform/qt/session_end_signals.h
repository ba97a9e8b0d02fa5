// The hosted platform's end of a session for a Qt application: SIGTERM, SIGINT and SIGHUP are the
// session's request that the application end, and they end its event loop the ordinary way
// (QCoreApplication::quit()), so that `exec` returns and the program stops as it would on any other
// end of its loop. On HalcyraOS the platform ends an application in its own way; the program itself
// has no stop path and learns of none of this.
//
// One object is made for each QCoreApplication, as its child, by a start-up routine of the Qt core
// application (linked into every hosted Qt executable that links hl_platform_qt); nothing calls it.
//
// Thread: made and destroyed on the Qt main thread. The signal handler only writes the signal's number
// into a pipe (async-signal-safe); a socket notifier on the main thread reads it, logs, and quits.
// The first signal also puts the three signals back to their default action, so a second one ends a
// process whose teardown cannot finish (a decision still waited for) at once. Destruction puts back
// the actions found at construction. A signal ignored when the object is made (nohup) stays ignored.
// A signal that comes before the event loop first turns (the application still starting, say while
// it waits for a service) would wait in the pipe for a loop that may be minutes away: it writes one
// line to standard error and ends the process by the signal's default action at once.
#pragma once

#include <QObject>

#include <signal.h>

#include <array>

class QSocketNotifier;

namespace hos::platform {

class SessionEndSignals final : public QObject {
public:
    explicit SessionEndSignals(QObject* parent);
    ~SessionEndSignals() override;
    SessionEndSignals(const SessionEndSignals&) = delete;
    SessionEndSignals& operator=(const SessionEndSignals&) = delete;

private:
    void OnSignalArrived();
    void RestoreActions();

    std::array<int, 2> m_pipe{-1, -1};
    std::array<struct sigaction, 3> m_previous{};
    std::array<bool, 3> m_installed{};
    QSocketNotifier* m_notifier = nullptr;  // a child of this object
};

}  // namespace hos::platform
