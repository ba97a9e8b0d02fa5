// Tests that every method of every interface the programs serve or call puts its request together with
// its method id, size and fields at their offsets, byte for byte, and reads each answer field from its
// offset: the generated proxies over a fake platform call. The stubs are made from the same
// descriptions; the cross-process tests and the fuzz corpora take them through real requests.
#include <ipc_runtime/i_connector.h>
#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <interfaces/hl/app_manager/application_commands.h>
#include <interfaces/hl/app_manager/application_controller.h>
#include <interfaces/hl/app_manager/application_watchdog.h>
#include <interfaces/hl/settings_manager/nk_ism.h>
#include <interfaces/hl/settings_manager/nk_ism_cbk.h>
#include <interfaces/hl/settings_manager/nk_ism_reg.h>
#include <ipc_runtime/resource_provider.h>

#include <platform/nk_result.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// Every allocation of this test program is counted, for the idle path that must make none.
namespace {
std::atomic<std::size_t> g_allocations{0};
}  // namespace

void* operator new(std::size_t size) {
    ++g_allocations;
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

namespace idl = hosipc::idl::stdcpp_v1::hl;
using Bytes = std::vector<unsigned char>;
using u8 = std::uint8_t;
using u64 = std::uint64_t;
using i32 = std::int32_t;

constexpr std::uint16_t kRiid = 9;

Bytes Text(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

// A message as it lies on the wire: the header (riid, mid, size word), then zeros but for the fields put.
struct Message {
    Message(std::uint16_t mid, std::uint32_t size, std::uint32_t sizeWord = 0) : bytes(size, 0) {
        Put(0, kRiid).Put(2, mid).Put(4, sizeWord == 0 ? size : sizeWord);
    }
    template <typename V>
    Message& Put(std::size_t offset, V value) {
        std::memcpy(bytes.data() + offset, &value, sizeof value);
        return *this;
    }
    // An arena reference: offset and size.
    Message& Ref(std::size_t offset, std::uint32_t start, std::uint32_t size) {
        return Put(offset, start).Put(offset + 4, size);
    }
    Bytes bytes;
};

// Opens no channel: the endpoint gets the riid and no real handle.
class NoChannel final : public hosipc::api_v1::IConnector {
public:
    std::int32_t Connect(hosipc_detail::api_v1::EndpointHandle& endpoint,
                         const hosipc_detail::api_v1::SharedResourceProvider&) const override {
        endpoint.Adopt(hosipc_detail::api_v1::EndpointHandle::kInvalidHandle, kRiid);
        return 0;
    }
};

// A proxy of T whose platform call keeps what is sent and answers with the fields of `answer` behind
// the header the proxy prepared, and the bytes of `answerArena` in the response arena. One at a time.
template <typename T>
class Wired {
public:
    Wired()
        : proxy(hosipc_detail::idl_traits::MakeProxyImpl(
              NoChannel{},
              std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
                  hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{}),
              static_cast<hosipc_detail::idl_traits::ProxyBait<T>*>(nullptr))) {
        static const NkHosTransportOps ops{&Wired::Call, nullptr, nullptr};
        static_cast<hosipc_detail::idl_traits::Proxy<T>&>(*proxy).TransportForTesting().ops = &ops;
        s_current = this;
    }
    ~Wired() { s_current = nullptr; }

    // The request went out as `message`, with `arena` in a request arena of `capacity` bytes.
    void ExpectSent(const Message& message, const Bytes& arena = {}, std::size_t capacity = 0) {
        EXPECT_EQ(request, message.bytes);
        EXPECT_EQ(requestArena, arena);
        EXPECT_EQ(requestArenaCapacity, capacity);
    }

    std::unique_ptr<T, hosipc_detail::api_v1::IpcDeleter> proxy;
    Message answer{0, 24};
    Bytes answerArena;
    int result = 0;  // the call's own result; non-zero answers nothing
    Bytes request;
    Bytes requestArena;
    std::size_t requestArenaCapacity = 0;
    std::uint32_t responseWord = 0;  // as the proxy prepared it

private:
    static int Call(NkHosTransport*, const nk_message* message, const nk_arena* arena, nk_message* response,
                    nk_arena* responseArena) {
        Wired& self = *s_current;
        const auto* bytes = reinterpret_cast<const unsigned char*>(message);
        self.request.assign(bytes, bytes + nk_message_size(message));
        self.requestArena.assign(arena->start, arena->start + nk_arena_used(arena));
        self.requestArenaCapacity = nk_arena_capacity(arena);
        self.responseWord = response->sizeFlags;
        if (self.result != 0) {
            return self.result;
        }
        std::memcpy(reinterpret_cast<unsigned char*>(response) + 24, self.answer.bytes.data() + 24,
                    self.answer.bytes.size() - 24);
        if (!self.answerArena.empty()) {
            std::memcpy(responseArena->start, self.answerArena.data(), self.answerArena.size());
            responseArena->cursor = responseArena->start + self.answerArena.size();
        }
        return 0;
    }

    static inline Wired* s_current = nullptr;
};

TEST(WireLayout, NkISMChunkedExchangesCarryTheirFieldsAndTheCallersArenas) {
    Wired<idl::settings_manager::NkISM> wire;
    using idl::settings_manager::NkISM;
    Bytes arenaBytes(NkISM::kWriteArena, 0);
    nk_arena arena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + NkISM::kNodesArena};
    u64 ncount = 0, id = 0;
    nk_ptr_t nodes{};
    i32 rc = 0;
    u8 last = 0;

    wire.answer =
        Message(0, 56).Put<u64>(24, 17).Ref(32, 4, 24).Put<u64>(40, 0x1122334455667788).Put<i32>(48, -2);
    wire.answerArena = Text("nodeRECORD");
    wire.proxy->Read(Text("locale/"), 0x16, ncount, nodes, id, rc, arena);
    wire.ExpectSent(Message(0, 40).Ref(24, 0, 7).Put<u8>(32, 0x16), Text("locale/"), NkISM::kPathArena);
    EXPECT_EQ(ncount, 17u);
    EXPECT_EQ(nodes.offset, 4u);
    EXPECT_EQ(nodes.size, 24u);
    EXPECT_EQ(id, 0x1122334455667788u);
    EXPECT_EQ(rc, -2);
    EXPECT_EQ(Bytes(arenaBytes.begin(), arenaBytes.begin() + nk_arena_used(&arena)), Text("nodeRECORD"));

    wire.answer = Message(2, 40).Ref(24, 0, 48).Put<u8>(32, 1).Put<i32>(36, 3);
    wire.answerArena.clear();
    arena.cursor = arena.start;
    wire.proxy->ReadNext(0xABCDEF, nodes, last, rc, arena);
    wire.ExpectSent(Message(2, 32).Put<u64>(24, 0xABCDEF));
    EXPECT_EQ(nodes.size, 48u);
    EXPECT_EQ(last, 1);
    EXPECT_EQ(rc, 3);

    // Write and WriteNext send the caller's own arena, as far as its cursor.
    arena = {arenaBytes.data(), arenaBytes.data() + 100, arenaBytes.data() + arenaBytes.size()};
    wire.answer = Message(1, 40).Put<u64>(24, 77).Put<i32>(32, -5);
    wire.proxy->Write(arena, nk_ptr_t{0, 7}, 6, 9, nk_ptr_t{76, 24}, id, rc);
    wire.ExpectSent(Message(1, 56).Ref(24, 0, 7).Put<u8>(32, 6).Put<u64>(40, 9).Ref(48, 76, 24),
                    Bytes(arenaBytes.begin(), arenaBytes.begin() + 100), NkISM::kWriteArena);
    EXPECT_EQ(id, 77u);
    EXPECT_EQ(rc, -5);

    arena.cursor = arena.start + 40;
    wire.answer = Message(3, 32).Put<i32>(24, -6);
    wire.proxy->WriteNext(arena, 77, nk_ptr_t{16, 24}, 1, rc);
    wire.ExpectSent(Message(3, 48).Put<u64>(24, 77).Ref(32, 16, 24).Put<u8>(40, 1),
                    Bytes(arenaBytes.begin(), arenaBytes.begin() + 40), NkISM::kWriteArena);
    EXPECT_EQ(rc, -6);

    // More bytes than the method's arena allows are refused before anything is sent.
    arena.cursor = arena.start + NkISM::kNodesArena + 1;
    wire.request.clear();
    EXPECT_THROW(wire.proxy->WriteNext(arena, 77, nk_ptr_t{0, 0}, 1, rc), std::runtime_error);
    EXPECT_TRUE(wire.request.empty());
}

