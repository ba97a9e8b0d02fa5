// A small settings service in a process of its own, for the client's cross-process tests: NkISM,
// NkISMReg and NkISMCbk served from their generated stubs over an in-memory store of raw item lists,
// one per written root path.
//
//   hl_settings_manager_test_server <server name> [--read-chunk N] [--fail-writenext] [--die-on-writenext]
//
// Prints "ready", then one line per request ("Write 8", "WriteNext 1 last=1", "Cancel", "Read",
// "ReadNext", "Delete <path>", "Subscribe <path>", "Done <sid>"). Read answers N nodes per response
// (default 8). --fail-writenext answers every WriteNext with rc 0x80000046; --die-on-writenext ends the
// process at the first WriteNext. A Wait with no update pending is held until a write wakes the
// subscribers of its path (upd 1), or until the client's call timeout ends it.
// Exit status: 2 for wrong usage, 1 when the server can't be set up.
#include <interfaces/hl/settings_manager/nk_ism.h>
#include <interfaces/hl/settings_manager/nk_ism_cbk.h>
#include <interfaces/hl/settings_manager/nk_ism_reg.h>
#include <settings_manager/node_arena.h>
#include <ipc_runtime/server/serving_host.h>

#include <platform/platform.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace hosipc::idl::stdcpp_v1::hl::settings_manager;
using hos::ipc::arena::impl::RawItems;

constexpr std::int32_t kInvalidArgument = static_cast<std::int32_t>(0x80000046u);
constexpr std::int32_t kNotFound = static_cast<std::int32_t>(0x8000004Au);

struct Options {
    std::size_t readChunk = 8;
    bool failWriteNext = false;
    bool dieOnWriteNext = false;
};

void Say(const std::string& line) {
    std::puts(line.c_str());
    std::fflush(stdout);
}

struct Event {
    std::uint64_t sid;
    std::string path;
};

class Store final : public NkISM, public NkISMReg, public NkISMCbk {
public:
    using Bytes = std::vector<unsigned char>;

    Store(Options options, std::shared_ptr<hosipc::server::DeferredReplies> held)
        : m_options(options), m_held(std::move(held)) {}

    void Read(const Bytes& path, std::uint8_t, std::uint64_t& ncount, nk_ptr_t& nodes, std::uint64_t& id,
              std::int32_t& rc, nk_arena& arena) override {
        Say("Read");
        const auto found = m_trees.find(std::string(path.begin(), path.end()));
        if (found == m_trees.end()) {
            rc = kNotFound;
            return;
        }
        ncount = found->second.size();
        id = ++m_lastId;
        m_reads[id] = PendingRead{found->second, 0};
        bool last = false;
        nodes = NextChunk(id, arena, last);
        rc = 0;
    }
    void ReadNext(std::uint64_t id, nk_ptr_t& nodes, std::uint8_t& last, std::int32_t& rc,
                  nk_arena& arena) override {
        Say("ReadNext");
        if (m_reads.count(id) == 0) {
            rc = kNotFound;
            return;
        }
        bool end = false;
        nodes = NextChunk(id, arena, end);
        last = end ? 1 : 0;
        rc = 0;
    }
    void Write(const nk_arena& arena, nk_ptr_t path, std::uint8_t, std::uint64_t ncount, nk_ptr_t nodes,
               std::uint64_t& id, std::int32_t& rc) override {
        hos::ipc::arena::conv::Status status;
        const auto text = hos::ipc::arena::conv::Get(arena, path, status);
        RawItems items;
        if (!status || !hos::ipc::arena::impl::Read(arena, nodes, items)) {
            Say("Write bad");
            rc = kInvalidArgument;
            return;
        }
        Say("Write " + std::to_string(items.size()));
        id = ++m_lastId;
        m_writes[id] = {std::string(text.begin(), text.end()), std::move(items), ncount};
        rc = Commit(id);
    }
    void WriteNext(const nk_arena& arena, std::uint64_t id, nk_ptr_t nodes, std::uint8_t last,
                   std::int32_t& rc) override {
        if (m_options.dieOnWriteNext) {
            std::_Exit(3);
        }
        const auto found = m_writes.find(id);
        RawItems items;
        if (found == m_writes.end() || !hos::ipc::arena::impl::Read(arena, nodes, items)) {
            Say("WriteNext bad");
            rc = kInvalidArgument;
            return;
        }
        Say("WriteNext " + std::to_string(items.size()) + " last=" + std::to_string(last));
        if (m_options.failWriteNext) {
            rc = kInvalidArgument;
            return;
        }
        found->second.items.insert(found->second.items.end(), items.begin(), items.end());
        rc = Commit(id);
    }
    void Cancel(std::uint64_t id, std::int32_t& rc) override {
        Say("Cancel");
        rc = m_writes.erase(id) + m_reads.erase(id) > 0 ? 0 : kNotFound;
    }
    void GetAttrib(const Bytes& path, std::uint8_t& attr, std::int32_t& rc) override {
        attr = 0;
        rc = m_trees.count(std::string(path.begin(), path.end())) ? 0 : kNotFound;
    }
    void SetAttrib(const Bytes&, std::uint8_t, std::int32_t& rc) override { rc = 0; }
    void Delete(const Bytes& path, std::int32_t& rc) override {
        const std::string text(path.begin(), path.end());
        Say("Delete " + text);
        rc = m_trees.erase(text) > 0 ? 0 : kNotFound;
    }

