#include <settings_manager/ipc/settings_manager_callback.h>

#include "ipc/call_report.h"

#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/node_arena.h>
#include <settings_manager/path_to_str.h>
#include <uvc/path_text.h>

#include <diagnostics/log.h>

#include <platform/kn_channel.h>

#include <array>
#include <string_view>
#include <system_error>
#include <vector>

namespace settings_manager::ipc {

namespace {

using hos::logger::LogLevel;
using impl::CallNk;
using impl::ReportCallFailure;

constexpr std::uint32_t kNoTimeout = 0xFFFFFFFFu;
constexpr std::uint32_t kNameArena = 64;
constexpr std::uint32_t kPathArena = 512;
constexpr std::string_view kCmKeyPrefix = "//cm:";
constexpr std::int32_t kInexistentSid = static_cast<std::int32_t>(0x8000004Cu);

std::uint32_t LoggedTimeout(std::uint32_t timeout) {
    return timeout == kNoTimeout ? 0 : timeout;
}

trace::Tracer::Postfix ResultPostfix(const std::int32_t& result) {
    return [&result](std::string& scratch) -> std::string_view {
        scratch = fmt::format(": result = {}", fdn::hcax::ResultCodeText(result));
        return scratch;
    };
}

// The bytes as they go into a request arena of max bytes; false when they don't fit.
bool FitsArena(std::string_view text, std::uint32_t max) {
    std::vector<unsigned char> room(max);
    nk_arena arena{room.data(), room.data(), room.data() + room.size()};
    hos::ipc::arena::conv::Status status;
    hos::ipc::arena::conv::Put(arena, {reinterpret_cast<const unsigned char*>(text.data()), text.size()}, max,
                               status);
    return status.Ok();
}

std::vector<unsigned char> Bytes(std::string_view text) {
    return {text.begin(), text.end()};
}

}  // namespace

SettingsManagerCallback& SettingsManagerCallback::Instance() {
    static SettingsManagerCallback instance;
    return instance;
}

SettingsManagerCallback::SettingsManagerCallback() {
    HL_LOG(LogLevel::Info, "{}: ProxyCallbackCallTimeoutMs = {} ms, ProxyCallbackWaitFailSleepMs = {} ms",
           "SettingsManagerCallback", ProxyCallbackCallTimeoutMs, ProxyCallbackWaitFailSleepMs);
}

SettingsManagerCallback::~SettingsManagerCallback() {
    std::lock_guard lock(m_mutex);
    for (auto& [key, context] : m_contexts) {
        context.useCount.exchange(0);
        if (context.thread.joinable()) {
            context.thread.join();
        }
    }
}

SettingsManagerCallback::Context::Context(const SettingsManagerConfig& config, trace::Tracer& tracer) {
    reg.Init(config.connection, config.nkIsmRegInterface, kNoTimeout, kNoTimeout);
    const std::string_view name = config.callbackConnection ? config.callbackConnection : "";
    if (!FitsArena(name, kNameArena)) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), ": RegCallback request arena fail");
        HCA_CHECK_RESULT(impl::kArenaFailed);
    }
    std::int32_t rc = 0;
    const int nk = CallNk([&] { reg->RegCallback(Bytes(name), cid, rc); });
    if (nk != 0 || rc < 0) {
        HCA_CHECK_RESULT(ReportCallFailure(tracer, "RegCallback", nk, rc));
    }
    cbk.Init(config.callbackConnection, config.nkIsmCbkInterface, 0, ProxyCallbackCallTimeoutMs);
    StartThread();
}

SettingsManagerCallback::Context::Context(const SettingsManagerCmConfig& config, trace::Tracer& tracer) {
    reg.Init(hos::ipc::Target{config.serviceName, "NkISMReg"}, true, config.timeoutMs, kNoTimeout,
             kNoTimeout);
    cbk.Init(hos::ipc::Target{config.serviceName, "NkISMCbk"}, true, config.timeoutMs, 0,
             kCmRegisterCallTimeoutMs);
    // Sent on the callback connection, addressed to the registration interface: the service learns
    // the client's callback channel from the channel this request arrives on.
    hos::ipc::Proxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg> viaCallback;
    viaCallback.InitBorrowed(cbk.Handle(), reg.Riid(), 0, kCmRegisterCallTimeoutMs);
    std::int32_t rc = 0;
    const int nk = CallNk([&] { viaCallback->RegCallback(Bytes(kCmKeyPrefix), cid, rc); });
    if (nk != 0 || rc < 0) {
        HCA_CHECK_RESULT(ReportCallFailure(tracer, "RegCallback (cbk conn)", nk, rc));
    }
    cbk->SetTimeouts(0, ProxyCallbackCallTimeoutMs);
    StartThread();
}

