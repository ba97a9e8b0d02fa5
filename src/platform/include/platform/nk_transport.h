/* The transport object over one channel handle.
 *
 * A client's `call` sends a request with its arena and waits for the response and its arena. A
 * server's `receive` takes the next request from any client connected to a server channel, and
 * `reply` answers the client of the last `receive` made through the same transport object.
 *
 * Capacities come from the receiving side's buffers: on entry the size word of `response`
 * (or `request` for receive) gives the room for the message (bits 0-22, at least the 24-byte
 * header) and for handle descriptors (bits 23-30); the arena gives room from start to end.
 * On success the message is copied in whole, each handle descriptor holds a handle local to this
 * process, and the arena's bytes start at `start` with `cursor` behind the last received byte.
 * The bytes sent from an arena are those from start to cursor.
 *
 * Results: 0; NK_TRANSPORT_TIMEOUT (-11) when the timeout runs out; NK_ECLOSED when the peer has
 * gone; NK_EMISMATCH when the response's iid or mid differs from the request's (an iid of
 * NK_IID_ANY in the request is not compared); NK_EBADMSG / NK_ETOOBIG for refused frames; the code
 * carried by a server's refusal.
 *
 * Thread: a transport object is used by one thread at a time. Calls on one channel from several
 * transport objects are serialised by the platform. The object is plain data: it owns nothing and
 * needs no clean-up; the handle belongs to whoever opened it.
 */
#ifndef HL_PLATFORM_NK_TRANSPORT_H
#define HL_PLATFORM_NK_TRANSPORT_H

#include <platform/nk_message.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct NkHosTransport NkHosTransport;

typedef struct NkHosTransportOps {
    int (*call)(NkHosTransport* transport, const nk_message* request, const nk_arena* requestArena,
                nk_message* response, nk_arena* responseArena);
    int (*receive)(NkHosTransport* transport, nk_message* request, nk_arena* requestArena);
    int (*reply)(NkHosTransport* transport, const nk_message* response, const nk_arena* responseArena);
} NkHosTransportOps;

struct NkHosTransport {
    const NkHosTransportOps* ops;
    unsigned int handle;
    unsigned int recvTimeoutMs;   /* receive; NK_TIMEOUT_INFINITE = no limit */
    unsigned int sendTimeoutMs;   /* call: waiting for the response; reply: sending */
    unsigned int sequence;        /* of the last call sent */
    unsigned int pendingSequence; /* server: the request that `reply` answers */
    unsigned long long pendingClient;
};

/* Sets the transport up over `handle` with every timeout at no limit. `config` and `flags` are
 * reserved and must be 0. Returns 0, or NK_EINVAL for a null transport. */
int NkHosTransport_Init(NkHosTransport* transport, unsigned int handle, const void* config,
                        unsigned int flags);

/* Sets the receive and send timeouts in milliseconds; NK_TIMEOUT_INFINITE means no limit, and 0
 * means not to wait at all. */
int NkHosSetTransportTimeouts(NkHosTransport* transport, unsigned int receiveMs, unsigned int sendMs);

/* Server: the ids of clients whose connection has ended since the last call, as `pendingClient`
 * named them, at most `room` of them. Returns how many were written (0 when none), or NK_EINVAL /
 * NK_EBADHANDLE. The channel keeps that list only once this was called once, so a server that never
 * asks keeps nothing. */
int NkHosTakeClosedClients(NkHosTransport* transport, unsigned long long* ids, unsigned int room);

/* The process id of the client whose request the last `receive` on this server transport took, as
 * the kernel gave it when that client connected. Returns 0 with `*pid` set; NK_EINVAL when no
 * request is pending (none received, or already answered); NK_ECLOSED when that client has gone;
 * NK_EBADHANDLE when the transport is not a server channel's. */
int NkHosTransportPeerPid(const NkHosTransport* transport, int* pid);

#ifdef __cplusplus
}

inline int NkHosTransport_Init(NkHosTransport* transport, unsigned int handle) {
    return NkHosTransport_Init(transport, handle, nullptr, 0);
}
#endif

#endif
