#pragma once

#include <platform/nk_message.h>

namespace hosipc_detail::api_v1 {

// Server side of one IDL interface: turns a received request into the response the loop sends back.
// Called on the server loop's thread only. The operation deliberately stands before the destructor.
class IDispatcher {
public:
    // riid: the first interface id of the component; not used by generated stubs.
    // A request whose method the interface doesn't know leaves the response untouched.
    virtual void DispatchRequest(unsigned short riid, const nk_message* request, const nk_arena* requestArena,
                                 nk_message* response, nk_arena* responseArena) = 0;
    virtual ~IDispatcher() = default;
};

}  // namespace hosipc_detail::api_v1
