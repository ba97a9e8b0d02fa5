#include <common_utils/app_utils/notice/notice_api.h>

namespace common_utils::app_utils::notice {

int NoticeApi::KnNoticeCreate(SNotice** notice) const noexcept {
    return ::KnNoticeCreate(notice);
}

int NoticeApi::KnNoticeSubscribeToObject(SNotice* notice, unsigned int handle, unsigned int mask,
                                         unsigned long eventId) const noexcept {
    return ::KnNoticeSubscribeToObject(notice, handle, mask, eventId);
}

int NoticeApi::KnNoticeGetEvent(SNotice* notice, unsigned long timeoutMs, unsigned long maxCount,
                                EventDesc* events, unsigned long* count) const noexcept {
    return ::KnNoticeGetEvent(notice, timeoutMs, maxCount, events, count);
}

int NoticeApi::KnNoticeUnsubscribeFromObject(SNotice* notice, unsigned int handle) const noexcept {
    return ::KnNoticeUnsubscribeFromObject(notice, handle);
}

int NoticeApi::KnNoticeUnsubscribeFromEvent(SNotice* notice, unsigned long eventId) const noexcept {
    return ::KnNoticeUnsubscribeFromEvent(notice, eventId);
}

int NoticeApi::KnNoticeDropAndWake(SNotice* notice) const noexcept {
    return ::KnNoticeDropAndWake(notice);
}

int NoticeApi::KnNoticeRelease(SNotice* notice) const noexcept {
    return ::KnNoticeRelease(notice);
}

int NoticeApi::KnNoticeSetObjectEvent(unsigned int handle, unsigned int mask) const noexcept {
    return ::KnNoticeSetObjectEvent(handle, mask);
}

}  // namespace common_utils::app_utils::notice
