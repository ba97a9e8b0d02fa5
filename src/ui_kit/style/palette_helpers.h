#pragma once

#include <ui_kit/style/gradient.h>

#include <QColor>

#include <memory>

namespace vdi::uikit::utils::style {

// A colour as QColor::setNamedColor reads it: "#RRGGBB", or "#AARRGGBB" with the alpha first.
QColor NamedColor(const char* name);

// The three green gradients, the same in every palette.
std::shared_ptr<Gradient> MakeGreenPrimaryGradient();
std::shared_ptr<Gradient> MakeGreenSubPrimaryGradient();
std::shared_ptr<Gradient> MakeGreenDisabledGradient();

}  // namespace vdi::uikit::utils::style
