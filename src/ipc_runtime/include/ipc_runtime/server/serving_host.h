#pragma once
// The one serving loop of the environment's servers: it declares a component tree, registers the
// server channel under the server's name, publishes the tree's service components there, and serves
// requests one at a time through the generated stubs. The platform's server channel takes the
// clients' requests in turn, so that no client starves another.
//
//   ServingHost host(std::move(tree), "applicationManager_id", ServerOptions{});
//   while (!stop) { host.ServeOne(500); }
//
// A request of an interface the tree does not serve is answered with the server failure word and the
// log line "request for the unknown interface I (method M) refused" (a few a second, with a count of
// those left out); a method the stub does not know gets the bare header back.
//
// Handles: a request may carry as many handles as the most any described request of the tree takes
// (or `handleRoom`, when larger); more are refused by the platform. Once a request has been served,
// every handle it brought that its method does not take (all of them for an unknown interface or
// method) is closed, so no request leaves a handle behind in the server.
//
// Deferred replies (deferred_replies.h): a request that the implementation marks is kept, with the
// transport state that answers its client, instead of being answered. A woken one is served again
// and answered (an answer that finds its client gone is reported). A kept request older than
// maxHoldMs is dropped unanswered (NK_TIMEOUT_INFINITE: never), as is a forgotten one; a later one
// under the same key replaces it.
//
// Thread: one thread constructs it and runs ServeOne; the implementations are called on that
// thread. Interrupt may come from any thread. The destructor closes the channel.

#include <ipc_runtime/server/component_tree.h>
#include <ipc_runtime/server/deferred_replies.h>

#include <platform/nk_message.h>
#include <platform/nk_transport.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace hosipc::server {

struct ServerOptions {
    std::size_t messageRoom = 512;          // bytes of a request or a reply message
    unsigned int handleRoom = 0;            // at least this many handle descriptors a request may carry
    std::size_t requestArenaRoom = 2048;
    std::size_t responseArenaRoom = 2048;
    unsigned int replyTimeoutMs = NK_TIMEOUT_INFINITE;
    unsigned int maxHoldMs = NK_TIMEOUT_INFINITE;  // how long a deferred request is kept
};

class ServingHost {
public:
    // Throws std::runtime_error when the tree can't be declared, the name can't be registered
    // (another process serves it in this runtime directory) or a service can't be published.
    // `deferred` may be null for a server that answers every request at once.
    ServingHost(ComponentTree tree, const std::string& serverName, ServerOptions options = {},
                std::shared_ptr<DeferredReplies> deferred = nullptr);
    ~ServingHost();
    ServingHost(const ServingHost&) = delete;
    ServingHost& operator=(const ServingHost&) = delete;

    struct Report {
        bool served = false;  // a request came in (answered or kept)
        // Keys whose kept request could not be answered: the client has gone.
        std::vector<std::uint64_t> gone;
        // Connections (as DeferredReplies::CurrentConnection named them) that have closed since the
        // last turn.
        std::vector<std::uint64_t> closed;
    };
    // Receives one request, waiting at most timeoutMs (NK_TIMEOUT_INFINITE: no limit), serves it, then
    // answers the woken kept requests.
    Report ServeOne(unsigned int timeoutMs);

    // The process id of the client whose request an implementation is serving now, as the kernel
    // gave it when that client connected; -1 outside a request or when it can't be told.
    int PeerPid() const { return m_peerPid; }

    // From any thread: closes the server channel, so that a ServeOne waiting without a time limit
    // returns now and every later one at once. Nothing is served after it.
    void Interrupt();

private:
    struct Kept {
        NkHosTransport transport;  // a copy taken after the receive: it answers that client
        std::vector<unsigned char> message;
        std::vector<unsigned char> arena;
        std::chrono::steady_clock::time_point since;
    };
    // Serves request through its stub into the response buffers, then closes the handles that its
    // method does not take and marks their descriptors invalid.
    void Dispatch(nk_message* request, nk_arena* requestArena);
    void AnswerDeferred(Report& report);
    void TakeClosed(Report& report);

    ComponentTree m_tree;
    const ServerOptions m_options;
    unsigned int m_handleRoom;
    std::shared_ptr<DeferredReplies> m_deferred;
    std::atomic<unsigned int> m_channel;
    int m_peerPid = -1;
    NkHosTransport m_transport{};
    std::vector<unsigned char> m_request;
    std::vector<unsigned char> m_requestArena;
    std::vector<unsigned char> m_response;
    std::vector<unsigned char> m_responseArena;
    nk_arena m_responseArenaView{};
    std::size_t m_responseArenaUsed = 0;
    std::map<std::uint64_t, Kept> m_kept;
};

}  // namespace hosipc::server