    void RegCallback(const Bytes&, std::uint64_t& cid, std::int32_t& rc) override {
        cid = ++m_lastId;
        rc = 0;
    }
    void UnregCallback(std::uint64_t, std::int32_t& rc) override { rc = 0; }
    void Subscribe(std::uint64_t cid, const Bytes& path, std::uint64_t& sid, std::int32_t& rc) override {
        const std::string text(path.begin(), path.end());
        Say("Subscribe " + text);
        sid = ++m_lastId;
        m_subscriptions[sid] = {cid, text};
        rc = 0;
    }
    void Unsubscribe(std::uint64_t, std::uint64_t sid, std::int32_t& rc) override {
        rc = m_subscriptions.erase(sid) > 0 ? 0 : kNotFound;
    }
    void Wait(std::uint64_t cid, std::uint64_t& sid, nk_ptr_t& path, std::uint8_t& upd, std::int32_t& rc,
              nk_arena& arena) override {
        if (m_events.empty()) {
            m_held->HoldCurrent(cid);  // answered when a write brings an update
            return;
        }
        const Event event = m_events.front();
        m_events.pop_front();
        hos::ipc::arena::conv::Status status;
        path = hos::ipc::arena::conv::Put(
            arena, {reinterpret_cast<const unsigned char*>(event.path.data()), event.path.size()}, 512,
            status);
        sid = event.sid;
        upd = 1;
        rc = 0;
    }
    void Done(std::uint64_t, std::uint64_t sid, std::int32_t& rc) override {
        Say("Done " + std::to_string(sid));
        rc = 0;
    }

private:
    struct PendingWrite {
        std::string path;
        RawItems items;
        std::uint64_t ncount = 0;
    };
    struct PendingRead {
        RawItems items;
        std::size_t next = 0;
    };

    nk_ptr_t NextChunk(std::uint64_t id, nk_arena& arena, bool& last) {
        PendingRead& read = m_reads[id];
        const std::size_t count = std::min(m_options.readChunk, read.items.size() - read.next);
        auto first = read.items.cbegin() + static_cast<std::ptrdiff_t>(read.next);
        const nk_ptr_t nodes =
            hos::ipc::arena::impl::Write(arena, first, first + static_cast<std::ptrdiff_t>(count));
        read.next += count;
        last = read.next == read.items.size();
        if (last) {
            m_reads.erase(id);
        }
        return nodes;
    }

    std::int32_t Commit(std::uint64_t id) {
        PendingWrite& write = m_writes[id];
        if (write.items.size() < write.ncount) {
            return 0;
        }
        if (write.items.size() > write.ncount) {
            m_writes.erase(id);
            return kInvalidArgument;
        }
        for (const auto& [sid, subscription] : m_subscriptions) {
            if (write.path.compare(0, subscription.path.size(), subscription.path) == 0) {
                m_events.push_back({sid, write.path});
                m_held->Wake(subscription.cid);
            }
        }
        m_trees[write.path] = std::move(write.items);
        m_writes.erase(id);
        return 0;
    }

    Options m_options;
    std::shared_ptr<hosipc::server::DeferredReplies> m_held;
    std::uint64_t m_lastId = 0;
    std::map<std::string, RawItems> m_trees;
    std::map<std::uint64_t, PendingWrite> m_writes;
    std::map<std::uint64_t, PendingRead> m_reads;
    struct Subscription {
        std::uint64_t cid = 0;
        std::string path;
    };
    std::map<std::uint64_t, Subscription> m_subscriptions;
    std::deque<Event> m_events;
};

int Serve(const char* serverName, Options options) {
    auto held = std::make_shared<hosipc::server::DeferredReplies>();
    Store store(options, held);
    std::unique_ptr<hosipc::server::ServingHost> host;
    try {
        hosipc::server::ComponentTree tree("hl.settings_manager.TestSmgr");
        tree.Serve<NkISM>(1, "NkISM", "NkISM", "hl.settings_manager.NkISM", &store)
            .Serve<NkISMReg>(2, "NkISMReg", "NkISMReg", "hl.settings_manager.NkISMReg", &store)
            .Serve<NkISMCbk>(3, "NkISMCbk", "NkISMCbk", "hl.settings_manager.NkISMCbk", &store);
        hosipc::server::ServerOptions serverOptions;
        serverOptions.messageRoom = 256;
        serverOptions.requestArenaRoom = NkISM::kWriteArena;
        serverOptions.responseArenaRoom = NkISM::kNodesArena;
        serverOptions.maxHoldMs = 1500;
        host = std::make_unique<hosipc::server::ServingHost>(std::move(tree), serverName, serverOptions, held);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "settings server: can't set up %s: %s\n", serverName, e.what());
        return 1;
    }
    Say("ready");
    for (;;) {
        host->ServeOne(NK_TIMEOUT_INFINITE);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr,
                     "usage: %s <server name> [--read-chunk N] [--fail-writenext] [--die-on-writenext]\n",
                     argv[0]);
        return 2;
    }
    Options options;
    for (int i = 2; i < argc; ++i) {
        if (std::strcmp(argv[i], "--read-chunk") == 0 && i + 1 < argc) {
            options.readChunk = std::strtoul(argv[++i], nullptr, 10);
        } else if (std::strcmp(argv[i], "--fail-writenext") == 0) {
            options.failWriteNext = true;
        } else if (std::strcmp(argv[i], "--die-on-writenext") == 0) {
            options.dieOnWriteNext = true;
        } else {
            return 2;
        }
    }
    return Serve(argv[1], options);
}
