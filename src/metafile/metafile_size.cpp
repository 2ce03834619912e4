#include "base/picture_units.h"
#include "metafile/emf/emf_reader.h"
#include "metafile/metafile.h"
#include "metafile/wmf/wmf_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace metafile {

using imaging::kTwipsPerPixel;
using imaging::PictureFacts;
using imaging::PictureKind;

namespace {

constexpr double kTwipsPerInch = base::kTwipsPerInch;
constexpr double kMillimetresPerInch = 25.4;
constexpr double kDefaultSide = 32 * kTwipsPerPixel; // of a metafile that tells no size
constexpr double kMostTwips = 32767 * kTwipsPerPixel;

// Sides that are zero or wild are replaced, so that whoever divides by them is safe.
PictureFacts metafileFacts(PictureKind kind, double width, double height) {
    const auto sensible = [](double side) {
        side = std::abs(side);
        return std::isfinite(side) && side >= 1 && side <= kMostTwips;
    };
    if (!sensible(width) || !sensible(height)) {
        width = height = kDefaultSide;
    }
    width = std::abs(width);
    height = std::abs(height);
    PictureFacts facts;
    facts.kind = kind;
    facts.twips = {height, width};
    facts.pixels = {std::max(1, static_cast<int>(std::lround(width / kTwipsPerPixel))),
                    std::max(1, static_cast<int>(std::lround(height / kTwipsPerPixel)))};
    return facts;
}

PictureFacts measureEmf(std::span<const std::byte> bytes) {
    const EmfLayout layout = readEmfLayout(bytes);
    const double twipsPerMillimetre = kTwipsPerInch / kMillimetresPerInch;
    return metafileFacts(
        PictureKind::Emf,
        layout.frame.width() / layout.pixelsPerMillimetre.width() * twipsPerMillimetre,
        layout.frame.height() / layout.pixelsPerMillimetre.height() * twipsPerMillimetre);
}

PictureFacts measureWmf(std::span<const std::byte> bytes) {
    const WmfLayout layout = readWmfLayout(bytes);
    // A unit whose size nothing tells counts as a pixel.
    const double scale =
        layout.unitsPerInch > 0 ? kTwipsPerInch / layout.unitsPerInch : kTwipsPerPixel;
    return metafileFacts(PictureKind::Wmf, layout.window.width() * scale,
                         layout.window.height() * scale);
}

} // namespace

std::optional<PictureKind> sniff(std::span<const std::byte> bytes) {
    if (isEmf(bytes)) {
        return PictureKind::Emf;
    }
    return isWmf(bytes) ? std::optional(PictureKind::Wmf) : std::nullopt;
}

PictureFacts measure(std::span<const std::byte> bytes) {
    return isEmf(bytes) ? measureEmf(bytes) : measureWmf(bytes);
}

} // namespace metafile
