#include "style/palette_helpers.h"

namespace vdi::uikit::utils::style {

namespace {

std::shared_ptr<Gradient> MakeFullLengthGradient(const char* startColor, const char* stopColor) {
    return std::make_shared<Gradient>(NamedColor(startColor), 0.0, NamedColor(stopColor), 1.0);
}

}  // namespace

QColor NamedColor(const char* name) {
    QColor color;
    color.setNamedColor(QLatin1StringView(name));
    return color;
}

std::shared_ptr<Gradient> MakeGreenPrimaryGradient() {
    return MakeFullLengthGradient("#6AD62B", "#1CA88C");
}

std::shared_ptr<Gradient> MakeGreenSubPrimaryGradient() {
    return MakeFullLengthGradient("#296AD62B", "#291CA88C");
}

std::shared_ptr<Gradient> MakeGreenDisabledGradient() {
    return MakeFullLengthGradient("#9981DC4C", "#9941B79D");
}

}  // namespace vdi::uikit::utils::style
