#include "metafile/drawing/raster_operations.h"

#include "imaging/byte_reader.h"
#include "imaging/new_image.h"

namespace metafile {

namespace {

constexpr QRgb kOpaque = 0xFF000000;

QRgb combine(std::uint8_t operation, QRgb pattern, QRgb source, QRgb destination) {
    QRgb result = 0;
    for (unsigned term = 0; term < 8; ++term) {
        if ((operation >> term & 1U) == 0) {
            continue;
        }
        const QRgb p = (term & 4U) != 0 ? pattern : ~pattern;
        const QRgb s = (term & 2U) != 0 ? source : ~source;
        const QRgb d = (term & 1U) != 0 ? destination : ~destination;
        result |= p & s & d;
    }
    return result | kOpaque;
}

const QRgb* rowOf(const QImage& image, int y) {
    return image.isNull() ? nullptr : reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

} // namespace

bool usesPattern(std::uint8_t operation) {
    return ((operation >> 4U ^ operation) & 0x0FU) != 0;
}

bool usesSource(std::uint8_t operation) {
    return ((operation >> 2U ^ operation) & 0x33U) != 0;
}

bool usesDestination(std::uint8_t operation) {
    return ((operation >> 1U ^ operation) & 0x55U) != 0;
}

QImage combined(const OperationLayers& layers, std::uint8_t operation, std::uint8_t behindMask) {
    QImage result =
        imaging::newImage(layers.destination.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < result.height(); ++y) {
        const QRgb* destination = rowOf(layers.destination, y);
        const QRgb* source = rowOf(layers.source, y);
        const QRgb* pattern = rowOf(layers.pattern, y);
        const QRgb* mask = rowOf(layers.mask, y);
        auto* out = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            if (source != nullptr && qAlpha(source[x]) == 0) {
                continue;
            }
            const bool behind = mask != nullptr && qGray(mask[x]) < 128;
            out[x] = combine(behind ? behindMask : operation, pattern != nullptr ? pattern[x] : 0,
                             source != nullptr ? source[x] : 0, destination[x]);
        }
    }
    return result;
}

} // namespace metafile
