#include "manager_loop.h"

#include <diagnostics/log.h>

#include <signal.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace hl_appmgr {

namespace {

using hos::logger::LogLevel;

std::uint64_t Usec(Supervisor::Clock::time_point at) {
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(at.time_since_epoch()).count());
}

void WriteAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return;  // the manager's own output is gone; the lines are still kept
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
}

}  // namespace

void ManagerLoop::Block() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGINT);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
}

ManagerLoop::ManagerLoop(std::shared_ptr<Supervisor> supervisor, std::shared_ptr<SystemdNotifier> notifier)
    : m_supervisor(std::move(supervisor)), m_notifier(std::move(notifier)) {}

ManagerLoop::~ManagerLoop() {
    for (Child& child : m_children) {
        sd_event_source_unref(child.source);
        ::close(child.pidfd);
    }
    for (Output& output : m_outputs) {
        sd_event_source_unref(output.source);
        ::close(output.fd);
    }
    sd_event_source_unref(m_timer);
    sd_event_unref(m_event);
    if (m_wakeFd >= 0) {
        ::close(m_wakeFd);
    }
}

bool ManagerLoop::Setup() {
    int rc = sd_event_new(&m_event);
    m_wakeFd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (rc < 0 || m_wakeFd < 0) {
        HL_LOG(LogLevel::Error, "can't set up the event loop: {}", std::strerror(rc < 0 ? -rc : errno));
        return false;
    }
    if ((rc = sd_event_add_signal(m_event, nullptr, SIGTERM, &ManagerLoop::OnSignal, this)) < 0 ||
        (rc = sd_event_add_signal(m_event, nullptr, SIGINT, &ManagerLoop::OnSignal, this)) < 0 ||
        (rc = sd_event_add_io(m_event, nullptr, m_wakeFd, EPOLLIN, &ManagerLoop::OnWake, this)) < 0 ||
        (rc = sd_event_add_time(m_event, &m_timer, CLOCK_MONOTONIC, 0, 1000, &ManagerLoop::OnTimer, this)) < 0) {
        HL_LOG(LogLevel::Error, "can't set up the event loop: {}", std::strerror(-rc));
        return false;
    }
    sd_event_source_set_enabled(m_timer, SD_EVENT_OFF);
    if (const auto every = m_notifier->KeepAliveEvery(); every.count() > 0) {
        rc = sd_event_add_time_relative(m_event, nullptr, CLOCK_MONOTONIC, 0, 1000, &ManagerLoop::OnKeepAlive, this);
        if (rc < 0) {
            HL_LOG(LogLevel::Error, "can't set up the watchdog timer: {}", std::strerror(-rc));
            return false;
        }
    }
    return true;
}

void ManagerLoop::Wake() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t ignored = ::write(m_wakeFd, &one, sizeof one);
}

int ManagerLoop::Run() {
    Settle();
    const int rc = sd_event_loop(m_event);
    return rc < 0 ? 1 : rc;
}

int ManagerLoop::OnSignal(sd_event_source* /*source*/, const struct signalfd_siginfo* /*info*/, void* data) {
    auto* self = static_cast<ManagerLoop*>(data);
    if (!self->m_stopping) {
        self->m_stopping = true;
        HL_LOG(LogLevel::Info, "hl-appmgr stopping");
        self->m_notifier->Stopping();
        self->m_supervisor->StopAll();
    }
    self->Settle();
    return 0;
}

int ManagerLoop::OnWake(sd_event_source* /*source*/, int fd, uint32_t /*events*/, void* data) {
    std::uint64_t count = 0;
    [[maybe_unused]] const ssize_t ignored = ::read(fd, &count, sizeof count);
    static_cast<ManagerLoop*>(data)->Settle();
    return 0;
}

int ManagerLoop::OnTimer(sd_event_source* /*source*/, uint64_t usec, void* data) {
    auto* self = static_cast<ManagerLoop*>(data);
    const std::uint64_t now = Usec(Supervisor::Clock::now());
    if (now > usec && now - usec > static_cast<std::uint64_t>(kStallMs.count()) * 1000) {
        self->m_supervisor->NoteStall(static_cast<std::int64_t>((now - usec) / 1000));
    }
    self->m_supervisor->Tick();
    self->Settle();
    return 0;
}

