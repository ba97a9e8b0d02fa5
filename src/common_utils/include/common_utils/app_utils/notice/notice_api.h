#pragma once

// INoticeApi over the hosted platform: each call goes unchanged to the platform function of the same
// name. Stateless; any thread.

#include <common_utils/app_utils/notice/i_notice_api.h>

namespace common_utils::app_utils::notice {

class NoticeApi final : public INoticeApi {
public:
    int KnNoticeCreate(SNotice** notice) const noexcept override;
    int KnNoticeSubscribeToObject(SNotice* notice, unsigned int handle, unsigned int mask,
                                  unsigned long eventId) const noexcept override;
    int KnNoticeGetEvent(SNotice* notice, unsigned long timeoutMs, unsigned long maxCount, EventDesc* events,
                         unsigned long* count) const noexcept override;
    int KnNoticeUnsubscribeFromObject(SNotice* notice, unsigned int handle) const noexcept override;
    int KnNoticeUnsubscribeFromEvent(SNotice* notice, unsigned long eventId) const noexcept override;
    int KnNoticeDropAndWake(SNotice* notice) const noexcept override;
    int KnNoticeRelease(SNotice* notice) const noexcept override;
    int KnNoticeSetObjectEvent(unsigned int handle, unsigned int mask) const noexcept override;
};

}  // namespace common_utils::app_utils::notice
