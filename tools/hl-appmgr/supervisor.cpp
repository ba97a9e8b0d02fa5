#include "supervisor.h"

#include <diagnostics/log.h>
#include <interfaces/hl/app_manager/application_manager_control.h>
#include <platform/kn_channel.h>
#include <platform/kn_notice.h>
#include <platform/nk_result.h>
#include <platform/platform.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "core/child_environment.h"

namespace hl_appmgr {

namespace {

// The descriptor limit the manager was started with, read before main: its server raises its own
// soft limit to the hard one, and an application gets the limit it would have had without the
// manager (a program that still uses select() must not see descriptors above 1023).
const rlimit kInheritedDescriptorLimit = [] {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        limit.rlim_cur = limit.rlim_max = RLIM_INFINITY;
    }
    return limit;
}();

using hos::logger::LogLevel;
using Control = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl;

std::int64_t MonotonicMs(Supervisor::Clock::time_point at) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(at.time_since_epoch()).count();
}

std::int64_t MsBetween(Supervisor::Clock::time_point from, Supervisor::Clock::time_point to) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(to - from).count();
}

std::string_view EndKindName(EndKind kind) {
    switch (kind) {
        case EndKind::Clean:
            return "clean exit";
        case EndKind::Failure:
            return "abnormal exit";
        case EndKind::FailedStart:
            return "failed start";
        case EndKind::Hung:
            return "hung";
    }
    return "?";
}

// A pipe whose read end stays with the manager (non-blocking) and whose write end becomes the
// child's; both close on exec. False when none can be made (the child then shares the manager's).
bool OutputPipe(int ends[2]) {
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        ends[0] = ends[1] = -1;
        return false;
    }
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    return true;
}

void CloseIfOpen(int& fd) {
    if (fd >= 0) {
        ::close(fd);
        fd = -1;
    }
}

}  // namespace

Supervisor::App::App(Unit u) : unit(std::move(u)), restarts(unit), updateHandle(NK_INVALID_HANDLE) {}

Supervisor::Supervisor(std::vector<Unit> units, ApplicationStreams streams) : m_streams(std::move(streams)) {
    m_apps.reserve(units.size());
    for (Unit& unit : units) {
        m_apps.emplace_back(std::move(unit));
    }
}

Supervisor::~Supervisor() {
    for (App& app : m_apps) {
        if (app.updateHandle != NK_INVALID_HANDLE) {
            KnHandleClose(app.updateHandle);
        }
    }
    for (Watch& watch : m_watches) {
        CloseIfOpen(watch.pidfd);
        CloseIfOpen(watch.out);
        CloseIfOpen(watch.err);
    }
}

Supervisor::App* Supervisor::Find(const std::string& name) {
    for (App& app : m_apps) {
        if (app.unit.name == name) {
            return &app;
        }
    }
    return nullptr;
}

Supervisor::App* Supervisor::Caller(const std::string& name, long pid, const char* call) {
    App* app = Find(name);
    if (app != nullptr && app->pid > 0 && app->pid == pid) {
        return app;
    }
    // A caller that keeps calling is said at warning once, then at debug level.
    const bool first = m_refusedCallers.insert(pid).second;
    if (m_refusedCallers.size() > kRefusedCallersKept) {
        m_refusedCallers.clear();
    }
    const LogLevel level = first ? LogLevel::Warning : LogLevel::Debug;
    if (app == nullptr) {
        HL_LOG(level, "{} from pid {} refused: no application is called {}", call, pid, name);
    } else {
        HL_LOG(level, "{}[{}]: {} from pid {} refused: not the application's process", name, app->pid, call, pid);
    }
    return nullptr;
}

