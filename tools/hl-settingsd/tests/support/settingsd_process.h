// hl-settingsd started as a real process for one test, with its log (standard error) in a file the
// test can search, and a fresh state directory unless one is given. Needs a ScopedRuntimeDirectory.
#pragma once

#include "support/peer_process.h"

#include <memory>
#include <string>
#include <vector>

namespace hl_settingsd::testing {

class SettingsdProcess {
public:
    // Starts HL_SETTINGSD with the arguments; null (and a test failure) if it doesn't print "ready".
    static std::unique_ptr<SettingsdProcess> Start(const std::vector<std::string>& arguments,
                                                   const std::string& logFile);
    void Kill() { m_peer->Kill(); }
    // The log so far.
    std::string Log() const;
    bool LogContains(const std::string& text) const { return Log().find(text) != std::string::npos; }
    // How often the log so far holds text; EventuallyCounts waits up to 5 s for that count.
    std::size_t CountInLog(const std::string& text) const;
    bool EventuallyCounts(const std::string& text, std::size_t count) const;
    // The requests logged so far at debug level ("Write 8", "WriteNext 1 last=1", "Read", ...).
    std::vector<std::string> Requests() const;

private:
    std::unique_ptr<hos::platform::testing::PeerProcess> m_peer;
    std::string m_logFile;
};

}  // namespace hl_settingsd::testing
