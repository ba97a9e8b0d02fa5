#include <diagnostics/log_rate_limiter.h>

#include <fmt/format.h>

namespace hl::diagnostics {

namespace {
// The entry that peers beyond the limit share.
constexpr std::uint64_t kOtherPeers = ~std::uint64_t{0};
}  // namespace

std::string LogRateLimiter::Admission::Note() const {
    return suppressed == 0 ? std::string() : fmt::format(" ({} similar lines suppressed)", suppressed);
}

LogRateLimiter::LogRateLimiter(unsigned int burst, std::chrono::milliseconds period, unsigned int siteBurst,
                               std::size_t maxPeers)
    : m_burst(burst), m_period(period), m_siteBurst(siteBurst), m_maxPeers(maxPeers) {}

LogRateLimiter::Admission LogRateLimiter::Admit(std::uint64_t peer) {
    const auto now = Clock::now();
    std::lock_guard lock(m_mutex);
    if (m_peers.size() >= m_maxPeers && m_peers.find(peer) == m_peers.end()) {
        // Peers whose period is over and who left nothing out have nothing more to say.
        std::erase_if(m_peers, [&](const auto& entry) {
            return entry.second.suppressed == 0 && now - entry.second.start >= m_period;
        });
        if (m_peers.size() >= m_maxPeers) {
            peer = kOtherPeers;
        }
    }
    Window& window = m_peers[peer];
    if (now - window.start >= m_period) {
        window.start = now;
        window.written = 0;
    }
    if (now - m_site.start >= m_period) {
        m_site.start = now;
        m_site.written = 0;
    }
    if (window.written >= m_burst || m_site.written >= m_siteBurst) {
        ++window.suppressed;
        return {};
    }
    ++window.written;
    ++m_site.written;
    Admission admission{true, window.suppressed};
    window.suppressed = 0;
    return admission;
}

}  // namespace hl::diagnostics