SettingsManagerCallback::Context::~Context() {
    if (thread.joinable()) {
        useCount.exchange(0);
        thread.join();
    }
    cbk = {};
    reg = {};
}

void SettingsManagerCallback::Context::StartThread() {
    hos::rtl::Semaphore started;
    thread = std::thread(&Context::OnSettingsUpdate, this, &started);
    while (!started.Wait(std::chrono::hours(1))) {
    }
}

void SettingsManagerCallback::Context::OnSettingsUpdate(Context* context, hos::rtl::Semaphore* started) {
    trace::Tracer tracer("[SM_P] ", "OnSettingsUpdate", LogLevel::Info, trace::Tracer::NoPostfix, "@{:16X}",
                         context->cid);
    // On the thread's stack, and a time limit that runs out is a result, not an exception: the idle
    // path allocates nothing.
    std::array<unsigned char, hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk::kWaitArena> bytes{};
    started->Release();
    while (context->useCount.load() != 0) {
        tracer.Result().clear();
        tracer.SetLevel(LogLevel::Debug);
        std::uint64_t sid = 0;
        nk_ptr_t path{};
        std::uint8_t upd = 0;
        std::int32_t rc = 0;
        nk_arena arena{};
        int nk = 0;
        do {
            arena = nk_arena{bytes.data(), bytes.data(), bytes.data() + bytes.size()};
            nk = CallNk([&] { return context->cbk->WaitOrTransportResult(context->cid, sid, path, upd, rc, arena); });
        } while (nk == NK_TRANSPORT_TIMEOUT && context->useCount.load() != 0);
        if (context->useCount.load() == 0) {
            break;
        }
        if (nk != 0 || rc < 0) {
            ReportCallFailure(tracer, "Wait", nk, rc);
            tracer.LogImpl(tracer.Level(), "");
            KnSleep(ProxyCallbackWaitFailSleepMs);
            continue;
        }
        hos::ipc::arena::conv::Status status;
        const auto text = hos::ipc::arena::conv::Get(arena, path, status);
        const auto [changed, state] =
            uvc::FromString(std::string_view(reinterpret_cast<const char*>(text.data()), text.size()),
                            meta::GetIdSpecification());
        trace::Tracer::PutImpl(tracer.Result(), "${}, path = {}, upd = {}", sid, changed, upd);
        if (!status) {
            tracer.RaiseLevel(LogLevel::Error);
            trace::Tracer::PutImpl(tracer.Result(), ": Wait response arena fail");
            tracer.LogImpl(tracer.Level(), "");
            continue;
        }
        if (state != uvc::IdStateOk) {
            tracer.LogImpl(LogLevel::Warning, " -> path uvc::IdState = {}", state);
            continue;
        }
        if (sid == 0) {
            tracer.LogImpl(LogLevel::Warning, " -> null sid");
            continue;
        }
        if (!InvokeObserver(context, SubscriptionId{sid}, changed, upd, tracer)) {
            continue;
        }
        std::int32_t doneRc = 0;
        const int doneNk = CallNk([&] { context->cbk->Done(context->cid, sid, doneRc); });
        if (doneNk != 0 || doneRc < 0) {
            ReportCallFailure(tracer, "Done", doneNk, doneRc);
            tracer.LogImpl(tracer.Level(), "");
        }
        SyncUnsubscription(context, tracer);
    }
    tracer.LogImpl(LogLevel::Info, "exit");
    tracer.SetLevel(LogLevel::Off);
}

