#include "exchange_table.h"

#include <diagnostics/log.h>
#include <platform/hos_random.h>

#include <random>

namespace hl_settingsd {

using hos::logger::LogLevel;

std::size_t ExchangeTable::Bytes(const settings_manager::impl::RawItem& item) {
    return item.path.size() + item.value.size() + item.attrib.size();
}

std::size_t ExchangeTable::Bytes(const RawItems& items) {
    std::size_t bytes = 0;
    for (const auto& item : items) {
        bytes += Bytes(item);
    }
    return bytes;
}

std::uint64_t ExchangeTable::NewId() {
    static std::mt19937_64 fallback{std::random_device{}()};
    while (true) {
        std::uint64_t id = 0;
        if (HosRandomGenerate(&id, sizeof id) != 0) {
            id = fallback();
        }
        bool taken = false;
        for (const auto& [key, exchange] : m_open) {
            taken = taken || key.second == id;
        }
        if (id != 0 && !taken) {
            return id;
        }
    }
}

void ExchangeTable::Erase(std::map<Key, Exchange>::iterator it) {
    auto& [count, bytes] = m_perConnection[it->first.first];
    --count;
    bytes -= it->second.bytes;
    m_bytes -= it->second.bytes;
    if (count == 0) {
        m_perConnection.erase(it->first.first);
    }
    m_open.erase(it);
}

std::uint64_t ExchangeTable::Open(std::uint64_t connection, Exchange exchange) {
    if (m_perConnection[connection].first >= kMaxOpenPerConnection) {
        auto oldest = m_open.end();
        for (auto it = m_open.lower_bound({connection, 0}); it != m_open.end() && it->first.first == connection;
             ++it) {
            if (oldest == m_open.end() || it->second.used < oldest->second.used) {
                oldest = it;
            }
        }
        HL_LOG(LogLevel::Warning, "connection {} has {} exchanges open: #{:X}, unused for longest, is closed",
               connection, kMaxOpenPerConnection, oldest->first.second);
        Erase(oldest);
    }
    if (m_open.size() >= kMaxOpen) {
        HL_LOG(LogLevel::Warning, "{} exchanges are open: one more of connection {} is refused", m_open.size(),
               connection);
        if (m_perConnection[connection].first == 0) {
            m_perConnection.erase(connection);
        }
        return 0;
    }
    const std::uint64_t id = NewId();
    exchange.connection = connection;
    exchange.used = Clock::now();
    const std::size_t bytes = exchange.bytes;
    exchange.bytes = 0;
    auto& added = m_open.emplace(Key{connection, id}, std::move(exchange)).first->second;
    ++m_perConnection[connection].first;
    if (!Charge(added, bytes)) {
        Close(connection, id);
        return 0;
    }
    return id;
}

ExchangeTable::Exchange* ExchangeTable::Find(std::uint64_t connection, std::uint64_t id) {
    const auto found = m_open.find({connection, id});
    if (found == m_open.end()) {
        return nullptr;
    }
    found->second.used = Clock::now();
    return &found->second;
}

bool ExchangeTable::Charge(Exchange& exchange, std::size_t bytes) {
    auto& held = m_perConnection[exchange.connection].second;
    if (held + bytes > kMaxBytesPerConnection || m_bytes + bytes > kMaxBytes) {
        HL_LOG(LogLevel::Warning,
               "connection {} would hold {} bytes ({} in all): over the limit of {} ({} in all)",
               exchange.connection, held + bytes, m_bytes + bytes, kMaxBytesPerConnection, kMaxBytes);
        return false;
    }
    held += bytes;
    m_bytes += bytes;
    exchange.bytes += bytes;
    return true;
}

bool ExchangeTable::Close(std::uint64_t connection, std::uint64_t id) {
    const auto found = m_open.find({connection, id});
    if (found == m_open.end()) {
        return false;
    }
    Erase(found);
    return true;
}

std::size_t ExchangeTable::CloseAll(std::uint64_t connection) {
    std::size_t closed = 0;
    for (auto it = m_open.lower_bound({connection, 0}); it != m_open.end() && it->first.first == connection;) {
        auto next = std::next(it);
        Erase(it);
        it = next;
        ++closed;
    }
    return closed;
}

void ExchangeTable::Expire(Clock::time_point now) {
    for (auto it = m_open.begin(); it != m_open.end();) {
        auto next = std::next(it);
        if (now - it->second.used > kIdleLimit) {
            HL_LOG(LogLevel::Warning, "{} exchange #{:X} unused for {} s: closed{}",
                   it->second.write ? "write" : "read", it->first.second, kIdleLimit.count(),
                   it->second.write ? ", nothing written" : "");
            Erase(it);
        }
        it = next;
    }
}

}  // namespace hl_settingsd
