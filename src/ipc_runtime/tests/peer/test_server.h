#pragma once
// The serving loop of the test peers: each peer is a real process that serves generated stubs over
// the hosted platform until it is killed.
//
//   const unsigned int channel = hl_test::RegisterServer(tree, "name", "published.Type");
//   hl_test::ServeForever(channel, {hl_test::Serve(1, controllerStub), hl_test::Serve(2, commandsStub)});
//
// Single-threaded: the loop runs on the calling thread and never returns.

#include <platform/platform.h>

#include <functional>
#include <initializer_list>

namespace hl_test {

// Dispatches one request into the response (the stub's DispatchRequest).
struct ServedInterface {
    unsigned int riid;
    std::function<void(nk_message* request, nk_arena* requestArena, nk_message* response,
                       nk_arena* responseArena)>
        dispatch;
};

template <typename Stub>
ServedInterface Serve(unsigned int riid, Stub& stub) {
    return {riid, [riid, &stub](nk_message* request, nk_arena* requestArena, nk_message* response,
                                nk_arena* responseArena) {
                stub.DispatchRequest(riid, request, requestArena, response, responseArena);
            }};
}

// Declares the tree, registers serverName and, unless publishedType is null, publishes it under
// serverName. The server channel, or NK_INVALID_HANDLE with a line on stderr.
unsigned int RegisterServer(const HosComponentTree& tree, const char* serverName, const char* publishedType);

// Prints "ready" on stdout, then answers every request: an interface it does not serve, or a method
// its stub does not know, gets a bare header back.
[[noreturn]] void ServeForever(unsigned int channel, std::initializer_list<ServedInterface> interfaces);

}  // namespace hl_test
