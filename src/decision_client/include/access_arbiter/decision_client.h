/* The AccessArbiter client library: asks the person at the device, through the decision service of
 * the session, whether a remote request to manage the device may go ahead.
 *
 *     hl_decision_client* client = hl_decision_client_new();
 *     int approved = 0;
 *     int status = hl_decision_connect(client, 5000);      // wait up to 5 s for the service
 *     if (status == HL_DECISION_OK)
 *         status = hl_decision_ask(client, 0, &approved);  // 0: as long as the person takes
 *     if (status != HL_DECISION_OK)
 *         fprintf(stderr, "%s: %s\n", hl_decision_status_text(status), hl_decision_error(client));
 *     hl_decision_client_free(client);
 *
 * Build with `pkg-config --cflags --libs access-arbiter-client`, or in CMake
 * `find_package(AccessArbiterClient)` and `target_link_libraries(app AccessArbiter::client)`.
 *
 * Thread: one client is used by one thread at a time; separate clients are independent. The
 * library logs nothing; what went wrong is in the status and in hl_decision_error().
 */
#ifndef ACCESS_ARBITER_DECISION_CLIENT_H
#define ACCESS_ARBITER_DECISION_CLIENT_H

#ifdef __cplusplus
extern "C" {
#endif

enum hl_decision_status {
    HL_DECISION_OK = 0,
    HL_DECISION_NOT_PUBLISHED = 1, /* nothing in the session publishes the decision service */
    HL_DECISION_UNREACHABLE = 2,   /* the service is published, but its server does not answer */
    HL_DECISION_TIMED_OUT = 3,     /* no decision within the time limit of hl_decision_ask */
    HL_DECISION_PEER_GONE = 4,     /* the service closed the channel or ended before it answered */
    HL_DECISION_SERVER_FAILURE = 5, /* the service failed the call */
    HL_DECISION_FAILURE = 6,       /* anything else: not connected, an odd answer, no memory */
};

typedef struct hl_decision_client hl_decision_client;

/* A client that is not connected yet; NULL when there is no memory. */
hl_decision_client* hl_decision_client_new(void);
/* Closes the connection, if any, and frees the client. NULL is allowed. */
void hl_decision_client_free(hl_decision_client* client);

/* Finds the decision service through the session's registry and connects to it, trying again for
 * up to `wait_for_service_ms` milliseconds (0: once) while it is not published or does not answer.
 * HL_DECISION_OK, HL_DECISION_NOT_PUBLISHED or HL_DECISION_UNREACHABLE. */
int hl_decision_connect(hl_decision_client* client, unsigned int wait_for_service_ms);

/* Asks for a decision and waits for it, for up to `timeout_ms` milliseconds (0: as long as the person
 * takes). On HL_DECISION_OK `*approved` is 1 for Approve and 0 for Decline. */
int hl_decision_ask(hl_decision_client* client, unsigned int timeout_ms, int* approved);

/* What the last failure of `client` was, in words (a server name, a result code); "" when none. */
const char* hl_decision_error(const hl_decision_client* client);

/* A short text for a status: "ok", "service not found", "timed out", ... */
const char* hl_decision_status_text(int status);

#ifdef __cplusplus
}
#endif

#endif /* ACCESS_ARBITER_DECISION_CLIENT_H */
