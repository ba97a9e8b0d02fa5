// hl-settingsd: one settings service of the hosted platform (see README.md and --help).
#include "daemon_options.h"
#include "settings_service.h"
#include "store_factory.h"
#include "store_files.h"

#include <diagnostics/hos_logger.h>
#include <diagnostics/log.h>
#include <ipc_runtime/server/serving_host.h>

#include <platform/nk_message.h>

#include <sys/stat.h>
#include <systemd/sd-daemon.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using hos::logger::LogLevel;

using hl_settingsd::kExitServe;
using hl_settingsd::kExitStopped;
using hl_settingsd::kExitStore;
// A held Wait is kept until a newer one of its client replaces it: an answer it no longer waits for is
// ignored by the client and sent again (see SubscriptionTable), and answering it finds a dead client.
constexpr unsigned int kMaxHoldMs = NK_TIMEOUT_INFINITE;
constexpr unsigned int kReceiveTimeoutMs = 250;

// The largest message of the three interfaces is 56 bytes; the arenas are the largest the
// descriptions give a request (a write) and a reply (the nodes of a read).
hosipc::server::ServerOptions SettingsServerOptions() {
    hosipc::server::ServerOptions options;
    options.messageRoom = 256;
    options.requestArenaRoom = hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM::kWriteArena;
    options.responseArenaRoom = hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM::kNodesArena;
    options.maxHoldMs = kMaxHoldMs;
    return options;
}

std::atomic<bool> g_stop{false};

void OnStopSignal(int) {
    g_stop = true;
}

// Under systemd (NOTIFY_SOCKET set) readiness goes to the service manager. Otherwise, and when that
// message can't be sent, the "ready" line on standard output that the hosted session and the tests
// wait for.
void AnnounceReady(const std::string& name) {
    const int notified = sd_notify(0, ("READY=1\nSTATUS=serving " + name).c_str());
    if (notified > 0) {
        return;
    }
    if (notified < 0) {
        HL_LOG(LogLevel::Warning, "{}: can't tell systemd that it serves ({}); printing 'ready' instead",
               name, std::strerror(-notified));
    }
    std::puts("ready");
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    hl::cli::Tool tool = hl_settingsd::MakeTool();
    hl_settingsd::DaemonOptions options;
    if (const auto status = hl_settingsd::ParseOptions(tool, argc, argv, options)) {
        return *status;
    }
    hos::logger::HOSLogger::Setup("SETTINGSD", static_cast<LogLevel>(options.logLevel), nullptr);
    ::umask(077);  // the stores and their -wal and -shm files are the user's alone
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGTERM, OnStopSignal);
    std::signal(SIGINT, OnStopSignal);

    const std::string name(options.service.name);
    auto held = std::make_shared<hosipc::server::DeferredReplies>();
    std::unique_ptr<hl_settingsd::SettingsService> service;
    try {
        service =
            std::make_unique<hl_settingsd::SettingsService>(hl_settingsd::MakeTreeStore(options), held);
    } catch (const hl_settingsd::StoreInUse& e) {
        HL_LOG(LogLevel::Critical, "{}: {}", name, e.what());
        return kExitServe;
    } catch (const std::exception& e) {
        HL_LOG(LogLevel::Critical, "{}: the store can't be opened: {}", name, e.what());
        return kExitStore;
    }
    if (!options.faultForTesting.empty()) {
        using Fault = hl_settingsd::SettingsService::FaultForTesting;
        const std::map<std::string, Fault> faults{{"writenext-refused", Fault::kWriteNextRefused},
                                                  {"writenext-exit", Fault::kWriteNextExit},
                                                  {"read-count-zero", Fault::kReadCountZero},
                                                  {"read-count-short", Fault::kReadCountShort},
                                                  {"readnext-bad-list", Fault::kReadNextBadList}};
        service->SetFaultForTesting(faults.at(options.faultForTesting));
    }
    std::unique_ptr<hosipc::server::ServingHost> host;
    try {
        using namespace hosipc::idl::stdcpp_v1::hl::settings_manager;
        hosipc::server::ComponentTree tree("hl.settings_manager.SettingsManager");
        tree.Serve<NkISM>(1, "NkISM", "NkISM", "hl.settings_manager.NkISM", service.get())
            .Serve<NkISMReg>(2, "NkISMReg", "NkISMReg", "hl.settings_manager.NkISMReg", service.get())
            .Serve<NkISMCbk>(3, "NkISMCbk", "NkISMCbk", "hl.settings_manager.NkISMCbk", service.get());
        host = std::make_unique<hosipc::server::ServingHost>(std::move(tree), name, SettingsServerOptions(), held);
    } catch (const std::exception& e) {
        HL_LOG(LogLevel::Critical, "{}: {}", name, e.what());
        return kExitServe;
    }
    HL_LOG(LogLevel::Info, "{}: serving", name);
    AnnounceReady(name);

    auto lastTick = std::chrono::steady_clock::now();
    while (!g_stop) {
        const auto report = host->ServeOne(kReceiveTimeoutMs);
        for (const std::uint64_t cid : report.gone) {
            service->DropCallback(cid, "has gone (its Wait can't be answered)");
        }
        for (const std::uint64_t connection : report.closed) {
            service->ConnectionClosed(connection);
        }
        const auto now = std::chrono::steady_clock::now();
        if (now - lastTick >= std::chrono::seconds(1)) {
            service->Tick(now);
            lastTick = now;
        }
    }
    sd_notify(0, "STOPPING=1");
    HL_LOG(LogLevel::Info, "{}: stopped", name);
    return kExitStopped;
}
