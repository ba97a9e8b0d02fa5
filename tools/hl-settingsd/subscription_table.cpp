#include "subscription_table.h"

#include "result_codes.h"

#include <diagnostics/log.h>

namespace hl_settingsd {

using hos::logger::LogLevel;

std::uint64_t SubscriptionTable::Register(Clock::time_point now) {
    const std::uint64_t cid = ++m_lastId;
    m_callbacks[cid].lastWait = now;
    return cid;
}

std::optional<std::size_t> SubscriptionTable::Unregister(std::uint64_t cid) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end()) {
        return std::nullopt;
    }
    const std::size_t count = found->second.subscriptions.size();
    m_subscriptionCount -= count;
    m_callbacks.erase(found);
    return count;
}

std::int32_t SubscriptionTable::Subscribe(std::uint64_t cid, uvc::Path path, std::uint64_t& sid) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end()) {
        return kNotFound;
    }
    if (m_subscriptionCount >= kMaxSubscriptions) {
        return kInsufficientResources;
    }
    sid = ++m_lastId;
    found->second.subscriptions.emplace(sid, std::move(path));
    ++m_subscriptionCount;
    return kOk;
}

std::int32_t SubscriptionTable::Unsubscribe(std::uint64_t cid, std::uint64_t sid) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end() || found->second.subscriptions.erase(sid) == 0) {
        return kNotFound;
    }
    --m_subscriptionCount;
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

std::optional<SubscriptionTable::Update> SubscriptionTable::Take(std::uint64_t cid, Clock::time_point now) {
    const auto found = m_callbacks.find(cid);
    if (found == m_callbacks.end()) {
        return std::nullopt;
    }
    auto& queue = found->second.queue;
    found->second.lastWait = now;
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

std::vector<std::uint64_t> SubscriptionTable::Silent(Clock::time_point now) const {
    std::vector<std::uint64_t> silent;
    for (const auto& [cid, callback] : m_callbacks) {
        const bool delivering = !callback.queue.empty() && callback.queue.front().attempts > 0;
        if (now - callback.lastWait > (delivering ? kSilenceLimit : kIdleSilenceLimit)) {
            silent.push_back(cid);
        }
    }
    return silent;
}

}  // namespace hl_settingsd
