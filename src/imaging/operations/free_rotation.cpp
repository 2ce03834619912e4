#include "imaging/operations/free_rotation.h"

#include "imaging/operations/interpolation.h"
#include "imaging/operations/row_bands.h"
#include "imaging/operations/vector_code.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace imaging::operations {

namespace {

// Places in the source have 20 bits behind the point: over the width of a tile the rounded steps
// stay within 2^-12 pixels of the true place, and the tile's own places fit 32 bits.
constexpr int kBits = 20;
constexpr std::int64_t kOne = std::int64_t{1} << kBits;

// The rows of the target are worked on in tiles, so that the source's pixels, which lie across, are
// still in the cache when the next row needs them. Tiles start at multiples of their width in the
// whole result: so a part of it has the very pixels that the whole has.
constexpr int kTileWidth = 512;
constexpr int kTileHeight = 32;

// Along a row of the target, the place of the upper left one of the four neighbours.
struct Line {
    std::int64_t x;
    std::int64_t y;
    std::int64_t stepX;
    std::int64_t stepY;
};

// Indices [first, last) into a row.
struct Range {
    int first;
    int last;
};

std::int64_t floorOfQuotient(std::int64_t dividend, std::int64_t divisor) {
    const std::int64_t quotient = dividend / divisor;
    return dividend % divisor != 0 && (dividend < 0) != (divisor < 0) ? quotient - 1 : quotient;
}

// Those of `range` with least <= start + i * step <= most.
Range rangeWithin(Range range, std::int64_t start, std::int64_t step, std::int64_t least,
                  std::int64_t most) {
    if (step < 0) {
        return rangeWithin(range, -start, -step, -most, -least);
    }
    if (step == 0) {
        return least <= start && start <= most ? range : Range{range.first, range.first};
    }
    const std::int64_t first = -floorOfQuotient(start - least, step);
    const std::int64_t last = floorOfQuotient(most - start, step) + 1;
    const std::int64_t from = std::clamp<std::int64_t>(first, range.first, range.last);
    return {static_cast<int>(from),
            static_cast<int>(std::clamp<std::int64_t>(last, from, range.last))};
}

class Turner {
  public:
    Turner(const PixelRows<const QRgb>& source, const FreeTurn& turn, const PixelRows<QRgb>& target,
           QPoint topLeft)
        : source_(source),
          turn_(turn),
          target_(target),
          topLeft_(topLeft),
          cosine_(std::cos(turn.degrees * std::numbers::pi / 180)),
          sine_(std::sin(turn.degrees * std::numbers::pi / 180)) {}

    // Rows [first, last) of the target.
    template <bool opaque>
    void turnRows(int first, int last) const {
        for (int left = 0; left < target_.width;) {
            const int inTile = (topLeft_.x() + left) & (kTileWidth - 1);
            const int width = std::min(kTileWidth - inTile, target_.width - left);
            for (int y = first; y < last; ++y) {
                const Line line = lineAt(left - inTile, y);
                turnTileRow<opaque>(line, {inTile, inTile + width}, target_.row(y) + left - inTile);
            }
            left += width;
        }
    }

  private:
    // The middles of the pixels lie half a pixel from their corners.
    Line lineAt(int left, int y) const {
        const double fromMiddleX = topLeft_.x() + left + 0.5 - turn_.result.width() / 2.0;
        const double fromMiddleY = topLeft_.y() + y + 0.5 - turn_.result.height() / 2.0;
        const double x = cosine_ * fromMiddleX + sine_ * fromMiddleY + source_.width / 2.0 - 0.5;
        const double y0 = cosine_ * fromMiddleY - sine_ * fromMiddleX + source_.height / 2.0 - 0.5;
        return {std::llround(x * kOne), std::llround(y0 * kOne), std::llround(cosine_ * kOne),
                std::llround(-sine_ * kOne)};
    }

