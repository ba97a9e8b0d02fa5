#include "subscription_table.h"

#include "result_codes.h"

#include <diagnostics/log.h>
#include <platform/hos_random.h>

#include <random>

namespace hl_settingsd {

using hos::logger::LogLevel;

std::uint64_t SubscriptionTable::NewId() const {
    static std::mt19937_64 fallback{std::random_device{}()};
    while (true) {
        std::uint64_t id = 0;
        if (HosRandomGenerate(&id, sizeof id) != 0) {
            id = fallback();
        }
        bool taken = m_callbacks.count(id) != 0;
        for (const auto& [cid, callback] : m_callbacks) {
            taken = taken || callback.subscriptions.count(id) != 0;
        }
        if (id != 0 && !taken) {
            return id;
        }
    }
}

std::uint64_t SubscriptionTable::Register(std::uint64_t connection) {
    auto& [callbacks, subscriptions] = m_perConnection[connection];
    if (callbacks >= kMaxCallbacksPerConnection) {
        return 0;
    }
    ++callbacks;
    const std::uint64_t cid = NewId();
    Callback& callback = m_callbacks[cid];
    callback.registeredOn = connection;
    callback.connections.insert(connection);
    return cid;
}

std::optional<std::size_t> SubscriptionTable::Unregister(std::uint64_t cid) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end()) {
        return std::nullopt;
    }
    const std::size_t count = found->second.subscriptions.size();
    m_subscriptionCount -= count;
    auto owner = m_perConnection.find(found->second.registeredOn);
    owner->second.first -= 1;
    owner->second.second -= count;
    if (owner->second.first == 0) {
        m_perConnection.erase(owner);
    }
    m_callbacks.erase(found);
    return count;
}

std::int32_t SubscriptionTable::Subscribe(std::uint64_t cid, uvc::Path path, std::uint64_t& sid) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end()) {
        return kNotFound;
    }
    auto& held = m_perConnection[found->second.registeredOn].second;
    if (m_subscriptionCount >= kMaxSubscriptions || held >= kMaxSubscriptionsPerConnection) {
        return kInsufficientResources;
    }
    sid = NewId();
    found->second.subscriptions.emplace(sid, std::move(path));
    ++m_subscriptionCount;
    ++held;
    return kOk;
}

std::int32_t SubscriptionTable::Unsubscribe(std::uint64_t cid, std::uint64_t sid) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end() || found->second.subscriptions.erase(sid) == 0) {
        return kNotFound;
    }
    --m_subscriptionCount;
    --m_perConnection[found->second.registeredOn].second;
    return kOk;
}

std::set<std::uint64_t> SubscriptionTable::Notify(const uvc::Path& path, const std::string& pathText,
                                                  std::uint8_t upd) {
    std::set<std::uint64_t> woken;
    for (auto& [cid, callback] : m_callbacks) {
        for (const auto& [sid, subscribed] : callback.subscriptions) {
            if (!path.StartsWith(subscribed) && !subscribed.StartsWith(path)) {
                continue;
            }
            if (callback.queue.size() >= kMaxQueued) {
                HL_LOG(LogLevel::Warning,
                       "callback @{:X}: {} updates wait already, the oldest (${}) is dropped", cid,
                       callback.queue.size(), callback.queue.front().sid);
                callback.queue.pop_front();
            }
            callback.queue.push_back({sid, pathText, upd});
            woken.insert(cid);
        }
    }
    return woken;
}

std::optional<SubscriptionTable::Update> SubscriptionTable::Take(std::uint64_t cid, std::uint64_t connection) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end()) {
        return std::nullopt;
    }
    auto& queue = found->second.queue;
    found->second.connections.insert(connection);
    while (!queue.empty() && queue.front().attempts >= kMaxAttempts) {
        HL_LOG(LogLevel::Info, "callback @{:X}: the update of ${} was sent {} times without Done: dropped",
               cid, queue.front().sid, queue.front().attempts);
        queue.pop_front();
    }
    if (queue.empty()) {
        return std::nullopt;
    }
    ++queue.front().attempts;
    return queue.front();
}

bool SubscriptionTable::Confirm(std::uint64_t cid, std::uint64_t sid) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end()) {
        return false;
    }
    auto& queue = found->second.queue;
    if (!queue.empty() && queue.front().attempts > 0 && queue.front().sid == sid) {
        queue.pop_front();
    }
    return true;
}

bool SubscriptionTable::HasUpdate(std::uint64_t cid) const {
    const auto found = m_callbacks.find(cid);
    return found != m_callbacks.end() && !found->second.queue.empty();
}

std::vector<std::uint64_t> SubscriptionTable::Closed(std::uint64_t connection) const {
    std::vector<std::uint64_t> closed;
    for (const auto& [cid, callback] : m_callbacks) {
        if (callback.connections.count(connection) != 0) {
            closed.push_back(cid);
        }
    }
    return closed;
}

}  // namespace hl_settingsd
