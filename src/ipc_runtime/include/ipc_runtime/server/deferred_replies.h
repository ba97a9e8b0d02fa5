#pragma once
// The requests a server keeps unanswered for a while, answered later: a settings client's Wait with
// no update to deliver yet, say. The implementation marks the request it is serving with
// HoldCurrent(key); the serving host then keeps that request instead of answering it. Wake(key),
// from any thread, asks the host to serve the kept request again at its next turn, so that the
// implementation answers it this time. Forget(key) drops it unanswered.
//
// It also tells the implementation which connection the request being served came on
// (CurrentConnection), so that state a client makes (open exchanges, registrations) can be kept per
// connection and dropped when the host reports the connection closed (ServingHost::Report::closed).
//
// Thread: HoldCurrent, CurrentConnection and the Take* calls on the serving thread; Wake and Forget from any thread.
// Shared by whoever sets the server up, its implementations and the ServingHost.

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <set>

namespace hosipc::server {

class DeferredReplies {
public:
    // Marks the request being served now to be held under key; a later request held under the same key
    // replaces it (a client repeats its call only after the previous one ran out of time).
    void HoldCurrent(std::uint64_t key) { m_holdCurrent = key; }
    // Asks for the request held under key, if any, to be served again.
    void Wake(std::uint64_t key) {
        std::lock_guard lock(m_mutex);
        m_woken.insert(key);
        m_changed = true;
    }
    // Forgets any wake for key and drops the request held under it, unanswered (its client has gone or
    // unregistered).
    void Forget(std::uint64_t key) {
        std::lock_guard lock(m_mutex);
        m_woken.erase(key);
        m_forgotten.insert(key);
        m_changed = true;
    }

    // The connection of the request being served: an id the platform gives each client connection of
    // the server channel, never reused while the server runs; 0 outside a request.
    std::uint64_t CurrentConnection() const { return m_currentConnection; }
    // For the host: the connection of the request it is about to serve.
    void SetCurrentConnection(std::uint64_t connection) { m_currentConnection = connection; }

    // For the host: the key the request just served asked to be held under, once.
    std::optional<std::uint64_t> TakeHoldCurrent() {
        auto key = m_holdCurrent;
        m_holdCurrent.reset();
        return key;
    }
    // For the host: whether anything was woken or forgotten since the last Take of both; a turn
    // of the serving loop with nothing to do takes no lock.
    bool Changed() const { return m_changed.load(std::memory_order_acquire); }
    // For the host: the keys forgotten and the keys woken since the last call.
    void Take(std::set<std::uint64_t>& forgotten, std::set<std::uint64_t>& woken) {
        std::lock_guard lock(m_mutex);
        m_changed = false;
        forgotten.swap(m_forgotten);
        woken.swap(m_woken);
    }

private:
    std::optional<std::uint64_t> m_holdCurrent;
    std::uint64_t m_currentConnection = 0;
    std::mutex m_mutex;
    std::atomic<bool> m_changed{false};
    std::set<std::uint64_t> m_woken;
    std::set<std::uint64_t> m_forgotten;
};

}  // namespace hosipc::server
