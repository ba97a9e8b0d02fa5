#include <settings_manager/service/service_host.h>

#include <diagnostics/log.h>
#include <ipc_runtime/idl/stub.h>
#include <ipc_runtime/resource_provider.h>

#include <platform/platform.h>

#include <algorithm>
#include <stdexcept>

namespace settings_manager::service {

namespace {

using hos::logger::LogLevel;
using namespace hosipc::idl::stdcpp_v1::hl::settings_manager;

// The largest message of the three interfaces is 56 bytes; the room leaves space for a few handle
// descriptors, which no request of them carries.
constexpr std::size_t kMessageRoom = 256;

template <typename T>
std::unique_ptr<hosipc_detail::api_v1::IDispatcher> MakeStub(
    T* implementation, const std::shared_ptr<hosipc_detail::api_v1::ResourceProvider>& resources) {
    if (implementation == nullptr) {
        throw std::invalid_argument("settings service: an interface implementation is null");
    }
    return std::make_unique<hosipc_detail::idl_traits::Stub<T>>(implementation, resources);
}

}  // namespace

ServiceHost::ServiceHost(const std::string& serverName, const std::string& componentType,
                         Implementations implementations, std::shared_ptr<HeldRequests> held,
                         unsigned int maxHoldMs)
    : m_held(std::move(held)),
      m_maxHoldMs(maxHoldMs),
      m_maxHold(maxHoldMs),
      m_channel(NK_INVALID_HANDLE),
      m_request(kMessageRoom),
      m_requestArena(NkISM::kWriteArena),
      m_response(kMessageRoom),
      m_responseArena(NkISM::kNodesArena) {
    if (!m_held) {
        throw std::invalid_argument("settings service: HeldRequests is nullptr");
    }
    auto resources = std::make_shared<hosipc_detail::api_v1::ResourceProvider>(
        hosipc_detail::api_v1::MessageCapacity{}, 0, hosipc::api_v1::ApplicationSettings{});
    m_ism = MakeStub(implementations.ism, resources);
    m_reg = MakeStub(implementations.reg, resources);
    m_cbk = MakeStub(implementations.cbk, resources);

    static const HosEndpointDesc endpoints[] = {
        {kIsmRiid, "NkISM", "NkISM", "hl.settings_manager.NkISM"},
        {kRegRiid, "NkISMReg", "NkISMReg", "hl.settings_manager.NkISMReg"},
        {kCbkRiid, "NkISMCbk", "NkISMCbk", "hl.settings_manager.NkISMCbk"}};
    const HosComponentTree tree{componentType.c_str(), endpoints, 3, nullptr, 0};
    if (HosTaskSetComponentTree(HosTaskGetSelf(), &tree) != 0) {
        throw std::runtime_error("can't declare the component tree " + componentType);
    }
    unsigned int registration = 0;
    m_channel = ServiceLocatorRegister(serverName.c_str(), nullptr, 0, &registration);
    if (m_channel == NK_INVALID_HANDLE) {
        throw std::runtime_error("can't register the server " + serverName +
                                 " (is another service of that name running here?)");
    }
    NkHosTransport_Init(&m_transport, m_channel, nullptr, 0);
}

ServiceHost::~ServiceHost() {
    if (m_channel != NK_INVALID_HANDLE) {
        KnHandleClose(m_channel);
    }
}

void ServiceHost::Dispatch(const nk_message* request, nk_arena* requestArena) {
    std::fill(m_response.begin(), m_response.end(), static_cast<unsigned char>(0));
    std::fill(m_responseArena.begin(), m_responseArena.end(), static_cast<unsigned char>(0));
    auto* response = reinterpret_cast<nk_message*>(m_response.data());
    response->iid = request->iid;
    response->mid = request->mid;
    response->sizeFlags = nk_size_word(NK_MESSAGE_HEADER_SIZE, 0);
    m_responseArenaView = nk_arena{m_responseArena.data(), m_responseArena.data(),
                                   m_responseArena.data() + m_responseArena.size()};
    hosipc_detail::api_v1::IDispatcher* stub = request->iid == kIsmRiid   ? m_ism.get()
                                               : request->iid == kRegRiid ? m_reg.get()
                                               : request->iid == kCbkRiid ? m_cbk.get()
                                                                          : nullptr;
    if (stub == nullptr) {
        HL_LOG(LogLevel::Warning, "request for the unknown interface {} (method {}) refused", request->iid,
               request->mid);
        response->sizeFlags = NK_SERVER_FAILURE_WORD;
        return;
    }
    stub->DispatchRequest(request->iid, request, requestArena, response, &m_responseArenaView);
}

ServiceHost::Report ServiceHost::ServeOne(unsigned int timeoutMs) {
    Report report;
    auto* request = reinterpret_cast<nk_message*>(m_request.data());
    request->sizeFlags = nk_size_word(kMessageRoom, 0);
    nk_arena requestArena{m_requestArena.data(), m_requestArena.data(),
                          m_requestArena.data() + m_requestArena.size()};
    NkHosSetTransportTimeouts(&m_transport, timeoutMs, NK_TIMEOUT_INFINITE);
    const int received = m_transport.ops->receive(&m_transport, request, &requestArena);
    if (received == NK_EOK) {
        report.served = true;
        m_held->TakeHoldCurrent();
        Dispatch(request, &requestArena);
        if (const auto key = m_held->TakeHoldCurrent()) {
            Kept kept{m_transport, m_request,
                      std::vector<unsigned char>(requestArena.start, requestArena.cursor),
                      std::chrono::steady_clock::now()};
            m_transport.pendingClient = 0;  // this transport no longer answers that request
            m_kept[*key] = std::move(kept);
        } else {
            m_transport.ops->reply(&m_transport, reinterpret_cast<const nk_message*>(m_response.data()),
                                   &m_responseArenaView);
        }
    } else if (received != NK_TRANSPORT_TIMEOUT) {
        HL_LOG(LogLevel::Debug, "receive failed: {:#x}", static_cast<std::uint32_t>(received));
    }
    AnswerWoken(report);
    return report;
}

void ServiceHost::AnswerWoken(Report& report) {
    for (const std::uint64_t key : m_held->TakeForgotten()) {
        m_kept.erase(key);
    }
    const auto now = std::chrono::steady_clock::now();
    for (auto it = m_kept.begin(); it != m_kept.end() && m_maxHoldMs != NK_TIMEOUT_INFINITE;) {
        it = now - it->second.since > m_maxHold ? m_kept.erase(it) : std::next(it);
    }
    for (const std::uint64_t key : m_held->TakeWoken()) {
        const auto found = m_kept.find(key);
        if (found == m_kept.end()) {
            continue;
        }
        Kept kept = std::move(found->second);
        m_kept.erase(found);
        auto* request = reinterpret_cast<nk_message*>(kept.message.data());
        nk_arena arena{kept.arena.data(), kept.arena.data() + kept.arena.size(),
                       kept.arena.data() + kept.arena.size()};
        Dispatch(request, &arena);
        if (const auto again = m_held->TakeHoldCurrent()) {
            m_kept[*again] = std::move(kept);
            continue;
        }
        const int rc = kept.transport.ops->reply(
            &kept.transport, reinterpret_cast<const nk_message*>(m_response.data()), &m_responseArenaView);
        if (rc != NK_EOK) {
            // The reply is the service's own and well formed: a failure means the client's end is gone.
            HL_LOG(LogLevel::Debug, "the answer to the request held under {} failed: {:#x}", key,
                   static_cast<std::uint32_t>(rc));
            report.gone.push_back(key);
        }
    }
}

}  // namespace settings_manager::service