bool SettingsManagerCallback::Context::InvokeObserver(Context* context, SubscriptionId sid,
                                                      const uvc::Path& path, std::uint8_t upd,
                                                      trace::Tracer& tracer) {
    bool wait = false;
    bool known = false;
    std::shared_ptr<ISettingsUpdateObserver> observer;
    for (;;) {
        {
            std::unique_lock lock(context->mutex);
            if (const auto found = context->observers.find(sid); found != context->observers.end()) {
                observer = found->second;
                context->currentSid = sid;
            } else {
                known = context->removedSids.count(sid) != 0;
                wait = context->pendingSubscribes > 0 && !known;
                context->waitingForSubscribe = wait;
            }
        }
        // wait stays as it was once the observer is found: the thread then waits on the semaphore a
        // second time, and no Subscribe posts it. Delivery of that event stops there, by design.
        if (!wait) {
            break;
        }
        tracer.LogImpl(LogLevel::Debug, "new sid - waiting for Subscribe()...");
        while (!context->subscribeSemaphore.Wait(std::chrono::hours(1))) {
        }
    }
    if (observer) {
        tracer.LogImpl(LogLevel::Trace, ": {} =>", "InvokeObserver");
        observer->OnUpdate(path, upd);
        tracer.LogImpl(LogLevel::Trace, ": <= {}", "InvokeObserver");
        return true;
    }
    if (!known) {
        tracer.LogImpl(LogLevel::Error, " -> sid not found");
    }
    return false;
}

void SettingsManagerCallback::Context::SyncUnsubscription(Context* context, trace::Tracer& tracer) {
    LazySemaphore* waiter = nullptr;
    {
        std::lock_guard lock(context->mutex);
        waiter = std::exchange(context->unsubscribeWaiter, nullptr);
        context->currentSid = SubscriptionId{};
    }
    if (waiter != nullptr) {
        tracer.LogImpl(LogLevel::Debug, "synchronizing with Unsubscribe()...");
        waiter->Post();
    }
}

template <typename Config>
SettingsManagerCallback::Iterator SettingsManagerCallback::AddContext(const std::string& key,
                                                                      const Config& config,
                                                                      trace::Tracer& tracer) {
    std::unique_lock lock(m_mutex);
    auto found = m_contexts.find(key);
    if (found == m_contexts.end()) {
        // try_emplace constructs in place; a throwing constructor leaves the map as it was.
        found = m_contexts.try_emplace(key, config, tracer).first;
    } else {
        found->second.useCount.fetch_add(1);
    }
    lock.unlock();
    tracer.RaiseLevel(LogLevel::Info);
    trace::Tracer::PutImpl(tracer.Result(), "@{:16X}, use count = {}", found->second.cid,
                           found->second.useCount.load());
    return found;
}

SettingsManagerCallback::Iterator SettingsManagerCallback::RegCallback(std::string_view tag,
                                                                       const SettingsManagerConfig& config) {
    trace::Tracer tracer(tag, "RegCallback", LogLevel::Debug, trace::Tracer::NoPostfix, "{}<{},{}> + {}<{}>",
                         config.connection ? config.connection : "",
                         config.nkIsmInterface ? config.nkIsmInterface : "",
                         config.nkIsmRegInterface ? config.nkIsmRegInterface : "",
                         config.callbackConnection ? config.callbackConnection : "",
                         config.nkIsmCbkInterface ? config.nkIsmCbkInterface : "");
    return AddContext(config.callbackConnection ? config.callbackConnection : "", config, tracer);
}

SettingsManagerCallback::Iterator SettingsManagerCallback::RegCallback(
    std::string_view tag, const SettingsManagerCmConfig& config) {
    const char* name = config.serviceName ? config.serviceName : "";
    trace::Tracer tracer(tag, "RegCallback", LogLevel::Debug, trace::Tracer::NoPostfix, "{}[{},{}] ({} ms)",
                         name, "NkISMReg", "NkISMCbk", LoggedTimeout(config.timeoutMs));
    return AddContext(std::string(kCmKeyPrefix) + name, config, tracer);
}

void SettingsManagerCallback::UnregCallback(std::string_view tag, Iterator context) {
    Context& ctx = context->second;
    trace::Tracer tracer(tag, "UnregCallback", LogLevel::Debug, trace::Tracer::NoPostfix, "@{:16X}", ctx.cid);
    Contexts removed;
    std::unique_lock lock(m_mutex);
    std::uint64_t count = 0;
    std::size_t sids = 0;
    if (ctx.useCount.load() == 1) {
        std::int32_t rc = 0;
        const int nk = CallNk([&] { ctx.reg->UnregCallback(ctx.cid, rc); });
        if (nk != 0 || rc < 0) {
            ReportCallFailure(tracer, "UnregCallback", nk, rc);
        }
        ctx.useCount.exchange(0);
        try {
            ctx.thread.join();
        } catch (const std::exception& error) {
            tracer.SetLevel(LogLevel::Critical);
            trace::Tracer::PutImpl(tracer.Result(), " [callback thread join exception = {}] ", error.what());
        }
        {
            std::lock_guard contextLock(ctx.mutex);
            sids = ctx.observers.size();
        }
        removed.insert(m_contexts.extract(context));
    } else {
        count = ctx.useCount.fetch_sub(1) - 1;
        std::lock_guard contextLock(ctx.mutex);
        sids = ctx.observers.size();
    }
    tracer.RaiseLevel(LogLevel::Info);
    trace::Tracer::PutImpl(tracer.Result(), "use count = {}, sid count = {}", count, sids);
    lock.unlock();
}

