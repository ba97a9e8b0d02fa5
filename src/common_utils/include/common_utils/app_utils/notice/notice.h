#pragma once

// INotice over an INoticeApi. The constructor creates the platform notice (throws
// hca::CheckFailedException "Notice: failed to create notice 0x.." on failure, "Notice api is nullptr"
// for a null api); the destructor releases it with whatever subscriptions remain, and no wait may be
// running on it then. Every operation logs the platform's result at level Debug before translating it.
// Holds no lock.

#include <common_utils/app_utils/notice/i_notice.h>
#include <common_utils/app_utils/notice/i_notice_api.h>

#include <memory>

namespace common_utils::app_utils::notice {

class Notice final : public INotice {
public:
    explicit Notice(std::shared_ptr<INoticeApi> api);
    ~Notice() override;

    Notice(const Notice&) = delete;
    Notice& operator=(const Notice&) = delete;

    // The program's code for a platform result of a notice call.
    static std::int32_t TranslateResult(int platformResult);

    std::int32_t SubscribeToObject(const unsigned int& handle, unsigned int mask,
                                   unsigned long eventId) const override;
    std::int32_t WaitForEvents(const std::chrono::milliseconds& timeout, unsigned long maxCount,
                               std::vector<EventDesc>& events) const override;
    std::int32_t WaitEvents(unsigned long maxCount, std::vector<EventDesc>& events) const override;
    std::int32_t UnsubscribeFromObject(const unsigned int& handle) const override;
    std::int32_t UnsubscribeFromEvent(unsigned long eventId) const override;
    std::int32_t DropAndWake() const override;
    std::int32_t SetObjectEvent(const unsigned int& handle, unsigned int mask) const override;

    // Both waits: timeoutMs 0xffffffff is no limit.
    std::int32_t WaitForEvents(unsigned long timeoutMs, unsigned long maxCount,
                               std::vector<EventDesc>& events) const;

private:
    std::shared_ptr<INoticeApi> m_api;
    SNotice* m_notice = nullptr;
};

}  // namespace common_utils::app_utils::notice