    // `row` is where index 0 of the line is.
    template <bool opaque>
    void turnTileRow(const Line& line, Range range, QRgb* row) const {
        Range touched = rangeWithin(range, line.x, line.stepX, -kOne, source_.width * kOne - 1);
        touched = rangeWithin(touched, line.y, line.stepY, -kOne, source_.height * kOne - 1);
        Range inside = rangeWithin(touched, line.x, line.stepX, 0, (source_.width - 1) * kOne - 1);
        inside = rangeWithin(inside, line.y, line.stepY, 0, (source_.height - 1) * kOne - 1);
        std::fill(row + range.first, row + touched.first, turn_.fill);
        turnEdge<opaque>(line, {touched.first, inside.first}, row);
        if (inside.first < inside.last) {
            runVectorised([&]() TXS_INLINE_LOOP { turnInside<opaque>(line, inside, row); });
        }
        turnEdge<opaque>(line, {inside.last, touched.last}, row);
        std::fill(row + touched.last, row + range.last, turn_.fill);
    }

    // Some of the four neighbours are the fill colour.
    template <bool opaque>
    void turnEdge(const Line& line, Range range, QRgb* row) const {
        for (int i = range.first; i < range.last; ++i) {
            const std::int64_t x = line.x + i * line.stepX;
            const std::int64_t y = line.y + i * line.stepY;
            const std::int64_t left = x >> kBits;
            const std::int64_t top = y >> kBits;
            row[i] = mixed<opaque>({pixelAt(left, top), pixelAt(left + 1, top),
                                    pixelAt(left, top + 1), pixelAt(left + 1, top + 1)},
                                   {fractionOf(x), fractionOf(y)});
        }
    }

    // All of the four neighbours are pixels of the source.
    template <bool opaque>
    TXS_INLINE_LOOP void turnInside(const Line& line, Range range, QRgb* __restrict row) const {
        const std::int64_t x = line.x + range.first * line.stepX;
        const std::int64_t y = line.y + range.first * line.stepY;
        const QRgb* __restrict near = source_.first + (y >> kBits) * source_.stride + (x >> kBits);
        const int stride = static_cast<int>(source_.stride);
        const int startX = static_cast<int>(x & (kOne - 1));
        const int startY = static_cast<int>(y & (kOne - 1));
        const int stepX = static_cast<int>(line.stepX);
        const int stepY = static_cast<int>(line.stepY);
        const int count = range.last - range.first;
        QRgb* __restrict out = row + range.first;
        for (int i = 0; i < count; ++i) {
            const int placeX = startX + i * stepX;
            const int placeY = startY + i * stepY;
            const int at = (placeY >> kBits) * stride + (placeX >> kBits);
            out[i] =
                mixed<opaque>({near[at], near[at + 1], near[at + stride], near[at + stride + 1]},
                              {fractionOf(placeX), fractionOf(placeY)});
        }
    }

    TXS_INLINE_LOOP static std::uint32_t fractionOf(std::int64_t place) {
        return static_cast<std::uint32_t>(place >> (kBits - 8)) & 255;
    }

    TXS_INLINE_LOOP static std::uint32_t fractionOf(int place) {
        return static_cast<std::uint32_t>(place >> (kBits - 8)) & 255;
    }

    QRgb pixelAt(std::int64_t x, std::int64_t y) const {
        const bool outside = x < 0 || y < 0 || x >= source_.width || y >= source_.height;
        return outside ? turn_.fill : source_.row(static_cast<int>(y))[x];
    }

    PixelRows<const QRgb> source_;
    FreeTurn turn_;
    PixelRows<QRgb> target_;
    QPoint topLeft_;
    double cosine_;
    double sine_;
};

} // namespace

void copyTurnedFreely(const PixelRows<const QRgb>& source, const FreeTurn& turn,
                      const PixelRows<QRgb>& target, QPoint topLeft) {
    const Turner turner(source, turn, target, topLeft);
    const int bands = (target.height + kTileHeight - 1) / kTileHeight;
    forRowBands(bands, std::int64_t{target.width} * kTileHeight, [&](int first, int last) {
        for (int band = first; band < last; ++band) {
            const int top = band * kTileHeight;
            const int bottom = std::min(top + kTileHeight, target.height);
            if (turn.opaque) {
                turner.turnRows<true>(top, bottom);
            } else {
                turner.turnRows<false>(top, bottom);
            }
        }
    });
}

} // namespace imaging::operations
