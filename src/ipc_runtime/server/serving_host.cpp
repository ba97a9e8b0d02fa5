#include <ipc_runtime/server/serving_host.h>

#include <diagnostics/log.h>
#include <diagnostics/log_rate_limiter.h>

#include <platform/ipc_dispatcher/publish_services.h>
#include <platform/platform.h>

#include <algorithm>
#include <stdexcept>

namespace hosipc::server {

namespace {
using hos::logger::LogLevel;

// Closes the handles of `request` from descriptor `taken` on, and marks those descriptors invalid
// so that serving a kept request again closes nothing twice.
void CloseUntakenHandles(nk_message* request, std::uint32_t taken) {
    const std::uint32_t count = nk_message_handle_count(request);
    for (std::uint32_t i = taken; i < count; ++i) {
        nk_handle_desc* descriptor = nk_message_handle_desc(request, i);
        const std::uint32_t handle = nk_handle_desc_get(descriptor);
        if (handle != NK_INVALID_HANDLE) {
            KnHandleClose(handle);
            nk_handle_desc_set(descriptor, NK_INVALID_HANDLE);
        }
    }
}
}  // namespace

ServingHost::ServingHost(ComponentTree tree, const std::string& serverName, ServerOptions options,
                         std::shared_ptr<DeferredReplies> deferred)
    : m_tree(std::move(tree)),
      m_options(options),
      m_handleRoom(options.handleRoom),
      m_deferred(deferred ? std::move(deferred) : std::make_shared<DeferredReplies>()),
      m_channel(NK_INVALID_HANDLE),
      m_request(options.messageRoom),
      m_requestArena(options.requestArenaRoom),
      m_response(options.messageRoom),
      m_responseArena(options.responseArenaRoom) {
    for (const ComponentTree::Endpoint& endpoint : m_tree.Endpoints()) {
        m_handleRoom = std::max(m_handleRoom, endpoint.mostRequestHandles);
    }
    if (m_tree.Declare() != 0) {
        throw std::runtime_error("can't declare the component tree " + m_tree.TypeName());
    }
    unsigned int registration = 0;
    m_channel = ServiceLocatorRegister(serverName.c_str(), nullptr, 0, &registration);
    if (m_channel == NK_INVALID_HANDLE) {
        throw std::runtime_error("can't register the server " + serverName +
                                 " (is another server of that name running here?)");
    }
    for (const ComponentTree::Service& service : m_tree.Services()) {
        const int published = shared::ipc_dispatcher::PublishServices({{service.fullName.c_str(), serverName.c_str()}});
        if (published != 0) {
            KnHandleClose(m_channel.exchange(NK_INVALID_HANDLE));
            throw std::runtime_error("can't publish " + service.fullName + " (" +
                                     fmt::format("0x{:08x}", static_cast<unsigned>(published)) + ")");
        }
    }
    NkHosTransport_Init(&m_transport, m_channel, nullptr, 0);
}

ServingHost::~ServingHost() {
    Interrupt();
}

void ServingHost::Interrupt() {
    if (const unsigned int channel = m_channel.exchange(NK_INVALID_HANDLE); channel != NK_INVALID_HANDLE) {
        KnHandleClose(channel);
    }
}

void ServingHost::Dispatch(nk_message* request, nk_arena* requestArena) {
    // Nothing of the last reply stays behind: its message and the part of the arena it used.
    std::fill(m_response.begin(), m_response.end(), static_cast<unsigned char>(0));
    std::fill(m_responseArena.begin(), m_responseArena.begin() + static_cast<std::ptrdiff_t>(m_responseArenaUsed),
              static_cast<unsigned char>(0));
    auto* response = reinterpret_cast<nk_message*>(m_response.data());
    response->iid = request->iid;
    response->mid = request->mid;
    response->sizeFlags = nk_size_word(NK_MESSAGE_HEADER_SIZE, 0);
    m_responseArenaView = nk_arena{m_responseArena.data(), m_responseArena.data(),
                                   m_responseArena.data() + m_responseArena.size()};
    auto& endpoints = m_tree.Endpoints();
    const auto served = std::find_if(endpoints.begin(), endpoints.end(),
                                     [&](const ComponentTree::Endpoint& e) { return e.riid == request->iid; });
    if (served == endpoints.end()) {
        static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
        if (const auto admission = limiter.Admit(m_transport.pendingClient)) {
            HL_LOG(LogLevel::Warning, "request for the unknown interface {} (method {}) refused{}",
                   request->iid, request->mid, admission.Note());
        }
        response->sizeFlags = NK_SERVER_FAILURE_WORD;
        CloseUntakenHandles(request, 0);
        return;
    }
    served->stub->DispatchRequest(static_cast<unsigned short>(request->iid), request, requestArena, response,
                                  &m_responseArenaView);
    m_responseArenaUsed = static_cast<std::size_t>(m_responseArenaView.cursor - m_responseArenaView.start);
    CloseUntakenHandles(request, served->requestHandles(static_cast<std::uint16_t>(request->mid)));
}

ServingHost::Report ServingHost::ServeOne(unsigned int timeoutMs) {
    Report report;
    auto* request = reinterpret_cast<nk_message*>(m_request.data());
    request->sizeFlags = nk_size_word(static_cast<std::uint32_t>(m_options.messageRoom), m_handleRoom);
    nk_arena requestArena{m_requestArena.data(), m_requestArena.data(),
                          m_requestArena.data() + m_requestArena.size()};
    NkHosSetTransportTimeouts(&m_transport, timeoutMs, m_options.replyTimeoutMs);
    const int received = m_transport.ops->receive(&m_transport, request, &requestArena);
    if (received == NK_EOK) {
        report.served = true;
        m_deferred->TakeHoldCurrent();
        if (NkHosTransportPeerPid(&m_transport, &m_peerPid) != NK_EOK) {
            m_peerPid = -1;
        }
        m_deferred->SetCurrentConnection(m_transport.pendingClient);
        Dispatch(request, &requestArena);
        m_deferred->SetCurrentConnection(0);
        m_peerPid = -1;
        if (const auto key = m_deferred->TakeHoldCurrent()) {
            Kept kept{m_transport, m_request, std::vector<unsigned char>(requestArena.start, requestArena.cursor),
                      std::chrono::steady_clock::now()};
            m_transport.pendingClient = 0;  // this transport no longer answers that request
            m_kept[*key] = std::move(kept);
        } else {
            const int replied = m_transport.ops->reply(
                &m_transport, reinterpret_cast<const nk_message*>(m_response.data()), &m_responseArenaView);
            if (replied != NK_EOK) {
                HL_LOG(LogLevel::Debug, "reply failed: {:#x}", static_cast<std::uint32_t>(replied));
            }
        }
    } else if (received != NK_TRANSPORT_TIMEOUT) {
        HL_LOG(LogLevel::Debug, "receive failed: {:#x}", static_cast<std::uint32_t>(received));
    }
    AnswerDeferred(report);
    TakeClosed(report);
    return report;
}

void ServingHost::TakeClosed(Report& report) {
    constexpr unsigned int kRoom = 64;
    unsigned long long ids[kRoom];
    int taken = 0;
    do {
        taken = NkHosTakeClosedClients(&m_transport, ids, kRoom);
        for (int i = 0; i < taken; ++i) {
            report.closed.push_back(ids[i]);
        }
    } while (taken == static_cast<int>(kRoom));
}

void ServingHost::AnswerDeferred(Report& report) {
    if (m_kept.empty() && !m_deferred->Changed()) {
        return;
    }
    std::set<std::uint64_t> forgotten;
    std::set<std::uint64_t> woken;
    m_deferred->Take(forgotten, woken);
    for (const std::uint64_t key : forgotten) {
        m_kept.erase(key);
    }
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::milliseconds maxHold(m_options.maxHoldMs);
    for (auto it = m_kept.begin(); it != m_kept.end() && m_options.maxHoldMs != NK_TIMEOUT_INFINITE;) {
        it = now - it->second.since > maxHold ? m_kept.erase(it) : std::next(it);
    }
    for (const std::uint64_t key : woken) {
        const auto found = m_kept.find(key);
        if (found == m_kept.end()) {
            continue;
        }
        Kept kept = std::move(found->second);
        m_kept.erase(found);
        auto* request = reinterpret_cast<nk_message*>(kept.message.data());
        nk_arena arena{kept.arena.data(), kept.arena.data() + kept.arena.size(),
                       kept.arena.data() + kept.arena.size()};
        if (NkHosTransportPeerPid(&kept.transport, &m_peerPid) != NK_EOK) {
            m_peerPid = -1;
        }
        m_deferred->SetCurrentConnection(kept.transport.pendingClient);
        Dispatch(request, &arena);
        m_deferred->SetCurrentConnection(0);
        m_peerPid = -1;
        if (const auto again = m_deferred->TakeHoldCurrent()) {
            m_kept[*again] = std::move(kept);
            continue;
        }
        const int rc = kept.transport.ops->reply(
            &kept.transport, reinterpret_cast<const nk_message*>(m_response.data()), &m_responseArenaView);
        if (rc != NK_EOK) {
            // The reply is the server's own and well formed: a failure means the client's end is gone.
            HL_LOG(LogLevel::Debug, "the answer to the request held under {} failed: {:#x}", key,
                   static_cast<std::uint32_t>(rc));
            report.gone.push_back(key);
        }
    }
}

}  // namespace hosipc::server