TEST(WireLayout, NkISMSingleRequestsCarryTheirIdOrPathAndAnswerAtTheirOffsets) {
    Wired<idl::settings_manager::NkISM> wire;
    i32 rc = 0;
    u8 attr = 0;
    wire.answer = Message(4, 32).Put<i32>(24, -1);
    wire.proxy->Cancel(5, rc);
    wire.ExpectSent(Message(4, 32).Put<u64>(24, 5));
    EXPECT_EQ(rc, -1);

    wire.answer = Message(5, 32).Put<u8>(24, 1).Put<i32>(28, 2);
    wire.proxy->GetAttrib(Text("a/"), attr, rc);
    wire.ExpectSent(Message(5, 32).Ref(24, 0, 2), Text("a/"), 512);
    EXPECT_EQ(attr, 1);
    EXPECT_EQ(rc, 2);

    wire.answer = Message(6, 32).Put<i32>(24, -3);
    wire.proxy->SetAttrib(Text("b/"), 1, rc);
    wire.ExpectSent(Message(6, 40).Ref(24, 0, 2).Put<u8>(32, 1), Text("b/"), 512);
    EXPECT_EQ(rc, -3);

    wire.answer = Message(7, 32).Put<i32>(24, -4);
    wire.proxy->Delete(Text("c/d/"), rc);
    wire.ExpectSent(Message(7, 32).Ref(24, 0, 4), Text("c/d/"), 512);
    EXPECT_EQ(rc, -4);
}

