// The settings interfaces NkISM, NkISMReg and NkISMCbk: each proxy call goes through a loopback
// transport into the stub made from the same description, as a settings service would receive it,
// with the request's wire bytes and both arenas checked on the way.
#include <ipc_runtime/idl/hl/settings_manager/nk_ism.h>
#include <ipc_runtime/idl/hl/settings_manager/nk_ism_cbk.h>
#include <ipc_runtime/idl/hl/settings_manager/nk_ism_reg.h>
#include <ipc_runtime/resource_provider.h>

#include "support/fake_connector.h"

#include <platform/nk_result.h>

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace hosipc::idl::stdcpp_v1::hl::settings_manager;
using hosipc_detail::idl_traits::ProxyBait;
using ipc_runtime_test::FakeConnector;
using Bytes = std::vector<unsigned char>;

constexpr std::uint16_t kRiid = 9;

hosipc_detail::api_v1::SharedResourceProvider MakeResources() {
    return std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{});
}

template <typename T>
auto MakeProxy() {
    return hosipc_detail::idl_traits::MakeProxyImpl(FakeConnector(0, kRiid), MakeResources(),
                                                    static_cast<ProxyBait<T>*>(nullptr));
}

template <typename T>
NkHosTransport& TransportOf(T& proxy) {
    return static_cast<hosipc_detail::idl_traits::Proxy<T>&>(proxy).TransportForTesting();
}

// Stands in for the platform: hands each call to a stub over server-side copies of the request and
// its arena, and copies the response and its arena back as the transport would. One at a time.
class Loopback {
public:
    Loopback(NkHosTransport& transport, hosipc_detail::api_v1::IDispatcher& stub) : m_stub(stub) {
        static const NkHosTransportOps ops{&Loopback::Call, nullptr, nullptr};
        transport.ops = &ops;
        s_current = this;
    }
    ~Loopback() { s_current = nullptr; }

    Bytes request;       // as sent
    Bytes requestArena;  // as sent, start to cursor
    std::size_t requestArenaCapacity = 0;
    int result = 0;  // what the call returns; non-zero skips the stub

private:
    static int Call(NkHosTransport*, const nk_message* request, const nk_arena* requestArena,
                    nk_message* response, nk_arena* responseArena) {
        Loopback& self = *s_current;
        const auto* bytes = reinterpret_cast<const unsigned char*>(request);
        self.request.assign(bytes, bytes + nk_message_size(request));
        self.requestArena.assign(requestArena->start, requestArena->start + nk_arena_used(requestArena));
        self.requestArenaCapacity = nk_arena_capacity(requestArena);
        if (self.result != 0) {
            return self.result;
        }
        alignas(8) unsigned char serverRequest[256] = {};
        alignas(8) unsigned char serverResponse[256] = {};
        std::memcpy(serverRequest, self.request.data(), self.request.size());
        Bytes inArena(self.requestArenaCapacity, 0xEE);
        std::copy(self.requestArena.begin(), self.requestArena.end(), inArena.begin());
        const nk_arena serverRequestArena{inArena.data(), inArena.data() + self.requestArena.size(),
                                          inArena.data() + inArena.size()};
        Bytes outArena(nk_arena_capacity(responseArena), 0xDD);
        nk_arena serverResponseArena{outArena.data(), outArena.data() + 3, outArena.data() + outArena.size()};
        self.m_stub.DispatchRequest(kRiid, reinterpret_cast<const nk_message*>(serverRequest),
                                    &serverRequestArena, reinterpret_cast<nk_message*>(serverResponse),
                                    &serverResponseArena);
        const auto* answer = reinterpret_cast<const nk_message*>(serverResponse);
        std::memcpy(response, serverResponse, nk_message_failed(answer) ? 24 : nk_message_size(answer));
        const std::size_t sent = nk_arena_used(&serverResponseArena);
        if (sent != 0) {
            std::memcpy(responseArena->start, outArena.data(), sent);
        }
        if (responseArena->start != nullptr) {
            responseArena->cursor = responseArena->start + sent;
        }
        return 0;
    }

    static inline Loopback* s_current = nullptr;
    hosipc_detail::api_v1::IDispatcher& m_stub;
};

template <typename V>
V At(const Bytes& message, std::size_t offset) {
    V value;
    std::memcpy(&value, message.data() + offset, sizeof value);
    return value;
}

