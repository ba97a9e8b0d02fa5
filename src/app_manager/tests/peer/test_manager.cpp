// An application manager for the tests, in a process of its own: serves the controller, commands and
// watchdog interfaces from their generated stubs over the hosted platform.
//
//   hl_app_manager_test_manager <server name> [--no-handle] [--no-watchdog]
//
// Registers <server name> with the endpoints "app_manager.applicationController" (riid 1),
// "app_manager.applicationCommands" (2) and "app_manager.applicationWatchdog" (3; not with
// --no-watchdog, so that a client's third connection fails), publishes the type
// "hl.app_manager.ApplicationManager.applicationManager" there, prints "ready",
// then prints one line per request it serves:
//   StartApplication|ReadyToInitialize|ReadyToShowUI <name>
//   FinishWithInternalError <name>|<error>|<details>
//   StateChanged <name> <state>
//   GetUpdateHandle <name>      (answers the invalid handle with --no-handle)
//   GetCommand <name>           (answers value 42, rc = the length of the name)
//   Ping <name>                 (answers rc = the length of the name)
// Every request whose name is "throw" fails on the server side. Lines on standard input:
//   update   raises the update event (bit 16) on the handle given out last
//   close    closes the manager's end of that handle
// Exit status: 2 for wrong usage, 1 when the server can't be set up.
#include <interfaces/hl/app_manager/application_commands.h>
#include <interfaces/hl/app_manager/application_controller.h>
#include <interfaces/hl/app_manager/application_watchdog.h>
#include <ipc_runtime/resource_provider.h>

#include <platform/platform.h>

#include "peer/test_server.h"

#include <atomic>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace {

namespace idl = hosipc::idl::stdcpp_v1::hl::app_manager;
using Bytes = std::vector<unsigned char>;

constexpr unsigned int kControllerRiid = 1;
constexpr unsigned int kCommandsRiid = 2;
constexpr unsigned int kWatchdogRiid = 3;

std::mutex g_outputLock;

std::string Text(const Bytes& bytes) {
    const std::string text(bytes.begin(), bytes.end());
    if (text == "throw") {
        throw std::runtime_error("asked to fail");
    }
    return text;
}

void Print(const std::string& line) {
    const std::lock_guard lock(g_outputLock);
    std::fputs((line + "\n").c_str(), stdout);
    std::fflush(stdout);
}

class Controller final : public idl::ApplicationController {
public:
    void StartApplication(const Bytes& appName, int& rc) override { Report("StartApplication", appName, rc); }
    void ReadyToInitialize(const Bytes& appName, int& rc) override {
        Report("ReadyToInitialize", appName, rc);
    }
    void ReadyToShowUI(const Bytes& appName, int& rc) override { Report("ReadyToShowUI", appName, rc); }
    void FinishWithInternalError(const Bytes& appName, const Bytes& error, const Bytes& details,
                                 int& rc) override {
        Print("FinishWithInternalError " + Text(appName) + "|" + Text(error) + "|" + Text(details));
        rc = 0;
    }
    void StateChanged(const Bytes& appName, std::int64_t state, int& rc) override {
        Print("StateChanged " + Text(appName) + " " + std::to_string(state));
        rc = 0;
    }

private:
    static void Report(const char* what, const Bytes& appName, int& rc) {
        Print(std::string(what) + " " + Text(appName));
        rc = 0;
    }
};

class Commands final : public idl::ApplicationCommands {
public:
    explicit Commands(bool giveHandle) : m_giveHandle(giveHandle) {}

    void GetUpdateHandle(const Bytes& appName, unsigned int& handle) override {
        Print("GetUpdateHandle " + Text(appName));
        if (!m_giveHandle) {
            handle = NK_INVALID_HANDLE;
            return;
        }
        unsigned int mine = NK_INVALID_HANDLE;
        unsigned int theirs = NK_INVALID_HANDLE;
        if (KnHandleCreatePair(&mine, &theirs) != 0) {
            throw std::runtime_error("no handle pair");
        }
        m_managerEnd = mine;
        handle = theirs;
    }
    void GetCommand(const Bytes& name, std::int64_t& value, int& rc) override {
        Print("GetCommand " + Text(name));
        value = 42;
        rc = static_cast<int>(name.size());
    }

    unsigned int ManagerEnd() const { return m_managerEnd; }

private:
    bool m_giveHandle;
    std::atomic<unsigned int> m_managerEnd{NK_INVALID_HANDLE};
};

class Watchdog final : public idl::ApplicationWatchdog {
public:
    void Ping(const Bytes& appName, int& rc) override {
        Print("Ping " + Text(appName));
        rc = static_cast<int>(appName.size());
    }
};

void ReadCommands(Commands& commands) {
    std::string line;
    while (std::getline(std::cin, line)) {
        if (line == "update") {
            Print("update " + std::to_string(KnNoticeSetObjectEvent(commands.ManagerEnd(), 0x10000U)));
        } else if (line == "close") {
            Print("close " + std::to_string(KnHandleClose(commands.ManagerEnd())));
        }
    }
}

int Serve(const char* serverName, bool giveHandle, bool serveWatchdog) {
    Controller controller;
    Commands commands(giveHandle);
    Watchdog watchdog;
    hosipc::server::ComponentTree tree("hl.app_manager.ApplicationManager");
    tree.Serve<idl::ApplicationController>(kControllerRiid, "app_manager.applicationController",
                                           "applicationController", "hl.app_manager.ApplicationController",
                                           &controller)
        .Serve<idl::ApplicationCommands>(kCommandsRiid, "app_manager.applicationCommands", "applicationCommands",
                                         "hl.app_manager.ApplicationCommands", &commands);
    if (serveWatchdog) {
        tree.Serve<idl::ApplicationWatchdog>(kWatchdogRiid, "app_manager.applicationWatchdog", "applicationWatchdog",
                                             "hl.app_manager.ApplicationWatchdog", &watchdog);
    }
    tree.PublishType("hl.app_manager.ApplicationManager.applicationManager");
    std::thread(ReadCommands, std::ref(commands)).detach();
    return hl_test::ServeForever(std::move(tree), serverName);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s <server name> [--no-handle] [--no-watchdog]\n", argv[0]);
        return 2;
    }
    bool giveHandle = true;
    bool serveWatchdog = true;
    for (int i = 2; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--no-handle") {
            giveHandle = false;
        } else if (option == "--no-watchdog") {
            serveWatchdog = false;
        } else {
            std::fprintf(stderr, "unknown option %s\n", argv[i]);
            return 2;
        }
    }
    return Serve(argv[1], giveHandle, serveWatchdog);
}
