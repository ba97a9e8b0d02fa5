#pragma once

#include "ui/window_factory/i_window.h"

#include <memory>

namespace windows::components {

// Builds windows. CreateWindow runs on the Qt main thread and reports failure by an empty pointer.
class IWindowFactory {
public:
    virtual ~IWindowFactory() = default;

    virtual std::shared_ptr<IWindow> CreateWindow() noexcept = 0;
};

}  // namespace windows::components
