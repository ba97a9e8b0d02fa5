#include "support/fake_transport.h"

#include <utility>

namespace ipc_runtime_test {

namespace {

FakeTransport* g_current = nullptr;

}  // namespace

FakeTransport::FakeTransport(NkHosTransport& transport, Handler handler) : m_handler(std::move(handler)) {
    static const NkHosTransportOps ops{&FakeTransport::Call, nullptr, nullptr};
    transport.ops = &ops;
    g_current = this;
}

FakeTransport::~FakeTransport() {
    g_current = nullptr;
}

int FakeTransport::Call(NkHosTransport*, const nk_message* request, const nk_arena* requestArena,
                        nk_message* response, nk_arena*) {
    FakeTransport& self = *g_current;
    const auto* bytes = reinterpret_cast<const unsigned char*>(request);
    self.lastRequest.assign(bytes, bytes + nk_message_size(request));
    self.lastArena.assign(requestArena->start, requestArena->start + nk_arena_used(requestArena));
    self.lastArenaCapacity = nk_arena_capacity(requestArena);
    self.lastResponseWord = response->sizeFlags;
    return self.m_handler(response);
}

}  // namespace ipc_runtime_test
