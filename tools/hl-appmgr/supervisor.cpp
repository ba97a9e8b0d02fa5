#include "supervisor.h"

#include <diagnostics/log.h>
#include <platform/kn_channel.h>
#include <platform/kn_notice.h>
#include <platform/nk_result.h>
#include <platform/platform.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "core/child_environment.h"
#include "core/command_box.h"

namespace hl_appmgr {

namespace {

using hos::logger::LogLevel;

std::int64_t UnixMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::int64_t MonotonicMs(Supervisor::Clock::time_point at) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(at.time_since_epoch()).count();
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
}

Supervisor::App* Supervisor::Find(const std::string& name) {
    for (App& app : m_apps) {
        if (app.unit.name == name) {
            return &app;
        }
    }
    return nullptr;
}

long Supervisor::PidOf(const std::string& name) {
    const App* app = Find(name);
    return app != nullptr ? static_cast<long>(app->pid) : -1;
}

void Supervisor::StartAll() {
    std::lock_guard lock(m_mutex);
    for (App& app : m_apps) {
        Spawn(app);
    }
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
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        if (const int fd = stream.Fd(); fd >= 0) {
            ::dup2(fd, STDOUT_FILENO);
            ::dup2(fd, STDERR_FILENO);
            if (fd <= STDERR_FILENO) {
                ::fcntl(fd, F_SETFD, 0);  // dup2 onto itself keeps close-on-exec
            }
        }
        environ = environment.data();
        ::execvp(app.unit.program.c_str(), argv.data());
        const char* reason = std::strerror(errno);
        [[maybe_unused]] ssize_t ignored = ::write(STDERR_FILENO, cantStart.data(), cantStart.size());
        ignored = ::write(STDERR_FILENO, reason, std::strlen(reason));
        ignored = ::write(STDERR_FILENO, "\n", 1);
        ::_exit(127);
    }
    const auto now = Clock::now();
    app.restarts.NoteStart(MonotonicMs(now));
    if (pid < 0) {
        HL_LOG(LogLevel::Error, "{}: fork failed: {}", app.unit.name, std::strerror(errno));
        app.pid = 0;
        Ended(app, 127 << 8);
        return;
    }
    app.pid = pid;
    app.state = "starting";
    app.shownUI = false;
    app.failedStart = false;
    app.hungKill = false;
    app.lastPingUnixMs = -1;
    HL_LOG(LogLevel::Info, "{}[{}]: started {}", app.unit.name, pid, app.unit.program);
}

void Supervisor::Ended(App& app, int status) {
    const pid_t pid = app.pid;
    app.pid = 0;
    EndKind kind = EndKind::Failure;
    if (app.hungKill) {
        kind = EndKind::Hung;
    } else if (app.failedStart) {
        kind = EndKind::FailedStart;
    } else if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        kind = EndKind::Clean;
    }
    // While the manager stops, how the application ends is not a fault of its own.
    const std::string_view how = app.stopping ? std::string_view("stopped") : EndKindName(kind);
    const LogLevel level = app.stopping || kind == EndKind::Clean ? LogLevel::Info : LogLevel::Warning;
    if (WIFSIGNALED(status)) {
        HL_LOG(level, "{}[{}]: killed by signal {} ({})", app.unit.name, pid, WTERMSIG(status), how);
    } else {
        HL_LOG(level, "{}[{}]: exited with status {} ({})", app.unit.name, pid, WEXITSTATUS(status), how);
    }
    if (app.stopping) {
        app.state = "stopped";
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
    for (;;) {
        int status = 0;
        const pid_t pid = ::waitpid(-1, &status, WNOHANG);
        if (pid <= 0) {
            break;
        }
        for (App& app : m_apps) {
            if (app.pid == pid) {
                Ended(app, status);
            }
        }
    }
    const auto now = Clock::now();
    for (App& app : m_apps) {
        // An application being stopped pings no more: its event loop has ended.
        if (app.pid > 0 && app.shownUI && !app.hungKill && !app.stopping &&
            now - app.watchFrom > std::chrono::milliseconds(app.unit.watchdogIntervalMs)) {
            const auto silentMs =
                std::chrono::duration_cast<std::chrono::milliseconds>(now - app.watchFrom).count();
            HL_LOG(LogLevel::Warning, "{}[{}]: hung: no Ping for {} ms; sending SIGABRT", app.unit.name,
                   app.pid, silentMs);
            app.hungKill = true;
            app.state = "hung";
            app.abortedAt = now;
            ::kill(app.pid, SIGABRT);
            // A stopped process takes no signal but SIGKILL until it is continued.
            ::kill(app.pid, SIGCONT);
        } else if (app.pid > 0 && app.hungKill && now - app.abortedAt > kKillGrace) {
            HL_LOG(LogLevel::Warning, "{}[{}]: still there {} ms after SIGABRT; sending SIGKILL",
                   app.unit.name, app.pid, kKillGrace.count());
            ::kill(app.pid, SIGKILL);
            app.abortedAt = now + std::chrono::hours(1);
        } else if (app.pid == 0 && app.state == "waiting-restart" && now >= app.restartAt) {
            ++app.restartCount;
            Spawn(app);
        }
    }
    ApplyCommands();
}

