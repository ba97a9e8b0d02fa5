#include "support/fake_transport.h"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace ipc_runtime_test {

namespace {

FakeTransport* g_current = nullptr;

int Refuse(NkHosTransport*, nk_message*, nk_arena*) {
    return NK_EFAIL;
}

int RefuseReply(NkHosTransport*, const nk_message*, const nk_arena*) {
    return NK_EFAIL;
}

}  // namespace

FakeTransport::FakeTransport(Handler handler) : m_handler(std::move(handler)) {
    if (g_current != nullptr) {
        throw std::logic_error("one FakeTransport at a time");
    }
    g_current = this;
}

FakeTransport::~FakeTransport() {
    g_current = nullptr;
}

void FakeTransport::Attach(NkHosTransport& transport) {
    static const NkHosTransportOps ops{&FakeTransport::Call, &Refuse, &RefuseReply};
    transport.ops = &ops;
}

int FakeTransport::Call(NkHosTransport*, const nk_message* request, const nk_arena* requestArena,
                        nk_message* response, nk_arena* responseArena) {
    FakeTransport& self = *g_current;
    ++self.m_calls;
    const auto* bytes = reinterpret_cast<const unsigned char*>(request);
    self.m_lastRequest.assign(bytes, bytes + nk_message_size(request));
    self.m_lastArena.assign(requestArena->start, requestArena->start + nk_arena_used(requestArena));
    self.m_lastArenaCapacity = nk_arena_capacity(requestArena);
    self.m_lastResponseWord = response->sizeFlags;
    return self.m_handler(request, requestArena, response, responseArena);
}

}  // namespace ipc_runtime_test
