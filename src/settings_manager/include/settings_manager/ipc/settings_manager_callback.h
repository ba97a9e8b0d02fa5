#pragma once
// settings_manager::ipc::SettingsManagerCallback: the process-wide registry of callback connections.
// Every SettingsManagerProxy registers here when constructed (RegCallback) and leaves when destroyed
// (UnregCallback). Proxies of the same key (the callback connection name, or "//cm:" and the service
// name) share one Context: one registration (cid), one callback connection and one thread that sits
// in Wait (call timeout 2000 ms, repeated silently when it runs out; 1000 ms pause after a failure),
// calls the observer of the event's sid and confirms with Done.
//
// Threads: any thread calls the operations; one callback thread per Context. The registry mutex is
// held during a Context's connecting and during the last UnregCallback's IPC call and join. The
// context mutex is never held during IPC, an observer's call or a wait. After Unsubscribe has
// returned, the observer of that sid isn't called again and isn't running. Unsubscribe must not be
// called from inside OnUpdate of the same sid. An exception from an observer ends the process.

#include <interfaces/hl/settings_manager/nk_ism_cbk.h>
#include <interfaces/hl/settings_manager/nk_ism_reg.h>
#include <settings_manager/i_settings_update_observer.h>
#include <settings_manager/ipc/lazy_semaphore.h>
#include <settings_manager/ipc/proxy.h>
#include <settings_manager/ipc/settings_manager_config.h>
#include <settings_manager/subscription_id.h>
#include <uvc/path.h>

#include <diagnostics/tracer.h>

#include <platform/hos_rtl/semaphore.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>

namespace settings_manager::ipc {

class SettingsManagerCallback {
public:
    static constexpr std::uint32_t ProxyCallbackCallTimeoutMs = 2000;
    static constexpr std::uint32_t ProxyCallbackWaitFailSleepMs = 1000;
    static constexpr std::uint32_t kCmRegisterCallTimeoutMs = 12000;

    struct Context {
        Context(const SettingsManagerConfig& config, trace::Tracer& tracer);
        Context(const SettingsManagerCmConfig& config, trace::Tracer& tracer);
        Context(const Context&) = delete;
        Context& operator=(const Context&) = delete;
        // Closes cbk, then reg; the thread has been joined by then.
        ~Context();

        static void OnSettingsUpdate(Context* context, hos::rtl::Semaphore* started);
        static bool InvokeObserver(Context* context, SubscriptionId sid, const uvc::Path& path,
                                   std::uint8_t upd, trace::Tracer& tracer);
        static void SyncUnsubscription(Context* context, trace::Tracer& tracer);
        void StartThread();

        std::atomic<std::uint64_t> useCount{1};
        std::uint64_t cid = 0;
        hos::ipc::Proxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg> reg;
        hos::ipc::Proxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk> cbk;
        std::thread thread;
        std::mutex mutex;
        std::map<SubscriptionId, std::shared_ptr<ISettingsUpdateObserver>> observers;
        std::int32_t pendingSubscribes = 0;
        hos::rtl::Semaphore subscribeSemaphore;
        bool waitingForSubscribe = false;
        SubscriptionId currentSid{};
        LazySemaphore* unsubscribeWaiter = nullptr;
        std::set<SubscriptionId> removedSids;
    };
    using Contexts = std::map<std::string, Context>;
    using Iterator = Contexts::iterator;

    // The process's registry, made on first use and destroyed at exit.
    static SettingsManagerCallback& Instance();

    SettingsManagerCallback();
    // Stops and joins the threads of contexts still registered.
    ~SettingsManagerCallback();
    SettingsManagerCallback(const SettingsManagerCallback&) = delete;
    SettingsManagerCallback& operator=(const SettingsManagerCallback&) = delete;

    // Returns the Context of config's key, made and connected if it is new; throws (hca exceptions)
    // when connecting or registering fails, leaving the registry as it was.
    Iterator RegCallback(std::string_view tag, const SettingsManagerConfig& config);
    Iterator RegCallback(std::string_view tag, const SettingsManagerCmConfig& config);
    // The last user of a Context unregisters it, stops its thread (within one Wait) and closes it.
    void UnregCallback(std::string_view tag, Iterator context);
    std::int32_t Subscribe(std::string_view tag, Iterator context, const uvc::Path& path,
                           std::shared_ptr<ISettingsUpdateObserver> observer, SubscriptionId& sid);
    std::int32_t Unsubscribe(std::string_view tag, Iterator context, SubscriptionId sid);

private:
    template <typename Config>
    Iterator AddContext(const std::string& key, const Config& config, trace::Tracer& tracer);

    std::mutex m_mutex;
    Contexts m_contexts;
};

}  // namespace settings_manager::ipc
