#pragma once

#include <QImage>

#include <algorithm>
#include <cstdlib>

namespace access_arbiter::testing {

// Share of pixels of which one channel (alpha too when `withAlpha`; a screenshot has none) is off by
// more than 48: anti-aliasing and font hinting of another machine stay below that. 1 when the sizes
// differ.
inline double DifferingShare(const QImage& actualImage, const QImage& expectedImage, bool withAlpha) {
    const QImage actual = actualImage.convertToFormat(QImage::Format_ARGB32);
    const QImage expected = expectedImage.convertToFormat(QImage::Format_ARGB32);
    if (actual.size() != expected.size()) {
        return 1.0;
    }
    qint64 differing = 0;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb a = actual.pixel(x, y);
            const QRgb e = expected.pixel(x, y);
            const int alpha = withAlpha ? std::abs(qAlpha(a) - qAlpha(e)) : 0;
            differing += std::max({std::abs(qRed(a) - qRed(e)), std::abs(qGreen(a) - qGreen(e)),
                                   std::abs(qBlue(a) - qBlue(e)), alpha}) > 48;
        }
    }
    return static_cast<double>(differing) / (static_cast<double>(actual.width()) * actual.height());
}

}  // namespace access_arbiter::testing