std::int32_t SettingsManagerCallback::Subscribe(std::string_view tag, Iterator context, const uvc::Path& path,
                                                std::shared_ptr<ISettingsUpdateObserver> observer,
                                                SubscriptionId& sid) {
    Context& ctx = context->second;
    const std::string text = PathToStr(path);
    std::int32_t result = 0;
    trace::Tracer tracer(tag, "Subscribe", LogLevel::Debug, ResultPostfix(result), "{}", text);
    if (!FitsArena(text, kPathArena)) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), ": Subscribe request arena fail");
        tracer.RaiseLevel(LogLevel::Warning);
        result = impl::kArenaFailed;
        return result;
    }
    {
        std::lock_guard lock(ctx.mutex);
        ++ctx.pendingSubscribes;
    }
    std::uint64_t newSid = 0;
    std::int32_t rc = 0;
    const int nk = CallNk([&] { ctx.reg->Subscribe(ctx.cid, Bytes(text), newSid, rc); });
    const bool ok = nk == 0 && rc >= 0;
    if (ok) {
        sid = SubscriptionId{newSid};
        trace::Tracer::PutImpl(tracer.Result(), "${}", newSid);
        result = rc;
    } else {
        result = ReportCallFailure(tracer, "Subscribe", nk, rc);
    }
    bool inserted = false;
    bool post = false;
    {
        std::lock_guard lock(ctx.mutex);
        --ctx.pendingSubscribes;
        if (ok) {
            inserted = ctx.observers.try_emplace(SubscriptionId{newSid}, std::move(observer)).second;
        }
        if (ctx.waitingForSubscribe && (inserted || ctx.pendingSubscribes == 0)) {
            ctx.waitingForSubscribe = false;
            post = true;
        }
    }
    if (post) {
        ctx.subscribeSemaphore.Release();
    }
    if (ok && !inserted) {
        tracer.RaiseLevel(LogLevel::Error);
        trace::Tracer::PutImpl(tracer.Result(), " -> duplicate sid");
        result = impl::kWrongData;
        return result;
    }
    if (result < 0) {
        tracer.RaiseLevel(LogLevel::Warning);
    }
    return result;
}

std::int32_t SettingsManagerCallback::Unsubscribe(std::string_view tag, Iterator context,
                                                  SubscriptionId sid) {
    Context& ctx = context->second;
    std::int32_t result = 0;
    std::shared_ptr<ISettingsUpdateObserver> entry;
    trace::Tracer tracer(tag, "Unsubscribe", LogLevel::Debug, ResultPostfix(result), "${}", sid);
    // Declared after entry, so destroyed before it: the observer's last reference drops last.
    LazySemaphore waiter(ctx.mutex);
    bool waits = false;
    {
        std::unique_lock lock(ctx.mutex);
        const auto found = ctx.observers.find(sid);
        if (found == ctx.observers.end()) {
            lock.unlock();
            tracer.RaiseLevel(LogLevel::Error);
            trace::Tracer::PutImpl(tracer.Result(), " -> inexistent sid");
            result = kInexistentSid;
            return result;
        }
        entry = std::move(found->second);
        ctx.observers.erase(found);
        ctx.removedSids.insert(sid);
        if (ctx.currentSid == sid) {
            ctx.currentSid = SubscriptionId{};
            ctx.unsubscribeWaiter = &waiter;
            waits = true;
        }
    }
    std::int32_t rc = 0;
    const int nk = CallNk([&] { ctx.reg->Unsubscribe(ctx.cid, sid.value, rc); });
    result = nk != 0 || rc < 0 ? ReportCallFailure(tracer, "Unsubscribe", nk, rc) : rc;
    {
        std::lock_guard lock(ctx.mutex);
        ctx.removedSids.erase(sid);
    }
    if (waits) {
        tracer.LogImpl(LogLevel::Debug, "synchronizing with OnSettingsUpdate()...");
        waiter.Wait();
    }
    if (result < 0) {
        tracer.RaiseLevel(LogLevel::Warning);
    }
    return result;
}

}  // namespace settings_manager::ipc
