#include "imaging/decoders.h"

#include "imaging/byte_reader.h"

#include <new>

namespace imaging {

namespace {

PictureKind kindOf(std::span<const std::byte> bytes) {
    const auto kind = sniff(bytes);
    if (!kind) {
        throw DecodeError("this is no picture of a known kind");
    }
    return *kind;
}

} // namespace

std::optional<PictureKind> sniff(std::span<const std::byte> bytes) {
    const ByteReader in(bytes);
    if (!in.has(0, 6)) {
        return std::nullopt;
    }
    if (in.u16(0) == 0x4D42) { // "BM"
        return PictureKind::Bmp;
    }
    if (in.u32(0) == 0x38464947) { // "GIF8"
        return PictureKind::Gif;
    }
    if (in.u16(0) == 0xD8FF && in.u8(2) == 0xFF) {
        return PictureKind::Jpg;
    }
    if (in.u16(0) == 0 && in.u16(4) > 0 && (in.u16(2) == 1 || in.u16(2) == 2)) {
        return in.u16(2) == 1 ? PictureKind::Ico : PictureKind::Cur;
    }
    return std::nullopt;
}

PictureFacts measure(std::span<const std::byte> bytes) {
    switch (kindOf(bytes)) {
    case PictureKind::Ico:
    case PictureKind::Cur:
        return measureIcon(bytes);
    case PictureKind::Bmp:
        return measureBmp(bytes);
    case PictureKind::Gif:
        return measureGif(bytes);
    default:
        return measureJpg(bytes);
    }
}

RasterPicture decode(std::span<const std::byte> bytes, QSize box) {
    try {
        switch (kindOf(bytes)) {
        case PictureKind::Ico:
        case PictureKind::Cur:
            return decodeIcon(bytes);
        case PictureKind::Bmp:
            return decodeBmp(bytes);
        case PictureKind::Gif:
            return decodeGif(bytes);
        default:
            return decodeJpg(bytes, box);
        }
    } catch (const std::bad_alloc&) {
        throw DecodeError("there is no memory for the picture");
    }
}

PictureFacts rasterFacts(PictureKind kind, QSize pixels, int bitsPerPixel) {
    return {kind,
            pixels,
            {pixels.height() * kTwipsPerPixel, pixels.width() * kTwipsPerPixel},
            bitsPerPixel,
            {}};
}

} // namespace imaging
