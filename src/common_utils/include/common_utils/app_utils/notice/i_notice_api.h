#pragma once

// The platform's notice calls as a table, so that the layer above doesn't name the platform. Every
// call returns the platform's own 32-bit result. Any thread; see platform/kn_notice.h for which calls
// may run at once on one notice.

#include <platform/kn_notice.h>

namespace common_utils::app_utils::notice {

class INoticeApi {
public:
    virtual ~INoticeApi() = default;
    virtual int KnNoticeCreate(SNotice** notice) const = 0;
    virtual int KnNoticeSubscribeToObject(SNotice* notice, unsigned int handle, unsigned int mask,
                                          unsigned long eventId) const = 0;
    virtual int KnNoticeGetEvent(SNotice* notice, unsigned long timeoutMs, unsigned long maxCount,
                                 EventDesc* events, unsigned long* count) const = 0;
    virtual int KnNoticeUnsubscribeFromObject(SNotice* notice, unsigned int handle) const = 0;
    virtual int KnNoticeUnsubscribeFromEvent(SNotice* notice, unsigned long eventId) const = 0;
    virtual int KnNoticeDropAndWake(SNotice* notice) const = 0;
    virtual int KnNoticeRelease(SNotice* notice) const = 0;
    virtual int KnNoticeSetObjectEvent(unsigned int handle, unsigned int mask) const = 0;
};

}  // namespace common_utils::app_utils::notice
