#pragma once

#include <QImage>

namespace vdi::uikit::visual {

// How far a rendered image is from its reference.
struct ImageDifference {
    bool sameSize = false;
    // Pixels where some channel (red, green, blue or alpha) differs by more than the tolerance.
    qsizetype differingPixels = 0;
    // The largest channel difference seen anywhere, tolerated or not.
    int maxChannelDelta = 0;
    // Red where the pixels differ beyond the tolerance, a faint copy of the reference elsewhere.
    QImage map;
};

// Compares two images pixel by pixel; a channel difference up to channelTolerance is no difference.
ImageDifference CompareImages(const QImage& actual, const QImage& expected, int channelTolerance);

}  // namespace vdi::uikit::visual
