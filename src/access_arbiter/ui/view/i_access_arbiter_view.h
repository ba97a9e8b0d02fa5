#pragma once

#include <common/utils/callable.h>

namespace access_arbiter::ui {

// The passive dialog view: one visibility flag. Hide and Show run on the Qt main thread; other
// threads reach Show through QtInvoker, which is why the view is an ICallable.
class IAccessArbiterView : public common::utils::ICallable {
public:
    virtual void Hide() noexcept = 0;
    virtual void Show() noexcept = 0;
};

}  // namespace access_arbiter::ui
