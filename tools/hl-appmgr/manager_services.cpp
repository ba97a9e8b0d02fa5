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

int Accepted(bool accepted) {
    return accepted ? 0 : NK_EACCESS;
}

}  // namespace

ManagerServices::ManagerServices(std::shared_ptr<Supervisor> supervisor) : m_supervisor(std::move(supervisor)) {}

void ManagerServices::StartApplication(const Bytes& appName, int& rc) {
    HL_LOG(hos::logger::LogLevel::Info,
           "StartApplication({}) is not offered; applications start from hl-appmgr run or start", Text(appName));
    rc = static_cast<int>(0x9000000dU);
}

void ManagerServices::ReadyToInitialize(const Bytes& appName, int& rc) {
    rc = Accepted(m_supervisor->OnReadyToInitialize(Text(appName), PeerPid()));
}

void ManagerServices::ReadyToShowUI(const Bytes& appName, int& rc) {
    rc = Accepted(m_supervisor->OnReadyToShowUI(Text(appName), PeerPid()));
}

void ManagerServices::FinishWithInternalError(const Bytes& appName, const Bytes& error, const Bytes& details,
                                              int& rc) {
    rc = Accepted(m_supervisor->OnFinishWithInternalError(Text(appName), PeerPid(), Text(error), Text(details)));
}

void ManagerServices::StateChanged(const Bytes& appName, std::int64_t state, int& rc) {
    rc = Accepted(m_supervisor->OnStateChanged(Text(appName), PeerPid(), state));
}

void ManagerServices::GetUpdateHandle(const Bytes& appName, unsigned int& handle) {
    handle = NK_INVALID_HANDLE;
    unsigned int managerEnd = NK_INVALID_HANDLE;
    unsigned int applicationEnd = NK_INVALID_HANDLE;
    const int rc = KnHandleCreatePair(&managerEnd, &applicationEnd);
    if (rc != 0) {
        HL_LOG(hos::logger::LogLevel::Error, "{}: can't make an update object (0x{:08x})", Text(appName),
               static_cast<unsigned>(rc));
        return;
    }
    if (!m_supervisor->OnUpdateHandle(Text(appName), PeerPid(), managerEnd)) {
        KnHandleClose(managerEnd);
        KnHandleClose(applicationEnd);
        return;
    }
    m_handedOver.push_back(applicationEnd);
    handle = applicationEnd;
}

void ManagerServices::GetCommand(const Bytes& name, std::int64_t& value, int& rc) {
    rc = m_supervisor->LookUpCommand(Text(name), value) ? 0 : kUnknownCommand;
}

void ManagerServices::Ping(const std::vector<unsigned char>& appName, int& rc) {
    rc = Accepted(m_supervisor->OnPing(Text(appName), PeerPid()));
}

void ManagerServices::Start(const Bytes& appName, int& rc) {
    rc = m_supervisor->Start(Text(appName));
}

void ManagerServices::Stop(const Bytes& appName, int& rc) {
    rc = m_supervisor->Stop(Text(appName));
}

void ManagerServices::Restart(const Bytes& appName, int& rc) {
    rc = m_supervisor->Restart(Text(appName));
}

void ManagerServices::ResetFailed(const Bytes& appName, int& rc) {
    rc = m_supervisor->ResetFailed(Text(appName));
}

void ManagerServices::SetCommand(const Bytes& appName, const Bytes& name, std::int64_t value, int& rc) {
    rc = m_supervisor->SetCommand(Text(appName), Text(name), value);
}

void ManagerServices::Status(const Bytes& appName, int& rc, Bytes& json) {
    StatusTable table;
    if (!m_supervisor->Status(Text(appName), table)) {
        rc = kNoSuchApplication;
        return;
    }
    std::string text = StatusToJson(table);
    while (text.size() > kStatusBytes && !table.apps.empty() && !table.apps.back().output.empty()) {
        // The oldest output lines give way first; nothing else is long.
        for (AppStatus& app : table.apps) {
            if (!app.output.empty()) {
                app.output.erase(app.output.begin());
            }
        }
        text = StatusToJson(table);
    }
    if (text.size() > kStatusBytes) {
        HL_LOG(hos::logger::LogLevel::Warning, "the status of {} bytes does not fit the answer", text.size());
        rc = kNotPossible;
        return;
    }
    json.assign(text.begin(), text.end());
    rc = 0;
}

std::vector<unsigned int> ManagerServices::TakeHandedOver() {
    return std::exchange(m_handedOver, {});
}

}  // namespace hl_appmgr
