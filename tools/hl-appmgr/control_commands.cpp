// The requests to the running manager: start, stop, restart, reset-failed, status, is-active and
// command, over its control interface (app_manager.control).
#include <interfaces/hl/app_manager/application_manager_control.h>
#include <ipc_runtime/application.h>
#include <ipc_runtime/connection_builder.h>
#include <ipc_runtime/resource_provider.h>
#include <platform/ipc_utils/find_connection_target_for_type.h>

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>

#include <hl_cli/tool.h>

#include "commands.h"
#include "core/status_table.h"

namespace hl_appmgr {

namespace {

using Control = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationManagerControl;
using Bytes = std::vector<unsigned char>;

constexpr const char* kPublishedType = "hl.app_manager.ApplicationManager.applicationManager";
constexpr unsigned int kConnectTimeoutMs = 2000;
// How long stop, start and restart wait for the application to get where they asked.
constexpr std::chrono::seconds kSettleLimit{120};

Bytes ToBytes(const std::string& text) {
    return {text.begin(), text.end()};
}

// One connection to the running manager's control interface.
class Manager {
public:
    // nullopt (said on standard error) when no manager answers here.
    static std::unique_ptr<Manager> Connect() {
        const auto target = shared::ipc_utils::FindConnectionTargetForType(kPublishedType, kConnectTimeoutMs);
        if (!target) {
            std::fprintf(stderr, "hl-appmgr: no hl-appmgr is running in this runtime directory\n");
            return nullptr;
        }
        auto manager = std::make_unique<Manager>();
        const hosipc::api_v1::ConnectionBuilder<hosipc::api_v1::ConnectViaDynamicChannel> connector(
            target.server, "app_manager.control", kConnectTimeoutMs, false);
        try {
            manager->m_proxy = hosipc_detail::idl_traits::MakeProxyImpl(
                connector, manager->m_application.GetResourceProvider(),
                static_cast<hosipc_detail::idl_traits::ProxyBait<Control>*>(nullptr));
        } catch (const std::exception& error) {
            std::fprintf(stderr, "hl-appmgr: the manager does not answer: %s\n", error.what());
            return nullptr;
        }
        return manager;
    }

    Control& operator*() { return *m_proxy; }
    Control* operator->() { return m_proxy.get(); }