TEST(WireLayout, NkISMRegAndNkISMCbkCarryTheCallbackAndSubscriptionIds) {
    Wired<idl::settings_manager::NkISMReg> reg;
    u64 cid = 0, sid = 0;
    i32 rc = -1;
    reg.answer = Message(0, 40).Put<u64>(24, 0xC1D).Put<i32>(32, 0);
    reg.proxy->RegCallback(Text("//cm:"), cid, rc);
    reg.ExpectSent(Message(0, 32).Ref(24, 0, 5), Text("//cm:"), 64);
    EXPECT_EQ(cid, 0xC1Du);
    EXPECT_EQ(rc, 0);
    EXPECT_THROW(reg.proxy->RegCallback(Bytes(65, 'n'), cid, rc), std::length_error);

    reg.answer = Message(2, 40).Put<u64>(24, 42).Put<i32>(32, 1);
    reg.proxy->Subscribe(cid, Text("locale/language/"), sid, rc);
    reg.ExpectSent(Message(2, 40).Put<u64>(24, 0xC1D).Ref(32, 0, 16), Text("locale/language/"), 512);
    EXPECT_EQ(sid, 42u);
    EXPECT_EQ(rc, 1);
    reg.answer = Message(3, 32).Put<i32>(24, static_cast<i32>(0x8000004C));
    reg.proxy->Unsubscribe(cid, sid, rc);
    reg.ExpectSent(Message(3, 40).Put<u64>(24, 0xC1D).Put<u64>(32, 42));
    EXPECT_EQ(rc, static_cast<i32>(0x8000004C));
    reg.answer = Message(1, 32).Put<i32>(24, 2);
    reg.proxy->UnregCallback(cid, rc);
    reg.ExpectSent(Message(1, 32).Put<u64>(24, 0xC1D));
    EXPECT_EQ(rc, 2);
}

TEST(WireLayout, NkISMCbkWaitReadsThePathArenaAndATimeoutIsTheTransportResult) {
    Wired<idl::settings_manager::NkISMCbk> cbk;
    unsigned char arenaBytes[idl::settings_manager::NkISMCbk::kWaitArena] = {};
    nk_arena arena{arenaBytes, arenaBytes, arenaBytes + sizeof arenaBytes};
    u64 sid = 0;
    nk_ptr_t path{};
    u8 upd = 0;
    i32 rc = -1;
    cbk.answer = Message(0, 48).Put<u64>(24, 42).Ref(32, 0, 4).Put<u8>(40, 2).Put<i32>(44, 7);
    cbk.answerArena = Text("a/b/");
    cbk.proxy->Wait(0xC1D, sid, path, upd, rc, arena);
    cbk.ExpectSent(Message(0, 32).Put<u64>(24, 0xC1D));
    EXPECT_EQ(sid, 42u);
    EXPECT_EQ(path.size, 4u);
    EXPECT_EQ(upd, 2);
    EXPECT_EQ(rc, 7);
    EXPECT_EQ(std::memcmp(arenaBytes, "a/b/", 4), 0);
    cbk.answer = Message(1, 32).Put<i32>(24, -9);
    cbk.answerArena.clear();
    cbk.proxy->Done(0xC1D, 42, rc);
    cbk.ExpectSent(Message(1, 40).Put<u64>(24, 0xC1D).Put<u64>(32, 42));
    EXPECT_EQ(rc, -9);

    cbk.result = NK_TRANSPORT_TIMEOUT;
    try {
        cbk.proxy->Wait(0xC1D, sid, path, upd, rc, arena);
        ADD_FAILURE() << "Wait returned";
    } catch (const hosipc_detail::idl_traits::TransportError& error) {
        EXPECT_EQ(error.Result(), NK_TRANSPORT_TIMEOUT);
        EXPECT_STREQ(error.what(), "hl_settings_manager_NkISMCbk_Wait transport error");
    }
    // The callback thread's way: the same time limit is a result, and its idle turn allocates nothing.
    auto& generated = static_cast<hosipc_detail::idl_traits::Proxy<idl::settings_manager::NkISMCbk>&>(*cbk.proxy);
    const std::size_t before = g_allocations.load();
    EXPECT_EQ(generated.WaitOrTransportResult(0xC1D, sid, path, upd, rc, arena), NK_TRANSPORT_TIMEOUT);
    EXPECT_EQ(g_allocations.load(), before);
    cbk.result = 0;
    cbk.answer = Message(0, 48).Put<u64>(24, 43);
    EXPECT_EQ(generated.WaitOrTransportResult(0xC1D, sid, path, upd, rc, arena), 0);
    EXPECT_EQ(sid, 43u);
}

