#include <common_utils/app_utils/notice/notice.h>

#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/result_code.h>

#include <fmt/format.h>

#include <utility>

namespace common_utils::app_utils::notice {

namespace {

constexpr int kPlatformNotFound = static_cast<int>(0x90000013u);
constexpr int kPlatformTimeout = static_cast<int>(0x90000014u);
constexpr unsigned long kNoLimit = 0xffffffffUL;

}  // namespace

Notice::Notice(std::shared_ptr<INoticeApi> api) : m_api(std::move(api)) {
    HCA_CHECK(m_api != nullptr) << "Notice api is nullptr";
    const int result = m_api->KnNoticeCreate(&m_notice);
    HCA_CHECK(result == 0) << fmt::format("Notice: failed to create notice 0x{:x}",
                                          static_cast<unsigned>(result));
}

Notice::~Notice() {
    const int result = m_api->KnNoticeRelease(m_notice);
    HL_LOG(hos::logger::LogLevel::Debug, "KnNoticeRelease result 0x{:x}", static_cast<unsigned>(result));
}

std::int32_t Notice::TranslateResult(int platformResult) {
    switch (platformResult) {
        case 0:
            return hca::result_code::kNoError;
        case kPlatformNotFound:
            return hca::result_code::kNotFound;
        case kPlatformTimeout:
            return hca::result_code::kOperationTimeout;
        default:
            return hca::result_code::kUnspecifiedError;
    }
}

std::int32_t Notice::SubscribeToObject(const unsigned int& handle, unsigned int mask,
                                       unsigned long eventId) const {
    const int result = m_api->KnNoticeSubscribeToObject(m_notice, handle, mask, eventId);
    HL_LOG(hos::logger::LogLevel::Debug, "KnNoticeSubscribeToObject result: 0x{:x}",
           static_cast<unsigned>(result));
    return TranslateResult(result);
}

std::int32_t Notice::WaitForEvents(const std::chrono::milliseconds& timeout, unsigned long maxCount,
                                   std::vector<EventDesc>& events) const {
    if (timeout.count() < 0) {
        HL_LOG(hos::logger::LogLevel::Error,
               "Notice: WaitForEvents: failed to wait for events: time isn't valid - {}", timeout.count());
        return hca::result_code::kInvalidArgument;
    }
    return WaitForEvents(static_cast<unsigned long>(timeout.count()), maxCount, events);
}

std::int32_t Notice::WaitEvents(unsigned long maxCount, std::vector<EventDesc>& events) const {
    return WaitForEvents(kNoLimit, maxCount, events);
}

std::int32_t Notice::WaitForEvents(unsigned long timeoutMs, unsigned long maxCount,
                                   std::vector<EventDesc>& events) const {
    std::vector<EventDesc> received(maxCount, EventDesc{});
    unsigned long count = 0;
    const int result = m_api->KnNoticeGetEvent(m_notice, timeoutMs, maxCount,
                                               maxCount == 0 ? nullptr : received.data(), &count);
    if (result == 0) {
        received.resize(count);
        // The caller's storage is replaced, not reused: references into it are stale from here on.
        std::vector<EventDesc>().swap(events);
        events = std::move(received);
    }
    HL_LOG(hos::logger::LogLevel::Debug, "KnNoticeGetEvent result: 0x{:x}", static_cast<unsigned>(result));
    return TranslateResult(result);
}

std::int32_t Notice::UnsubscribeFromObject(const unsigned int& handle) const {
    const int result = m_api->KnNoticeUnsubscribeFromObject(m_notice, handle);
    HL_LOG(hos::logger::LogLevel::Debug, "KnNoticeUnsubscribeFromObject result: 0x{:x}",
           static_cast<unsigned>(result));
    return TranslateResult(result);
}

std::int32_t Notice::UnsubscribeFromEvent(unsigned long eventId) const {
    const int result = m_api->KnNoticeUnsubscribeFromEvent(m_notice, eventId);
    HL_LOG(hos::logger::LogLevel::Debug, "KnNoticeUnsubscribeFromEvent result: 0x{:x}",
           static_cast<unsigned>(result));
    return TranslateResult(result);
}

std::int32_t Notice::DropAndWake() const {
    const int result = m_api->KnNoticeDropAndWake(m_notice);
    HL_LOG(hos::logger::LogLevel::Debug, "KnNoticeDropAndWake result: 0x{:x}", static_cast<unsigned>(result));
    return TranslateResult(result);
}

std::int32_t Notice::SetObjectEvent(const unsigned int& handle, unsigned int mask) const {
    const int result = m_api->KnNoticeSetObjectEvent(handle, mask);
    HL_LOG(hos::logger::LogLevel::Debug, "KnNoticeSetObjectEvent result: 0x{:x}",
           static_cast<unsigned>(result));
    return TranslateResult(result);
}

}  // namespace common_utils::app_utils::notice
