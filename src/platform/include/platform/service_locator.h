/* Service locator: named server channels.
 *
 * ServiceLocatorRegister makes a server channel that clients reach under `name` (the `server` of
 * KnCmConnect). The registration id and the channel are separate: ServiceLocatorUnregister only
 * ends the bookkeeping record, and the name stays reachable until the channel handle is closed.
 * Thread-safe.
 */
#ifndef HL_PLATFORM_SERVICE_LOCATOR_H
#define HL_PLATFORM_SERVICE_LOCATOR_H

#include <platform/nk_result.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Returns the server channel's handle and writes the registration id, or returns
 * NK_INVALID_HANDLE (name invalid or in use by a live server; logged). `options` and `flags`
 * are reserved and must be 0. */
unsigned int ServiceLocatorRegister(const char* name, const void* options, unsigned int flags,
                                    unsigned int* id);
/* Returns 0, or NK_ENOTFOUND for an unknown id. */
int ServiceLocatorUnregister(unsigned int id);
/* Opens a channel to the server `server` without resolving a name; NK_INVALID_HANDLE if none. */
unsigned int ServiceLocatorConnect(const char* server);
/* Resolves `interfaceName` on an open channel; NK_INVALID_RIID (0xFFFF) on failure. */
unsigned short ServiceLocatorGetRiid(unsigned int handle, const char* interfaceName);

#ifdef __cplusplus
}
#endif

#endif
