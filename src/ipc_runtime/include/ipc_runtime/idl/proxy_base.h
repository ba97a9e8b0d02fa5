#pragma once

#include <ipc_runtime/endpoint_handle.h>
#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/shared_resource_provider.h>

#include <platform/nk_transport.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

namespace hosipc_detail::idl_traits {

// Client side of the IDL interface T. Specialised per interface as a class deriving from ProxyBase<T>
// whose overrides forward to Invoke with the method's description.
template <typename T>
class Proxy;

// A message of Size bytes on the stack, zeroed: the header, then the handle descriptors and fields.
template <std::uint32_t Size>
struct MessageBuffer {
    static_assert(Size >= MessageHeader::kHeaderSize);
    nk_message header{};
    std::array<unsigned char, Size - MessageHeader::kHeaderSize> fields{};

    nk_message* Get() { return &header; }
};

// Thrown by a proxy when the transport's call fails: the text "<prefix><Method> transport error" and
// the transport's result (NK_TRANSPORT_TIMEOUT, -11, when the call timeout ran out).
class TransportError : public std::runtime_error {
public:
    TransportError(const std::string& text, int result) : std::runtime_error(text), m_result(result) {}
    int Result() const { return m_result; }

private:
    int m_result;
};

// What every generated proxy has: the endpoint it owns, a share of the runtime's resources and the
// platform transport over the endpoint's handle, whose timeouts are "no limit" until SetTimeouts. A
// call blocks the calling thread until the reply has come or the call timeout runs out. One thread at
// a time; no lock.
template <typename T>
class ProxyBase : public T {
public:
    using Description = InterfaceDescription<T>;
    // Checks the whole description when a proxy is declared, whether or not a method is called.
    static_assert(sizeof(typename Description::Methods) != 0);

    ProxyBase(api_v1::EndpointHandle endpoint, api_v1::SharedResourceProvider resources)
        : m_endpoint(std::move(endpoint)), m_resources(std::move(resources)) {
        NkHosTransport_Init(&m_transport, m_endpoint.GetHandle(), nullptr, 0);
    }

    ProxyBase(const ProxyBase&) = delete;
    ProxyBase& operator=(const ProxyBase&) = delete;

    const api_v1::EndpointHandle& GetEndpoint() const { return m_endpoint; }
    const api_v1::SharedResourceProvider& GetResources() const { return m_resources; }

    // Receive and call timeouts of the transport, in milliseconds, for every later call;
    // NK_TIMEOUT_INFINITE means no limit, 0 not to wait at all.
    void SetTimeouts(unsigned int receiveMs, unsigned int callMs) {
        NkHosSetTransportTimeouts(&m_transport, receiveMs, callMs);
    }

    // Lets a test put a transport of its own under the proxy.
    NkHosTransport& TransportForTesting() { return m_transport; }

protected:
    // Sends the request of method M built from the leading arguments (the inputs), waits for the
    // response and stores its fields into the trailing arguments (the outputs). Throws
    // TransportError "<prefix><Method> transport error" when the transport fails and
    // "<prefix><Method> server error" when the server did; std::length_error "?" or std::runtime_error
    // "failed to allocate space in the arena" for an input that doesn't fit (a caller's own request
    // arena included), before anything is sent.
    template <typename M, typename... Args>
    void Invoke(Args&&... args) {
        auto arguments = std::forward_as_tuple(std::forward<Args>(args)...);
        if (const int result = InvokeFields<M>(typename M::Request{}, typename M::Response{}, arguments);
            result != 0) {
            throw TransportError(FailureText<M>(" transport error"), result);
        }
    }

