// The C entry points of the transport object: its operation table and set-up.
#include <platform/nk_result.h>
#include <platform/nk_transport.h>

#include <algorithm>
#include <cstring>

#include "core/handle_table.h"
#include "ipc/client_channel.h"
#include "ipc/server_channel.h"

namespace {

using hos::platform::Deadline;
using hos::platform::HandleObject;
using hos::platform::HandleTable;

std::shared_ptr<HandleObject> FindOfKind(unsigned int handle, HandleObject::Kind kind) {
    auto object = HandleTable::Instance().Find(handle);
    return object && object->GetKind() == kind ? object : nullptr;
}

int Call(NkHosTransport* transport, const nk_message* request, const nk_arena* requestArena,
         nk_message* response, nk_arena* responseArena) {
    if (transport == nullptr) {
        return NK_EINVAL;
    }
    const auto channel = FindOfKind(transport->handle, HandleObject::Kind::Channel);
    if (!channel) {
        return NK_EBADHANDLE;
    }
    return hos::platform::client_channel::Call(*channel, transport, request, requestArena, response,
                                               responseArena);
}

int Receive(NkHosTransport* transport, nk_message* request, nk_arena* requestArena) {
    if (transport == nullptr || request == nullptr) {
        return NK_EINVAL;
    }
    const auto server = FindOfKind(transport->handle, HandleObject::Kind::Server);
    if (!server) {
        return NK_EBADHANDLE;
    }
    hos::platform::ServerChannel::Pending pending;
    const int rc = server->Server()->Receive(request, requestArena,
                                             Deadline::FromTimeoutMs(transport->recvTimeoutMs), pending);
    if (rc == NK_EOK) {
        transport->pendingClient = pending.client;
        transport->pendingSequence = pending.sequence;
    }
    return rc;
}

int Reply(NkHosTransport* transport, const nk_message* response, const nk_arena* responseArena) {
    if (transport == nullptr || response == nullptr) {
        return NK_EINVAL;
    }
    const auto server = FindOfKind(transport->handle, HandleObject::Kind::Server);
    if (!server) {
        return NK_EBADHANDLE;
    }
    if (transport->pendingClient == 0) {
        return NK_EINVAL;
    }
    const hos::platform::ServerChannel::Pending pending{transport->pendingClient, transport->pendingSequence};
    // A request is answered once; a second reply would reach a client that waits for another.
    transport->pendingClient = 0;
    return server->Server()->Reply(pending, response, responseArena);
}

}  // namespace

extern "C" int NkHosTakeClosedClients(NkHosTransport* transport, unsigned long long* ids, unsigned int room) {
    if (transport == nullptr || (ids == nullptr && room != 0)) {
        return NK_EINVAL;
    }
    const auto server = FindOfKind(transport->handle, HandleObject::Kind::Server);
    if (!server) {
        return NK_EBADHANDLE;
    }
    const auto closed = server->Server()->TakeClosedClients(room);
    std::copy(closed.begin(), closed.end(), ids);
    return static_cast<int>(closed.size());
}

namespace {

const NkHosTransportOps kOperations{&Call, &Receive, &Reply};

}  // namespace

extern "C" int NkHosTransport_Init(NkHosTransport* transport, unsigned int handle, const void* /*config*/,
                                   unsigned int /*flags*/) {
    if (transport == nullptr) {
        return NK_EINVAL;
    }
    std::memset(transport, 0, sizeof(*transport));
    transport->ops = &kOperations;
    transport->handle = handle;
    transport->recvTimeoutMs = NK_TIMEOUT_INFINITE;
    transport->sendTimeoutMs = NK_TIMEOUT_INFINITE;
    return NK_EOK;
}

extern "C" int NkHosTransportPeerPid(const NkHosTransport* transport, int* pid) {
    if (transport == nullptr || pid == nullptr || transport->pendingClient == 0) {
        return NK_EINVAL;
    }
    const auto server = FindOfKind(transport->handle, HandleObject::Kind::Server);
    if (!server) {
        return NK_EBADHANDLE;
    }
    const pid_t peer = server->Server()->PeerPid(transport->pendingClient);
    if (peer <= 0) {
        return NK_ECLOSED;
    }
    *pid = peer;
    return NK_EOK;
}

extern "C" int NkHosSetTransportTimeouts(NkHosTransport* transport, unsigned int receiveMs,
                                         unsigned int sendMs) {
    if (transport == nullptr) {
        return NK_EINVAL;
    }
    transport->recvTimeoutMs = receiveMs;
    transport->sendTimeoutMs = sendMs;
    return NK_EOK;
}
