#pragma once

// The component's message buffers for the dispatcher loop, sized after the interface's description:
// the largest request (24 bytes, a bare header) and the largest response (32 bytes).

#include <interfaces/hl/access_arbiter/access_arbiter.h>
#include <platform/nk_message.h>

#include <cstdint>

struct hl_access_arbiter_AccessArbiter_component_req {
    nk_message header;
};

struct hl_access_arbiter_AccessArbiter_component_res {
    nk_message header;
    std::uint8_t fields[8];
};

static_assert(sizeof(hl_access_arbiter_AccessArbiter_component_req) == 24);
static_assert(sizeof(hl_access_arbiter_AccessArbiter_component_res) == 32);
