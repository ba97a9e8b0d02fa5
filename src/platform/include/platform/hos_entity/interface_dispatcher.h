// One served interface of a component: its number relative to the dispatcher's riid and who serves
// it. Plain record. The server type lives in the IPC runtime above the platform, hence only declared.
#pragma once

#include <cstdint>
#include <memory>

namespace hosipc_detail::api_v1 {
class IDispatcher;
}

namespace hos::entity {

struct InterfaceDispatcher {
    std::uint16_t id = 0;
    std::shared_ptr<hosipc_detail::api_v1::IDispatcher> dispatcher;
};

}  // namespace hos::entity