int ManagerLoop::OnKeepAlive(sd_event_source* source, uint64_t /*usec*/, void* data) {
    auto* self = static_cast<ManagerLoop*>(data);
    const auto now = Supervisor::Clock::now();
    self->m_notifier->KeepAlive(now);
    sd_event_source_set_time(source, Usec(now) + static_cast<std::uint64_t>(self->m_notifier->KeepAliveEvery().count()));
    sd_event_source_set_enabled(source, SD_EVENT_ONESHOT);
    return 0;
}

int ManagerLoop::OnChild(sd_event_source* /*source*/, int /*fd*/, uint32_t /*events*/, void* data) {
    auto* child = static_cast<Child*>(data);
    ManagerLoop* self = child->loop;
    int status = 0;
    const pid_t reaped = ::waitpid(child->pid, &status, WNOHANG);
    if (reaped == 0) {
        return 0;  // not yet
    }
    if (reaped == child->pid) {
        self->m_supervisor->Reap(child->pid, status);
    } else {
        HL_LOG(LogLevel::Error, "can't wait for {}: {}", child->pid, std::strerror(errno));
        self->m_supervisor->Reap(child->pid, 127 << 8);
    }
    sd_event_source_disable_unref(child->source);
    ::close(child->pidfd);
    self->m_children.remove_if([child](const Child& c) { return &c == child; });
    self->Settle();
    return 0;
}

bool ManagerLoop::Drain(Output& output) {
    char buffer[4096];
    for (;;) {
        const ssize_t got = ::read(output.fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0 && errno == EAGAIN) {
            return true;
        }
        if (got <= 0) {
            if (!output.partial.empty()) {
                m_supervisor->AddOutputLine(output.name, std::exchange(output.partial, {}));
            }
            return false;
        }
        WriteAll(output.target, buffer, static_cast<std::size_t>(got));
        for (ssize_t i = 0; i < got; ++i) {
            if (buffer[i] == '\n') {
                m_supervisor->AddOutputLine(output.name, std::exchange(output.partial, {}));
            } else if (output.partial.size() < kMaxLineBytes) {
                output.partial += buffer[i];
            }
        }
    }
}

void ManagerLoop::CloseOutput(Output& output) {
    sd_event_source_disable_unref(output.source);
    ::close(output.fd);
    m_outputs.remove_if([&output](const Output& o) { return &o == &output; });
}

int ManagerLoop::OnOutput(sd_event_source* /*source*/, int /*fd*/, uint32_t /*events*/, void* data) {
    auto* output = static_cast<Output*>(data);
    ManagerLoop* self = output->loop;
    if (!self->Drain(*output)) {
        self->CloseOutput(*output);
    }
    return 0;
}

void ManagerLoop::Settle() {
    for (const Supervisor::Watch& watch : m_supervisor->TakeWatches()) {
        Child& child = m_children.emplace_back(Child{this, watch.pid, watch.pidfd, nullptr});
        if (const int rc = sd_event_add_io(m_event, &child.source, watch.pidfd, EPOLLIN, &ManagerLoop::OnChild, &child);
            rc < 0) {
            HL_LOG(LogLevel::Error, "{}[{}]: can't watch the process: {}", watch.name, watch.pid, std::strerror(-rc));
        }
        for (const auto& [fd, target] : {std::pair{watch.out, STDOUT_FILENO}, std::pair{watch.err, STDERR_FILENO}}) {
            if (fd < 0) {
                continue;
            }
            Output& output = m_outputs.emplace_back(Output{this, watch.name, fd, target, {}, nullptr});
            if (sd_event_add_io(m_event, &output.source, fd, EPOLLIN, &ManagerLoop::OnOutput, &output) < 0) {
                CloseOutput(output);
            }
        }
    }
    if (const auto next = m_supervisor->NextDeadline()) {
        sd_event_source_set_time(m_timer, Usec(*next));
        sd_event_source_set_enabled(m_timer, SD_EVENT_ONESHOT);
    } else {
        sd_event_source_set_enabled(m_timer, SD_EVENT_OFF);
    }
    const std::string summary = m_supervisor->Summary();
    if (m_supervisor->SomeFailedForGood()) {
        m_notifier->StopWatchdog(summary);
    }
    if (!m_stopping) {
        m_notifier->Status(summary);
    }
    if (m_stopping && m_supervisor->AllEnded()) {
        // What the applications wrote last is in their pipes: copy it before the manager ends.
        while (!m_outputs.empty()) {
            Drain(m_outputs.front());
            CloseOutput(m_outputs.front());
        }
        sd_event_exit(m_event, 0);
    }
}

}  // namespace hl_appmgr
