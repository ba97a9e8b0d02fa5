#pragma once

#include <platform/nk_result.h>
#include <platform/nk_transport.h>

#include <functional>
#include <vector>

namespace ipc_runtime_test {

// Stands in for the platform's call operation of a transport. Records what each call sends and answers
// through a handler. Only one FakeTransport may exist at a time (the C operation table has no context).
class FakeTransport {
public:
    using Handler = std::function<int(const nk_message* request, const nk_arena* requestArena,
                                      nk_message* response, nk_arena* responseArena)>;

    explicit FakeTransport(Handler handler);
    ~FakeTransport();
    FakeTransport(const FakeTransport&) = delete;
    FakeTransport& operator=(const FakeTransport&) = delete;

    // Routes calls of transport to this fake.
    void Attach(NkHosTransport& transport);

    int Calls() const { return m_calls; }
    // The bytes of the last request, as its size word gives them.
    const std::vector<unsigned char>& LastRequest() const { return m_lastRequest; }
    // The bytes of the last request arena, from start to cursor, and its capacity.
    const std::vector<unsigned char>& LastArena() const { return m_lastArena; }
    std::size_t LastArenaCapacity() const { return m_lastArenaCapacity; }
    // The size word of the last response as the caller prepared it.
    unsigned int LastResponseCapacityWord() const { return m_lastResponseWord; }

private:
    static int Call(NkHosTransport* transport, const nk_message* request, const nk_arena* requestArena,
                    nk_message* response, nk_arena* responseArena);

    Handler m_handler;
    int m_calls = 0;
    std::vector<unsigned char> m_lastRequest;
    std::vector<unsigned char> m_lastArena;
    std::size_t m_lastArenaCapacity = 0;
    unsigned int m_lastResponseWord = 0;
};

}  // namespace ipc_runtime_test
