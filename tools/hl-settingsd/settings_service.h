#pragma once
// One settings store served as NkISM, NkISMReg and NkISMCbk (the generated stubs call these
// operations through the IPC runtime's ServingHost). The tree lives in a SettingsTree; every change is planned there,
// committed by the tree store (ITreeStore: one transaction per write exchange), applied in memory, and
// then wakes the subscribers it concerns. Chunked exchanges are kept in an ExchangeTable: a write is
// buffered whole and committed at its last chunk, so a cancelled or abandoned exchange changes nothing;
// a read is paged from the live tree. Exchanges and callbacks belong to the connection that made them
// (DeferredReplies::CurrentConnection) and go when it closes (ConnectionClosed).
//
// Every refused request gets a result code and a log line; nothing a client sends ends the process.
//
// Thread: the serving thread only (ServingHost::ServeOne and Tick); no lock. The store and the
// DeferredReplies come in through the constructor; the service owns the store.

#include "exchange_table.h"
#include "i_tree_store.h"
#include "settings_tree.h"
#include "subscription_table.h"

#include <interfaces/hl/settings_manager/nk_ism.h>
#include <interfaces/hl/settings_manager/nk_ism_cbk.h>
#include <interfaces/hl/settings_manager/nk_ism_reg.h>
#include <ipc_runtime/server/deferred_replies.h>

#include <memory>
#include <string>
#include <vector>

namespace hl_settingsd {

class SettingsService final : public hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM,
                              public hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg,
                              public hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk {
public:
    using Bytes = std::vector<unsigned char>;

    // Loads the tree from the store (which may throw std::runtime_error).
    // For the client's tests only: every WriteNext is refused with 0x80000046, or ends the process.
    // A service that answers wrongly, for the client's tests: WriteNext refused or ending the process;
    // a Read that announces no nodes, or one node fewer than it sends; a ReadNext whose node list
    // lies outside its arena.
    enum class FaultForTesting {
        kNone,
        kWriteNextRefused,
        kWriteNextExit,
        kReadCountZero,
        kReadCountShort,
        kReadNextBadList
    };
    void SetFaultForTesting(FaultForTesting fault) { m_fault = fault; }

    SettingsService(std::unique_ptr<ITreeStore> store,
                    std::shared_ptr<hosipc::server::DeferredReplies> held);

    // NkISM
    void Read(const Bytes& path, std::uint8_t readMask, std::uint64_t& ncount, nk_ptr_t& nodes,
              std::uint64_t& id, std::int32_t& rc, nk_arena& arena) override;
    void Write(const nk_arena& arena, nk_ptr_t path, std::uint8_t mode, std::uint64_t ncount, nk_ptr_t nodes,
               std::uint64_t& id, std::int32_t& rc) override;
    void ReadNext(std::uint64_t id, nk_ptr_t& nodes, std::uint8_t& last, std::int32_t& rc,
                  nk_arena& arena) override;
    void WriteNext(const nk_arena& arena, std::uint64_t id, nk_ptr_t nodes, std::uint8_t last,
                   std::int32_t& rc) override;
    void Cancel(std::uint64_t id, std::int32_t& rc) override;
    void GetAttrib(const Bytes& path, std::uint8_t& attr, std::int32_t& rc) override;
    void SetAttrib(const Bytes& path, std::uint8_t attr, std::int32_t& rc) override;
    void Delete(const Bytes& path, std::int32_t& rc) override;

    // NkISMReg
    void RegCallback(const Bytes& name, std::uint64_t& cid, std::int32_t& rc) override;
    void UnregCallback(std::uint64_t cid, std::int32_t& rc) override;
    void Subscribe(std::uint64_t cid, const Bytes& path, std::uint64_t& sid, std::int32_t& rc) override;
    void Unsubscribe(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) override;

    // NkISMCbk
    void Wait(std::uint64_t cid, std::uint64_t& sid, nk_ptr_t& path, std::uint8_t& upd, std::int32_t& rc,
              nk_arena& arena) override;
    void Done(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) override;

    // Closes idle exchanges and gives memory that ended exchanges held back to the system; call it
    // now and then.
    void Tick(std::chrono::steady_clock::time_point now);
    // Closes the exchanges of a connection that has closed, and drops the callbacks that lived on it.
    void ConnectionClosed(std::uint64_t connection);
    // Drops a callback whose client has gone (a held Wait could not be answered).
    void DropCallback(std::uint64_t cid, const char* why);

private:
    std::int32_t Commit(const uvc::Path& path, std::uint8_t mode, const ExchangeTable::RawItems& items);
    std::int32_t Change(const uvc::Path& path, TreeChange change, std::uint8_t upd);
    nk_ptr_t NextChunk(ExchangeTable::Read& read, nk_arena& arena, std::int32_t& rc);
    bool CloseExchange(std::uint64_t connection, std::uint64_t id);
    // Before a change at `at`: the open reads it would pull the tree from under copy their rest.
    void KeepReadsThrough(const uvc::Path& at);

    std::unique_ptr<ITreeStore> m_store;
    std::shared_ptr<hosipc::server::DeferredReplies> m_held;
    SettingsTree m_tree;
    ExchangeTable m_exchanges;
    SubscriptionTable m_subscriptions;
    FaultForTesting m_fault = FaultForTesting::kNone;
    bool m_trimWanted = false;
};

}  // namespace hl_settingsd
