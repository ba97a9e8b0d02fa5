#include "exchange_table.h"

#include <diagnostics/log.h>

namespace hl_settingsd {

using hos::logger::LogLevel;

std::size_t ExchangeTable::Bytes(const RawItems& items) {
    std::size_t bytes = 0;
    for (const auto& item : items) {
        bytes += item.path.size() + item.value.size() + item.attrib.size();
    }
    return bytes;
}

void ExchangeTable::MakeRoom() {
    if (OpenCount() < kMaxOpen) {
        return;
    }
    std::uint64_t oldest = 0;
    Clock::time_point oldestUse = Clock::time_point::max();
    for (const auto& [id, write] : m_writes) {
        if (write.used < oldestUse) {
            oldest = id;
            oldestUse = write.used;
        }
    }
    for (const auto& [id, read] : m_reads) {
        if (read.used < oldestUse) {
            oldest = id;
            oldestUse = read.used;
        }
    }
    HL_LOG(LogLevel::Warning, "too many open exchanges: #{:X}, unused for longest, is closed", oldest);
    Close(oldest);
}

std::uint64_t ExchangeTable::OpenWrite(Write write) {
    MakeRoom();
    write.used = Clock::now();
    const std::uint64_t id = ++m_lastId;
    m_writes.emplace(id, std::move(write));
    return id;
}

std::uint64_t ExchangeTable::OpenRead(Read read) {
    MakeRoom();
    read.used = Clock::now();
    const std::uint64_t id = ++m_lastId;
    m_reads.emplace(id, std::move(read));
    return id;
}

ExchangeTable::Write* ExchangeTable::FindWrite(std::uint64_t id) {
    const auto found = m_writes.find(id);
    if (found == m_writes.end()) {
        return nullptr;
    }
    found->second.used = Clock::now();
    return &found->second;
}

ExchangeTable::Read* ExchangeTable::FindRead(std::uint64_t id) {
    const auto found = m_reads.find(id);
    if (found == m_reads.end()) {
        return nullptr;
    }
    found->second.used = Clock::now();
    return &found->second;
}

bool ExchangeTable::Close(std::uint64_t id) {
    return m_writes.erase(id) + m_reads.erase(id) > 0;
}

void ExchangeTable::Expire(Clock::time_point now) {
    for (auto it = m_writes.begin(); it != m_writes.end();) {
        if (now - it->second.used > kIdleLimit) {
            HL_LOG(LogLevel::Warning, "write exchange #{:X} unused for {} s: closed, nothing written",
                   it->first, kIdleLimit.count());
            it = m_writes.erase(it);
        } else {
            ++it;
        }
    }
    for (auto it = m_reads.begin(); it != m_reads.end();) {
        if (now - it->second.used > kIdleLimit) {
            HL_LOG(LogLevel::Warning, "read exchange #{:X} unused for {} s: closed", it->first,
                   kIdleLimit.count());
            it = m_reads.erase(it);
        } else {
            ++it;
        }
    }
}

}  // namespace hl_settingsd
