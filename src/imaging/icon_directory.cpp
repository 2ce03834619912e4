// The directory of an icon or cursor: frames, each a bitmap without file header, with a mask of one
// bit a pixel behind it, or a PNG file.
// Source: "Icons" (J. Hornick, Microsoft, 1995); PNG frames as in [MS-ICO]-era documentation of
// ICONDIRENTRY.
#include "imaging/icon_directory.h"

#include "imaging/decoders.h"
#include "imaging/dib_reader.h"
#include "imaging/new_image.h"
#include "imaging/png_reader.h"

#include <algorithm>
#include <optional>
#include <string>

namespace imaging {

namespace {

std::uint32_t bigEndian32(const ByteReader& in, std::size_t at) {
    return std::uint32_t{in.u8(at)} << 24U | std::uint32_t{in.u8(at + 1)} << 16U |
           std::uint32_t{in.u8(at + 2)} << 8U | in.u8(at + 3);
}

// Size and depth from the picture itself; what the directory says of them is often wrong.
void measureFrame(IconFrame& frame) {
    const ByteReader in(frame.data);
    frame.isPng = isPng(frame.data);
    if (frame.isPng) {
        constexpr std::size_t kWidthAt = 16; // behind signature, length and "IHDR"
        const std::uint32_t width = bigEndian32(in, kWidthAt);
        const std::uint32_t height = bigEndian32(in, kWidthAt + 4);
        requireSensibleSize(width, height);
        frame.size = {static_cast<int>(width), static_cast<int>(height)};
        frame.bitsPerPixel = 32;
        return;
    }
    const DibHeader header = readDibHeader(frame.data, DibUse::IconFrame);
    frame.size = {header.width, header.height};
    frame.bitsPerPixel = header.bitsPerPixel;
}

// A set bit of the mask lets the background through. Rows that are missing hide nothing.
void applyMask(QImage& image, std::span<const std::byte> mask, bool topDown) {
    const std::size_t rowBytes = dibRowBytes(image.width(), 1);
    for (int y = 0; y < image.height(); ++y) {
        const std::size_t at = rowBytes * static_cast<std::size_t>(y);
        const int row = topDown ? y : image.height() - 1 - y;
        auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int x = 0; x < image.width(); ++x) {
            const std::size_t byte = at + static_cast<std::size_t>(x / 8);
            const unsigned bit = 0x80U >> static_cast<unsigned>(x % 8);
            const bool hidden =
                byte < mask.size() && (std::to_integer<unsigned>(mask[byte]) & bit) != 0;
            pixels[x] = hidden ? qRgba(0, 0, 0, 0) : pixels[x] | 0xFF000000U;
        }
    }
}

QImage decodeDibFrame(const IconFrame& frame) {
    const DibHeader header = readDibHeader(frame.data, DibUse::IconFrame);
    QImage image = readDibPixels(frame.data, header, header.pixelsAt, DibUse::IconFrame);
    if (header.bitsPerPixel == 32 && hasAnyAlpha(image)) {
        return image;
    }
    const std::size_t pixels =
        dibRowBytes(header.width, header.bitsPerPixel) * static_cast<std::size_t>(header.height);
    applyMask(image, ByteReader(frame.data).rest(header.pixelsAt + pixels), header.topDown);
    return image;
}

QImage decodePngFrame(const IconFrame& frame) {
    const std::optional<QImage> image = readEmbedded(frame.data, "PNG", frame.size);
    if (!image) {
        throw DecodeError("the icon's PNG picture cannot be read");
    }
    return *image;
}

} // namespace

// The largest area comes first, then the greatest depth.
IconDirectory readIconDirectory(std::span<const std::byte> bytes) {
    const ByteReader in(bytes);
    IconDirectory icon;
    const bool isCursor = in.u16(2) == kCursorType;
    icon.kind = isCursor ? PictureKind::Cur : PictureKind::Ico;
    const std::size_t count = in.u16(4);
    std::string cause = "the icon holds no picture";
    for (std::size_t i = 0;
         i < count && in.has(kIconDirectoryBytes + i * kIconEntryBytes, kIconEntryBytes); ++i) {
        const std::size_t at = kIconDirectoryBytes + i * kIconEntryBytes;
        IconFrame frame;
        frame.entry = i;
        frame.data = in.rest(in.u32(at + 12)); // the stated length is often wrong
        if (isCursor) {
            frame.hotSpot = {in.u16(at + 4), in.u16(at + 6)};
        }
        try {
            measureFrame(frame);
            icon.frames.push_back(frame);
        } catch (const DecodeError& error) {
            cause = error.what();
        }
    }
    if (icon.frames.empty()) {
        throw DecodeError(cause);
    }
    std::stable_sort(icon.frames.begin(), icon.frames.end(),
                     [](const IconFrame& one, const IconFrame& other) {
                         return one.area() != other.area() ? one.area() > other.area()
                                                           : one.bitsPerPixel > other.bitsPerPixel;
                     });
    return icon;
}

QImage decodeFrame(const IconFrame& frame) {
    return frame.isPng ? decodePngFrame(frame) : decodeDibFrame(frame);
}

QPoint hotSpotWithin(const IconFrame& frame) {
    return {std::clamp(frame.hotSpot.x(), 0, frame.size.width() - 1),
            std::clamp(frame.hotSpot.y(), 0, frame.size.height() - 1)};
}

ShownFrame decodeShownFrame(const IconDirectory& icon) {
    constexpr std::size_t kMostTries = 16; // a hostile directory names very many broken frames
    std::string cause;
    for (std::size_t i = 0; i < std::min(kMostTries, icon.frames.size()); ++i) {
        const IconFrame& frame = icon.frames[i];
        try {
            return {frame, decodeFrame(frame)};
        } catch (const DecodeError& error) {
            cause = error.what();
        }
    }
    throw DecodeError(cause);
}

std::size_t neededBytes(const IconFrame& frame) {
    if (frame.isPng) {
        return 0;
    }
    const DibHeader header = readDibHeader(frame.data, DibUse::IconFrame);
    const std::size_t needed = header.pixelsAt + dibRowBytes(header.width, header.bitsPerPixel) *
                                                     static_cast<std::size_t>(header.height);
    return std::min(needed, frame.data.size());
}

} // namespace imaging