    // The status of `name` (all without one); nullopt with `rc` set when there is none.
    std::optional<StatusTable> Status(const std::string& name, int& rc) {
        Bytes json;
        m_proxy->Status(ToBytes(name), rc, json);
        if (rc != 0) {
            return std::nullopt;
        }
        auto table = StatusFromJson(std::string(json.begin(), json.end()));
        if (!table) {
            throw std::runtime_error("the manager's status can't be read");
        }
        return table;
    }

private:
    hosipc::api_v1::Application m_application{std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{})};
    std::unique_ptr<Control, hosipc_detail::api_v1::IpcDeleter> m_proxy;
};

int Refusal(const std::string& verb, const std::string& name, int rc) {
    if (rc == Control::kNoSuchApplication) {
        std::fprintf(stderr, "hl-appmgr: %s: no application is called %s\n", verb.c_str(), name.c_str());
        return kExitNoSuchApplication;
    }
    std::fprintf(stderr, "hl-appmgr: %s %s refused (0x%08x)%s\n", verb.c_str(), name.c_str(),
                 static_cast<unsigned>(rc),
                 rc == Control::kNotPossible ? ": not now (start limit reached, stopping, or the manager stops)"
                                             : "");
    return kExitFailed;
}

bool Settled(const std::string& verb, const AppStatus& app, long pidBefore) {
    if (app.state == "stopping" || app.state == "starting" || app.state == "initializing") {
        return false;
    }
    if (verb == "stop") {
        return app.pid == 0;
    }
    // start and restart: a new process that got somewhere, or one that ended.
    return app.pid == 0 || verb == "start" || app.pid != pidBefore;
}

// Waits until the application has done what `verb` asked; the exit code.
int AwaitSettled(Manager& manager, const std::string& verb, const std::string& name, long pidBefore) {
    const auto deadline = std::chrono::steady_clock::now() + kSettleLimit;
    while (std::chrono::steady_clock::now() < deadline) {
        int rc = 0;
        const auto table = manager.Status(name, rc);
        if (!table) {
            return Refusal(verb, name, rc);
        }
        const AppStatus& app = table->apps.front();
        if (Settled(verb, app, pidBefore)) {
            if (verb != "stop" && !IsActive(app.state)) {
                std::fprintf(stderr, "hl-appmgr: %s did not start: %s; see 'hl-appmgr status %s'\n", name.c_str(),
                             app.state.c_str(), name.c_str());
                return kExitFailed;
            }
            return 0;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    std::fprintf(stderr, "hl-appmgr: %s %s: still not done after %lld s\n", verb.c_str(), name.c_str(),
                 static_cast<long long>(kSettleLimit.count()));
    return kExitFailed;
}

int Verb(const std::string& verb, const std::string& name, bool noBlock) {
    auto manager = Manager::Connect();
    if (!manager) {
        return kExitFailed;
    }
    int rc = 0;
    const auto before = manager->Status(name, rc);
    if (!before) {
        return Refusal(verb, name, rc);
    }
    const Bytes bytes = ToBytes(name);
    if (verb == "start") {
        (*manager)->Start(bytes, rc);
    } else if (verb == "stop") {
        (*manager)->Stop(bytes, rc);
    } else if (verb == "restart") {
        (*manager)->Restart(bytes, rc);
    } else {
        (*manager)->ResetFailed(bytes, rc);
    }
    if (rc != 0) {
        return Refusal(verb, name, rc);
    }
    if (noBlock || verb == "reset-failed") {
        return 0;
    }
    return AwaitSettled(*manager, verb, name, before->apps.front().pid);
}

int Status(const std::string& name, bool json) {
    auto manager = Manager::Connect();
    if (!manager) {
        return kExitFailed;
    }
    int rc = 0;
    const auto table = manager->Status(name, rc);
    if (!table) {
        return Refusal("status", name, rc);
    }
    const bool color = hl::cli::ColorEnabled(STDOUT_FILENO);
    const std::string text = json ? StatusToJson(*table) : FormatStatusText(*table, !name.empty(), color);
    std::fputs(text.c_str(), stdout);
    for (const AppStatus& app : table->apps) {
        if (!IsActive(app.state)) {
            return kExitNotActive;
        }
    }
    return 0;
}

int IsActiveCommand(const std::string& name) {
    auto manager = Manager::Connect();
    if (!manager) {
        return kExitFailed;
    }
    int rc = 0;
    const auto table = manager->Status(name, rc);
    if (!table) {
        if (rc == Control::kNoSuchApplication) {
            std::puts("unknown");
            return kExitNoSuchApplication;
        }
        return Refusal("is-active", name, rc);
    }
    const std::string& state = table->apps.front().state;
    std::puts(state.c_str());
    return IsActive(state) ? 0 : kExitNotActive;
}

int Command(const std::string& app, const std::string& name, std::int64_t value) {
    auto manager = Manager::Connect();
    if (!manager) {
        return kExitFailed;
    }
    int rc = 0;
    (*manager)->SetCommand(ToBytes(app), ToBytes(name), value, rc);
    return rc == 0 ? 0 : Refusal("command", app, rc);
}

// Runs a request, turning a transport failure into a message and kExitFailed.
int Guarded(const std::function<int()>& request) {
    try {
        return request();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "hl-appmgr: the request failed: %s\n", error.what());
        return kExitFailed;
    }
}

}  // namespace

void AddControlCommands(CLI::App& app, Action& action) {
    const auto name = std::make_shared<std::string>();
    const auto noBlock = std::make_shared<bool>(false);
    for (const auto& [verb, help] :
         {std::pair<std::string, std::string>{"start", "start an application that is not running"},
          {"stop", "stop an application: SIGTERM to its process group, SIGKILL after its stop_timeout_ms"},
          {"restart", "stop an application if it runs, then start it"},
          {"reset-failed", "forget an application's failed state and its start limit count (all without NAME)"}}) {
        CLI::App* command = app.add_subcommand(verb, help);
        command->add_option("name", *name, "the application")->required(verb != "reset-failed");
        if (verb != "reset-failed") {
            command->add_flag("--no-block", *noBlock, "return once the manager has acted, without waiting");
        }
        command->callback([&action, verb = verb, name, noBlock] {
            action = [verb, name, noBlock] { return Guarded([&] { return Verb(verb, *name, *noBlock); }); };
        });
    }
    const auto json = std::make_shared<bool>(false);
    CLI::App* status = app.add_subcommand(
        "status", "each application's state, pid, time since its last Ping and restarts; with NAME also its "
                  "uptime, last exit and last output lines");
    status->add_option("name", *name, "the application");
    status->add_flag("--json", *json, "one JSON object (see tools/hl-appmgr/README.md)");
    status->callback([&action, name, json] {
        action = [name, json] { return Guarded([&] { return Status(*name, *json); }); };
    });
    CLI::App* isActive = app.add_subcommand("is-active", "print an application's state; exit 0 only when it runs");
    isActive->add_option("name", *name, "the application")->required();
    isActive->callback([&action, name] {
        action = [name] { return Guarded([&] { return IsActiveCommand(*name); }); };
    });
    const auto commandName = std::make_shared<std::string>();
    const auto value = std::make_shared<std::int64_t>(0);
    CLI::App* command = app.add_subcommand(
        "command", "set the command NAME of APP to VALUE and raise APP's update event (bit 16); APP reads it "
                   "with GetCommand(NAME)");
    command->add_option("app", *name, "the application")->required();
    command->add_option("command", *commandName, "the command's name, at most 128 bytes")
        ->required()
        ->check([](const std::string& text) {
            return text.empty() || text.size() > 128 ? std::string("must be 1 to 128 bytes") : std::string();
        });
    command->add_option("value", *value, "a 64-bit integer")->required();
    command->callback([&action, name, commandName, value] {
        action = [name, commandName, value] { return Guarded([&] { return Command(*name, *commandName, *value); }); };
    });
}

}  // namespace hl_appmgr