void Supervisor::Kill(App& app, int signal) {
    // The group, so that no child of the application escapes, and the leader on its own only when it
    // has left its group: a second SIGTERM could reach an application that took the first as its
    // request to stop and has given the signal back its default action, and kill it mid-teardown.
    const bool leaderInGroup = ::getpgid(app.pid) == app.pid;
    ::kill(-app.pid, signal);
    if (!leaderInGroup) {
        ::kill(app.pid, signal);
    }
    if (signal != SIGKILL) {
        // A stopped process takes no signal but SIGKILL until it is continued.
        ::kill(-app.pid, SIGCONT);
        ::kill(app.pid, SIGCONT);
    }
}

void Supervisor::StartAll() {
    std::lock_guard lock(m_mutex);
    for (App& app : m_apps) {
        Spawn(app);
    }
}

std::vector<Supervisor::Watch> Supervisor::TakeWatches() {
    std::lock_guard lock(m_mutex);
    return std::exchange(m_watches, {});
}

void Supervisor::Spawn(App& app) {
    std::vector<std::string> argvText;
    argvText.push_back(app.unit.name);
    argvText.insert(argvText.end(), app.unit.arguments.begin(), app.unit.arguments.end());
    std::vector<char*> argv;
    for (std::string& text : argvText) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);
    // Everything the child needs is made here: between fork and exec another thread may hold the
    // allocator's lock, so the child only moves descriptors, points environ and execs.
    const ApplicationStream stream = m_streams.Open(app.unit.name);
    int out[2] = {-1, -1};
    int err[2] = {-1, -1};
    // On the journal the output has its place there (journalctl -t NAME), and the application's
    // logger writes journal lines only to the stream JOURNAL_STREAM names: no pipes then.
    if (!m_streams.Journal() && OutputPipe(out) && !OutputPipe(err)) {
        CloseIfOpen(out[0]);
        CloseIfOpen(out[1]);
    }
    std::vector<std::string> environmentText = ChildEnvironment(environ, app.unit, stream.JournalStream());
    std::vector<char*> environment;
    for (std::string& text : environmentText) {
        environment.push_back(text.data());
    }
    environment.push_back(nullptr);
    const std::string cantStart =
        std::string(m_streams.Journal() ? "<3>" : "") + "hl-appmgr: can't start " + app.unit.program + ": ";

    const pid_t pid = ::fork();
    if (pid == 0) {
        ::setpgid(0, 0);
        ::setrlimit(RLIMIT_NOFILE, &kInheritedDescriptorLimit);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        if (const int fd = stream.Fd(); fd >= 0) {
            ::dup2(fd, STDOUT_FILENO);
            ::dup2(fd, STDERR_FILENO);
            if (fd <= STDERR_FILENO) {
                ::fcntl(fd, F_SETFD, 0);  // dup2 onto itself keeps close-on-exec
            }
        } else if (out[1] >= 0) {
            ::dup2(out[1], STDOUT_FILENO);
            ::dup2(err[1], STDERR_FILENO);
        }
        environ = environment.data();
        ::execvp(app.unit.program.c_str(), argv.data());
        const char* reason = std::strerror(errno);
        [[maybe_unused]] ssize_t ignored = ::write(STDERR_FILENO, cantStart.data(), cantStart.size());
        ignored = ::write(STDERR_FILENO, reason, std::strlen(reason));
        ignored = ::write(STDERR_FILENO, "\n", 1);
        ::_exit(127);
    }
    CloseIfOpen(out[1]);
    CloseIfOpen(err[1]);
    const auto now = Clock::now();
    app.restarts.NoteStart(MonotonicMs(now));
    const int pidfd = pid > 0 ? static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)) : -1;
    if (pid < 0 || pidfd < 0) {
        HL_LOG(LogLevel::Error, "{}: {} failed: {}", app.unit.name, pid < 0 ? "fork" : "pidfd_open",
               std::strerror(errno));
        CloseIfOpen(out[0]);
        CloseIfOpen(err[0]);
        if (pid > 0) {
            ::kill(-pid, SIGKILL);
            ::waitpid(pid, nullptr, 0);
        }
        app.pid = 0;
        Ended(app, 127 << 8);
        return;
    }
    ::setpgid(pid, pid);  // as the child does: whichever runs first
    app.pid = pid;
    app.state = "starting";
    app.shownUI = false;
    app.failedStart = false;
    app.killing = false;
    app.timedOut = false;
    app.stopping = false;
    app.restartAfterStop = false;
    app.pinged = false;
    app.startedAt = now;
    m_watches.push_back({app.unit.name, pid, pidfd, out[0], err[0]});
    HL_LOG(LogLevel::Info, "{}[{}]: started {}", app.unit.name, pid, app.unit.program);
}

