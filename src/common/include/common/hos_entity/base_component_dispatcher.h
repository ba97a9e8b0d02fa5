#pragma once

// The dispatcher thread of a component's server channel: receives one request at a time, hands it
// to DoDispatch, sends the reply and looks at its token to see whether to go on.
//
// Request and Response are the component's message types; each begins with the 24-byte header, and
// the loop owns one buffer of each. The response buffer is never cleared between requests: a
// request that DoDispatch leaves alone is answered with whatever the last one left there (a zero
// header before the first). A and B are reserved template values (0 in this program).
//
// Start and Stop may be called from any thread and are serialised by a mutex, which Stop holds over
// the join. Stop does not reach a request being served: the join waits for it. The buffers are used
// by the dispatcher thread alone. A derived class calls EndDispatching first in its destructor, so
// that the thread, which the base joins only later, never calls into a destroyed object.

#include <common/utils/cancellation_token.h>
#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <platform/hos_entity/i_component_dispatcher.h>
#include <platform/nk_message.h>
#include <platform/nk_result.h>
#include <platform/nk_transport.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>

namespace hos::entity {

template <typename Request, typename Response, unsigned A, unsigned B>
class BaseComponentDispatcher : public IComponentDispatcher {
    static_assert(std::is_standard_layout_v<Request> && std::is_standard_layout_v<Response>);
    static_assert(sizeof(Request) >= NK_MESSAGE_HEADER_SIZE && sizeof(Response) >= NK_MESSAGE_HEADER_SIZE);

public:
    using ExecutionAction = common::utils::ICancellationToken::ExecutionAction;

    // "Already done": Start on a running dispatcher, Stop on one that is not running.
    static constexpr std::int32_t kAlreadyDone = static_cast<std::int32_t>(0x80000067u);

    // Throws hca::CheckFailedException (no text) for riid 0xFFFF or handle 0xFFFFFFFF. The channel
    // handle stays the caller's; the dispatcher never closes it.
    BaseComponentDispatcher(std::uint16_t riid, std::uint32_t handle, std::uint32_t recvTimeoutMs)
        : m_riid(riid),
          m_handle(handle),
          m_token(std::make_unique<common::utils::CancellationToken>(ExecutionAction::Cancel)),
          m_recvTimeoutMs(recvTimeoutMs) {
        HCA_CHECK(riid != NK_INVALID_RIID && handle != NK_INVALID_HANDLE);
    }

    ~BaseComponentDispatcher() override { Stop(); }

    BaseComponentDispatcher(const BaseComponentDispatcher&) = delete;
    BaseComponentDispatcher& operator=(const BaseComponentDispatcher&) = delete;

    // 0, or kAlreadyDone while the token says Run (also after the loop ended by itself).
    std::int32_t Start() override {
        try {
            std::lock_guard lock(m_mutex);
            ExecutionAction action = ExecutionAction::Cancel;
            m_token->GetExecutionAction(action);
            if (action == ExecutionAction::Run) {
                return kAlreadyDone;
            }
            if (m_thread.joinable()) {
                m_thread.join();
            }
            m_token->Resume();
            m_thread = std::thread([this] { DispatcherLoop(); });
            return 0;
        } catch (...) {
            const auto [code, text] = common::utils::ProcessException();
            HL_LOG(logger::LogLevel::Error, "ComponentDispatcher: StartDispatching threw exception [{}, {}]",
                   code, text);
            return code;
        }
    }

    // 0 after the thread has been told to stop and joined, kAlreadyDone when never started or
    // already stopped. Waits for a request being served.
    std::int32_t Stop() override {
        try {
            std::lock_guard lock(m_mutex);
            ExecutionAction action = ExecutionAction::Cancel;
            m_token->GetExecutionAction(action);
            if (action != ExecutionAction::Run) {
                return kAlreadyDone;
            }
            m_token->Pause();
            if (m_thread.joinable()) {
                m_thread.join();
            }
            return 0;
        } catch (...) {
            const auto [code, text] = common::utils::ProcessException();
            HL_LOG(logger::LogLevel::Error, "ComponentDispatcher: StopDispatching threw exception [{}, {}]",
                   code, text);
            return code;
        }
    }

    // Serves one request: true when some interface took it (whatever it did with it), false when the
    // request's interface is unknown, which ends the loop after the reply.
    virtual bool DoDispatch(std::uint16_t riid, const nk_message* request, const nk_arena* requestArena,
                            nk_message* response, nk_arena* responseArena) = 0;

protected:
    // From here on a received request is treated as one of no interface: DoDispatch is not called
    // any more. Waits for a DoDispatch in progress. Meant for the derived class's destructor.
    void EndDispatching() {
        std::lock_guard lock(m_dispatchMutex);
        m_dispatching = false;
    }

private:
    bool Dispatch(const nk_message* request, nk_arena* requestArena, nk_message* response,
                  nk_arena* responseArena) {
        std::lock_guard lock(m_dispatchMutex);
        return m_dispatching && DoDispatch(m_riid, request, requestArena, response, responseArena);
    }

    void DispatcherLoop() {
        NkHosTransport_Init(&m_transport, m_handle, nullptr, 0);
        NkHosSetTransportTimeouts(&m_transport, m_recvTimeoutMs, NK_TIMEOUT_INFINITE);
        // This component's methods carry no variable data, so the arenas have no memory behind them.
        nk_arena requestArena{nullptr, nullptr, nullptr};
        nk_arena responseArena{nullptr, nullptr, nullptr};
        auto* request = reinterpret_cast<nk_message*>(&m_request);
        auto* response = reinterpret_cast<nk_message*>(&m_response);
        int code = 0;
        for (;;) {
            request->sizeFlags =
                (request->sizeFlags & (NK_MESSAGE_HANDLES_MASK << NK_MESSAGE_HANDLES_SHIFT)) |
                static_cast<std::uint32_t>(sizeof(Request));
            nk_arena_reset(&requestArena);
            nk_arena_reset(&responseArena);
            code = m_transport.ops->receive(&m_transport, request, &requestArena);
            if (code == 0) {
                const bool handled = Dispatch(request, &requestArena, response, &responseArena);
                code = m_transport.ops->reply(&m_transport, response, &responseArena);
                if (!handled) {
                    code = 0;
                    break;
                }
            }
            ExecutionAction action = ExecutionAction::Cancel;
            m_token->GetExecutionAction(action);
            if (action != ExecutionAction::Run) {
                break;
            }
        }
        const auto level =
            (code == 0 || code == NK_TRANSPORT_TIMEOUT) ? logger::LogLevel::Debug : logger::LogLevel::Error;
        HL_LOG(level, "ComponentDispatcher: [riid = {}] End of DispatcherLoop with code {}!", m_riid, code);
    }

    std::uint16_t m_riid;
    std::uint32_t m_handle;
    std::unique_ptr<common::utils::ICancellationToken> m_token;
    std::uint32_t m_recvTimeoutMs;
    NkHosTransport m_transport{};
    Request m_request{};
    // Only the header is zeroed; nothing clears the buffer between requests.
    Response m_response{};
    std::mutex m_mutex;
    std::thread m_thread;
    // Guards the calls of DoDispatch against the derived part's destruction.
    std::mutex m_dispatchMutex;
    bool m_dispatching = true;
};

}  // namespace hos::entity
