// hl-settings monitor PATH [--json]: subscribes to PATH and prints each update as it arrives, with
// the value read after it, until SIGINT or SIGTERM; then unsubscribes and exits 0. Exits 3 when the
// service goes away.
#include "commands.h"
#include "core/exit_code.h"
#include "core/path_argument.h"
#include "core/quoted_text.h"
#include "core/service_connection.h"
#include "core/tree_json.h"
#include "core/update_queue.h"
#include "core/value_text.h"

#include <settings_manager/path_to_str.h>

#include <nlohmann/json.hpp>

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace hl_settings {

namespace {

// The client's callback thread retries a lost service forever, silently; the monitor asks for the
// service itself after each quiet stretch of this length, and ends when it is gone.
constexpr int kLivenessCheckMs = 2000;

bool PrintUpdate(const Update& update, settings_manager::ISettingsGetter& getter, bool json) {
    const std::string path = settings_manager::PathToStr(update.path);
    settings_manager::Setting setting;
    const std::int32_t result = getter.GetSetting(update.path, setting);
    if (json) {
        nlohmann::json line{{"path", path}, {"upd", update.upd}};
        line["setting"] = result < 0 ? nlohmann::json(nullptr) : TypedJson(setting);
        std::printf("%s\n", JsonText(line).c_str());
    } else if (result < 0) {
        std::printf("%s  upd %u  (absent)\n", path.c_str(), static_cast<unsigned>(update.upd));
    } else {
        std::string value = ValueText(setting);
        if (setting.index() == uvc::IndexString) {
            value = Quote(value);
        }
        std::printf("%s  upd %u  %s  %s\n", path.c_str(), static_cast<unsigned>(update.upd),
                    TypeName(setting.index()).c_str(), value.c_str());
    }
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

}  // namespace

int RunMonitor(const Invocation& invocation, ServiceConnection& connection) {
    std::string error;
    const auto path = ParsePathArgument(invocation.path, error);
    if (!path) {
        return ReportUsage(error);
    }
    // Blocked before the client starts its callback thread, which inherits the mask: the signals are
    // then taken only here, through the signalfd.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    const int signalFd = ::signalfd(-1, &stopSignals, SFD_CLOEXEC);
    if (signalFd < 0) {
        std::perror("hl-settings: signalfd");
        return kExitRefused;
    }

    if (const int opened = connection.Open(); opened != 0) {
        ::close(signalFd);
        return opened;
    }
    std::shared_ptr<settings_manager::ISettingsUpdateSubscriber> subscriber;
    std::shared_ptr<settings_manager::ISettingsGetter> getter;
    connection.Manager().GetSettingsUpdateSubscriber(subscriber);
    connection.Manager().GetSettingsGetter(getter);
    const auto queue = std::make_shared<UpdateQueue>();
    settings_manager::SubscriptionId sid;
    const std::string pathText = settings_manager::PathToStr(*path);
    if (const std::int32_t result = subscriber->Subscribe(*path, queue, sid); result < 0) {
        ::close(signalFd);
        return ReportFailure("monitor", pathText, result);
    }
    std::fprintf(stderr, "hl-settings: monitoring '%s' on %s (subscription %llu); Ctrl-C ends\n",
                 pathText.c_str(), invocation.service.c_str(), static_cast<unsigned long long>(sid.value));

    pollfd fds[2] = {{signalFd, POLLIN, 0}, {queue->Fd(), POLLIN, 0}};
    int code = kExitOk;
    for (;;) {
        const int ready = ::poll(fds, 2, kLivenessCheckMs);
        if (ready < 0 && errno != EINTR) {
            break;
        }
        if (ready == 0 && !connection.IsThere()) {
            std::fprintf(stderr, "hl-settings: service '%s' went away\n", connection.Service().c_str());
            code = kExitUnreachable;
            break;
        }
        if (fds[1].revents & POLLIN) {
            bool written = true;
            for (const Update& update : queue->Take()) {
                written = written && PrintUpdate(update, *getter, invocation.json);
            }
            if (!written) {
                code = kExitOutput;  // main says why
                break;
            }
        }
        if (fds[0].revents & POLLIN) {
            break;
        }
    }
    ::close(signalFd);
    if (const std::int32_t result = subscriber->Unsubscribe(sid); result < 0 && code == kExitOk) {
        return ReportFailure("monitor (unsubscribe)", pathText, result);
    }
    return code;
}

}  // namespace hl_settings
