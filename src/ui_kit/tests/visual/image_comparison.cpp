#include "image_comparison.h"

#include <algorithm>
#include <cstdlib>

namespace vdi::uikit::visual {

ImageDifference CompareImages(const QImage& actual, const QImage& expected, int channelTolerance) {
    ImageDifference result;
    result.sameSize = actual.size() == expected.size();
    if (!result.sameSize)
        return result;

    const QImage a = actual.convertToFormat(QImage::Format_ARGB32);
    const QImage e = expected.convertToFormat(QImage::Format_ARGB32);
    result.map = QImage(e.size(), QImage::Format_ARGB32);
    for (int y = 0; y < e.height(); ++y) {
        const auto* rowA = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* rowE = reinterpret_cast<const QRgb*>(e.constScanLine(y));
        auto* rowMap = reinterpret_cast<QRgb*>(result.map.scanLine(y));
        for (int x = 0; x < e.width(); ++x) {
            const int delta = std::max({std::abs(qRed(rowA[x]) - qRed(rowE[x])),
                                        std::abs(qGreen(rowA[x]) - qGreen(rowE[x])),
                                        std::abs(qBlue(rowA[x]) - qBlue(rowE[x])),
                                        std::abs(qAlpha(rowA[x]) - qAlpha(rowE[x]))});
            result.maxChannelDelta = std::max(result.maxChannelDelta, delta);
            if (delta > channelTolerance) {
                ++result.differingPixels;
                rowMap[x] = qRgba(255, 0, 0, 255);
            } else {
                rowMap[x] = qRgba(qRed(rowE[x]) / 4, qGreen(rowE[x]) / 4, qBlue(rowE[x]) / 4, 255);
            }
        }
    }
    return result;
}

}  // namespace vdi::uikit::visual