Bytes Text(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

// A settings service that answers from fixed values and keeps what it received.
class FakeService final : public NkISM {
public:
    void Read(const Bytes& path, std::uint8_t readMask, std::uint64_t& ncount, nk_ptr_t& nodes,
              std::uint64_t& id, std::int32_t& rc, nk_arena& arena) override {
        received = path;
        mask = readMask;
        ncount = 17;
        id = 0x1122334455667788ULL;
        rc = 0;
        // A list of one zeroed record behind 4 payload bytes.
        std::memcpy(arena.cursor, "node", 4);
        std::memset(arena.cursor + 4, 0, 24);
        nodes = {4, 24};
        arena.cursor += 28;
    }
    void Write(const nk_arena& arena, nk_ptr_t path, std::uint8_t mode, std::uint64_t ncount, nk_ptr_t nodes,
               std::uint64_t& id, std::int32_t& rc) override {
        received.assign(arena.start, arena.cursor);
        writePath = path;
        writeNodes = nodes;
        this->mode = mode;
        count = ncount;
        id = 77;
        rc = -5;
    }
    void ReadNext(std::uint64_t id, nk_ptr_t& nodes, std::uint8_t& last, std::int32_t& rc,
                  nk_arena&) override {
        count = id;
        nodes = {0, 0};
        last = 1;
        rc = 3;
    }
    void WriteNext(const nk_arena& arena, std::uint64_t id, nk_ptr_t nodes, std::uint8_t last,
                   std::int32_t& rc) override {
        received.assign(arena.start, arena.cursor);
        count = id;
        writeNodes = nodes;
        mode = last;
        rc = 0;
    }
    void Cancel(std::uint64_t id, std::int32_t& rc) override {
        count = id;
        rc = 0;
    }
    void GetAttrib(const Bytes& path, std::uint8_t& attr, std::int32_t& rc) override {
        received = path;
        attr = 1;
        rc = 2;
    }
    void SetAttrib(const Bytes& path, std::uint8_t attr, std::int32_t& rc) override {
        received = path;
        mode = attr;
        rc = 0;
    }
    void Delete(const Bytes& path, std::int32_t&) override {
        received = path;
        throw std::runtime_error("store broke");
    }

    Bytes received;
    std::uint8_t mask = 0;
    std::uint8_t mode = 0;
    std::uint64_t count = 0;
    nk_ptr_t writePath{};
    nk_ptr_t writeNodes{};
};

TEST(NkISMCodecTest, ReadSendsThePathAndReceivesTheNodeArenaIntoTheCallersBuffer) {
    FakeService service;
    hosipc_detail::idl_traits::Stub<NkISM> stub(&service, MakeResources());
    auto proxy = MakeProxy<NkISM>();
    Loopback loopback(TransportOf(*proxy), stub);

    Bytes arenaBytes(NkISM::kNodesArena, 0xAB);
    nk_arena arena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + arenaBytes.size()};
    std::uint64_t ncount = 0, id = 0;
    nk_ptr_t nodes{};
    std::int32_t rc = -1;
    proxy->Read(Text("locale/"), 0x16, ncount, nodes, id, rc, arena);

    EXPECT_EQ(service.received, Text("locale/"));
    EXPECT_EQ(service.mask, 0x16);
    EXPECT_EQ(loopback.request.size(), 40u);
    EXPECT_EQ(At<std::uint16_t>(loopback.request, 0), kRiid);
    EXPECT_EQ(At<std::uint16_t>(loopback.request, 2), 0);
    EXPECT_EQ(At<std::uint32_t>(loopback.request, 28), 7u);  // path: offset 0, size 7
    EXPECT_EQ(loopback.request[32], 0x16);
    EXPECT_EQ(loopback.requestArenaCapacity, 512u);
    EXPECT_EQ(ncount, 17u);
    EXPECT_EQ(id, 0x1122334455667788ULL);
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(nodes.offset, 4u);
    EXPECT_EQ(nodes.size, 24u);
    EXPECT_EQ(nk_arena_used(&arena), 28u);
    EXPECT_EQ(std::memcmp(arenaBytes.data(), "node", 4), 0);

    // 512 bytes of path go out; 513 are refused before anything is sent.
    proxy->Read(Bytes(512, 'p'), 0x16, ncount, nodes, id, rc, arena);
    EXPECT_EQ(service.received.size(), 512u);
    loopback.request.clear();
    EXPECT_THROW(proxy->Read(Bytes(513, 'p'), 0x16, ncount, nodes, id, rc, arena), std::length_error);
    EXPECT_TRUE(loopback.request.empty());
}

