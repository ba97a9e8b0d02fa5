#include <platform/ipc_utils/find_connection_target_for_type.h>

#include <cstring>
#include <string>

#include <diagnostics/log.h>
#include <platform/i_service_registry.h>

namespace shared::ipc_utils {

namespace {

bool CopyName(const std::string& name, char (&target)[ConnectionTarget::kNameCapacity]) {
    if (name.size() >= ConnectionTarget::kNameCapacity) {
        return false;
    }
    std::memcpy(target, name.c_str(), name.size() + 1);
    return true;
}

}  // namespace

ConnectionTarget FindConnectionTargetForType(const char* type, unsigned int /*timeoutMs*/) {
    using hos::logger::LogLevel;
    ConnectionTarget target;
    if (type == nullptr || !hos::platform::IsValidPlatformName(type)) {
        HL_LOG(LogLevel::Warning, "FindConnectionTargetForType: invalid type \"{}\"",
               type == nullptr ? "" : type);
        return target;
    }
    const auto entry = hos::platform::CreateServiceRegistry()->Find(type);
    if (!entry) {
        HL_LOG(LogLevel::Debug, "FindConnectionTargetForType: {} is not published", type);
        return target;
    }
    if (!CopyName(entry->server, target.server) || !CopyName(entry->endpoint, target.service)) {
        HL_LOG(LogLevel::Error, "FindConnectionTargetForType: the entry of {} has an oversized name", type);
        return ConnectionTarget{};
    }
    target.found = true;
    return target;
}

}  // namespace shared::ipc_utils
