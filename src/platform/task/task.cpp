#include "task/task.h"

#include <set>

#include <diagnostics/log.h>
#include <platform/i_service_registry.h>
#include <platform/nk_message.h>

namespace hos::platform {
namespace {

using hos::logger::LogLevel;

bool Matches(const Task::Endpoint& endpoint, std::string_view name) {
    if (name == endpoint.fullName || name == endpoint.shortName || name == endpoint.interfaceType) {
        return true;
    }
    const size_t typeLength = endpoint.interfaceType.size();
    return !endpoint.interfaceType.empty() && name.size() == typeLength + 1 + endpoint.shortName.size() &&
           name.substr(0, typeLength) == endpoint.interfaceType && name[typeLength] == '.' &&
           name.substr(typeLength + 1) == endpoint.shortName;
}

}  // namespace

Task& Task::Self() {
    static Task task;
    return task;
}

int Task::SetComponentTree(const HosComponentTree* tree) {
    if (tree == nullptr || tree->typeName == nullptr ||
        (tree->endpointCount > 0 && tree->endpoints == nullptr)) {
        HL_LOG(LogLevel::Error, "HosTaskSetComponentTree: the tree or its type name is missing");
        return NK_EINVAL;
    }
    std::vector<Endpoint> endpoints;
    std::set<unsigned int> numbers;
    for (size_t i = 0; i < tree->endpointCount; ++i) {
        const HosEndpointDesc& desc = tree->endpoints[i];
        if (desc.fullName == nullptr || desc.shortName == nullptr || desc.interfaceType == nullptr ||
            desc.number >= NK_INVALID_RIID || !numbers.insert(desc.number).second) {
            HL_LOG(LogLevel::Error,
                   "HosTaskSetComponentTree: endpoint {} of {} has a missing name or a bad number {}", i,
                   tree->typeName, desc.number);
            return NK_EINVAL;
        }
        endpoints.push_back({desc.number, desc.fullName, desc.shortName, desc.interfaceType});
    }
    std::lock_guard lock(m_mutex);
    m_typeName = tree->typeName;
    m_endpoints = std::move(endpoints);
    return NK_EOK;
}

int Task::ConnectToSelf(std::string_view name) {
    if (!IsValidPlatformName(name)) {
        HL_LOG(LogLevel::Error, "HosTaskConnectToService: invalid name \"{}\"", name);
        return NK_EINVAL;
    }
    std::lock_guard lock(m_mutex);
    if (!m_typeName) {
        HL_LOG(LogLevel::Error, "HosTaskConnectToService: no component tree for \"{}\"", name);
        return NK_ENOENDPOINT;
    }
    m_connections.emplace(name);
    return NK_EOK;
}

int Task::Resolve(std::string_view name) const {
    std::lock_guard lock(m_mutex);
    for (const auto& endpoint : m_endpoints) {
        if (Matches(endpoint, name)) {
            return static_cast<int>(endpoint.number);
        }
    }
    return NK_ENOENDPOINT;
}

std::string Task::TypeName() const {
    std::lock_guard lock(m_mutex);
    return m_typeName.value_or(std::string());
}

void Task::ResetForTesting() {
    std::lock_guard lock(m_mutex);
    m_typeName.reset();
    m_endpoints.clear();
    m_connections.clear();
}

}  // namespace hos::platform