TEST(NkISMCodecTest, WriteAndWriteNextSendTheCallersOwnArena) {
    FakeService service;
    hosipc_detail::idl_traits::Stub<NkISM> stub(&service, MakeResources());
    auto proxy = MakeProxy<NkISM>();
    Loopback loopback(TransportOf(*proxy), stub);

    Bytes arenaBytes(NkISM::kWriteArena, 0);
    std::memcpy(arenaBytes.data(), "locale/", 7);
    nk_arena arena{arenaBytes.data(), arenaBytes.data() + 100, arenaBytes.data() + arenaBytes.size()};
    std::uint64_t id = 0;
    std::int32_t rc = 0;
    proxy->Write(arena, nk_ptr_t{0, 7}, 6, 9, nk_ptr_t{76, 24}, id, rc);
    EXPECT_EQ(loopback.request.size(), 56u);
    EXPECT_EQ(loopback.requestArenaCapacity, NkISM::kWriteArena);
    EXPECT_EQ(loopback.requestArena.size(), 100u);
    EXPECT_EQ(service.received, Bytes(arenaBytes.begin(), arenaBytes.begin() + 100));
    EXPECT_EQ(At<std::uint32_t>(loopback.request, 28), 7u);
    EXPECT_EQ(loopback.request[32], 6);
    EXPECT_EQ(At<std::uint64_t>(loopback.request, 40), 9u);
    EXPECT_EQ(At<std::uint32_t>(loopback.request, 48), 76u);
    EXPECT_EQ(service.writeNodes.offset, 76u);
    EXPECT_EQ(service.count, 9u);
    EXPECT_EQ(id, 77u);
    EXPECT_EQ(rc, -5);

    nk_arena next{arenaBytes.data(), arenaBytes.data() + 40, arenaBytes.data() + NkISM::kNodesArena};
    proxy->WriteNext(next, 77, nk_ptr_t{16, 24}, 1, rc);
    EXPECT_EQ(loopback.request.size(), 48u);
    EXPECT_EQ(At<std::uint64_t>(loopback.request, 24), 77u);
    EXPECT_EQ(At<std::uint32_t>(loopback.request, 32), 16u);
    EXPECT_EQ(loopback.request[40], 1);
    EXPECT_EQ(service.received.size(), 40u);
    EXPECT_EQ(service.mode, 1);

    // A caller's arena with more bytes than the method allows is refused before sending.
    nk_arena tooFull{arenaBytes.data(), arenaBytes.data() + NkISM::kNodesArena + 1,
                     arenaBytes.data() + arenaBytes.size()};
    loopback.request.clear();
    EXPECT_THROW(proxy->WriteNext(tooFull, 77, nk_ptr_t{0, 0}, 1, rc), std::runtime_error);
    EXPECT_TRUE(loopback.request.empty());

    // The stub refuses such an arena from a peer that isn't this proxy: a bare server failure.
    alignas(8) unsigned char request[48] = {};
    alignas(8) unsigned char response[32] = {};
    const std::uint32_t header[] = {kRiid | 3u << 16, 48};
    std::memcpy(request, header, sizeof header);
    const std::size_t before = service.received.size();
    hosipc_detail::api_v1::IDispatcher& dispatcher = stub;
    dispatcher.DispatchRequest(kRiid, reinterpret_cast<const nk_message*>(request), &tooFull,
                               reinterpret_cast<nk_message*>(response), nullptr);
    EXPECT_EQ(nk_message_size(reinterpret_cast<const nk_message*>(response)), 24u);
    EXPECT_TRUE(nk_message_failed(reinterpret_cast<const nk_message*>(response)));
    EXPECT_EQ(service.received.size(), before);
}

