#pragma once
// settings_manager::ipc::SettingsManagerProxy: the client of one settings service. One object
// implements all seven settings interfaces over one NkISM connection; the six getters hand out the
// object itself, so it must be held by shared_ptr (CreateSettingsManager does that).
//
// A whole tree is read or written in one operation through a chunked exchange: at most eight nodes
// go in one Write or WriteNext; Read and ReadNext bring what the service sends until its last flag.
// A failed Next request is always followed by one Cancel. Operations never throw and never retry;
// they return the service's rc, 0x80000059 for a failed call, 0x80000062 for what doesn't fit an
// arena (paths over 512 bytes included), 0x80000074 for a response that doesn't add up, or the code of
// the tree codec. Every operation writes an entry and an exit line tagged "[SM_P] XXXX ".
//
// Construction connects (and registers with the process's SettingsManagerCallback) or throws. Calls
// block the calling thread without a time limit; the proxy takes no lock and keeps no state between
// calls, but one connection serves one call at a time, so callers on several threads must take turns.

#include <interfaces/hl/settings_manager/nk_ism.h>
#include <settings_manager/i_settings_manager.h>
#include <settings_manager/ipc/proxy.h>
#include <settings_manager/ipc/settings_manager_callback.h>
#include <settings_manager/ipc/settings_manager_config.h>

#include <diagnostics/log_level.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace settings_manager::ipc {

class SettingsManagerProxy : public ISettingsManager,
                             public ISettingsCreator,
                             public ISettingsGetter,
                             public ISettingsValueSetter,
                             public ISettingsSetter,
                             public ISettingsDeleter,
                             public ISettingsUpdateSubscriber,
                             public std::enable_shared_from_this<SettingsManagerProxy> {
public:
    // The Write modes the service understands.
    static constexpr std::uint8_t kModeCreate = 1;
    static constexpr std::uint8_t kModeSetValue = 2;
    static constexpr std::uint8_t kModeSetSetting = 6;
    static constexpr std::uint8_t kReadMask = 0x16;
    static constexpr std::size_t kNodesPerChunk = 8;

    explicit SettingsManagerProxy(const SettingsManagerConfig& config);
    explicit SettingsManagerProxy(const SettingsManagerCmConfig& config);
    ~SettingsManagerProxy() override;
    SettingsManagerProxy(const SettingsManagerProxy&) = delete;
    SettingsManagerProxy& operator=(const SettingsManagerProxy&) = delete;

    std::int32_t GetSettingsCreator(std::shared_ptr<ISettingsCreator>& creator) override;
    std::int32_t GetSettingsGetter(std::shared_ptr<ISettingsGetter>& getter) override;
    std::int32_t GetSettingsValueSetter(std::shared_ptr<ISettingsValueSetter>& setter) override;
    std::int32_t GetSettingsSetter(std::shared_ptr<ISettingsSetter>& setter) override;
    std::int32_t GetSettingsDeleter(std::shared_ptr<ISettingsDeleter>& deleter) override;
    std::int32_t GetSettingsUpdateSubscriber(std::shared_ptr<ISettingsUpdateSubscriber>& subscriber) override;

    std::int32_t CreateSetting(const uvc::Path& path, const Setting& setting) override;
    std::int32_t GetAttribute(const uvc::Path& path, Attributes& attributes) const override;
    std::int32_t GetSetting(const uvc::Path& path, Setting& setting) const override;
    std::int32_t SetValue(const uvc::Path& path, const uvc::TValue<Setting>& value) override;
    std::int32_t SetAttribute(const uvc::Path& path, const Attributes& attributes) override;
    std::int32_t SetSetting(const uvc::Path& path, const Setting& setting) override;
    std::int32_t DeleteSetting(const uvc::Path& path) override;
    std::int32_t Subscribe(const uvc::Path& path, std::shared_ptr<ISettingsUpdateObserver> observer,
                           SubscriptionId& sid) override;
    std::int32_t Unsubscribe(SubscriptionId sid) override;

    // The common body of the three writing operations; method and level are those of the trace.
    std::int32_t WriteSetting(std::uint8_t mode, const uvc::Path& path, const Setting& setting,
                              std::string_view method, hos::logger::LogLevel level) const;

    const std::string& Tag() const { return m_tag; }

private:
    using Connection = hos::ipc::Proxy<hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM>;

    static std::string MakeTag();
    template <typename T>
    std::int32_t GetIface(std::shared_ptr<T>& iface);

    std::string m_tag;
    Connection m_connection;
    SettingsManagerCallback* m_callback;
    SettingsManagerCallback::Iterator m_context;
};

}  // namespace settings_manager::ipc
