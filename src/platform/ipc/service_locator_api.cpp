// The C entry points of the service locator.
#include <platform/nk_message.h>
#include <platform/service_locator.h>

#include <map>
#include <mutex>
#include <string>

#include <diagnostics/log.h>
#include <platform/i_service_registry.h>

#include "core/handle_table.h"
#include "ipc/client_channel.h"
#include "ipc/server_channel.h"

namespace {

using hos::logger::LogLevel;
using hos::platform::Deadline;
using hos::platform::HandleObject;
using hos::platform::HandleTable;

// Longest wait for the answer of ServiceLocatorGetRiid, which has no timeout of its own.
constexpr unsigned int kGetRiidTimeoutMs = 30000;

struct Registrations {
    std::mutex mutex;
    std::map<unsigned int, std::string> names;
    unsigned int nextId = 1;
};

Registrations& TheRegistrations() {
    static Registrations registrations;
    return registrations;
}

}  // namespace

extern "C" unsigned int ServiceLocatorRegister(const char* name, const void* /*options*/,
                                               unsigned int /*flags*/, unsigned int* id) {
    if (name == nullptr || !hos::platform::IsValidPlatformName(name)) {
        HL_LOG(LogLevel::Error, "ServiceLocatorRegister: invalid name \"{}\"",
               name != nullptr ? name : "(null)");
        return NK_INVALID_HANDLE;
    }
    int rc = NK_EOK;
    auto server = hos::platform::ServerChannel::Open(name, rc);
    if (!server) {
        return NK_INVALID_HANDLE;
    }
    const unsigned int handle =
        HandleTable::Instance().Insert(std::make_shared<HandleObject>(std::move(server)));
    if (handle == NK_INVALID_HANDLE) {
        return NK_INVALID_HANDLE;
    }
    auto& registrations = TheRegistrations();
    std::lock_guard lock(registrations.mutex);
    const unsigned int newId = registrations.nextId++;
    registrations.names.emplace(newId, name);
    if (id != nullptr) {
        *id = newId;
    }
    return handle;
}

extern "C" int ServiceLocatorUnregister(unsigned int id) {
    auto& registrations = TheRegistrations();
    std::lock_guard lock(registrations.mutex);
    return registrations.names.erase(id) > 0 ? NK_EOK : NK_ENOTFOUND;
}

extern "C" unsigned int ServiceLocatorConnect(const char* server) {
    if (server == nullptr) {
        return NK_INVALID_HANDLE;
    }
    hos::platform::UniqueFd fd;
    if (hos::platform::client_channel::Connect(server, Deadline::Never(), fd) != NK_EOK) {
        return NK_INVALID_HANDLE;
    }
    return HandleTable::Instance().Insert(
        std::make_shared<HandleObject>(HandleObject::Kind::Channel, std::move(fd)));
}

extern "C" unsigned short ServiceLocatorGetRiid(unsigned int handle, const char* interfaceName) {
    const auto channel = HandleTable::Instance().Find(handle);
    if (!channel || channel->GetKind() != HandleObject::Kind::Channel || interfaceName == nullptr) {
        return NK_INVALID_RIID;
    }
    unsigned int riid = NK_INVALID_RIID;
    if (hos::platform::client_channel::Resolve(*channel, interfaceName,
                                               Deadline::FromTimeoutMs(kGetRiidTimeoutMs), riid) != NK_EOK ||
        riid >= NK_INVALID_RIID) {
        return NK_INVALID_RIID;
    }
    return static_cast<unsigned short>(riid);
}