TEST(NkISMCodecTest, SmallMethodsHaveTheirOffsetsAndAFailingServiceSendsNoArena) {
    FakeService service;
    hosipc_detail::idl_traits::Stub<NkISM> stub(&service, MakeResources());
    auto proxy = MakeProxy<NkISM>();
    Loopback loopback(TransportOf(*proxy), stub);

    Bytes arenaBytes(NkISM::kNodesArena);
    nk_arena arena{arenaBytes.data(), arenaBytes.data(), arenaBytes.data() + arenaBytes.size()};
    nk_ptr_t nodes{9, 9};
    std::uint8_t last = 0;
    std::int32_t rc = 0;
    proxy->ReadNext(0xABCDEF, nodes, last, rc, arena);
    EXPECT_EQ(loopback.request.size(), 32u);
    EXPECT_EQ(service.count, 0xABCDEFu);
    EXPECT_EQ(last, 1);
    EXPECT_EQ(rc, 3);
    EXPECT_EQ(nk_arena_used(&arena), 0u);

    std::uint8_t attr = 0;
    proxy->GetAttrib(Text("a/"), attr, rc);
    EXPECT_EQ(attr, 1);
    EXPECT_EQ(rc, 2);
    proxy->SetAttrib(Text("b/"), 1, rc);
    EXPECT_EQ(loopback.request.size(), 40u);
    EXPECT_EQ(loopback.request[32], 1);
    EXPECT_EQ(service.mode, 1);
    proxy->Cancel(5, rc);
    EXPECT_EQ(At<std::uint16_t>(loopback.request, 2), 4);
    EXPECT_EQ(service.count, 5u);
    try {
        proxy->Delete(Text("c/"), rc);
        ADD_FAILURE() << "Delete returned";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "hl_settings_manager_NkISM_Delete server error");
    }
    EXPECT_EQ(service.received, Text("c/"));
}

class FakeRegistry final : public NkISMReg {
public:
    void RegCallback(const Bytes& name, std::uint64_t& cid, std::int32_t& rc) override {
        received = name;
        cid = 0xC1D;
        rc = 0;
    }
    void UnregCallback(std::uint64_t cid, std::int32_t& rc) override {
        lastCid = cid;
        rc = 0;
    }
    void Subscribe(std::uint64_t cid, const Bytes& path, std::uint64_t& sid, std::int32_t& rc) override {
        lastCid = cid;
        received = path;
        sid = 42;
        rc = 0;
    }
    void Unsubscribe(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) override {
        lastCid = cid;
        lastSid = sid;
        rc = static_cast<std::int32_t>(0x8000004C);
    }
    Bytes received;
    std::uint64_t lastCid = 0;
    std::uint64_t lastSid = 0;
};

TEST(NkISMRegCodecTest, RegistrationAndSubscriptionsCarryTheirIdsAndTexts) {
    FakeRegistry registry;
    hosipc_detail::idl_traits::Stub<NkISMReg> stub(&registry, MakeResources());
    auto proxy = MakeProxy<NkISMReg>();
    Loopback loopback(TransportOf(*proxy), stub);

    std::uint64_t cid = 0, sid = 0;
    std::int32_t rc = -1;
    proxy->RegCallback(Text("//cm:"), cid, rc);
    EXPECT_EQ(registry.received, Text("//cm:"));
    EXPECT_EQ(loopback.requestArenaCapacity, 64u);
    EXPECT_EQ(cid, 0xC1Du);
    EXPECT_THROW(proxy->RegCallback(Bytes(65, 'n'), cid, rc), std::length_error);

    proxy->Subscribe(cid, Text("locale/language/"), sid, rc);
    EXPECT_EQ(loopback.request.size(), 40u);
    EXPECT_EQ(At<std::uint64_t>(loopback.request, 24), 0xC1Du);
    EXPECT_EQ(At<std::uint32_t>(loopback.request, 36), 16u);
    EXPECT_EQ(registry.received, Text("locale/language/"));
    EXPECT_EQ(sid, 42u);
    proxy->Unsubscribe(cid, sid, rc);
    EXPECT_EQ(At<std::uint64_t>(loopback.request, 32), 42u);
    EXPECT_EQ(rc, static_cast<std::int32_t>(0x8000004C));
    proxy->UnregCallback(cid, rc);
    EXPECT_EQ(At<std::uint16_t>(loopback.request, 2), 1);
    EXPECT_EQ(registry.lastCid, 0xC1Du);
}

