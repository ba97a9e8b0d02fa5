#include "settings_service.h"

#include "result_codes.h"
#include "tree_shape.h"

#include <diagnostics/log.h>
#include <diagnostics/result_code.h>
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/node_arena.h>
#include <settings_manager/path_to_str.h>
#include <settings_manager/serialize.h>
#include <uvc/path_text.h>

#include <malloc.h>

#include <algorithm>
#include <iterator>
#include <cstdlib>
#include <stdexcept>

namespace hl_settingsd {

namespace {

using hos::logger::LogLevel;
using settings_manager::Setting;
namespace arena = hos::ipc::arena;

constexpr std::size_t kChunkNodes = 8;
// The status of a process that ends at a WriteNext because its test asked for it.
constexpr int kExitForTesting = 4;
// An exchange that held this much leaves memory to give back to the system when it closes.
constexpr std::size_t kTrimBytes = 1024 * 1024;
constexpr std::int32_t kOutOfSpace = static_cast<std::int32_t>(0x80000062u);

std::string CodeText(std::int32_t code) {
    return hcax::ResultCodeText(code);
}

// The path of a request, or false with a log line.
bool ParsePath(std::span<const unsigned char> bytes, const char* method, uvc::Path& path) {
    if (bytes.size() > arena::kMaxPathBytes) {
        HL_LOG(LogLevel::Warning, "{}: a path text of {} bytes, over {}, refused", method, bytes.size(),
               arena::kMaxPathBytes);
        return false;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    auto [parsed, state] = uvc::FromString(text, settings_manager::meta::GetIdSpecification());
    if (state != uvc::IdStateOk) {
        HL_LOG(LogLevel::Warning,
               "{}: the path text of {} bytes is not a setting path (uvc::IdState = {}), refused", method,
               bytes.size(), static_cast<unsigned>(state));
        return false;
    }
    path = std::move(parsed);
    return true;
}

}  // namespace

SettingsService::SettingsService(std::unique_ptr<ITreeStore> store,
                                 std::shared_ptr<hosipc::server::DeferredReplies> held)
    : m_store(std::move(store)),
      m_held(std::move(held)),
      m_tree(m_store && m_held ? m_store->Load()
                               : throw std::invalid_argument("tree store or DeferredReplies is nullptr")) {}

nk_ptr_t SettingsService::NextChunk(ExchangeTable::Read& read, nk_arena& responseArena, std::int32_t& rc) {
    if (read.cursor) {
        // What did not fit last time comes first; the cursor makes the rest of the chunk.
        read.pending.erase(read.pending.begin(), read.pending.begin() + static_cast<std::ptrdiff_t>(read.next));
        read.next = 0;
        while (read.pending.size() < kChunkNodes && !read.cursor->Done()) {
            read.pending.push_back(read.cursor->Next());
        }
    }
    const std::size_t count = std::min(kChunkNodes, read.pending.size() - read.next);
    auto first = read.pending.cbegin() + static_cast<std::ptrdiff_t>(read.next);
    const auto start = first;
    const nk_ptr_t nodes =
        arena::impl::Write(responseArena, first, first + static_cast<std::ptrdiff_t>(count));
    if (arena::IsInvalid(nodes)) {
        HL_LOG(LogLevel::Error, "the node '{}' can't be sent (over the node limits)", first->path);
        rc = kOutOfSpace;
        return nodes;
    }
    read.next += static_cast<std::size_t>(first - start);
    rc = kOk;
    return nodes;
}

void SettingsService::Read(const Bytes& pathBytes, std::uint8_t readMask, std::uint64_t& ncount,
                           nk_ptr_t& nodes, std::uint64_t& id, std::int32_t& rc, nk_arena& responseArena) {
    HL_LOG(LogLevel::Debug, "request Read");
    uvc::Path path;
    if (!ParsePath(pathBytes, "Read", path)) {
        rc = kInvalidArgument;
        return;
    }
    const Setting* node = m_tree.Find(path);
    rc = !SettingsTree::IsValidReadMask(readMask) ? kInvalidArgument : node == nullptr ? kNotFound : kOk;
    if (rc < 0) {
        HL_LOG(LogLevel::Info, "Read '{}' (mask {:#x}): {}", path, readMask, CodeText(rc));
        return;
    }
    // Paged from the live tree: nothing of the subtree is copied unless a change comes before its end.
    ExchangeTable::Read read{std::make_unique<ReadCursor>(path, *node, readMask), {}, 0};
    ncount = read.cursor->Count();
    if (m_fault == FaultForTesting::kReadCountZero) {
        ncount = 0;
        const ExchangeTable::RawItems none;
        auto first = none.cbegin();
        nodes = arena::impl::Write(responseArena, first, none.cend());
        return;
    }
    if (m_fault == FaultForTesting::kReadCountShort) {
        --ncount;
    }
    try {
        nodes = NextChunk(read, responseArena, rc);
    } catch (const std::exception& e) {
        HL_LOG(LogLevel::Error, "Read '{}': the tree can't be serialized: {}", path, e.what());
        rc = kInvalidArgument;
        return;
    }
    if (rc < 0 || read.Done()) {
        return;
    }
    const std::uint64_t connection = m_held->CurrentConnection();
    id = m_exchanges.Open(connection, ExchangeTable::Exchange{0, 0, {}, std::nullopt, std::move(read)});
    if (id == 0) {
        rc = kInsufficientResources;
        return;
    }
    HL_LOG(LogLevel::Debug, "Read '{}': {} nodes, exchange #{:X} of connection {}", path, ncount, id, connection);
}

void SettingsService::ReadNext(std::uint64_t id, nk_ptr_t& nodes, std::uint8_t& last, std::int32_t& rc,
                               nk_arena& responseArena) {
    HL_LOG(LogLevel::Debug, "request ReadNext");
    const std::uint64_t connection = m_held->CurrentConnection();
    ExchangeTable::Exchange* exchange = m_exchanges.Find(connection, id);
    if (exchange == nullptr || !exchange->read) {
        HL_LOG(LogLevel::Warning, "ReadNext of #{:X}, which is no open read exchange of connection {}: refused",
               id, connection);
        rc = kNotFound;
        return;
    }
    ExchangeTable::Read& read = *exchange->read;
    if (m_fault == FaultForTesting::kReadNextBadList) {
        nodes = nk_ptr_t{0xFFFF0000U, 64};
        last = 0;
        rc = kOk;
        return;
    }
    try {
        nodes = NextChunk(read, responseArena, rc);
    } catch (const std::exception& e) {
        HL_LOG(LogLevel::Error, "ReadNext #{:X}: the tree can't be serialized: {}", id, e.what());
        rc = kInvalidArgument;
    }
    if (rc < 0) {
        CloseExchange(connection, id);
        return;
    }
    last = read.Done() ? 1 : 0;
    if (last != 0) {
        CloseExchange(connection, id);
    }
}

void SettingsService::Write(const nk_arena& requestArena, nk_ptr_t pathRef, std::uint8_t mode,
                            std::uint64_t ncount, nk_ptr_t nodes, std::uint64_t& id, std::int32_t& rc) {
    arena::conv::Status status;
    const auto pathBytes = arena::conv::Get(requestArena, pathRef, status);
    uvc::Path path;
    if (!status) {
        HL_LOG(LogLevel::Warning, "Write: the path reference lies outside the request: refused");
        rc = kInvalidArgument;
        return;
    }
    if (!ParsePath(pathBytes, "Write", path)) {
        rc = kInvalidArgument;
        return;
    }
    if (!SettingsTree::IsValidMode(mode)) {
        HL_LOG(LogLevel::Warning, "Write '{}': mode {:#x} refused", path, mode);
        rc = kInvalidArgument;
        return;
    }
    if (ncount == 0 || ncount > ExchangeTable::kMaxNodes) {
        HL_LOG(LogLevel::Warning, "Write '{}': {} nodes announced, refused (1 to {})", path, ncount,
               ExchangeTable::kMaxNodes);
        rc = ncount == 0 ? kInvalidArgument : kInsufficientResources;
        return;
    }
    ExchangeTable::Write write{path, mode, ncount, {}};
    if (!arena::impl::Read(requestArena, nodes, write.items)) {
        HL_LOG(LogLevel::Warning, "Write '{}': the node list lies outside the request: refused", path);
        rc = kInvalidArgument;
        return;
    }
    HL_LOG(LogLevel::Debug, "request Write {}", write.items.size());
    if (write.items.size() > ncount) {
        HL_LOG(LogLevel::Warning, "Write '{}': {} nodes sent where {} were announced: refused", path,
               write.items.size(), ncount);
        rc = kMoreThan;
        return;
    }
    if (write.items.size() == ncount) {
        rc = Commit(path, mode, write.items);
        return;
    }
    const std::uint64_t connection = m_held->CurrentConnection();
    const std::size_t bytes = ExchangeTable::Bytes(write.items);
    id = m_exchanges.Open(connection, ExchangeTable::Exchange{0, bytes, {}, std::move(write), std::nullopt});
    if (id == 0) {
        rc = kInsufficientResources;
        return;
    }
    HL_LOG(LogLevel::Debug, "Write '{}': {} nodes, exchange #{:X} of connection {}", path, ncount, id, connection);
    rc = kOk;
}

void SettingsService::WriteNext(const nk_arena& requestArena, std::uint64_t id, nk_ptr_t nodes,
                                std::uint8_t last, std::int32_t& rc) {
    const std::uint64_t connection = m_held->CurrentConnection();
    ExchangeTable::Exchange* exchange = m_exchanges.Find(connection, id);
    if (exchange == nullptr || !exchange->write) {
        HL_LOG(LogLevel::Warning, "WriteNext of #{:X}, which is no open write exchange of connection {}: refused",
               id, connection);
        rc = kNotFound;
        return;
    }
    ExchangeTable::Write* write = &*exchange->write;
    ExchangeTable::RawItems items;
    const char* fault = nullptr;
    const bool readable = arena::impl::Read(requestArena, nodes, items);
    HL_LOG(LogLevel::Debug, "request WriteNext {} last={}", items.size(), last);
    if (m_fault == FaultForTesting::kWriteNextExit) {
        HL_LOG(LogLevel::Critical, "WriteNext #{:X}: ending the process, as the test asked", id);
        std::_Exit(kExitForTesting);
    }
    if (m_fault == FaultForTesting::kWriteNextRefused) {
        rc = kInvalidArgument;
        return;
    }
    if (!readable) {
        fault = "the node list lies outside the request";
        rc = kInvalidArgument;
    } else if (write->items.size() + items.size() > write->ncount) {
        fault = "more nodes than announced";
        rc = kMoreThan;
    } else if (!m_exchanges.Charge(*exchange, ExchangeTable::Bytes(items))) {
        fault = "more bytes than the connection may hold";
        rc = kInsufficientResources;
    } else if (last != 0 && write->items.size() + items.size() < write->ncount) {
        fault = "the last chunk came before all nodes";
        rc = kLessThan;
    } else if (last == 0 && write->items.size() + items.size() == write->ncount) {
        fault = "all nodes came without the last flag";
        rc = kInvalidArgument;
    }
    if (fault != nullptr) {
        HL_LOG(LogLevel::Warning, "WriteNext #{:X} '{}': {}: the exchange is closed, nothing written", id,
               write->path, fault);
        CloseExchange(connection, id);
        return;
    }
    std::move(items.begin(), items.end(), std::back_inserter(write->items));
    if (last == 0) {
        rc = kOk;
        return;
    }
    const ExchangeTable::Write whole = std::move(*write);
    CloseExchange(connection, id);
    rc = Commit(whole.path, whole.mode, whole.items);
}

void SettingsService::Cancel(std::uint64_t id, std::int32_t& rc) {
    HL_LOG(LogLevel::Debug, "request Cancel");
    if (CloseExchange(m_held->CurrentConnection(), id)) {
        HL_LOG(LogLevel::Info, "exchange #{:X} cancelled", id);
        rc = kOk;
    } else {
        HL_LOG(LogLevel::Warning, "Cancel of #{:X}, which is no open exchange of this connection", id);
        rc = kNotFound;
    }
}

std::int32_t SettingsService::Commit(const uvc::Path& path, std::uint8_t mode,
                                     const ExchangeTable::RawItems& items) {
    uvc::Path root;
    Setting tree;
    const auto result = settings_manager::Deserialize(items, root, tree);
    if (result.first < 0) {
        HL_LOG(LogLevel::Warning, "Write '{}': the nodes don't make a tree: {} ({}): nothing written", path,
               result.second, CodeText(result.first));
        return result.first;
    }
    if (!(root == path)) {
        HL_LOG(LogLevel::Warning,
               "Write '{}': the nodes begin at '{}', not at the written path: nothing written", path, root);
        return kInvalidArgument;
    }
    if (const auto misnested = FirstMisnested(items)) {
        HL_LOG(LogLevel::Warning,
               "Write '{}': the node '{}' does not lie below the node '{}' before it: nothing written", path,
               items[*misnested].path, items[*misnested - 1].path);
        return kInvalidArgument;
    }
    TreeChange change;
    const std::int32_t planned = m_tree.PlanWrite(path, mode, std::move(tree), change);
    if (planned < 0) {
        HL_LOG(LogLevel::Info, "Write '{}' (mode {:#x}): {}", path, mode, CodeText(planned));
        return planned;
    }
    return Change(path, std::move(change), SubscriptionTable::kUpdWritten);
}

std::int32_t SettingsService::Change(const uvc::Path& path, TreeChange change, std::uint8_t upd) {
    const std::int32_t committed = m_store->Commit(change);
    if (committed < 0) {
        HL_LOG(LogLevel::Error, "the change at '{}' can't be stored: {}: nothing changed", path,
               CodeText(committed));
        return committed;
    }
    KeepReadsThrough(change.at);
    m_tree.Apply(std::move(change));
    const std::string text = settings_manager::PathToStr(path);
    for (const std::uint64_t cid : m_subscriptions.Notify(path, text, upd)) {
        m_held->Wake(cid);
    }
    HL_LOG(LogLevel::Debug, "'{}' changed (upd {})", path, upd);
    return kOk;
}

void SettingsService::GetAttrib(const Bytes& pathBytes, std::uint8_t& attr, std::int32_t& rc) {
    uvc::Path path;
    if (!ParsePath(pathBytes, "GetAttrib", path)) {
        rc = kInvalidArgument;
        return;
    }
    const Setting* node = m_tree.Find(path);
    if (node == nullptr) {
        rc = kNotFound;
        return;
    }
    attr = node->attributes.flag ? 1 : 0;
    rc = kOk;
}

void SettingsService::SetAttrib(const Bytes& pathBytes, std::uint8_t attr, std::int32_t& rc) {
    uvc::Path path;
    if (!ParsePath(pathBytes, "SetAttrib", path)) {
        rc = kInvalidArgument;
        return;
    }
    if (attr > 1) {
        HL_LOG(LogLevel::Warning, "SetAttrib '{}': attribute byte {:#x} refused (0 or 1)", path, attr);
        rc = kInvalidArgument;
        return;
    }
    TreeChange change;
    rc = m_tree.PlanSetFlag(path, attr != 0, change);
    if (rc >= 0) {
        rc = Change(path, std::move(change), SubscriptionTable::kUpdAttribute);
    }
}

void SettingsService::Delete(const Bytes& pathBytes, std::int32_t& rc) {
    HL_LOG(LogLevel::Debug, "request Delete");
    uvc::Path path;
    if (!ParsePath(pathBytes, "Delete", path)) {
        rc = kInvalidArgument;
        return;
    }
    TreeChange change;
    rc = m_tree.PlanDelete(path, change);
    if (rc >= 0) {
        rc = Change(path, std::move(change), SubscriptionTable::kUpdDeleted);
    }
}

void SettingsService::RegCallback(const Bytes& name, std::uint64_t& cid, std::int32_t& rc) {
    const std::uint64_t connection = m_held->CurrentConnection();
    cid = m_subscriptions.Register(connection);
    if (cid == 0) {
        HL_LOG(LogLevel::Warning, "RegCallback: connection {} has {} callbacks already: refused", connection,
               SubscriptionTable::kMaxCallbacksPerConnection);
        rc = kInsufficientResources;
        return;
    }
    HL_LOG(LogLevel::Info, "callback @{:X} registered on connection {} ({} bytes of name)", cid, connection,
           name.size());
    rc = kOk;
}

void SettingsService::UnregCallback(std::uint64_t cid, std::int32_t& rc) {
    const auto count = m_subscriptions.Unregister(cid);
    m_held->Forget(cid);
    if (!count) {
        HL_LOG(LogLevel::Warning, "UnregCallback of @{:X}, which is not registered", cid);
        rc = kNotFound;
        return;
    }
    HL_LOG(LogLevel::Info, "callback @{:X} unregistered with {} subscriptions", cid, *count);
    rc = kOk;
}

void SettingsService::Subscribe(std::uint64_t cid, const Bytes& pathBytes, std::uint64_t& sid,
                                std::int32_t& rc) {
    uvc::Path path;
    if (!ParsePath(pathBytes, "Subscribe", path)) {
        rc = kInvalidArgument;
        return;
    }
    rc = m_subscriptions.Subscribe(cid, path, sid);
    if (rc < 0) {
        HL_LOG(LogLevel::Warning, "Subscribe '{}' of @{:X}: {}", path, cid, CodeText(rc));
        return;
    }
    HL_LOG(LogLevel::Info, "@{:X} subscribed to '{}' as ${}", cid, path, sid);
}

void SettingsService::Unsubscribe(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) {
    rc = m_subscriptions.Unsubscribe(cid, sid);
    if (rc < 0) {
        HL_LOG(LogLevel::Warning, "Unsubscribe ${} of @{:X}: {}", sid, cid, CodeText(rc));
    }
}

void SettingsService::Wait(std::uint64_t cid, std::uint64_t& sid, nk_ptr_t& path, std::uint8_t& upd,
                           std::int32_t& rc, nk_arena& responseArena) {
    if (!m_subscriptions.Known(cid)) {
        HL_LOG(LogLevel::Info, "Wait of @{:X}, which is not registered", cid);
        rc = kNotFound;
        return;
    }
    auto update = m_subscriptions.Take(cid, m_held->CurrentConnection());
    if (!update) {
        m_held->HoldCurrent(cid);
        return;
    }
    arena::conv::Status status;
    path = arena::conv::Put(
        responseArena, {reinterpret_cast<const unsigned char*>(update->path.data()), update->path.size()},
        NkISMCbk::kWaitArena, status);
    sid = update->sid;
    upd = update->upd;
    rc = status ? kOk : kOutOfSpace;
}

void SettingsService::Done(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) {
    rc = m_subscriptions.Confirm(cid, sid) ? kOk : kNotFound;
    HL_LOG(LogLevel::Debug, "request Done {}", sid);
    HL_LOG(LogLevel::Debug, "Done ${} of @{:X}", sid, cid);
}

void SettingsService::Tick(std::chrono::steady_clock::time_point now) {
    const std::size_t open = m_exchanges.OpenCount();
    m_exchanges.Expire(now);
    m_trimWanted = m_trimWanted || m_exchanges.OpenCount() != open;
    if (m_trimWanted) {
        // What ended exchanges held goes back to the system, not only to the allocator.
        ::malloc_trim(0);
        m_trimWanted = false;
    }
}

void SettingsService::ConnectionClosed(std::uint64_t connection) {
    const std::size_t closed = m_exchanges.CloseAll(connection);
    if (closed != 0) {
        HL_LOG(LogLevel::Info, "connection {} closed: its {} open exchanges are closed", connection, closed);
        m_trimWanted = true;
    }
    for (const std::uint64_t cid : m_subscriptions.Closed(connection)) {
        DropCallback(cid, "has gone (its connection closed)");
    }
}

bool SettingsService::CloseExchange(std::uint64_t connection, std::uint64_t id) {
    const ExchangeTable::Exchange* exchange = m_exchanges.Find(connection, id);
    if (exchange == nullptr) {
        return false;
    }
    m_trimWanted = m_trimWanted || exchange->bytes >= kTrimBytes;
    return m_exchanges.Close(connection, id);
}

void SettingsService::KeepReadsThrough(const uvc::Path& at) {
    // A read whose cursor points into what the change replaces, removes or moves takes the rest of
    // its nodes now: the subtree of `at` holds or contains it, or `at` is an element of a list that
    // holds it (the list's elements may move).
    uvc::Path parent = at;
    bool inList = false;
    if (!at.Empty()) {
        parent.RemoveLast();
        const Setting* above = m_tree.Find(parent);
        inList = above != nullptr && std::holds_alternative<settings_manager::SettingList>(*above);
    }
    std::vector<std::pair<std::uint64_t, std::uint64_t>> over;
    m_exchanges.ForEachRead([&](std::uint64_t id, ExchangeTable::Exchange& exchange) {
        ExchangeTable::Read& read = *exchange.read;
        if (!read.cursor) {
            return;
        }
        const uvc::Path& reading = read.cursor->Path();
        if (!reading.StartsWith(at) && !at.StartsWith(reading) && !(inList && reading.StartsWith(parent))) {
            return;
        }
        ExchangeTable::RawItems rest;
        std::size_t bytes = 0;
        while (!read.cursor->Done() && bytes <= ExchangeTable::kMaxBytesPerConnection) {
            rest.push_back(read.cursor->Next());
            bytes += ExchangeTable::Bytes(rest.back());
        }
        read.cursor.reset();
        if (!m_exchanges.Charge(exchange, bytes)) {
            over.emplace_back(exchange.connection, id);
            return;
        }
        std::move(rest.begin(), rest.end(), std::back_inserter(read.pending));
    });
    for (const auto& [connection, id] : over) {
        HL_LOG(LogLevel::Warning,
               "read exchange #{:X} of connection {}: the tree changed under it and its rest is over the "
               "bytes it may hold: closed",
               id, connection);
        CloseExchange(connection, id);
    }
}

void SettingsService::DropCallback(std::uint64_t cid, const char* why) {
    const auto count = m_subscriptions.Unregister(cid);
    m_held->Forget(cid);
    if (count) {
        HL_LOG(LogLevel::Warning, "callback @{:X} {}: dropped with its {} subscriptions", cid, why, *count);
    }
}

}  // namespace hl_settingsd
