#include "support/settingsd_process.h"

#include "support/wait_until.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace hl_settingsd::testing {

namespace {

std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

}  // namespace

std::unique_ptr<SettingsdProcess> SettingsdProcess::Start(const std::vector<std::string>& arguments,
                                                          const std::string& logFile) {
    std::string command = "exec " + Quoted(HL_SETTINGSD);
    for (const auto& argument : arguments) {
        command += " " + Quoted(argument);
    }
    command += " 2>>" + Quoted(logFile);
    auto peer = hos::platform::testing::PeerProcess::Start({"/bin/sh", "-c", command});
    if (!peer) {
        std::ifstream in(logFile);
        std::ostringstream log;
        log << in.rdbuf();
        ADD_FAILURE() << "hl-settingsd didn't come up; its log:\n" << log.str();
        return nullptr;
    }
    auto process = std::unique_ptr<SettingsdProcess>(new SettingsdProcess());
    process->m_peer = std::move(peer);
    process->m_logFile = logFile;
    return process;
}

std::vector<std::string> SettingsdProcess::Requests() const {
    std::vector<std::string> requests;
    std::istringstream log(Log());
    for (std::string line; std::getline(log, line);) {
        const auto at = line.find(": request ");
        if (at != std::string::npos) {
            requests.push_back(line.substr(at + 10));
        }
    }
    return requests;
}

std::string SettingsdProcess::Log() const {
    std::ifstream in(m_logFile);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::size_t SettingsdProcess::CountInLog(const std::string& text) const {
    const std::string log = Log();
    std::size_t count = 0;
    for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + 1)) {
        ++count;
    }
    return count;
}

bool SettingsdProcess::EventuallyCounts(const std::string& text, std::size_t count) const {
    return hos::platform::testing::WaitUntil([&] { return CountInLog(text) == count; }, std::chrono::seconds(5));
}

}  // namespace hl_settingsd::testing
