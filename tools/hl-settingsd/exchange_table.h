#pragma once
// The open chunked exchanges of a settings service: a write exchange buffers its nodes until the chunk
// that brings the last one (so it is committed whole, or not at all), a read exchange keeps the nodes
// still to be sent. Exchanges are numbered from 1 across both kinds.
//
// Limits: at most kMaxOpen exchanges (one more closes the one unused for longest, with a log line); a
// write of at most kMaxNodes nodes and kMaxBytes bytes; an exchange unused for kIdleLimit is closed by
// Expire, with a log line (its client has gone or forgotten it).
//
// Thread: the service's serving thread only.

#include <settings_manager/raw_item.h>
#include <uvc/path.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace hl_settingsd {

class ExchangeTable {
public:
    using RawItems = std::vector<settings_manager::impl::RawItem>;
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t kMaxOpen = 64;
    static constexpr std::uint64_t kMaxNodes = 1'000'000;
    static constexpr std::size_t kMaxBytes = 256u * 1024u * 1024u;
    static constexpr std::chrono::seconds kIdleLimit{60};

    struct Write {
        uvc::Path path;
        std::uint8_t mode = 0;
        std::uint64_t ncount = 0;
        RawItems items;
        std::size_t bytes = 0;
        Clock::time_point used;
    };
    struct Read {
        RawItems items;
        std::size_t next = 0;
        Clock::time_point used;
    };

    std::uint64_t OpenWrite(Write write);
    std::uint64_t OpenRead(Read read);
    // The open exchange of that id and kind, marked as used now; null if there is none.
    Write* FindWrite(std::uint64_t id);
    Read* FindRead(std::uint64_t id);
    // Whether an exchange of either kind was open under id.
    bool Close(std::uint64_t id);
    void Expire(Clock::time_point now);
    std::size_t OpenCount() const { return m_writes.size() + m_reads.size(); }

    static std::size_t Bytes(const RawItems& items);

private:
    void MakeRoom();

    std::uint64_t m_lastId = 0;
    std::map<std::uint64_t, Write> m_writes;
    std::map<std::uint64_t, Read> m_reads;
};

}  // namespace hl_settingsd
