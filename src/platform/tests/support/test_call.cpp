#include "support/test_call.h"

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
    const size_t size = NK_MESSAGE_HEADER_SIZE + descriptors + request.fields.size();
    std::vector<unsigned char> message(size, 0);
    auto* header = reinterpret_cast<nk_message*>(message.data());
    header->iid = request.iid;
    header->mid = request.mid;
    header->sizeFlags =
        nk_size_word(static_cast<uint32_t>(size), static_cast<uint32_t>(request.handles.size()));
    for (size_t i = 0; i < request.handles.size(); ++i) {
        nk_handle_desc_set(nk_message_handle_desc(header, static_cast<uint32_t>(i)), request.handles[i]);
    }
    if (!request.fields.empty()) {
        std::memcpy(message.data() + NK_MESSAGE_HEADER_SIZE + descriptors, request.fields.data(),
                    request.fields.size());
    }
    std::vector<unsigned char> arenaBytes = request.arena;
    nk_arena requestArena{nullptr, nullptr, nullptr};
    if (!arenaBytes.empty()) {
        requestArena = {arenaBytes.data(), arenaBytes.data() + arenaBytes.size(),
                        arenaBytes.data() + arenaBytes.size()};
    }
    TestResponse response;
    response.message.assign(std::max<size_t>(request.responseRoom, NK_MESSAGE_HEADER_SIZE), 0);
    reinterpret_cast<nk_message*>(response.message.data())->sizeFlags =
        nk_size_word(request.responseRoom, request.responseHandleRoom);
    std::vector<unsigned char> responseBytes(request.responseArenaRoom);
    nk_arena responseArena{nullptr, nullptr, nullptr};
    if (!responseBytes.empty()) {
        responseArena = {responseBytes.data(), responseBytes.data(),
                         responseBytes.data() + responseBytes.size()};
    }
    response.rc = transport.ops->call(&transport, header, &requestArena,
                                      reinterpret_cast<nk_message*>(response.message.data()), &responseArena);
    if (response.rc == 0 && responseArena.start != nullptr) {
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
