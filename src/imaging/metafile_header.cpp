// Recognises and measures WMF and EMF files from their headers.
// Sources: [MS-EMF] 2.3.4.2 (EMR_HEADER), [MS-WMF] 2.3.2 (META_PLACEABLE, META_HEADER) and 2.3.5.30
// (META_SETWINDOWEXT).
#include "imaging/byte_reader.h"
#include "imaging/decoders.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace imaging {

namespace {

constexpr double kTwipsPerInch = 1440;
constexpr double kTwipsPerPixel = 15;
constexpr double kHundredthsOfMillimetrePerInch = 2540;
constexpr double kDefaultSide = 32 * kTwipsPerPixel; // of a metafile that tells no size
constexpr double kMostTwips = 32767 * kTwipsPerPixel;
constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;
constexpr std::size_t kPlaceableHeader = 22;
constexpr std::uint16_t kSetWindowExt = 0x020C;
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

// A plain metafile's first window extent, which is in logical units without a known scale; one unit
// counts as a pixel.
PictureFacts measurePlain(const ByteReader& in) {
    constexpr int kMostRecords = 10000;
    std::size_t at = 18;
    for (int i = 0; i < kMostRecords && in.has(at, 6); ++i) {
        const std::size_t words = in.u32(at);
        if (words < 3)
            break;
        if (in.u16(at + 4) == kSetWindowExt && in.has(at, 10))
            return metafileFacts(PictureKind::Wmf, in.i16(at + 8) * kTwipsPerPixel,
                                 in.i16(at + 6) * kTwipsPerPixel);
        at += 2 * words;
    }
    return metafileFacts(PictureKind::Wmf, 0, 0);
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
    const ByteReader in(bytes);
    if (!isEmf(bytes) || !in.has(0, 88))
        throw DecodeError("the metafile's header cannot be read");
    const auto twips = [](double hundredths) {
        return hundredths * kTwipsPerInch / kHundredthsOfMillimetrePerInch;
    };
    // The frame: left, top, right, bottom in hundredths of a millimetre.
    return metafileFacts(PictureKind::Emf, twips(double{1} * in.i32(32) - in.i32(24)),
                         twips(double{1} * in.i32(36) - in.i32(28)));
}

PictureFacts measureWmf(std::span<const std::byte> bytes) {
    const ByteReader in(bytes);
    if (!isPlaceable(in)) {
        if (!isStandardHeader(in, 0))
            throw DecodeError("the metafile's header cannot be read");
        return measurePlain(in);
    }
    if (!isStandardHeader(in, kPlaceableHeader))
        throw DecodeError("the metafile's header cannot be read");
    const double unitsPerInch = in.u16(14) == 0 ? kTwipsPerInch : in.u16(14);
    const double scale = kTwipsPerInch / unitsPerInch;
    return metafileFacts(PictureKind::Wmf, (in.i16(10) - in.i16(6)) * scale,
                         (in.i16(12) - in.i16(8)) * scale);
}

} // namespace imaging
