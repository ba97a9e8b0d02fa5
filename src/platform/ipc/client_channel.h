// The client side of a channel: opening it, the name handshake, and calls.
// Free functions; any thread. Calls on one channel are serialised by its call mutex.
#pragma once

#include <string_view>

#include <platform/nk_transport.h>

#include "core/deadline.h"
#include "core/handle_object.h"
#include "core/unique_fd.h"

namespace hos::platform::client_channel {

// Connects to server `server` in the runtime directory. Returns 0 with `out` set; NK_ENOTFOUND
// when no server is listening under that name; NK_EINVAL, NK_EACCESS, NK_ETIMEOUT or NK_EFAIL.
int Connect(std::string_view server, const Deadline& deadline, UniqueFd& out);

// Asks the server for the riid of `name`. Returns 0 with `riid` set; NK_ENOENDPOINT, NK_ETIMEOUT,
// NK_ECLOSED, NK_EACCESS (refused by the server) or NK_EBADMSG.
int Resolve(HandleObject& channel, std::string_view name, const Deadline& deadline, unsigned int& riid);

// The transport's call operation on `channel` (see nk_transport.h).
int Call(HandleObject& channel, NkHosTransport* transport, const nk_message* request,
         const nk_arena* requestArena, nk_message* response, nk_arena* responseArena);

}  // namespace hos::platform::client_channel