void Supervisor::Reap(pid_t pid, int status) {
    std::lock_guard lock(m_mutex);
    for (App& app : m_apps) {
        if (app.pid == pid) {
            Ended(app, status);
        }
    }
}

void Supervisor::Ended(App& app, int status) {
    const pid_t pid = app.pid;
    if (pid > 0) {
        // What the application left of its group goes with it.
        ::kill(-pid, SIGKILL);
    }
    app.pid = 0;
    EndKind kind = EndKind::Failure;
    if (app.killing && !app.timedOut) {
        kind = EndKind::Hung;
    } else if (app.failedStart || app.timedOut) {
        kind = EndKind::FailedStart;
    } else if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        kind = EndKind::Clean;
    }
    // When a stop was asked for, how the application ends is not a fault of its own.
    const std::string_view how = app.stopping ? std::string_view("stopped") : EndKindName(kind);
    const LogLevel level = app.stopping || kind == EndKind::Clean ? LogLevel::Info : LogLevel::Warning;
    app.lastExit = WIFSIGNALED(status) ? fmt::format("killed by signal {}", WTERMSIG(status))
                                       : fmt::format("exited with status {}", WEXITSTATUS(status));
    HL_LOG(level, "{}[{}]: {} ({})", app.unit.name, pid, app.lastExit, how);
    if (app.stopping) {
        app.stopping = false;
        app.state = "stopped";
        if (app.restartAfterStop && !m_stoppingAll) {
            HL_LOG(LogLevel::Info, "{}: restarting as asked", app.unit.name);
            ++app.restartCount;
            Spawn(app);
        }
        return;
    }
    const RestartDecision decision = app.restarts.Decide(kind, MonotonicMs(Clock::now()));
    if (decision.restart) {
        app.state = "waiting-restart";
        app.restartAt = Clock::now() + std::chrono::milliseconds(decision.delayMs);
        HL_LOG(LogLevel::Warning, "{}: restarting in {} ms", app.unit.name, decision.delayMs);
    } else if (decision.startLimitHit) {
        app.state = "failed";
        app.startLimitHit = true;
        HL_LOG(LogLevel::Error, "{}: start limit of {} starts in {} ms reached; not restarting",
               app.unit.name, app.unit.startLimit, app.unit.startLimitIntervalMs);
    } else {
        app.state = kind == EndKind::Clean ? "exited" : "failed";
        HL_LOG(kind == EndKind::Clean ? LogLevel::Info : LogLevel::Warning, "{}: not restarted (restart={})",
               app.unit.name, RestartPolicyName(app.unit.restart));
    }
}

