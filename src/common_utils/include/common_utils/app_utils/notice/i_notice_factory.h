#pragma once

// Makes notices. Any thread; the caller owns what it gets.

#include <common_utils/app_utils/notice/i_notice.h>

#include <memory>

namespace common_utils::app_utils::notice {

class INoticeFactory {
public:
    virtual ~INoticeFactory() = default;
    virtual std::unique_ptr<INotice> CreateNotice() = 0;
};

}  // namespace common_utils::app_utils::notice
