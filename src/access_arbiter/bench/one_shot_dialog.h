// A one-shot dialog process, the way a person would otherwise ask: `zenity --question` with the
// dialog's title and text, started for one question and ended by the answer.
//
// Thread: one thread. Owns the process: the destructor kills and reaps it when it still runs.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace access_arbiter::bench {

class OneShotDialog {
public:
    explicit OneShotDialog(std::string zenity);
    ~OneShotDialog();
    OneShotDialog(const OneShotDialog&) = delete;
    OneShotDialog& operator=(const OneShotDialog&) = delete;

    // Starts the process (its output goes to /dev/null); false with `error` when it can't.
    bool Start(std::string& error);
    pid_t Pid() const { return m_pid; }
    // Waits for the process to end; its exit status (0 for "Yes"), or empty when it died of a signal.
    std::optional<int> WaitExit();

private:
    const std::string m_zenity;
    pid_t m_pid = 0;
};

}  // namespace access_arbiter::bench
