#pragma once

#include <ipc_runtime/i_dispatcher.h>
#include <ipc_runtime/idl/interface_description.h>
#include <ipc_runtime/shared_resource_provider.h>

#include <diagnostics/log_rate_limiter.h>

#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

namespace hosipc_detail::idl_traits {

// Server side of the IDL interface T, produced from InterfaceDescription<T>. Calls the implementation
// for each known request and writes its outputs into the response. The implementation isn't owned and
// must outlive the stub; the stub runs on the server loop's thread only and has no lock.
template <typename T>
class Stub final : public api_v1::IDispatcher {
    // Checks the whole description when a stub is declared.
    static_assert(sizeof(typename InterfaceDescription<T>::Methods) != 0);

public:
    Stub(T* implementation, api_v1::SharedResourceProvider resources)
        : m_implementation(implementation), m_resources(std::move(resources)) {}

    // A request of an unknown method leaves the response as the caller prepared it. Otherwise the
    // response gets the request's iid, the method's mid and either the outputs with the response's size
    // word, or, when the implementation threw (or the request was malformed), the bare failure word
    // 0x80000018. Exceptions of the implementation are swallowed without a trace.
    void DispatchRequest(unsigned short /*riid*/, const nk_message* request, const nk_arena* requestArena,
                         nk_message* response, nk_arena* responseArena) override {
        Dispatch(typename InterfaceDescription<T>::Methods{}, request, requestArena, response, responseArena);
    }

    // The handles a request of method `mid` carries to the implementation: its first descriptors,
    // as many as the method's handle fields (0 for an unknown method). The serving host closes the
    // others.
    static std::uint32_t RequestHandles(std::uint16_t mid) {
        return RequestHandlesOf(typename InterfaceDescription<T>::Methods{}, mid);
    }
    // The most handles any request of the interface carries.
    static constexpr std::uint32_t MostRequestHandles() {
        return MostRequestHandlesOf(typename InterfaceDescription<T>::Methods{});
    }

private:
    template <typename... Methods>
    static std::uint32_t RequestHandlesOf(MethodList<Methods...>, std::uint16_t mid) {
        std::uint32_t handles = 0;
        (void)(((Methods::kMid == mid) && (handles = Methods::Request::kHandles, true)) || ...);
        return handles;
    }
    template <typename... Methods>
    static constexpr std::uint32_t MostRequestHandlesOf(MethodList<Methods...>) {
        std::uint32_t most = 0;
        ((most = Methods::Request::kHandles > most ? Methods::Request::kHandles : most), ...);
        return most;
    }

    template <typename... Methods>
    void Dispatch(MethodList<Methods...>, const nk_message* request, const nk_arena* requestArena,
                  nk_message* response, nk_arena* responseArena) {
        const std::uint16_t mid = MessageHeader::Mid(request);
        (void)((Methods::kMid == mid &&
                (Serve<Methods>(request, requestArena, response, responseArena), true)) ||
               ...);
    }

    template <typename M>
    void Serve(const nk_message* request, const nk_arena* requestArena, nk_message* response,
               nk_arena* responseArena) {
        const std::uint16_t iid = MessageHeader::Iid(request);
        // The response arena sends what is written from its start; a failure sends none of it.
        if (responseArena != nullptr) {
            responseArena->cursor = responseArena->start;
        }
        try {
            ServeFields<M>(typename M::Request{}, typename M::Response{}, request, requestArena, response,
                           responseArena);
            MessageHeader::SetSizeWord(response, M::Response::kSizeWord);
        } catch (...) {
            MessageHeader::SetSizeWord(response, MessageHeader::kServerFailureWord);
            if (responseArena != nullptr) {
                responseArena->cursor = responseArena->start;
            }
        }
        MessageHeader::SetIid(response, iid);
        MessageHeader::SetMid(response, M::kMid);
    }

    template <typename M, std::uint32_t RS, std::uint32_t RA, typename... In, std::uint32_t PS,
              typename... Out>
    void ServeFields(Request<RS, RA, In...>, Response<PS, Out...>, const nk_message* request,
                     const nk_arena* requestArena, nk_message* response, nk_arena* responseArena) {
        std::tuple<typename In::Value...> inputs = DecodeInputs<M, RS, In...>(request, requestArena);
        std::tuple<typename Out::Value...> outputs{InitialOutput<Out>(responseArena)...};
        Call<M>(inputs, outputs, std::index_sequence_for<In...>{}, std::index_sequence_for<Out...>{});
        StoreOutputs<Out...>(response, responseArena, outputs, std::index_sequence_for<Out...>{});
    }

    // A request that doesn't fit its description is logged here and answered as a server failure.
    template <typename M, std::uint32_t RS, typename... In>
    static std::tuple<typename In::Value...> DecodeInputs(const nk_message* request,
                                                          [[maybe_unused]] const nk_arena* requestArena) {
        try {
            if (MessageHeader::Size(request) < RS) {
                throw std::runtime_error("the request is " + std::to_string(MessageHeader::Size(request)) +
                                         " bytes, expected " + std::to_string(RS));
            }
            return std::tuple<typename In::Value...>{In::Unpack(request, requestArena)...};
        } catch (const std::exception& error) {
            // A client may send nothing else: a few lines a second for each method.
            static hl::diagnostics::LogRateLimiter limiter(3, std::chrono::seconds(1));
            if (const auto admission = limiter.Admit()) {
                std::fprintf(stderr, "hosipc: malformed request of %.*s: %s%s\n",
                             static_cast<int>(M::kName.size()), M::kName.data(), error.what(),
                             admission.Note().c_str());
            }
            throw;
        }
    }

    template <typename M, typename Inputs, typename Outputs, std::size_t... I, std::size_t... O>
    void Call(Inputs& inputs, Outputs& outputs, std::index_sequence<I...>, std::index_sequence<O...>) {
        (m_implementation->*M::kFunction)(std::get<I>(inputs)..., std::get<O>(outputs)...);
    }

    // What the implementation finds in an output: the response arena for a caller-arena field, else
    // a value-initialised one.
    template <typename Out>
    static typename Out::Value InitialOutput([[maybe_unused]] nk_arena* responseArena) {
        if constexpr (CallerArenaField<Out>) {
            if (responseArena == nullptr) {
                throw std::runtime_error("the method needs a response arena");
            }
            return *responseArena;
        } else {
            return typename Out::Value{};
        }
    }

    template <typename... Out, typename Outputs, std::size_t... O>
    static void StoreOutputs([[maybe_unused]] nk_message* response, [[maybe_unused]] nk_arena* responseArena,
                             [[maybe_unused]] const Outputs& outputs, std::index_sequence<O...>) {
        (Out::Store(response, std::get<O>(outputs), responseArena), ...);
    }

    T* m_implementation;
    // Keeps the runtime's resources alive for as long as the stub serves; not read by the stub.
    api_v1::SharedResourceProvider m_resources;
};

}  // namespace hosipc_detail::idl_traits
