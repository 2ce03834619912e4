// Recognises and measures WMF and EMF files from their headers.
// Sources: [MS-EMF] 2.3.4.2 (EMR_HEADER), [MS-WMF] 2.3.2 (META_PLACEABLE, META_HEADER).
#include "imaging/byte_reader.h"
#include "imaging/decoders.h"
#include "imaging/metafile/emf_reader.h"
#include "imaging/metafile/wmf_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace imaging {

namespace {

constexpr double kTwipsPerInch = 1440;
constexpr double kTwipsPerPixel = 15;
constexpr double kMillimetresPerInch = 25.4;
constexpr double kDefaultSide = 32 * kTwipsPerPixel; // of a metafile that tells no size
constexpr double kMostTwips = 32767 * kTwipsPerPixel;
constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;
constexpr std::size_t kPlaceableHeader = 22;
constexpr std::uint32_t kEmfSignature = 0x464D4520; // " EMF"

// Sides that are zero or wild are replaced, so that whoever divides by them is safe.
PictureFacts metafileFacts(PictureKind kind, double width, double height) {
    const auto sensible = [](double side) {
        side = std::abs(side);
        return std::isfinite(side) && side >= 1 && side <= kMostTwips;
    };
    if (!sensible(width) || !sensible(height))
        width = height = kDefaultSide;
    width = std::abs(width);
    height = std::abs(height);
    PictureFacts facts;
    facts.kind = kind;
    facts.twips = {height, width};
    facts.pixels = {std::max(1, static_cast<int>(std::lround(width / kTwipsPerPixel))),
                    std::max(1, static_cast<int>(std::lround(height / kTwipsPerPixel)))};
    return facts;
}

bool isPlaceable(const ByteReader& in) {
    return in.has(0, kPlaceableHeader) && in.u32(0) == kPlaceableKey;
}

// The standard header: memory or disk, nine words long, version 1.0 or 3.0.
bool isStandardHeader(const ByteReader& in, std::size_t at) {
    if (!in.has(at, 18))
        return false;
    const std::uint16_t type = in.u16(at);
    const std::uint16_t version = in.u16(at + 4);
    return (type == 1 || type == 2) && in.u16(at + 2) == 9 &&
           (version == 0x0100 || version == 0x0300);
}

} // namespace

bool isEmf(std::span<const std::byte> bytes) {
    const ByteReader in(bytes);
    return in.has(0, 44) && in.u32(0) == 1 && in.u32(40) == kEmfSignature;
}

bool isWmf(std::span<const std::byte> bytes) {
    const ByteReader in(bytes);
    return isPlaceable(in) || isStandardHeader(in, 0);
}

PictureFacts measureEmf(std::span<const std::byte> bytes) {
    if (!isEmf(bytes))
        throw DecodeError("the metafile's header cannot be read");
    const metafile::EmfLayout layout = metafile::readEmfLayout(bytes);
    const double twipsPerMillimetre = kTwipsPerInch / kMillimetresPerInch;
    return metafileFacts(
        PictureKind::Emf,
        layout.frame.width() / layout.pixelsPerMillimetre.width() * twipsPerMillimetre,
        layout.frame.height() / layout.pixelsPerMillimetre.height() * twipsPerMillimetre);
}

PictureFacts measureWmf(std::span<const std::byte> bytes) {
    const ByteReader in(bytes);
    if (!isStandardHeader(in, isPlaceable(in) ? kPlaceableHeader : 0))
        throw DecodeError("the metafile's header cannot be read");
    const metafile::WmfLayout layout = metafile::readWmfLayout(bytes);
    // A unit whose size nothing tells counts as a pixel.
    const double scale =
        layout.unitsPerInch > 0 ? kTwipsPerInch / layout.unitsPerInch : kTwipsPerPixel;
    return metafileFacts(PictureKind::Wmf, layout.window.width() * scale,
                         layout.window.height() * scale);
}

} // namespace imaging
