#include <diagnostics/property_bag.h>

#include <algorithm>

namespace hca {

property::property(std::string_view name, std::uint32_t typeId) : m_typeId(typeId) {
    m_nameLength = std::min(name.size(), kMaxNameLength);
    std::copy_n(name.data(), m_nameLength, m_name.data());
}

void property::ClearValue(std::uint32_t tag) {
    m_tag = tag;
    m_value.reset();
    m_valueSize = 0;
}

void property_bag::SetWithoutValue(std::string_view name, std::uint32_t typeId, std::uint32_t tag) {
    FindOrAppend(name, typeId).ClearValue(tag);
}

const property* property_bag::Find(std::string_view name) const {
    const property probe(name, 0);
    for (const property& entry : m_properties) {
        if (entry.Name() == probe.Name()) {
            return &entry;
        }
    }
    return nullptr;
}

property& property_bag::FindOrAppend(std::string_view name, std::uint32_t typeId) {
    const property probe(name, typeId);
    for (property& entry : m_properties) {
        if (entry.Name() == probe.Name()) {
            return entry;
        }
    }
    return m_properties.emplace_back(name, typeId);
}

}  // namespace hca
