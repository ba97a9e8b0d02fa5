#include <app_manager/proxy/application_commands.h>

#include <common_utils/app_utils/notice/notice_api.h>
#include <common_utils/app_utils/notice/notice_factory.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <diagnostics/result_code.h>

#include <cstdint>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

namespace app_manager::proxy {

namespace notice = common_utils::app_utils::notice;

ApplicationCommands::ApplicationCommands(GeneratedPtr proxy, std::string_view appName)
    : ApplicationCommands(std::move(proxy), appName,
                          std::make_shared<notice::NoticeFactory>(std::make_shared<notice::NoticeApi>())) {}

ApplicationCommands::ApplicationCommands(GeneratedPtr proxy, std::string_view appName,
                                         std::shared_ptr<notice::INoticeFactory> noticeFactory)
    : m_proxy(std::move(proxy)),
      m_noticeProxy(std::make_unique<NoticeProxy>(*this, std::move(noticeFactory))) {
    m_callbacks.max_load_factor(1.0F);
    HCA_CHECK(m_proxy != nullptr) << "generated ApplicationCommands proxy is nullptr!";
    if (appName.empty()) {
        return;
    }
    unsigned int handle = kInvalidHandle;
    try {
        m_proxy->GetUpdateHandle(std::vector<unsigned char>(appName.begin(), appName.end()), handle);
        HCA_CHECK(handle != kInvalidHandle) << "m_proxy->GetUpdateHandle returned INVALID_HANDLE!";
    } catch (...) {
        // Transport failure, server failure and an invalid handle alike: none of them is fatal.
        HL_LOG(hos::logger::LogLevel::Info,
               "ApplicationCommandsProxy: Failed to get update Handle: Exception");
    }
    if (handle != kInvalidHandle) {
        m_noticeProxy->Start(handle);
    }
}

ApplicationCommands::~ApplicationCommands() {
    // The table goes first, under its lock; the notice thread is joined before the lock itself dies,
    // which the members' order alone would not ensure.
    {
        std::unique_lock lock(m_callbacksLock);
        m_callbacks.clear();
    }
    m_noticeProxy.reset();
}

std::int32_t ApplicationCommands::GetCommand(std::string_view name, long& value) noexcept {
    HL_LOG(hos::logger::LogLevel::Debug, "Proxy: ApplicationCommands::GetCommand {} {}", name, value);
    int result = 0;
    std::int64_t received = value;
    try {
        m_proxy->GetCommand(std::vector<unsigned char>(name.begin(), name.end()), received, result);
    } catch (...) {
        // A failed request ends the process, as for Ping.
        std::terminate();
    }
    value = static_cast<long>(received);
    return result;
}

CallbackId ApplicationCommands::RegisterCallback(std::function<void()> callback) {
    HCA_CHECK(static_cast<bool>(callback)) << "callback is nullptr";
    std::unique_lock lock(m_callbacksLock);
    const CallbackId id = ++m_lastId;
    m_callbacks.emplace(id, std::move(callback));
    return id;
}

void ApplicationCommands::UnregisterCallback(CallbackId id) {
    decltype(m_callbacks)::node_type node;
    {
        std::unique_lock lock(m_callbacksLock);
        node = m_callbacks.extract(id);
        // An unknown id gives an empty node, whose key must not be read: the empty node itself is the
        // sign of a missing id, so the warning is logged instead of reading through it.
        if (node.empty() || node.key() != id) {
            HL_LOG(hos::logger::LogLevel::Warning, "Trying to unregister callback with not existent id: {}",
                   id);
        }
    }
    // The node dies outside the lock, so a callback's captured state isn't destroyed under it.
}

void ApplicationCommands::NotifyListeners() {
    try {
        std::shared_lock lock(m_callbacksLock);
        for (const auto& [id, callback] : m_callbacks) {
            callback();
        }
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "Failed to notify callback, {} with result: {}", message,
               code);
    }
}

ApplicationCommands::NoticeProxy::NoticeProxy(ApplicationCommands& owner,
                                              std::shared_ptr<notice::INoticeFactory> noticeFactory)
    : m_owner(owner), m_noticeFactory(std::move(noticeFactory)) {
    HCA_CHECK(m_noticeFactory != nullptr) << "NoticeFactory is nullptr";
}

ApplicationCommands::NoticeProxy::~NoticeProxy() {
    if (m_notice) {
        static_cast<void>(m_notice->DropAndWake());
    }
    if (m_thread.joinable()) {
        m_thread.join();
    }
    m_notice.reset();
    m_noticeFactory.reset();
}

void ApplicationCommands::NoticeProxy::Start(unsigned int handle) {
    m_notice = m_noticeFactory->CreateNotice();
    static_cast<void>(
        m_notice->SubscribeToObject(handle, kSubscriptionMask, reinterpret_cast<std::uintptr_t>(this)));
    m_thread = std::thread(&NoticeProxy::Process, this);
    HL_LOG(hos::logger::LogLevel::Info, "ApplicationCommands::NoticeProxy::Start");
}

void ApplicationCommands::NoticeProxy::Process() {
    std::vector<EventDesc> events(1, EventDesc{});
    for (;;) {
        const std::int32_t result = m_notice->WaitEvents(1, events);
        if (result == hca::result_code::kNotFound) {
            return;
        }
        if (hca::result_code::Failed(result) || events.empty()) {
            continue;
        }
        // The mask is read from the event just received. A wait replaces the vector's storage, so an
        // address taken before the loop would point into freed memory; the current element is the
        // event that the closed and update bits are meant for.
        if ((events.front().mask & kClosedEvent) != 0) {
            HL_LOG(hos::logger::LogLevel::Critical,
                   "ApplicationCommands: Update handle unexpectedly closed. Server malfunction?");
            return;
        }
        m_owner.NotifyListeners();
    }
}

}  // namespace app_manager::proxy
