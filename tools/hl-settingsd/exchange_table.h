#pragma once
// The open chunked exchanges of a settings service, each owned by the connection that opened it: a
// write exchange buffers its nodes until the chunk that brings the last one (so it is committed whole,
// or not at all); a read exchange pages the live tree (ReadCursor), and keeps a copy of what is left
// only when the tree changes under it.
//
// Ids are random (64 bits from the kernel), so nobody guesses another client's exchange, and an id is
// found only from the connection that opened it. A closed connection's exchanges go with it.
//
// Limits, per connection and in total, so no client takes what the others need:
//   - at most kMaxOpenPerConnection exchanges per connection: one more closes that connection's
//     exchange unused for longest (with a log line); at most kMaxOpen in all: one more is refused;
//   - bytes held (write buffers and the copies of reads) at most kMaxBytesPerConnection per
//     connection and kMaxBytes in all (Charge);
//   - a write of at most kMaxNodes nodes;
//   - an exchange unused for kIdleLimit is closed by Expire, with a log line.
//
// Thread: the service's serving thread only.

#include "read_cursor.h"

#include <settings_manager/raw_item.h>
#include <uvc/path.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace hl_settingsd {

class ExchangeTable {
public:
    using RawItems = std::vector<settings_manager::impl::RawItem>;
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t kMaxOpen = 256;
    static constexpr std::size_t kMaxOpenPerConnection = 16;
    static constexpr std::uint64_t kMaxNodes = 1'000'000;
    static constexpr std::size_t kMaxBytes = 128u * 1024u * 1024u;
    static constexpr std::size_t kMaxBytesPerConnection = 64u * 1024u * 1024u;
    static constexpr std::chrono::seconds kIdleLimit{60};

    struct Write {
        uvc::Path path;
        std::uint8_t mode = 0;
        std::uint64_t ncount = 0;
        RawItems items;
    };
    struct Read {
        std::unique_ptr<ReadCursor> cursor;  // null once the rest was copied into pending
        RawItems pending;                    // made, not sent yet from `next` on; before the cursor's
        std::size_t next = 0;
        bool Done() const { return next == pending.size() && (!cursor || cursor->Done()); }
    };
    struct Exchange {
        std::uint64_t connection = 0;
        std::size_t bytes = 0;  // charged to the connection
        Clock::time_point used;
        std::optional<Write> write;
        std::optional<Read> read;
    };

    // A new exchange of the connection; 0 when the service holds kMaxOpen already (logged).
    std::uint64_t Open(std::uint64_t connection, Exchange exchange);
    // The connection's open exchange of that id, marked as used now; null if there is none.
    Exchange* Find(std::uint64_t connection, std::uint64_t id);
    // Charges `bytes` more to the exchange; false (nothing charged) when that would pass its
    // connection's or the service's limit.
    bool Charge(Exchange& exchange, std::size_t bytes);
    // Whether the connection had an exchange open under id.
    bool Close(std::uint64_t connection, std::uint64_t id);
    // Closes every exchange of the connection; returns how many.
    std::size_t CloseAll(std::uint64_t connection);
    void Expire(Clock::time_point now);
    // f(id, exchange) for every open read exchange, for a change of the tree to copy what it would
    // invalidate; f must not open or close exchanges.
    template <typename F>
    void ForEachRead(F&& f) {
        for (auto& [key, exchange] : m_open) {
            if (exchange.read) {
                f(key.second, exchange);
            }
        }
    }
    std::size_t OpenCount() const { return m_open.size(); }
    std::size_t BytesHeld() const { return m_bytes; }

    static std::size_t Bytes(const settings_manager::impl::RawItem& item);
    static std::size_t Bytes(const RawItems& items);

private:
    using Key = std::pair<std::uint64_t, std::uint64_t>;  // connection, id

    std::uint64_t NewId();
    void Erase(std::map<Key, Exchange>::iterator it);

    std::map<Key, Exchange> m_open;
    std::map<std::uint64_t, std::pair<std::size_t, std::size_t>> m_perConnection;  // count, bytes
    std::size_t m_bytes = 0;
};

}  // namespace hl_settingsd