    // Invoke for a caller that waits in a loop: a failure of the transport (a time limit that ran out,
    // a closed channel) is returned as its result, 0 when the call went through, so the idle path
    // makes no exception and no text. Server failures and inputs that don't fit still throw.
    template <typename M, typename... Args>
    int InvokeOrTransportResult(Args&&... args) {
        auto arguments = std::forward_as_tuple(std::forward<Args>(args)...);
        return InvokeFields<M>(typename M::Request{}, typename M::Response{}, arguments);
    }

private:
    template <typename M, std::uint32_t RS, std::uint32_t RA, typename... In, std::uint32_t PS,
              typename... Out, typename Arguments>
    int InvokeFields(Request<RS, RA, In...>, Response<PS, Out...>, Arguments& arguments) {
        static_assert(std::tuple_size_v<Arguments> == sizeof...(In) + sizeof...(Out),
                      "a proxy method must pass every input and output");
        MessageBuffer<RS> request;
        MessageHeader::SetIid(request.Get(), m_endpoint.GetRiid());
        MessageHeader::SetMid(request.Get(), M::kMid);
        MessageHeader::SetSizeWord(request.Get(), Request<RS, RA, In...>::kSizeWord);
        // The transport takes the room for the response, handles included, from its size word.
        MessageBuffer<PS> response;
        MessageHeader::SetIid(response.Get(), m_endpoint.GetRiid());
        MessageHeader::SetMid(response.Get(), M::kMid);
        MessageHeader::SetSizeWord(response.Get(), Response<PS, Out...>::kSizeWord);

        // A caller's own arena is sent or received as it is; other arenas are allocated per call.
        constexpr std::size_t kRequestArena = Request<RS, RA, In...>::kCallerArena;
        constexpr std::size_t kResponseArena = Response<PS, Out...>::kCallerArena;
        constexpr std::uint32_t kResponseArenaSize = Response<PS, Out...>::kArenaSize;
        std::unique_ptr<unsigned char[]> arenaMemory(
            RA == 0 || kRequestArena < sizeof...(In) ? nullptr : new unsigned char[RA]());
        nk_arena ownRequestArena{arenaMemory.get(), arenaMemory.get(),
                                 arenaMemory ? arenaMemory.get() + RA : nullptr};
        const nk_arena* requestArena = &ownRequestArena;
        if constexpr (kRequestArena < sizeof...(In)) {
            requestArena = &std::get<kRequestArena>(arguments);
            if (nk_arena_used(requestArena) > RA) {
                throw std::runtime_error("failed to allocate space in the arena");
            }
        }
        std::unique_ptr<unsigned char[]> responseMemory(kResponseArenaSize == 0 ||
                                                                kResponseArena < sizeof...(Out)
                                                            ? nullptr
                                                            : new unsigned char[kResponseArenaSize]());
        nk_arena ownResponseArena{responseMemory.get(), responseMemory.get(),
                                  responseMemory.get() + (responseMemory ? kResponseArenaSize : 0)};
        nk_arena* responseArena = &ownResponseArena;
        if constexpr (kResponseArena < sizeof...(Out)) {
            responseArena = &std::get<sizeof...(In) + kResponseArena>(arguments);
        }
        PackInputs<In...>(request.Get(), &ownRequestArena, arguments, std::index_sequence_for<In...>{});

        const int result =
            m_transport.ops->call(&m_transport, request.Get(), requestArena, response.Get(), responseArena);
        if (result != 0) {
            return result;
        }
        if (MessageHeader::IsServerFailure(response.Get())) {
            throw std::runtime_error(FailureText<M>(" server error"));
        }
        LoadOutputs<sizeof...(In), Out...>(response.Get(), responseArena, arguments,
                                           std::index_sequence_for<Out...>{});
        return 0;
    }

    template <typename... In, typename Arguments, std::size_t... I>
    static void PackInputs([[maybe_unused]] nk_message* request, [[maybe_unused]] nk_arena* arena,
                           [[maybe_unused]] Arguments& arguments, std::index_sequence<I...>) {
        (In::Pack(request, std::get<I>(arguments), arena), ...);
    }

    template <std::size_t First, typename... Out, typename Arguments, std::size_t... O>
    static void LoadOutputs([[maybe_unused]] const nk_message* response,
                            [[maybe_unused]] const nk_arena* responseArena,
                            [[maybe_unused]] Arguments& arguments, std::index_sequence<O...>) {
        (Out::Load(response, std::get<First + O>(arguments), responseArena), ...);
    }

    template <typename M>
    static std::string FailureText(std::string_view suffix) {
        std::string text(Description::kFailurePrefix);
        text += M::kName;
        text += suffix;
        return text;
    }

    api_v1::EndpointHandle m_endpoint;
    api_v1::SharedResourceProvider m_resources;
    NkHosTransport m_transport{};
};

}  // namespace hosipc_detail::idl_traits