TEST(WireLayout, ManagerInterfacesSendTheNameInTheArenaAndReadRcAtOffset24) {
    Wired<idl::app_manager::ApplicationWatchdog> watchdog;
    int rc = 0;
    watchdog.answer = Message(0, 32).Put<i32>(24, -7);
    watchdog.proxy->Ping(Text("Access"), rc);
    watchdog.ExpectSent(Message(0, 32).Ref(24, 0, 6), Text("Access"), 128);
    EXPECT_EQ(watchdog.responseWord, 32u);
    EXPECT_EQ(rc, -7);

    Wired<idl::app_manager::ApplicationController> controller;
    const struct {
        std::uint16_t mid;
        void (idl::app_manager::ApplicationController::*call)(const Bytes&, int&);
    } single[] = {{0, &idl::app_manager::ApplicationController::StartApplication},
                  {1, &idl::app_manager::ApplicationController::ReadyToInitialize},
                  {2, &idl::app_manager::ApplicationController::ReadyToShowUI}};
    for (const auto& method : single) {
        controller.answer = Message(method.mid, 32).Put<i32>(24, -method.mid);
        ((*controller.proxy).*method.call)(Text("app"), rc);
        controller.ExpectSent(Message(method.mid, 32).Ref(24, 0, 3), Text("app"), 128);
        EXPECT_EQ(rc, -method.mid);
    }
    // The three texts lie one behind the other in the one arena.
    controller.answer = Message(3, 32).Put<i32>(24, -3);
    controller.proxy->FinishWithInternalError(Text("app"), Text("Failed"), Text("why"), rc);
    controller.ExpectSent(Message(3, 48).Ref(24, 0, 3).Ref(32, 3, 6).Ref(40, 9, 3), Text("appFailedwhy"),
                          384);
    EXPECT_EQ(rc, -3);
    controller.answer = Message(4, 32).Put<i32>(24, -4);
    controller.proxy->StateChanged(Text("app"), -2, rc);
    controller.ExpectSent(Message(4, 40).Ref(24, 0, 3).Put<std::int64_t>(32, -2), Text("app"), 128);
    EXPECT_EQ(rc, -4);
}

TEST(WireLayout, CommandsReadAHandleDescriptorOrAValueAndTheDecisionIsTheByteAt24) {
    Wired<idl::app_manager::ApplicationCommands> commands;
    unsigned int handle = 0;
    commands.answer = Message(0, 40).Put<std::uint32_t>(24, 0xAB000042);
    commands.proxy->GetUpdateHandle(Text("AccessArbiter"), handle);
    commands.ExpectSent(Message(0, 32).Ref(24, 0, 13), Text("AccessArbiter"), 128);
    EXPECT_EQ(commands.responseWord, 0x00800028u) << "40 bytes with one handle";
    EXPECT_EQ(handle, 0x42u);
    std::int64_t value = 0;
    int rc = 0;
    commands.answer = Message(1, 40).Put<std::int64_t>(24, 0x0102030405060708).Put<i32>(32, 17);
    commands.proxy->GetCommand(Text("stop"), value, rc);
    commands.ExpectSent(Message(1, 32).Ref(24, 0, 4), Text("stop"), 128);
    EXPECT_EQ(value, 0x0102030405060708);
    EXPECT_EQ(rc, 17);

    Wired<idl::access_arbiter::AccessArbiter> arbiter;
    unsigned char decision = 0;
    arbiter.answer = Message(0, 32).Put<u8>(24, 1);
    arbiter.proxy->GetUserDecision(decision);
    arbiter.ExpectSent(Message(0, 24));
    EXPECT_EQ(arbiter.responseWord, 32u);
    EXPECT_EQ(decision, 1);
}

}  // namespace
