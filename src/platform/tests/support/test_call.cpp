#include "support/test_call.h"

#include <algorithm>
#include <cstring>

namespace hos::platform::testing {

uint32_t TestResponse::U32At(size_t offset) const {
    uint32_t value = 0;
    std::memcpy(&value, message.data() + offset, sizeof(value));
    return value;
}

unsigned int TestResponse::HandleAt(uint32_t index) const {
    return nk_handle_desc_get(nk_message_handle_desc_const(Header(), index));
}

TestResponse CallThrough(NkHosTransport& transport, const TestRequest& request) {
    const size_t descriptors = request.handles.size() * NK_HANDLE_DESC_SIZE;
    // Sized once up front: growing a 24-byte vector trips a false -Warray-bounds in gcc 12.
    std::vector<unsigned char> message(NK_MESSAGE_HEADER_SIZE + descriptors + request.fields.size(), 0);
    std::copy(request.fields.begin(), request.fields.end(),
              message.begin() + NK_MESSAGE_HEADER_SIZE + descriptors);
    auto* header = reinterpret_cast<nk_message*>(message.data());
    header->iid = request.iid;
    header->mid = request.mid;
    header->sizeFlags =
        nk_size_word(static_cast<uint32_t>(message.size()), static_cast<uint32_t>(request.handles.size()));
    for (size_t i = 0; i < request.handles.size(); ++i) {
        nk_handle_desc_set(nk_message_handle_desc(header, static_cast<uint32_t>(i)), request.handles[i]);
    }
    std::vector<unsigned char> arenaBytes = request.arena;
    nk_arena requestArena{arenaBytes.data(), arenaBytes.data() + arenaBytes.size(),
                          arenaBytes.data() + arenaBytes.size()};
    TestResponse response;
    response.message.assign(1024, 0);
    reinterpret_cast<nk_message*>(response.message.data())->sizeFlags = nk_size_word(1024, 4);
    std::vector<unsigned char> responseBytes(4096);
    nk_arena responseArena{responseBytes.data(), responseBytes.data(),
                           responseBytes.data() + responseBytes.size()};
    response.rc = transport.ops->call(&transport, header, &requestArena,
                                      reinterpret_cast<nk_message*>(response.message.data()), &responseArena);
    if (response.rc == 0) {
        response.arena.assign(responseArena.start, responseArena.cursor);
    }
    return response;
}

std::vector<unsigned char> U32Bytes(uint32_t value) {
    std::vector<unsigned char> bytes(sizeof(value));
    std::memcpy(bytes.data(), &value, sizeof(value));
    return bytes;
}

}  // namespace hos::platform::testing
