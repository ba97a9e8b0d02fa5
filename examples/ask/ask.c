/* Asks the person at the device for a decision through the installed client library, as another
 * program of the environment would: connect (waiting up to 30 s for the service), ask (waiting as
 * long as the person takes, or TIMEOUT_MS), print the answer.
 *   ask [TIMEOUT_MS]
 * Exit status: 0 approved, 1 declined, 2 no decision (the reason on standard error). */
#include <access_arbiter/decision_client.h>

#include <stdio.h>
#include <stdlib.h>

int main(int argc, char** argv) {
    const unsigned int timeout_ms = argc > 1 ? (unsigned int)strtoul(argv[1], NULL, 10) : 0;
    hl_decision_client* client = hl_decision_client_new();
    int approved = 0;
    int status = hl_decision_connect(client, 30000);
    if (status == HL_DECISION_OK) {
        status = hl_decision_ask(client, timeout_ms, &approved);
    }
    if (status != HL_DECISION_OK) {
        fprintf(stderr, "ask: %s %s\n", hl_decision_status_text(status), hl_decision_error(client));
        hl_decision_client_free(client);
        return 2;
    }
    hl_decision_client_free(client);
    puts(approved ? "approved" : "declined");
    return approved ? 0 : 1;
}
