#include "core/service_connection.h"

#include "core/exit_code.h"

#include <settings_manager/ipc/create_settings_manager.h>
#include <settings_manager/service_names.h>

#include <diagnostics/result_code.h>
#include <platform/kn_channel.h>
#include <platform/nk_message.h>
#include <platform/nk_result.h>

#include <chrono>
#include <cstdio>
#include <thread>
#include <utility>

namespace hl_settings {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kConnectTimeoutMs = 5000;
constexpr auto kRetryPause = std::chrono::milliseconds(50);

// Asks for the service's NkISM interface until it answers or the wait is over; the channel is
// closed again at once.
int Probe(const std::string& service, std::uint32_t waitMs) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(waitMs);
    for (;;) {
        unsigned int handle = NK_INVALID_HANDLE;
        unsigned int riid = NK_INVALID_RIID;
        const int result = KnCmConnect(service.c_str(), "NkISM", kConnectTimeoutMs, &handle, &riid);
        if (result == NK_EOK) {
            KnHandleClose(handle);
            return result;
        }
        if (result != NK_ENOTFOUND || Clock::now() + kRetryPause > deadline) {
            return result;
        }
        std::this_thread::sleep_for(kRetryPause);
    }
}

}  // namespace

namespace {

// A known service's short name ("MSmgr") stands for its full one; any other name is taken as given.
std::string FullName(std::string service) {
    const auto known = settings_manager::FindService(service);
    return known ? std::string(known->name) : service;
}

}  // namespace

ServiceConnection::ServiceConnection(std::string service, std::uint32_t waitMs)
    : m_service(FullName(std::move(service))), m_waitMs(waitMs) {}

int ServiceConnection::Open() {
    const int probe = Probe(m_service, m_waitMs);
    if (probe != NK_EOK) {
        std::fprintf(
            stderr, "hl-settings: service '%s' can't be reached: %s\n", m_service.c_str(),
            probe == NK_ENOTFOUND ? "no such service is running" : hcax::ResultCodeText(probe).c_str());
        return kExitUnreachable;
    }
    const settings_manager::ipc::SettingsManagerCmConfig config{m_service.c_str(), kConnectTimeoutMs};
    const std::int32_t created = settings_manager::ipc::CreateSettingsManager(config, m_manager);
    if (created < 0 || !m_manager) {
        std::fprintf(stderr, "hl-settings: service '%s' can't be reached: %s\n", m_service.c_str(),
                     hcax::ResultCodeText(created).c_str());
        return kExitUnreachable;
    }
    return kExitOk;
}

bool ServiceConnection::IsThere() const {
    return Probe(m_service, 0) == NK_EOK;
}

}  // namespace hl_settings
