#include "imaging/image_scaling.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace imaging {

namespace {

QRgb meanOfBlock(const QImage& image, const QRect& block, bool opaque) {
    std::array<std::uint64_t, 4> sums{}; // alpha, red, green, blue
    for (int y = block.top(); y <= block.bottom(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = block.left(); x <= block.right(); ++x) {
            const auto alpha = static_cast<std::uint64_t>(opaque ? 255 : qAlpha(row[x]));
            sums[0] += alpha;
            sums[1] += alpha * static_cast<std::uint64_t>(qRed(row[x]));
            sums[2] += alpha * static_cast<std::uint64_t>(qGreen(row[x]));
            sums[3] += alpha * static_cast<std::uint64_t>(qBlue(row[x]));
        }
    }
    if (sums[0] == 0) {
        return qRgba(0, 0, 0, 0);
    }
    const auto pixels =
        static_cast<std::uint64_t>(block.width()) * static_cast<std::uint64_t>(block.height());
    return qRgba(static_cast<int>(sums[1] / sums[0]), static_cast<int>(sums[2] / sums[0]),
                 static_cast<int>(sums[3] / sums[0]), static_cast<int>(sums[0] / pixels));
}

// The mean of every block of `factor` x `factor` pixels, weighted by alpha. Does in one pass over a
// large picture what scaling would take a second picture of its size for.
QImage meanOfBlocks(const QImage& image, int factor) {
    const QImage source = image.depth() == 32 ? image : image.convertToFormat(QImage::Format_RGB32);
    const bool opaque = !source.hasAlphaChannel();
    QImage reduced(image.width() / factor, image.height() / factor, QImage::Format_ARGB32);
    for (int y = 0; y < reduced.height(); ++y) {
        auto* out = reinterpret_cast<QRgb*>(reduced.scanLine(y));
        for (int x = 0; x < reduced.width(); ++x) {
            out[x] = meanOfBlock(source, QRect(x * factor, y * factor, factor, factor), opaque);
        }
    }
    return reduced;
}

} // namespace

QImage smoothlyScaled(const QImage& image, QSize size) {
    const int ratio = std::min(image.width() / size.width(), image.height() / size.height());
    // What is left is scaled once more, for which some more pixels are better.
    const int factor = isVeryLarge(image.size()) ? ratio : ratio / 2;
    const bool premultiplied = image.format() == QImage::Format_ARGB32_Premultiplied;
    const QImage source = factor >= 2 && !premultiplied ? meanOfBlocks(image, factor) : image;
    return source.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

bool isVeryLarge(QSize size) {
    constexpr qsizetype kMostPixels = 8'000'000;
    return qsizetype{size.width()} * size.height() > kMostPixels;
}

} // namespace imaging
