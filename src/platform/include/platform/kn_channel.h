/* Channels and handles.
 *
 * A handle is a 32-bit value that fits 24 bits, local to the process; NK_INVALID_HANDLE is
 * invalid. Channel handles come from KnCmConnect or ServiceLocatorConnect, server channel handles
 * from ServiceLocatorRegister, object handles from KnHandleCreatePair or from a received message.
 * All calls are thread-safe.
 */
#ifndef HL_PLATFORM_KN_CHANNEL_H
#define HL_PLATFORM_KN_CHANNEL_H

#include <platform/nk_result.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Opens a channel to the server named `server` and resolves `service` (an endpoint name or
 * interface type of that server) to its riid. Waits at most `timeoutMs` (NK_TIMEOUT_INFINITE: no
 * limit) for the server's answer.
 * Returns 0 with `*handle` and `*riid` set; NK_ENOTFOUND at once when no such server is there yet;
 * NK_ENOENDPOINT when the server does not offer `service`; NK_ETIMEOUT; NK_EACCESS; NK_EINVAL.
 * On failure `*handle` and `*riid` are left as they were. */
int KnCmConnect(const char* server, const char* service, unsigned int timeoutMs, unsigned int* handle,
                unsigned int* riid);

/* Closes a handle of any kind. Closing a server channel stops it and removes its name.
 * Returns 0 or NK_EBADHANDLE. */
int KnHandleClose(unsigned int handle);

/* Sleeps for `milliseconds`. Returns 0. */
int KnSleep(unsigned int milliseconds);

/* Makes an object with two ends. An event raised on one end (KnNoticeSetObjectEvent) is seen by
 * subscribers of the other end, and closing one end raises the closed event at the other. Either
 * end can be sent in a message. Returns 0 with both handles set, or a failure. */
int KnHandleCreatePair(unsigned int* first, unsigned int* second);

#ifdef __cplusplus
}
#endif

#endif