void Supervisor::Tick() {
    std::lock_guard lock(m_mutex);
    const auto now = Clock::now();
    for (App& app : m_apps) {
        const bool watched = app.pid > 0 && !app.killing && !app.stopping;
        if (watched && app.shownUI &&
            now - app.watchFrom >= std::chrono::milliseconds(app.unit.watchdogIntervalMs)) {
            HL_LOG(LogLevel::Warning, "{}[{}]: hung: no Ping for {} ms; sending SIGABRT", app.unit.name, app.pid,
                   MsBetween(app.watchFrom, now));
            app.killing = true;
            app.state = "hung";
            app.killAt = now + kKillGrace;
            Kill(app, SIGABRT);
        } else if (watched && !app.shownUI && app.unit.startTimeoutMs > 0 &&
                   now - app.startedAt >= std::chrono::milliseconds(app.unit.startTimeoutMs)) {
            HL_LOG(LogLevel::Warning, "{}[{}]: not ready within start_timeout_ms ({} ms); sending SIGTERM",
                   app.unit.name, app.pid, app.unit.startTimeoutMs);
            app.killing = true;
            app.timedOut = true;
            app.killAt = now + kKillGrace;
            Kill(app, SIGTERM);
        } else if (app.pid > 0 && (app.killing || app.stopping) && now >= app.killAt) {
            if (app.stopping) {
                HL_LOG(LogLevel::Warning, "{}[{}]: did not end within {} ms of SIGTERM; sending SIGKILL",
                       app.unit.name, app.pid, app.unit.stopTimeoutMs);
            } else {
                HL_LOG(LogLevel::Warning, "{}[{}]: still there {} ms after {}; sending SIGKILL", app.unit.name,
                       app.pid, kKillGrace.count(), app.timedOut ? "SIGTERM" : "SIGABRT");
            }
            Kill(app, SIGKILL);
            app.killAt = Clock::time_point::max();
        } else if (app.pid == 0 && app.state == "waiting-restart" && now >= app.restartAt && !m_stoppingAll) {
            ++app.restartCount;
            Spawn(app);
        }
    }
}

std::optional<Supervisor::Clock::time_point> Supervisor::NextDeadline() const {
    std::lock_guard lock(m_mutex);
    std::optional<Clock::time_point> next;
    const auto consider = [&next](Clock::time_point at) {
        if (!next || at < *next) {
            next = at;
        }
    };
    for (const App& app : m_apps) {
        if (app.pid > 0 && (app.killing || app.stopping)) {
            if (app.killAt != Clock::time_point::max()) {
                consider(app.killAt);
            }
        } else if (app.pid > 0 && app.shownUI) {
            consider(app.watchFrom + std::chrono::milliseconds(app.unit.watchdogIntervalMs));
        } else if (app.pid > 0 && app.unit.startTimeoutMs > 0) {
            consider(app.startedAt + std::chrono::milliseconds(app.unit.startTimeoutMs));
        } else if (app.pid == 0 && app.state == "waiting-restart" && !m_stoppingAll) {
            consider(app.restartAt);
        }
    }
    return next;
}

void Supervisor::NoteStall(std::int64_t stalledMs) {
    std::lock_guard lock(m_mutex);
    HL_LOG(LogLevel::Warning,
           "hl-appmgr did not run for {} ms (stopped or starved); every watch window starts again", stalledMs);
    const auto now = Clock::now();
    for (App& app : m_apps) {
        if (app.pid > 0 && !app.killing && !app.stopping) {
            app.watchFrom = now;
            app.startedAt = now;
        }
    }
}

void Supervisor::AddOutputLine(const std::string& name, std::string line) {
    std::lock_guard lock(m_mutex);
    if (App* app = Find(name)) {
        app->output.push_back(std::move(line));
        while (app->output.size() > kOutputLines) {
            app->output.pop_front();
        }
    }
}

void Supervisor::BeginStop(App& app, Clock::time_point now) {
    HL_LOG(LogLevel::Info, "{}[{}]: stopping (SIGTERM); SIGKILL if still there after {} ms", app.unit.name,
           app.pid, app.unit.stopTimeoutMs);
    app.stopping = true;
    app.state = "stopping";
    app.killAt = now + std::chrono::milliseconds(app.unit.stopTimeoutMs);
    Kill(app, SIGTERM);
}

void Supervisor::StopAll() {
    std::lock_guard lock(m_mutex);
    m_stoppingAll = true;
    const auto now = Clock::now();
    for (App& app : m_apps) {
        if (app.pid > 0 && !app.stopping) {
            BeginStop(app, now);
        } else if (app.pid == 0 && app.state == "waiting-restart") {
            app.state = "stopped";
        }
    }
}

bool Supervisor::AllEnded() const {
    std::lock_guard lock(m_mutex);
    for (const App& app : m_apps) {
        if (app.pid > 0) {
            return false;
        }
    }
    return true;
}

