#include <common_utils/app_utils/notice/notice_factory.h>

#include <common_utils/app_utils/notice/notice.h>

#include <diagnostics/check.h>

#include <utility>

namespace common_utils::app_utils::notice {

NoticeFactory::NoticeFactory(std::shared_ptr<INoticeApi> api) : m_api(std::move(api)) {
    HCA_CHECK(m_api != nullptr) << "Notice api is nullptr";
}

std::unique_ptr<INotice> NoticeFactory::CreateNotice() {
    return std::make_unique<Notice>(m_api);
}

}  // namespace common_utils::app_utils::notice
