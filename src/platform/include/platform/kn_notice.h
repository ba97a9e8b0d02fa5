/* Notices: waiting for events on handles.
 *
 * A notice holds subscriptions (handle, event mask, event id). KnNoticeGetEvent waits until a
 * subscribed handle has events and reports one EventDesc per handle. Events are raised by the
 * other end of an object handle with KnNoticeSetObjectEvent; the closed event (bit 0) is raised
 * when the other end of a handle goes away (closed, or its process ended).
 * KnNoticeDropAndWake wakes a waiter on any thread with NK_ENOTFOUND (0x90000013), and every later
 * wait on that notice returns the same at once. A wait that runs out answers NK_ETIMEOUT
 * (0x90000014). All calls but KnNoticeRelease may run on several threads at once; a subscribed
 * handle stays open until it is unsubscribed or the notice released.
 */
#ifndef HL_PLATFORM_KN_NOTICE_H
#define HL_PLATFORM_KN_NOTICE_H

#include <platform/nk_result.h>

#ifdef __cplusplus
extern "C" {
#endif

#define KN_NOTICE_EVENT_CLOSED 0x1u

typedef struct SNotice SNotice;

typedef struct EventDesc {
    unsigned int handle;
    unsigned int mask; /* the events that happened, limited to the subscription's mask */
    unsigned long eventId;
} EventDesc;

int KnNoticeCreate(SNotice** notice);
/* NK_EBADHANDLE for an unknown handle. A second subscription of a handle replaces the first. */
int KnNoticeSubscribeToObject(SNotice* notice, unsigned int handle, unsigned int mask, unsigned long eventId);
/* Waits up to `timeoutMs` (NK_TIMEOUT_INFINITE: no limit) and writes at most `maxCount` events. */
int KnNoticeGetEvent(SNotice* notice, unsigned long timeoutMs, unsigned long maxCount, EventDesc* events,
                     unsigned long* count);
/* NK_ENOTFOUND when nothing matched. */
int KnNoticeUnsubscribeFromObject(SNotice* notice, unsigned int handle);
int KnNoticeUnsubscribeFromEvent(SNotice* notice, unsigned long eventId);
int KnNoticeDropAndWake(SNotice* notice);
/* Frees the notice with its subscriptions; no wait may be running on it. */
int KnNoticeRelease(SNotice* notice);
/* Raises `mask` at the other end of the object behind `handle`. NK_EBADHANDLE for a handle that
 * is not an object end; NK_ECLOSED when the other end is gone. */
int KnNoticeSetObjectEvent(unsigned int handle, unsigned int mask);

#ifdef __cplusplus
}
static_assert(sizeof(EventDesc) == 16, "EventDesc is 16 bytes");
#endif

#endif
