// Upkeep of a component's server channels while it serves.
//
// Purpose: owns the configured channel handles from Start until Stop, which closes them and wakes
// everyone waiting on a channel group. Its worker thread wakes every `periodMs` (not at all when 0)
// and checks that each configured channel is still open; a channel closed from outside is logged
// as an error, told to the `onChannelClosed` callback, and forgotten (Stop does not close it again).
// Thread: Start, Stop, Log and AddWaiterForTesting are safe from any thread. Callbacks run on the
// worker thread. The destructor stops the manager. Made by CreateIpcConnectionManager.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <platform/hos_rtl/semaphore.h>

namespace hos::ipc {

class ConnectionManager {
public:
    // Two numbers per served service, kept with the service's name.
    struct Parameters {
        std::uint32_t first = 0;
        std::uint32_t second = 0;
    };

    using ChannelCallback = std::function<void(unsigned int key, unsigned int handle)>;
    using LogCallback = std::function<void(std::string_view text, bool isError)>;

    struct Config {
        std::map<std::string_view, Parameters, std::less<void>> services;
        // Channel key (the endpoint number) -> handle; NK_INVALID_HANDLE entries are not held.
        std::map<unsigned int, unsigned int> handles;
        std::optional<std::shared_ptr<ChannelCallback>> onChannelOpened;  // called by Start for each channel
        std::optional<std::shared_ptr<ChannelCallback>> onChannelClosed;  // a channel closed from outside
        std::optional<std::shared_ptr<LogCallback>> log;
        std::uint32_t periodMs = 1000;  // the worker's check period
        std::uint8_t reserved[2] = {0, 0};
    };

    // Waiters of one channel, released when the manager stops.
    struct Group {
        unsigned int number = 0xFFFFFFFFu;  // the channel handle; 0xFFFFFFFF once stopped
        std::vector<std::weak_ptr<rtl::Semaphore>> waiters;
    };

    // Waiters taken out of their groups, released outside the lock.
    struct GrpSync {
        std::vector<std::vector<std::weak_ptr<rtl::Semaphore>>> waiters;
        void Release();
    };

    struct CbkSet {
        std::shared_ptr<ChannelCallback> opened;
        std::shared_ptr<ChannelCallback> closed;
        std::shared_ptr<LogCallback> log;
    };

    explicit ConnectionManager(Config config);
    ~ConnectionManager();

    ConnectionManager(const ConnectionManager&) = delete;
    ConnectionManager& operator=(const ConnectionManager&) = delete;

    // Starts the worker. False if already started or stopped.
    bool Start();
    // Stops the worker, releases all waiters and closes the held handles in ascending order.
    // `reserved` must be nullptr. Returns whether the manager was running: true once, then false.
    bool Stop(const void* reserved);
    // Hands "ConnectionManager: <text>" to the log callback; never throws.
    void Log(std::string_view text, bool isError) const;

    // Adds a waiter to the group of channel `key`; false for an unknown key.
    bool AddWaiterForTesting(unsigned int key, std::weak_ptr<rtl::Semaphore> waiter);

private:
    struct Descriptor {
        Parameters parameters;
    };

    struct WorkSync {
        std::mutex mutex;
        std::condition_variable condition;
        std::uint32_t periodMs = 0;
    };

    void WorkerLoop();
    void CheckChannels();

    std::mutex m_stopMutex;
    std::mutex m_stateMutex;
    CbkSet m_channelCallbacks;
    CbkSet m_logCallbacks;  // only `log` is set
    std::set<unsigned int> m_handles;
    std::map<unsigned int, Group> m_groups;
    std::map<std::string, Descriptor> m_descriptors;
    std::atomic<bool> m_running{false};
    std::atomic<bool> m_stopping{false};
    std::thread m_worker;
    WorkSync m_workSync;
};

}  // namespace hos::ipc
