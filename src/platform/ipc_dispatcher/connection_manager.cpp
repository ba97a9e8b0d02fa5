#include <platform/ipc_dispatcher/connection_manager.h>

#include <exception>

#include <fmt/format.h>

#include <platform/kn_channel.h>

#include "core/handle_table.h"

namespace hos::ipc {

namespace {

template <typename T>
std::shared_ptr<T> Take(const std::optional<std::shared_ptr<T>>& callback) {
    return callback.value_or(nullptr);
}

}  // namespace

void ConnectionManager::GrpSync::Release() {
    for (const auto& group : waiters) {
        for (const auto& weakWaiter : group) {
            if (const auto waiter = weakWaiter.lock()) {
                waiter->Release();
            }
        }
    }
}

ConnectionManager::ConnectionManager(Config config)
    : m_channelCallbacks{Take(config.onChannelOpened), Take(config.onChannelClosed), nullptr},
      m_logCallbacks{nullptr, nullptr, Take(config.log)} {
    for (const auto& [key, handle] : config.handles) {
        if (handle != NK_INVALID_HANDLE) {
            m_handles.insert(handle);
        }
        m_groups[key] = Group{handle, {}};
    }
    for (const auto& [name, parameters] : config.services) {
        m_descriptors[std::string(name)] = Descriptor{parameters};
    }
    m_workSync.periodMs = config.periodMs;
}

ConnectionManager::~ConnectionManager() {
    Stop(nullptr);
}

bool ConnectionManager::Start() {
    std::lock_guard stopLock(m_stopMutex);
    if (m_running || m_stopping) {
        return false;
    }
    m_running = true;
    if (m_channelCallbacks.opened && *m_channelCallbacks.opened) {
        std::vector<std::pair<unsigned int, unsigned int>> channels;
        {
            std::lock_guard lock(m_stateMutex);
            for (const auto& [key, group] : m_groups) {
                channels.emplace_back(key, group.number);
            }
        }
        try {
            for (const auto& [key, handle] : channels) {
                (*m_channelCallbacks.opened)(key, handle);
            }
        } catch (...) {
            Log("the channel-opened callback threw", true);
        }
    }
    m_worker = std::thread([this] { WorkerLoop(); });
    return true;
}

bool ConnectionManager::Stop(const void* /*reserved*/) {
    std::lock_guard stopLock(m_stopMutex);
    if (!m_running) {
        return false;
    }
    {
        // Set under the worker's mutex so that the worker cannot miss the wake-up.
        std::lock_guard workLock(m_workSync.mutex);
        m_running = false;
        m_stopping = true;
    }
    m_workSync.condition.notify_all();
    if (m_worker.joinable()) {
        m_worker.join();
    }
    std::set<unsigned int> handles;
    GrpSync sync;
    {
        std::lock_guard lock(m_stateMutex);
        handles.swap(m_handles);
        for (auto& [key, group] : m_groups) {
            group.number = NK_INVALID_HANDLE;
            if (!group.waiters.empty()) {
                sync.waiters.push_back(std::move(group.waiters));
                group.waiters.clear();
            }
        }
    }
    sync.Release();
    for (const unsigned int handle : handles) {
        KnHandleClose(handle);
    }
    return true;
}

void ConnectionManager::Log(std::string_view text, bool isError) const {
    try {
        const auto& log = m_logCallbacks.log;
        // No function at all counts like an empty one: nothing is told.
        if (log) {
            (*log)(fmt::format("ConnectionManager: {}", text), isError);
        }
    } catch (...) {
        // Logging must never take its caller down.
    }
}

bool ConnectionManager::AddWaiterForTesting(unsigned int key, std::weak_ptr<rtl::Semaphore> waiter) {
    std::lock_guard lock(m_stateMutex);
    const auto group = m_groups.find(key);
    if (group == m_groups.end()) {
        return false;
    }
    group->second.waiters.push_back(std::move(waiter));
    return true;
}

void ConnectionManager::WorkerLoop() {
    std::unique_lock lock(m_workSync.mutex);
    for (;;) {
        const auto stopping = [this] { return m_stopping.load(); };
        if (m_workSync.periodMs == 0) {
            m_workSync.condition.wait(lock, stopping);
        } else {
            m_workSync.condition.wait_for(lock, std::chrono::milliseconds(m_workSync.periodMs), stopping);
        }
        if (m_stopping) {
            return;
        }
        lock.unlock();
        CheckChannels();
        lock.lock();
    }
}

void ConnectionManager::CheckChannels() {
    std::vector<std::pair<unsigned int, unsigned int>> closed;
    {
        std::lock_guard lock(m_stateMutex);
        for (const auto& [key, group] : m_groups) {
            if (m_handles.count(group.number) != 0 && !platform::HandleTable::Instance().Find(group.number)) {
                closed.emplace_back(key, group.number);
                // The value may be handed out again to another object: never close it on Stop.
                m_handles.erase(group.number);
            }
        }
    }
    for (const auto& [key, handle] : closed) {
        Log(fmt::format("channel {} (handle {}) was closed from outside", key, handle), true);
        try {
            if (m_channelCallbacks.closed && *m_channelCallbacks.closed) {
                (*m_channelCallbacks.closed)(key, handle);
            }
        } catch (const std::exception& error) {
            Log(fmt::format("the channel-closed callback threw: {}", error.what()), true);
        } catch (...) {
            Log("the channel-closed callback threw", true);
        }
    }
}

}  // namespace hos::ipc
