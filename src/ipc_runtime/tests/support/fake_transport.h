#pragma once

#include <platform/nk_result.h>
#include <platform/nk_transport.h>

#include <functional>
#include <vector>

namespace ipc_runtime_test {

// Stands in for the platform's call operation of a transport: records what each call sends and
// answers through a handler. One FakeTransport at a time (the C operation table has no context).
class FakeTransport {
public:
    using Handler = std::function<int(nk_message* response)>;

    // Routes calls of `transport` to this fake.
    FakeTransport(NkHosTransport& transport, Handler handler);
    ~FakeTransport();
    FakeTransport(const FakeTransport&) = delete;
    FakeTransport& operator=(const FakeTransport&) = delete;

    std::vector<unsigned char> lastRequest;  // as its size word gives it
    std::vector<unsigned char> lastArena;    // from start to cursor
    std::size_t lastArenaCapacity = 0;
    unsigned int lastResponseWord = 0;  // as the caller prepared it

private:
    static int Call(NkHosTransport*, const nk_message* request, const nk_arena* requestArena,
                    nk_message* response, nk_arena* responseArena);

    Handler m_handler;
};

}  // namespace ipc_runtime_test