int Supervisor::Start(const std::string& name) {
    std::lock_guard lock(m_mutex);
    App* app = Find(name);
    if (app == nullptr) {
        return Control::kNoSuchApplication;
    }
    if (m_stoppingAll || app->startLimitHit || app->stopping) {
        HL_LOG(LogLevel::Warning, "{}: start refused ({})", name,
               m_stoppingAll ? "the manager is stopping"
                             : (app->stopping ? "it is stopping" : "start limit reached; reset-failed first"));
        return Control::kNotPossible;
    }
    if (app->pid == 0) {
        HL_LOG(LogLevel::Info, "{}: starting as asked", name);
        Spawn(*app);
    }
    return NK_EOK;
}

int Supervisor::Stop(const std::string& name) {
    std::lock_guard lock(m_mutex);
    App* app = Find(name);
    if (app == nullptr) {
        return Control::kNoSuchApplication;
    }
    if (app->pid > 0 && !app->stopping) {
        BeginStop(*app, Clock::now());
    } else if (app->pid == 0 && app->state == "waiting-restart") {
        HL_LOG(LogLevel::Info, "{}: stopped as asked before its restart", name);
        app->state = "stopped";
    }
    app->restartAfterStop = false;
    return NK_EOK;
}

int Supervisor::Restart(const std::string& name) {
    std::lock_guard lock(m_mutex);
    App* app = Find(name);
    if (app == nullptr) {
        return Control::kNoSuchApplication;
    }
    if (m_stoppingAll || app->startLimitHit) {
        return Control::kNotPossible;
    }
    if (app->pid > 0) {
        if (!app->stopping) {
            BeginStop(*app, Clock::now());
        }
        app->restartAfterStop = true;
    } else {
        HL_LOG(LogLevel::Info, "{}: starting as asked", name);
        Spawn(*app);
    }
    return NK_EOK;
}

int Supervisor::ResetFailed(const std::string& name) {
    std::lock_guard lock(m_mutex);
    bool found = false;
    for (App& app : m_apps) {
        if (!name.empty() && app.unit.name != name) {
            continue;
        }
        found = true;
        app.restarts.Reset();
        app.startLimitHit = false;
        if (app.state == "failed") {
            HL_LOG(LogLevel::Info, "{}: failed state reset", app.unit.name);
            app.state = "stopped";
        }
    }
    return found ? NK_EOK : Control::kNoSuchApplication;
}

int Supervisor::SetCommand(const std::string& appName, const std::string& name, std::int64_t value) {
    std::lock_guard lock(m_mutex);
    App* app = Find(appName);
    if (app == nullptr) {
        HL_LOG(LogLevel::Warning, "command {}={} for the unknown application {}", name, value, appName);
        return Control::kNoSuchApplication;
    }
    m_commands[name] = value;
    if (app->updateHandle == NK_INVALID_HANDLE) {
        HL_LOG(LogLevel::Warning, "{}[{}]: command {}={} set; no update handle to raise yet", app->unit.name,
               app->pid, name, value);
        return NK_EOK;
    }
    const int rc = KnNoticeSetObjectEvent(app->updateHandle, kUpdateEventMask);
    HL_LOG(LogLevel::Info, "{}[{}]: command {}={} set; update event raised (0x{:08x})", app->unit.name, app->pid,
           name, value, static_cast<unsigned>(rc));
    return NK_EOK;
}

bool Supervisor::Status(const std::string& name, StatusTable& table) const {
    std::lock_guard lock(m_mutex);
    table.managerPid = static_cast<long>(::getpid());
    const auto now = Clock::now();
    for (const App& app : m_apps) {
        if (!name.empty() && app.unit.name != name) {
            continue;
        }
        AppStatus status{app.unit.name, app.state, static_cast<long>(app.pid),
                         app.pid > 0 ? MsBetween(app.startedAt, now) : -1, app.lastExit, app.restartCount,
                         app.pid > 0 && app.pinged ? MsBetween(app.lastPing, now) : -1, {}};
        if (!name.empty()) {
            status.output.assign(app.output.begin(), app.output.end());
        }
        table.apps.push_back(std::move(status));
    }
    return name.empty() || !table.apps.empty();
}

