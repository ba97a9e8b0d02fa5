#pragma once

// Makes Notice objects over one shared INoticeApi (never null: "Notice api is nullptr").

#include <common_utils/app_utils/notice/i_notice_api.h>
#include <common_utils/app_utils/notice/i_notice_factory.h>

#include <memory>

namespace common_utils::app_utils::notice {

class NoticeFactory final : public INoticeFactory {
public:
    explicit NoticeFactory(std::shared_ptr<INoticeApi> api);
    std::unique_ptr<INotice> CreateNotice() override;

private:
    std::shared_ptr<INoticeApi> m_api;
};

}  // namespace common_utils::app_utils::notice
