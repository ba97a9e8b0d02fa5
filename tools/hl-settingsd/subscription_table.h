#pragma once
// Callback registrations (cid) and their subscriptions (sid) of a settings service, with the updates
// waiting for each cid's next Wait.
//
// A change at path P wakes every subscription whose path is P, lies above P, or lies below P (its node
// was replaced or removed with P's subtree). Each gets one update with P's path text and the kind:
// kUpdWritten, kUpdDeleted or kUpdAttribute. At most kMaxQueued updates wait per cid; one more drops
// the oldest with a log line.
//
// Delivery: a Wait takes the oldest update of its cid and leaves it queued until Done confirms its sid
// (Confirm); a Wait that finds an update already sent twice drops it instead. So an answer that reached
// a client after its Wait ran out (it ignores it) is sent again on the next Wait, and an update for a
// sid the client doesn't know (it sends no Done) goes after two tries.
//
// A callback lives as long as its connections: the one it was registered on and those its Waits
// came on (a client may register on one connection and wait on another). When one of them closes,
// the callback goes with its subscriptions and waiting updates (Closed, Unregister); a client that is
// merely slow or paused keeps everything, however long. Cids and sids are random (64 bits from the
// kernel), so no client acts on another's by guessing.
//
// Limits: at most kMaxSubscriptionsPerConnection subscriptions for the callbacks registered on one
// connection, kMaxSubscriptions in all; kMaxCallbacksPerConnection callbacks per connection.
//
// Thread: the service's serving thread only.

#include <uvc/path.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace hl_settingsd {

class SubscriptionTable {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr std::uint8_t kUpdWritten = 1;
    static constexpr std::uint8_t kUpdDeleted = 2;
    static constexpr std::uint8_t kUpdAttribute = 3;
    static constexpr std::size_t kMaxQueued = 1024;
    static constexpr std::size_t kMaxSubscriptions = 16384;
    static constexpr std::size_t kMaxSubscriptionsPerConnection = 512;
    static constexpr std::size_t kMaxCallbacksPerConnection = 64;

    struct Update {
        std::uint64_t sid = 0;
        std::string path;
        std::uint8_t upd = 0;
        unsigned attempts = 0;
    };
    static constexpr unsigned kMaxAttempts = 2;

    // A new cid registered on the connection; 0 when the connection has kMaxCallbacksPerConnection.
    std::uint64_t Register(std::uint64_t connection);
    // The number of subscriptions the cid had; none if the cid is unknown.
    std::optional<std::size_t> Unregister(std::uint64_t cid);
    bool Known(std::uint64_t cid) const { return m_callbacks.count(cid) != 0; }

    // kNotFound for an unknown cid, kInsufficientResources over a limit.
    std::int32_t Subscribe(std::uint64_t cid, uvc::Path path, std::uint64_t& sid);
    std::int32_t Unsubscribe(std::uint64_t cid, std::uint64_t sid);

    // Queues the updates of a change at path; returns the cids that got one.
    std::set<std::uint64_t> Notify(const uvc::Path& path, const std::string& pathText, std::uint8_t upd);
    // Notes a Wait of cid on the connection and gives its oldest update, if any (see Delivery above).
    std::optional<Update> Take(std::uint64_t cid, std::uint64_t connection);
    // Done of cid for sid: the update given last is delivered. False for an unknown cid.
    bool Confirm(std::uint64_t cid, std::uint64_t sid);
    bool HasUpdate(std::uint64_t cid) const;
    // The cids that live on the connection, which has closed.
    std::vector<std::uint64_t> Closed(std::uint64_t connection) const;

private:
    struct Callback {
        std::uint64_t registeredOn = 0;
        std::set<std::uint64_t> connections;
        std::map<std::uint64_t, uvc::Path> subscriptions;
        std::deque<Update> queue;
    };

    std::uint64_t NewId() const;

    std::map<std::uint64_t, std::pair<std::size_t, std::size_t>> m_perConnection;  // callbacks, subscriptions
    std::size_t m_subscriptionCount = 0;
    std::map<std::uint64_t, Callback> m_callbacks;
};

}  // namespace hl_settingsd
