// A fresh runtime directory, the test manager running in it, and the log captured.
#pragma once

#include "support/manager_process.h"
#include "support/scoped_runtime_directory.h"
#include "support/wait_until.h"

#include <diagnostics/log_capture_for_testing.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

namespace app_manager::testing {

inline constexpr const char* kManagerServer = "hl.test.app_manager";

class ManagerFixture : public ::testing::Test {
protected:
    void StartManager(std::vector<std::string> options = {}) {
        std::vector<std::string> arguments{HL_APP_MANAGER_TEST_MANAGER, kManagerServer};
        arguments.insert(arguments.end(), options.begin(), options.end());
        m_manager = ManagerProcess::Start(arguments);
        ASSERT_NE(m_manager, nullptr) << "the test manager didn't come up";
    }

    void TearDown() override {
        if (HasFailure()) {
            for (const auto& record : m_log.Records()) {
                std::printf("log: %s\n", record.message.c_str());
            }
        }
    }

    // Waits up to 5 s for a log line containing text.
    bool LogEventually(const std::string& text) {
        return hos::platform::testing::WaitUntil([&] { return m_log.Contains(text); }, std::chrono::seconds(5));
    }

    hos::platform::testing::ScopedRuntimeDirectory m_directory;
    hos::logger::LogCaptureForTesting m_log;
    std::unique_ptr<ManagerProcess> m_manager;
};

}  // namespace app_manager::testing
