// The manager's clients against the test manager in a process of its own, over the hosted platform:
// the failures of each call and of the connection. The normal lifecycle and a missing manager are
// the end-to-end tests' part, with the real program.
#include "support/manager_fixture.h"

#include <app_manager/app_controller_status.h>
#include <app_manager/create_application_manager.h>
#include <app_manager/proxy/application_manager_proxy.h>

#include <diagnostics/check_failure_text_for_testing.h>
#include <diagnostics/result_code.h>

#include <gmock/gmock.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using app_manager::testing::ManagerFixture;
using namespace std::chrono_literals;

using Lines = std::vector<std::string>;

class ApplicationManagerClient : public ManagerFixture {};

TEST_F(ApplicationManagerClient, PublishedManagerThatIsGoneGivesNullAfterTheConnectFailure) {
    StartManager();
    m_manager->Kill();
    EXPECT_EQ(app_manager::CreateApplicationManager("AccessArbiter"), nullptr);
    EXPECT_TRUE(m_log.Contains("Cannot create application manager proxy, "));
    EXPECT_TRUE(m_log.Contains("hosipc::MakeProxy(): error connecting to endpoint. with result: "));
}

std::size_t Entries(const char* directory) {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(directory),
                                                  std::filesystem::directory_iterator()));
}

// The commands channel, with its notice thread, is up when the watchdog's channel fails: the failed
// start closes both and stops the thread. The first attempt warms what the platform keeps for good.
TEST_F(ApplicationManagerClient, AFailedThirdConnectionLeavesNoThreadAndNoChannelBehind) {
    StartManager({"--no-watchdog"});
    EXPECT_EQ(app_manager::CreateApplicationManager("AccessArbiter"), nullptr);
    const std::size_t descriptors = Entries("/proc/self/fd");
    const std::size_t threads = Entries("/proc/self/task");
    EXPECT_EQ(app_manager::CreateApplicationManager("AccessArbiter"), nullptr);
    EXPECT_TRUE(m_log.Contains("Cannot create application manager proxy, "));
    EXPECT_EQ(Entries("/proc/self/fd"), descriptors);
    EXPECT_TRUE(hos::platform::testing::WaitUntil([&] { return Entries("/proc/self/task") == threads; }, 2s))
        << Entries("/proc/self/task") << " threads, " << threads << " before";
}

TEST_F(ApplicationManagerClient, UpdateHandleMissingOrNotAskedForStillGivesAManager) {
    StartManager({"--no-handle"});
    ASSERT_NE(app_manager::CreateApplicationManager("AccessArbiter"), nullptr);
    EXPECT_TRUE(m_log.Contains("ApplicationCommandsProxy: Failed to get update Handle: Exception"));
    EXPECT_FALSE(m_log.Contains("ApplicationCommands::NoticeProxy::Start"));

    m_log.Clear();
    ASSERT_NE(app_manager::CreateApplicationManager(""), nullptr);
    EXPECT_FALSE(m_log.Contains("Failed to get update Handle"));
    EXPECT_EQ(m_manager->Lines(300ms), (Lines{"GetUpdateHandle AccessArbiter"}));
}

struct FailureCase {
    const char* operation;
    std::function<std::int32_t(app_manager::IApplicationController&, const std::string&)> call;
    const char* failureText;
};