class FakeCallbacks final : public NkISMCbk {
public:
    void Wait(std::uint64_t cid, std::uint64_t& sid, nk_ptr_t& path, std::uint8_t& upd, std::int32_t& rc,
              nk_arena& arena) override {
        lastCid = cid;
        std::memcpy(arena.cursor, "a/b/", 4);
        path = {0, 4};
        arena.cursor += 4;
        sid = 42;
        upd = 2;
        rc = 0;
    }
    void Done(std::uint64_t cid, std::uint64_t sid, std::int32_t& rc) override {
        lastCid = cid;
        lastSid = sid;
        rc = 0;
    }
    std::uint64_t lastCid = 0;
    std::uint64_t lastSid = 0;
};

TEST(NkISMCbkCodecTest, WaitReceivesThePathArenaAndATimeoutReachesTheCallerAsTheTransportResult) {
    FakeCallbacks callbacks;
    hosipc_detail::idl_traits::Stub<NkISMCbk> stub(&callbacks, MakeResources());
    auto proxy = MakeProxy<NkISMCbk>();
    auto& transport = TransportOf(*proxy);
    Loopback loopback(transport, stub);
    static_cast<hosipc_detail::idl_traits::Proxy<NkISMCbk>&>(*proxy).SetTimeouts(0, 2000);
    EXPECT_EQ(transport.recvTimeoutMs, 0u);
    EXPECT_EQ(transport.sendTimeoutMs, 2000u);

    unsigned char arenaBytes[NkISMCbk::kWaitArena] = {};
    nk_arena arena{arenaBytes, arenaBytes, arenaBytes + sizeof arenaBytes};
    std::uint64_t sid = 0;
    nk_ptr_t path{};
    std::uint8_t upd = 0;
    std::int32_t rc = -1;
    proxy->Wait(0xC1D, sid, path, upd, rc, arena);
    EXPECT_EQ(callbacks.lastCid, 0xC1Du);
    EXPECT_EQ(sid, 42u);
    EXPECT_EQ(upd, 2);
    EXPECT_EQ(rc, 0);
    EXPECT_EQ(path.size, 4u);
    EXPECT_EQ(nk_arena_used(&arena), 4u);
    EXPECT_EQ(std::memcmp(arenaBytes, "a/b/", 4), 0);
    proxy->Done(0xC1D, 42, rc);
    EXPECT_EQ(callbacks.lastSid, 42u);

    loopback.result = NK_TRANSPORT_TIMEOUT;
    try {
        proxy->Wait(0xC1D, sid, path, upd, rc, arena);
        ADD_FAILURE() << "Wait returned";
    } catch (const hosipc_detail::idl_traits::TransportError& error) {
        EXPECT_EQ(error.Result(), NK_TRANSPORT_TIMEOUT);
        EXPECT_STREQ(error.what(), "hl_settings_manager_NkISMCbk_Wait transport error");
    }
}

TEST(IdlVocabularyTest, HandlesInRequestsAndSequencesAsOutputs) {
    using namespace hosipc_detail::idl_traits;
    using WithHandle = Request<56, 0, HandleArg<24>, ValueArg<std::uint64_t, 40>>;
    static_assert(WithHandle::kSizeWord == (56u | (1u << 23)));
    static_assert(Response<40, SequenceArg<24, 300>>::kArenaSize == 300);
    alignas(8) unsigned char message[56] = {};
    HandleArg<24>::Pack(reinterpret_cast<nk_message*>(message), 0x123456, nullptr);
    EXPECT_EQ(HandleArg<24>::Unpack(reinterpret_cast<nk_message*>(message), nullptr), 0x123456u);
    HandleArg<24>::Pack(reinterpret_cast<nk_message*>(message), 0xFFFFFFFFu, nullptr);
    EXPECT_EQ(HandleArg<24>::Unpack(reinterpret_cast<nk_message*>(message), nullptr), 0xFFFFFFFFu);

    unsigned char arenaBytes[300] = {};
    nk_arena arena{arenaBytes, arenaBytes, arenaBytes + sizeof arenaBytes};
    const Bytes value(300, 'v');
    SequenceArg<24, 300>::Store(reinterpret_cast<nk_message*>(message), value, &arena);
    Bytes back;
    SequenceArg<24, 300>::Load(reinterpret_cast<nk_message*>(message), back, &arena);
    EXPECT_EQ(back, value);
    using Sequence300 = SequenceArg<24, 300>;
    EXPECT_THROW(Sequence300::Store(reinterpret_cast<nk_message*>(message), Bytes(301), &arena),
                 std::length_error);
}

}  // namespace
