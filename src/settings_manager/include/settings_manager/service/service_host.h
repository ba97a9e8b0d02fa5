#pragma once
// The serving side of a settings service process: declares the component tree with the endpoints
// NkISM (riid 1), NkISMReg (2) and NkISMCbk (3), registers the server channel under the service's
// name, and serves requests one at a time through the stubs generated from the three interface
// descriptions. A request of another riid is answered with the server failure word and a log line.
//
// Held requests (held_requests.h): a request that the implementation marks is kept, with the transport
// state that answers its client, instead of being answered. A woken one is served again and answered
// (an answer that finds its client gone is reported). A kept request older than maxHoldMs is dropped
// unanswered (NK_TIMEOUT_INFINITE: never), as is a forgotten one; a later one under the same key
// replaces it.
//
// Thread: one thread constructs it and runs ServeOne; the implementations are called on that thread.
// The implementations and the HeldRequests must outlive the host. The destructor closes the channel.

#include <ipc_runtime/idl/hl/settings_manager/nk_ism.h>
#include <ipc_runtime/idl/hl/settings_manager/nk_ism_cbk.h>
#include <ipc_runtime/idl/hl/settings_manager/nk_ism_reg.h>
#include <settings_manager/service/held_requests.h>

#include <platform/nk_transport.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace settings_manager::service {

class ServiceHost {
public:
    struct Implementations {
        hosipc::idl::stdcpp_v1::hl::settings_manager::NkISM* ism;
        hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMReg* reg;
        hosipc::idl::stdcpp_v1::hl::settings_manager::NkISMCbk* cbk;
    };
    static constexpr unsigned int kIsmRiid = 1;
    static constexpr unsigned int kRegRiid = 2;
    static constexpr unsigned int kCbkRiid = 3;

    // Throws std::runtime_error when the component tree can't be declared or the name can't be
    // registered (another process serves it in this runtime directory).
    ServiceHost(const std::string& serverName, const std::string& componentType,
                Implementations implementations, std::shared_ptr<HeldRequests> held, unsigned int maxHoldMs);
    ~ServiceHost();
    ServiceHost(const ServiceHost&) = delete;
    ServiceHost& operator=(const ServiceHost&) = delete;

    struct Report {
        bool served = false;  // a request came in (answered or kept)
        // Keys whose kept request could not be answered: the client has gone.
        std::vector<std::uint64_t> gone;
    };
    // Receives one request, waiting at most timeoutMs (NK_TIMEOUT_INFINITE: no limit), serves it, then
    // answers the woken kept requests.
    Report ServeOne(unsigned int timeoutMs);

private:
    struct Kept {
        NkHosTransport transport;  // a copy taken after the receive: it answers that client
        std::vector<unsigned char> message;
        std::vector<unsigned char> arena;
        std::chrono::steady_clock::time_point since;
    };
    // Serves request through its stub into the response buffers (an unknown riid gets the failure word).
    void Dispatch(const nk_message* request, nk_arena* requestArena);
    void AnswerWoken(Report& report);

    std::shared_ptr<HeldRequests> m_held;
    unsigned int m_maxHoldMs;
    std::chrono::milliseconds m_maxHold;
    unsigned int m_channel;
    NkHosTransport m_transport{};
    std::unique_ptr<hosipc_detail::api_v1::IDispatcher> m_ism;
    std::unique_ptr<hosipc_detail::api_v1::IDispatcher> m_reg;
    std::unique_ptr<hosipc_detail::api_v1::IDispatcher> m_cbk;
    std::vector<unsigned char> m_request;
    std::vector<unsigned char> m_requestArena;
    std::vector<unsigned char> m_response;
    std::vector<unsigned char> m_responseArena;
    nk_arena m_responseArenaView{};
    std::map<std::uint64_t, Kept> m_kept;
};

}  // namespace settings_manager::service
