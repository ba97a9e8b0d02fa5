#pragma once

// IApplicationCommands and ICommandChangedSubscriber over the generated ApplicationCommands proxy
// (channel "app_manager.applicationCommands").
//
// With a non-empty name the constructor asks for the update handle (the first request of the
// application's life); a failure to get it is logged at level Info and leaves the object without a
// notice thread. With a handle, the notice thread waits on it for the update event (bit 16), after
// which it calls every registered callback, and ends for good on the closed event (bit 0, critical
// log line) or when the object is destroyed (DropAndWake, then join).
//
// Threads: construction and destruction on one thread; Register/UnregisterCallback from any thread
// but never from inside a callback (the notice thread holds the table's lock shared while callbacks
// run). GetCommand never throws: a failed request ends the process.

#include <app_manager/i_application_commands.h>

#include <common_utils/app_utils/notice/i_notice.h>
#include <common_utils/app_utils/notice/i_notice_factory.h>
#include <interfaces/hl/app_manager/application_commands.h>
#include <ipc_runtime/ipc_deleter.h>

#include <memory>
#include <shared_mutex>
#include <string_view>
#include <thread>
#include <unordered_map>

namespace app_manager::proxy {

class ApplicationCommands final : public IApplicationCommands, public ICommandChangedSubscriber {
public:
    using Generated = hosipc::idl::stdcpp_v1::hl::app_manager::ApplicationCommands;
    using GeneratedPtr = std::unique_ptr<Generated, hosipc_detail::api_v1::IpcDeleter>;

    static constexpr unsigned int kInvalidHandle = 0xffffffffU;
    static constexpr unsigned int kClosedEvent = 0x1U;
    static constexpr unsigned int kUpdateEvent = 0x10000U;
    static constexpr unsigned int kSubscriptionMask = kClosedEvent | kUpdateEvent;

    // The notices of the hosted platform. Throws hca::CheckFailedException
    // "generated ApplicationCommands proxy is nullptr!", the notice's own exception when the notice
    // can't be created, and std::system_error when the thread can't be started.
    ApplicationCommands(GeneratedPtr proxy, std::string_view appName);
    // The same over the given notice factory (never null: "NoticeFactory is nullptr").
    ApplicationCommands(GeneratedPtr proxy, std::string_view appName,
                        std::shared_ptr<common_utils::app_utils::notice::INoticeFactory> noticeFactory);
    ~ApplicationCommands() override;

    ApplicationCommands(const ApplicationCommands&) = delete;
    ApplicationCommands& operator=(const ApplicationCommands&) = delete;

    std::int32_t GetCommand(std::string_view name, long& value) noexcept override;
    CallbackId RegisterCallback(std::function<void()> callback) override;
    void UnregisterCallback(CallbackId id) override;

    // Calls every callback under the shared lock; the notice thread's only entry.
    void NotifyListeners();

    // Waits on the update handle on a thread of its own. Not polymorphic.
    class NoticeProxy {
    public:
        NoticeProxy(ApplicationCommands& owner,
                    std::shared_ptr<common_utils::app_utils::notice::INoticeFactory> noticeFactory);
        // DropAndWake, join, release the notice.
        ~NoticeProxy();

        NoticeProxy(const NoticeProxy&) = delete;
        NoticeProxy& operator=(const NoticeProxy&) = delete;

        void Start(unsigned int handle);
        void Process();

    private:
        ApplicationCommands& m_owner;
        std::shared_ptr<common_utils::app_utils::notice::INoticeFactory> m_noticeFactory;
        std::unique_ptr<common_utils::app_utils::notice::INotice> m_notice;
        std::thread m_thread;
    };

private:
    GeneratedPtr m_proxy;
    std::unique_ptr<NoticeProxy> m_noticeProxy;
    std::shared_mutex m_callbacksLock;
    std::unordered_map<CallbackId, std::function<void()>> m_callbacks;
    CallbackId m_lastId = 0;
};

}  // namespace app_manager::proxy
