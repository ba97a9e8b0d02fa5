#pragma once
// What the settings client does with one IPC call: CallNk runs it and turns what the generated proxy
// throws into the transport's result (nk: 0, NK_TRANSPORT_TIMEOUT, NK_ECLOSED, ...; NK_EFAIL for a
// server failure or an input the proxy refused), and ReportCallFailure writes the failure into a
// tracer. Any thread.

#include <ipc_runtime/idl/proxy_base.h>

#include <diagnostics/log_level.h>
#include <diagnostics/result_code.h>
#include <diagnostics/tracer.h>

#include <platform/nk_result.h>

#include <cstdint>
#include <exception>
#include <string_view>
#include <type_traits>

namespace settings_manager::ipc::impl {

inline constexpr std::int32_t kCallFailed = static_cast<std::int32_t>(0x80000059u);
inline constexpr std::int32_t kArenaFailed = static_cast<std::int32_t>(0x80000062u);
inline constexpr std::int32_t kWrongData = static_cast<std::int32_t>(0x80000074u);

// A call that returns an int returns the transport's result itself (0 when it went through).
template <typename Call>
int CallNk(Call&& call) {
    try {
        if constexpr (std::is_same_v<std::invoke_result_t<Call>, int>) {
            return call();
        } else {
            call();
            return 0;
        }
    } catch (const hosipc_detail::idl_traits::TransportError& error) {
        return error.Result();
    } catch (const std::exception&) {
        return NK_EFAIL;
    }
}

// Raises the level to Error when nk isn't 0, else to Warning, appends
// ": <method> call error: nk = <nk>, hca = <text of rc>" and returns 0x80000059 when nk isn't 0, else rc.
inline std::int32_t ReportCallFailure(trace::Tracer& tracer, std::string_view method, int nk,
                                      std::int32_t rc) {
    tracer.RaiseLevel(nk != 0 ? hos::logger::LogLevel::Error : hos::logger::LogLevel::Warning);
    trace::Tracer::PutImpl(tracer.Result(), ": {} call error: nk = {}, hca = {}", method, nk,
                           fdn::hcax::ResultCodeText(rc));
    return nk != 0 ? kCallFailed : rc;
}

}  // namespace settings_manager::ipc::impl