std::string Supervisor::Summary() const {
    std::lock_guard lock(m_mutex);
    std::string failed;
    std::size_t running = 0;
    for (const App& app : m_apps) {
        if (app.startLimitHit) {
            failed += (failed.empty() ? "" : ", ") + app.unit.name;
        }
        running += app.state == "running" ? 1 : 0;
    }
    if (!failed.empty()) {
        return failed + " failed: start limit reached";
    }
    return fmt::format("{} of {} applications running", running, m_apps.size());
}

bool Supervisor::SomeFailedForGood() const {
    std::lock_guard lock(m_mutex);
    for (const App& app : m_apps) {
        if (app.startLimitHit) {
            return true;
        }
    }
    return false;
}

bool Supervisor::OnReadyToInitialize(const std::string& name, long pid) {
    std::lock_guard lock(m_mutex);
    App* app = Caller(name, pid, "ReadyToInitialize");
    if (app == nullptr) {
        return false;
    }
    HL_LOG(LogLevel::Info, "{}[{}]: ReadyToInitialize", name, pid);
    if (!app->stopping && !app->killing) {
        app->state = "initializing";
    }
    return true;
}

bool Supervisor::OnReadyToShowUI(const std::string& name, long pid) {
    std::lock_guard lock(m_mutex);
    App* app = Caller(name, pid, "ReadyToShowUI");
    if (app == nullptr) {
        return false;
    }
    HL_LOG(LogLevel::Info, "{}[{}]: ReadyToShowUI", name, pid);
    if (!app->stopping && !app->killing) {
        app->state = "running";
        app->shownUI = true;
        app->watchFrom = Clock::now();
    }
    return true;
}

bool Supervisor::OnStateChanged(const std::string& name, long pid, std::int64_t state) {
    std::lock_guard lock(m_mutex);
    if (Caller(name, pid, "StateChanged") == nullptr) {
        return false;
    }
    HL_LOG(LogLevel::Info, "{}[{}]: StateChanged({})", name, pid, state);
    return true;
}

bool Supervisor::OnFinishWithInternalError(const std::string& name, long pid, const std::string& error,
                                           const std::string& details) {
    std::lock_guard lock(m_mutex);
    App* app = Caller(name, pid, "FinishWithInternalError");
    if (app == nullptr) {
        return false;
    }
    HL_LOG(LogLevel::Warning, "{}[{}]: FinishWithInternalError: {} / {}", name, pid, error, details);
    app->failedStart = true;
    return true;
}

bool Supervisor::OnPing(const std::string& name, long pid) {
    std::lock_guard lock(m_mutex);
    App* app = Caller(name, pid, "Ping");
    if (app == nullptr) {
        return false;
    }
    HL_LOG(LogLevel::Debug, "{}[{}]: Ping", name, pid);
    app->lastPing = Clock::now();
    app->pinged = true;
    app->watchFrom = app->lastPing;
    return true;
}

bool Supervisor::OnUpdateHandle(const std::string& name, long pid, unsigned int managerEnd) {
    std::lock_guard lock(m_mutex);
    App* app = Caller(name, pid, "GetUpdateHandle");
    if (app == nullptr) {
        return false;
    }
    HL_LOG(LogLevel::Info, "{}[{}]: GetUpdateHandle", name, pid);
    if (app->updateHandle != NK_INVALID_HANDLE) {
        KnHandleClose(app->updateHandle);
    }
    app->updateHandle = managerEnd;
    return true;
}

bool Supervisor::LookUpCommand(const std::string& name, std::int64_t& value) {
    std::lock_guard lock(m_mutex);
    const auto found = m_commands.find(name);
    if (found == m_commands.end()) {
        return false;
    }
    value = found->second;
    return true;
}

}  // namespace hl_appmgr
