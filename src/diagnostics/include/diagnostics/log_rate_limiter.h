#pragma once
// Keeps a log line that repeats from flooding the log: one limiter per log site, keyed by the peer
// the line is about (a pid, a client; 0 when there is none). Each peer may have `burst` lines a
// period written; further ones are counted, not written, and the next line let through says how
// many were left out (`SuppressedNote`). The site as a whole writes at most `siteBurst` lines a
// period, so many peers together can't flood it either.
//
//   static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
//   if (const auto admission = limiter.Admit(peerPid)) {
//       HL_LOG(LogLevel::Warning, "refused a frame from {}{}", peerPid, admission.Note());
//   }
//
// Thread: safe from any thread. The limiter keeps at most `maxPeers` peers; beyond them, new peers
// share one entry.

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>

namespace hl::diagnostics {

class LogRateLimiter {
public:
    struct Admission {
        bool write = false;
        std::uint64_t suppressed = 0;  // lines of this peer left out since the last one written
        explicit operator bool() const { return write; }
        // "" when nothing was left out, else " (N similar lines suppressed)".
        std::string Note() const;
    };

    LogRateLimiter(unsigned int burst, std::chrono::milliseconds period, unsigned int siteBurst = 20,
                   std::size_t maxPeers = 1024);
    LogRateLimiter(const LogRateLimiter&) = delete;
    LogRateLimiter& operator=(const LogRateLimiter&) = delete;

    Admission Admit(std::uint64_t peer = 0);

private:
    using Clock = std::chrono::steady_clock;
    struct Window {
        Clock::time_point start;
        unsigned int written = 0;
        std::uint64_t suppressed = 0;
    };

    const unsigned int m_burst;
    const std::chrono::milliseconds m_period;
    const unsigned int m_siteBurst;
    const std::size_t m_maxPeers;
    std::mutex m_mutex;
    std::unordered_map<std::uint64_t, Window> m_peers;
    Window m_site;
};

}  // namespace hl::diagnostics
