#include "imaging/operations/quarter_turns.h"

#include "imaging/operations/pixel_swaps.h"
#include "imaging/operations/row_bands.h"
#include "imaging/operations/vector_code.h"

#include <QRect>

#include <algorithm>

namespace imaging::operations {

namespace {

// Where the turned picture finds its pixels: its pixel (x, y) is first[x * stepX + y * stepY].
struct TurnedPixels {
    const QRgb* first;
    std::ptrdiff_t stepX;
    std::ptrdiff_t stepY;
    QSize size;
};

TurnedPixels turnedPixels(const PixelRows<const QRgb>& source, int quarters) {
    const QSize size(source.width, source.height);
    const QRgb* lastRow = source.row(source.height - 1);
    switch (quarters) {
    case 1:
        return {lastRow, -source.stride, 1, size.transposed()};
    case 2:
        return {lastRow + source.width - 1, -1, -source.stride, size};
    case 3:
        return {source.first + source.width - 1, source.stride, -1, size.transposed()};
    default:
        return {source.first, 1, source.stride, size};
    }
}

// The target is set in blocks, so that the source's pixels, which lie across, are still in the
// cache when the next row of the block needs them, and the blocks in tiles of a few lines of the
// cache.
constexpr int kBlockWidth = 32;
constexpr int kBlockHeight = 128;
constexpr int kTile = 8;

// One tile, whose first pixel is at `from` and goes to `to`.
void copyTile(const TurnedPixels& turned, const QRgb* from, QRgb* to, std::ptrdiff_t stride,
              QSize size) {
    for (int y = 0; y < size.height(); ++y, from += turned.stepY, to += stride) {
        const QRgb* source = from;
        for (int x = 0; x < size.width(); ++x, source += turned.stepX) {
            to[x] = *source;
        }
    }
}

// The same, of kTile x kTile pixels.
void copyFullTile(const TurnedPixels& turned, const QRgb* from, QRgb* to, std::ptrdiff_t stride) {
    copyTile(turned, from, to, stride, QSize(kTile, kTile));
}

void copyBlock(const TurnedPixels& turned, const PixelRows<QRgb>& target, const QRect& block,
               QPoint topLeft) {
    for (int x = block.left(); x <= block.right(); x += kTile) {
        for (int y = block.top(); y <= block.bottom(); y += kTile) {
            const QRgb* from =
                turned.first + (x - topLeft.x()) * turned.stepX + (y - topLeft.y()) * turned.stepY;
            const QSize size(std::min(kTile, block.right() + 1 - x),
                             std::min(kTile, block.bottom() + 1 - y));
            if (size == QSize(kTile, kTile)) {
                copyFullTile(turned, from, target.row(y) + x, target.stride);
            } else {
                copyTile(turned, from, target.row(y) + x, target.stride, size);
            }
        }
    }
}

void fillAround(const PixelRows<QRgb>& target, const QRect& covered, const QRect& band, QRgb fill) {
    for (int y = band.top(); y <= band.bottom(); ++y) {
        const bool inside = y >= covered.top() && y <= covered.bottom();
        QRgb* row = target.row(y);
        std::fill(row, row + (inside ? covered.left() : target.width), fill);
        if (inside) {
            std::fill(row + covered.right() + 1, row + target.width, fill);
        }
    }
}

} // namespace

void copyTurned(const PixelRows<const QRgb>& source, int quarters, const PixelRows<QRgb>& target,
                QPoint topLeft, QRgb fill) {
    const TurnedPixels turned = turnedPixels(source, quarters);
    const QRect covered =
        QRect(topLeft, turned.size).intersected(QRect(0, 0, target.width, target.height));
    const int bands = (target.height + kBlockHeight - 1) / kBlockHeight;
    forRowBands(bands, std::int64_t{target.width} * kBlockHeight, [&](int first, int last) {
        const QRect band =
            QRect(0, first * kBlockHeight, target.width, (last - first) * kBlockHeight) &
            QRect(0, 0, target.width, target.height);
        fillAround(target, covered, band, fill);
        for (int top = band.top(); top <= band.bottom(); top += kBlockHeight) {
            for (int left = 0; left < target.width; left += kBlockWidth) {
                copyBlock(turned, target,
                          QRect(left, top, kBlockWidth, kBlockHeight) & covered & band, topLeft);
            }
        }
    });
}

void turnHalfInPlace(const PixelRows<QRgb>& rows) {
    const int upperRows = (rows.height + 1) / 2; // with the middle one, if there is one
    forRowBands(upperRows, 2 * std::int64_t{rows.width}, [&](int first, int last) {
        runVectorised([=]() TXS_INLINE_LOOP {
            for (int y = first; y < last; ++y) {
                const int other = rows.height - 1 - y;
                swapMirrored(rows.row(y), rows.row(other) + rows.width,
                             y == other ? rows.width / 2 : rows.width);
            }
        });
    });
}

} // namespace imaging::operations