void Supervisor::ApplyCommands() {
    std::vector<std::string> rejected;
    for (const Command& command : TakeCommands(&rejected)) {
        m_commands[command.name] = command.value;
        App* app = Find(command.app);
        if (app == nullptr) {
            HL_LOG(LogLevel::Warning, "command {}={} for the unknown application {}", command.name,
                   command.value, command.app);
            continue;
        }
        if (app->updateHandle == NK_INVALID_HANDLE) {
            HL_LOG(LogLevel::Warning, "{}[{}]: command {}={} set; no update handle to raise yet",
                   app->unit.name, app->pid, command.name, command.value);
            continue;
        }
        const int rc = KnNoticeSetObjectEvent(app->updateHandle, kUpdateEventMask);
        HL_LOG(LogLevel::Info, "{}[{}]: command {}={} set; update event raised (0x{:08x})", app->unit.name,
               app->pid, command.name, command.value, static_cast<unsigned>(rc));
    }
    for (const std::string& name : rejected) {
        HL_LOG(LogLevel::Warning, "dropped the malformed command file {}", name);
    }
}

void Supervisor::StopAll() {
    {
        std::lock_guard lock(m_mutex);
        const auto now = Clock::now();
        for (App& app : m_apps) {
            app.stopping = true;
            if (app.pid > 0) {
                HL_LOG(LogLevel::Info, "{}[{}]: stopping (SIGTERM); SIGKILL if still there after {} ms",
                       app.unit.name, app.pid, app.unit.stopTimeoutMs);
                app.state = "stopping";
                app.stopDeadline = now + std::chrono::milliseconds(app.unit.stopTimeoutMs);
                ::kill(app.pid, SIGTERM);
                ::kill(app.pid, SIGCONT);
            } else {
                app.state = "stopped";
            }
        }
    }
    for (;;) {
        Tick();
        bool running = false;
        {
            std::lock_guard lock(m_mutex);
            const auto now = Clock::now();
            for (App& app : m_apps) {
                if (app.pid <= 0) {
                    continue;
                }
                running = true;
                if (now > app.stopDeadline) {
                    HL_LOG(LogLevel::Warning, "{}[{}]: did not end within {} ms of SIGTERM; sending SIGKILL",
                           app.unit.name, app.pid, app.unit.stopTimeoutMs);
                    ::kill(app.pid, SIGKILL);
                    app.stopDeadline = Clock::time_point::max();
                }
            }
        }
        if (!running) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
}

StatusTable Supervisor::Status() const {
    std::lock_guard lock(m_mutex);
    StatusTable table;
    table.managerPid = static_cast<long>(::getpid());
    for (const App& app : m_apps) {
        table.apps.push_back(
            {app.unit.name, app.state, static_cast<long>(app.pid), app.lastPingUnixMs, app.restartCount});
    }
    return table;
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

void Supervisor::OnReadyToInitialize(const std::string& name) {
    std::lock_guard lock(m_mutex);
    HL_LOG(LogLevel::Info, "{}[{}]: ReadyToInitialize", name, PidOf(name));
    if (App* app = Find(name)) {
        app->state = "initializing";
    }
}

void Supervisor::OnReadyToShowUI(const std::string& name) {
    std::lock_guard lock(m_mutex);
    HL_LOG(LogLevel::Info, "{}[{}]: ReadyToShowUI", name, PidOf(name));
    if (App* app = Find(name)) {
        app->state = "running";
        app->shownUI = true;
        app->watchFrom = Clock::now();
    }
}

void Supervisor::OnStateChanged(const std::string& name, std::int64_t state) {
    std::lock_guard lock(m_mutex);
    HL_LOG(LogLevel::Info, "{}[{}]: StateChanged({})", name, PidOf(name), state);
}

void Supervisor::OnFinishWithInternalError(const std::string& name, const std::string& error,
                                           const std::string& details) {
    std::lock_guard lock(m_mutex);
    HL_LOG(LogLevel::Warning, "{}[{}]: FinishWithInternalError: {} / {}", name, PidOf(name), error, details);
    if (App* app = Find(name)) {
        app->failedStart = true;
    }
}

void Supervisor::OnPing(const std::string& name) {
    std::lock_guard lock(m_mutex);
    HL_LOG(LogLevel::Debug, "{}[{}]: Ping", name, PidOf(name));
    if (App* app = Find(name)) {
        app->lastPingUnixMs = UnixMs();
        app->watchFrom = Clock::now();
    }
}

void Supervisor::OnUpdateHandle(const std::string& name, unsigned int managerEnd) {
    std::lock_guard lock(m_mutex);
    HL_LOG(LogLevel::Info, "{}[{}]: GetUpdateHandle", name, PidOf(name));
    App* app = Find(name);
    if (app == nullptr) {
        KnHandleClose(managerEnd);
        return;
    }
    if (app->updateHandle != NK_INVALID_HANDLE) {
        KnHandleClose(app->updateHandle);
    }
    app->updateHandle = managerEnd;
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
