#pragma once
// The requests a settings service keeps unanswered for a while: a client's NkISMCbk.Wait with no
// update to deliver yet. The service's implementation marks the request it is serving with
// HoldCurrent(key) (the key is the callback id, cid); the serving loop (ServiceHost) then keeps that
// request instead of answering it. When an update for the key arrives the implementation calls
// Wake(key), and the serving loop serves the kept request again, so that the implementation answers it
// this time.
//
// Thread: the serving loop's thread only (the implementation runs on it); no lock. Owned by whoever
// sets the service up and shared by the implementation and the ServiceHost.

#include <cstdint>
#include <optional>
#include <set>

namespace settings_manager::service {

class HeldRequests {
public:
    // Marks the request being served now to be held under key; a later request held under the same key
    // replaces it (a client repeats its Wait only after the previous one ran out of time).
    void HoldCurrent(std::uint64_t key) { m_holdCurrent = key; }
    // Asks for the request held under key, if any, to be served again.
    void Wake(std::uint64_t key) { m_woken.insert(key); }
    // Forgets any wake for key and drops the request held under it, unanswered (its client has gone or
    // unregistered).
    void Forget(std::uint64_t key) {
        m_woken.erase(key);
        m_forgotten.insert(key);
    }

    // For the serving loop: the key the request just served asked to be held under, once.
    std::optional<std::uint64_t> TakeHoldCurrent() {
        auto key = m_holdCurrent;
        m_holdCurrent.reset();
        return key;
    }
    // For the serving loop: the keys woken since the last call.
    std::set<std::uint64_t> TakeWoken() {
        std::set<std::uint64_t> woken;
        woken.swap(m_woken);
        return woken;
    }

    // For the serving loop: the keys forgotten since the last call.
    std::set<std::uint64_t> TakeForgotten() {
        std::set<std::uint64_t> forgotten;
        forgotten.swap(m_forgotten);
        return forgotten;
    }

private:
    std::optional<std::uint64_t> m_holdCurrent;
    std::set<std::uint64_t> m_woken;
    std::set<std::uint64_t> m_forgotten;
};

}  // namespace settings_manager::service