TEST_F(ApplicationManagerClient, ControllerFailuresAreLoggedWithTheirTextsAndReturnedAsCodes) {
    StartManager();
    auto manager = app_manager::CreateApplicationManager("AccessArbiter");
    ASSERT_NE(manager, nullptr);
    auto controller = manager->GetApplicationController();
    const std::vector<FailureCase> cases = {
        {"StartApplication", [](auto& c, const std::string& n) { return c.StartApplication(n); },
         "Failed to call StartApplication, "},
        {"ReadyToInitialize", [](auto& c, const std::string& n) { return c.ReadyToInitialize(n); },
         "Failed to call ReadyToInitialize, "},
        // This operation's failure text names FinishWithInternalError.
        {"ReadyToShowUI", [](auto& c, const std::string& n) { return c.ReadyToShowUI(n); },
         "Failed to call FinishWithInternalError, "},
        {"FinishWithInternalError",
         [](auto& c, const std::string& n) { return c.FinishWithInternalError(n, "e", "d"); },
         "Failed to call FinishWithInternalError, "},
        {"StateChanged", [](auto& c, const std::string& n) { return c.StateChanged(n, -2); },
         "Failed to call StateChanged, "},
    };
    for (const auto& row : cases) {
        m_log.Clear();
        const std::int32_t code = row.call(*controller, "throw");
        EXPECT_LT(code, 0) << row.operation;
        EXPECT_TRUE(m_log.Contains(row.failureText)) << row.operation;
        EXPECT_TRUE(m_log.Contains(std::string("hl_app_manager_ApplicationController_") + row.operation +
                                   " server error with result: " + hcax::ResultCodeText(code)))
            << row.operation;
        EXPECT_EQ(m_log.Count(hos::logger::LogLevel::Critical), 1U) << row.operation;
        // Both records (the call and its failure) name the operation, not the path they share.
        std::size_t named = 0;
        for (const auto& record : m_log.Records()) {
            if (record.file.find("application_controller.cpp") != std::string::npos) {
                EXPECT_EQ(record.function, row.operation) << record.message;
                ++named;
            }
        }
        EXPECT_EQ(named, 2U) << row.operation;
    }

    // 128 bytes travel; 129 are refused before anything is sent.
    EXPECT_EQ(controller->ReadyToInitialize(std::string(128, 'n')), 0);
    m_log.Clear();
    EXPECT_LT(controller->ReadyToInitialize(std::string(129, 'n')), 0);
    EXPECT_TRUE(m_log.Contains("Failed to call ReadyToInitialize, "));
    EXPECT_EQ(m_manager->Lines(300ms),
              (Lines{"GetUpdateHandle AccessArbiter", "ReadyToInitialize " + std::string(128, 'n')}));

    // Every operation shares the one failure path; a transport failure takes it like a server failure.
    m_manager->Kill();
    m_log.Clear();
    const std::int32_t code = controller->StateChanged("AccessArbiter", -2);
    EXPECT_LT(code, 0);
    EXPECT_TRUE(
        m_log.Contains("hl_app_manager_ApplicationController_StateChanged transport error with result: " +
                       hcax::ResultCodeText(code)));
}

TEST_F(ApplicationManagerClient, GetCommandReadsTheManagersValueAndRc) {
    StartManager();
    auto manager = app_manager::CreateApplicationManager("AccessArbiter");
    ASSERT_NE(manager, nullptr);
    long value = 7;
    EXPECT_EQ(manager->GetApplicationCommands()->GetCommand("stop", value), 4);
    EXPECT_EQ(value, 42);
    EXPECT_TRUE(m_log.Contains("Proxy: ApplicationCommands::GetCommand stop 7"));
}

// Runs `call` on a fresh client in a child process; the child's end signal, or 0 for a normal exit.
int SignalOfChild(const std::function<void(app_manager::IApplicationManager&)>& call) {
    const pid_t child = ::fork();
    if (child == 0) {
        auto manager = app_manager::CreateApplicationManager("");
        if (manager != nullptr) {
            call(*manager);
        }
        ::_exit(manager != nullptr ? 0 : 3);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

TEST_F(ApplicationManagerClient, FailedPingOrGetCommandEndsTheProcess) {
    StartManager();
    EXPECT_EQ(SignalOfChild([](auto& manager) { manager.GetApplicationWatchdog()->Ping("throw"); }), SIGABRT);
    EXPECT_EQ(
        SignalOfChild([](auto& manager) { manager.GetApplicationWatchdog()->Ping(std::string(129, 'n')); }),
        SIGABRT);
    EXPECT_EQ(SignalOfChild([](auto& manager) {
                  long value = 0;
                  manager.GetApplicationCommands()->GetCommand("throw", value);
              }),
              SIGABRT);
    EXPECT_EQ(SignalOfChild([](auto& manager) { manager.GetApplicationWatchdog()->Ping("fine"); }), 0);
    // A manager that has died fails the next Ping in the transport: the process ends the same way.
    EXPECT_EQ(SignalOfChild([this](auto& manager) {
                  m_manager->Kill();
                  manager.GetApplicationWatchdog()->Ping("fine");
              }),
              SIGABRT);
}

TEST(ApplicationManagerParts, ConstructorsCheckTheirArguments) {
    const auto message = [](auto make) { return hca::testing::CheckFailureTextForTesting(make); };
    EXPECT_THAT(message([] { app_manager::proxy::ApplicationManagerProxy(nullptr, nullptr, nullptr); }),
                testing::HasSubstr("IApplicationControllerPtr is nullptr!"));
    EXPECT_THAT(message([] { app_manager::AppControllerStatus("", nullptr); }),
                testing::HasSubstr("Application name is empty"));
    EXPECT_THAT(message([] { app_manager::AppControllerStatus("a", nullptr); }),
                testing::HasSubstr("Application controller is nullptr"));
}

}  // namespace
