// A small managed application for hl-appmgr's tests, written with the generated proxies.
//
//   test_app MODE [PING_MS [REPORT]]    (argv[0] is the application's name, as hl-appmgr passes it)
//
// Logs "NAME: MODE, Ping every PING_MS ms" at info level and, given REPORT, writes there the systemd
// variables it was started with, one "KEY=VALUE" line each ("KEY=-" when unset): NOTIFY_SOCKET,
// WATCHDOG_USEC, WATCHDOG_PID, JOURNAL_STREAM.
// Looks up the application manager, GetUpdateHandle, ReadyToInitialize, ReadyToShowUI, then Pings
// every PING_MS (default 1000). On the update event it reads GetCommand("volume") and prints
// "command volume=N" on stdout. On SIGTERM: StateChanged(-2), exit 0. MODE: run (until SIGTERM),
// crash (a warning, then abort after 2 Pings), exit0 (StateChanged(-2) and exit 0 after 2 Pings),
// failstart (FinishWithInternalError instead of ReadyToShowUI, exit 1), noready (no ReadyToShowUI:
// waits for SIGTERM), spawn (as run, with a child "sleep 600" whose pid it prints as "child PID").
// Exit status: 0, 1 on a failed start, 2 without a manager, 3 usage.
#include <diagnostics/log.h>
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <interfaces/hl/app_manager/application_commands.h>
#include <interfaces/hl/app_manager/application_controller.h>
#include <interfaces/hl/app_manager/application_watchdog.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>
#include <platform/platform.h>

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace hosipc::idl::stdcpp_v1::hl::app_manager;
using hosipc_detail::idl_traits::MakeProxyImpl;
using hosipc_detail::idl_traits::ProxyBait;

volatile std::sig_atomic_t g_stop = 0;

template <typename T>
auto Connect(const hosipc::api_v1::Application& application, const char* server, const char* service) {
    const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
        server, service, 5000, false);
    return MakeProxyImpl(connector, application.GetResourceProvider(), static_cast<ProxyBait<T>*>(nullptr));
}

std::vector<unsigned char> Bytes(const std::string& text) {
    return {text.begin(), text.end()};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s MODE [PING_MS]\n", argv[0]);
        return 3;
    }
    const std::string mode = argv[1];
    const unsigned long pingMs = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1000;
    const auto name = Bytes(argv[0]);
    HL_LOG(hos::logger::LogLevel::Info, "{}: {}, Ping every {} ms", argv[0], mode, pingMs);
    if (argc > 3) {
        std::ofstream report(argv[3]);
        for (const char* key : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID", "JOURNAL_STREAM"}) {
            const char* value = std::getenv(key);
            report << key << "=" << (value != nullptr ? value : "-") << "\n";
        }
    }
    std::signal(SIGTERM, [](int) { g_stop = 1; });

    const auto target = shared::ipc_utils::FindConnectionTargetForType(
        "hl.app_manager.ApplicationManager.applicationManager", 0xffffffffU);
    if (!target) {
        std::fprintf(stderr, "test_app: no application manager\n");
        return 2;
    }
    hosipc::api_v1::Application application{std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{})};
    auto controller =
        Connect<ApplicationController>(application, target.server, "app_manager.applicationController");
    auto commands =
        Connect<ApplicationCommands>(application, target.server, "app_manager.applicationCommands");
    auto watchdog =
        Connect<ApplicationWatchdog>(application, target.server, "app_manager.applicationWatchdog");

    unsigned int update = NK_INVALID_HANDLE;
    commands->GetUpdateHandle(name, update);
    SNotice* notice = nullptr;
    KnNoticeCreate(&notice);
    if (update != NK_INVALID_HANDLE) {
        KnNoticeSubscribeToObject(notice, update, 1U << 16, 1);
    }
    if (mode == "spawn") {
        const pid_t child = fork();
        if (child == 0) {
            execlp("sleep", "sleep", "600", static_cast<char*>(nullptr));
            _exit(127);
        }
        std::printf("child %d\n", static_cast<int>(child));
        std::fflush(stdout);
    }
    int rc = 0;
    controller->ReadyToInitialize(name, rc);
    if (mode == "noready") {
        while (g_stop == 0) {
            pause();
        }
        return 0;
    }
    if (mode == "failstart") {
        controller->FinishWithInternalError(name, Bytes("Failed to start test"), Bytes("asked to fail"), rc);
        return 1;
    }
    controller->ReadyToShowUI(name, rc);
    int pings = 0;
    while (g_stop == 0) {
        EventDesc events[4];
        unsigned long count = 0;
        if (KnNoticeGetEvent(notice, pingMs, 4, events, &count) == 0) {
            for (unsigned long i = 0; i < count; ++i) {
                if ((events[i].mask & (1U << 16)) != 0) {
                    std::int64_t value = 0;
                    int commandRc = 0;
                    commands->GetCommand(Bytes("volume"), value, commandRc);
                    std::printf("command volume=%lld rc=%d\n", static_cast<long long>(value), commandRc);
                    std::fflush(stdout);
                }
            }
            continue;
        }
        watchdog->Ping(name, rc);
        if (rc != 0) {
            std::printf("Ping refused rc=0x%08x\n", static_cast<unsigned>(rc));
            std::fflush(stdout);
        }
        ++pings;
        if (pings == 2 && mode == "crash") {
            HL_LOG(hos::logger::LogLevel::Warning, "{}: aborting as asked", argv[0]);
            std::abort();
        }
        if (pings == 2 && mode == "exit0") {
            break;
        }
    }
    controller->StateChanged(name, -2, rc);
    KnNoticeRelease(notice);
    return 0;
}
