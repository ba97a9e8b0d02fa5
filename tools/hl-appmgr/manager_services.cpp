#include "manager_services.h"

#include <diagnostics/log.h>
#include <platform/kn_channel.h>
#include <platform/platform.h>

#include <string>

namespace hl_appmgr {

namespace {

std::string Text(const std::vector<unsigned char>& bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

ManagerServices::ManagerServices(std::shared_ptr<ILifecycleSink> sink) : m_sink(std::move(sink)) {}

void ManagerServices::StartApplication(const Bytes& appName, int& rc) {
    HL_LOG(hos::logger::LogLevel::Info,
           "StartApplication({}) is not offered; applications start from hl-appmgr run", Text(appName));
    rc = static_cast<int>(0x9000000dU);
}

void ManagerServices::ReadyToInitialize(const Bytes& appName, int& rc) {
    m_sink->OnReadyToInitialize(Text(appName));
    rc = 0;
}

void ManagerServices::ReadyToShowUI(const Bytes& appName, int& rc) {
    m_sink->OnReadyToShowUI(Text(appName));
    rc = 0;
}

void ManagerServices::FinishWithInternalError(const Bytes& appName, const Bytes& error, const Bytes& details,
                                              int& rc) {
    m_sink->OnFinishWithInternalError(Text(appName), Text(error), Text(details));
    rc = 0;
}

void ManagerServices::StateChanged(const Bytes& appName, std::int64_t state, int& rc) {
    m_sink->OnStateChanged(Text(appName), state);
    rc = 0;
}

void ManagerServices::GetUpdateHandle(const Bytes& appName, unsigned int& handle) {
    unsigned int managerEnd = NK_INVALID_HANDLE;
    unsigned int applicationEnd = NK_INVALID_HANDLE;
    const int rc = KnHandleCreatePair(&managerEnd, &applicationEnd);
    if (rc != 0) {
        HL_LOG(hos::logger::LogLevel::Error, "{}: can't make an update object (0x{:08x})", Text(appName),
               static_cast<unsigned>(rc));
        handle = NK_INVALID_HANDLE;
        return;
    }
    m_sink->OnUpdateHandle(Text(appName), managerEnd);
    m_handedOver.push_back(applicationEnd);
    handle = applicationEnd;
}

void ManagerServices::GetCommand(const Bytes& name, std::int64_t& value, int& rc) {
    rc = m_sink->LookUpCommand(Text(name), value) ? 0 : kUnknownCommand;
}

void ManagerServices::Ping(const std::vector<unsigned char>& appName, int& rc) {
    m_sink->OnPing(Text(appName));
    rc = 0;
}

std::vector<unsigned int> ManagerServices::TakeHandedOver() {
    return std::exchange(m_handedOver, {});
}

}  // namespace hl_appmgr
