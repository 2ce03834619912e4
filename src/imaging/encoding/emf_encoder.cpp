// EMF: the picture in bitmap records. What is opaque is stretched into place, the oldest and most
// widely understood record. Alpha takes AlphaBlend, which says in one plain record what EMF+ would
// say twice, once for itself and once without alpha for those who do not read it.
// Source: [MS-EMF] 2.3.1.2 (ALPHABLEND), 2.3.1.7 (STRETCHDIBITS), 2.3.4 (header and end).
#include "imaging/encoding/dib_writer.h"
#include "imaging/encoding/formats.h"

#include <algorithm>

namespace imaging {

namespace {

enum Record : std::uint32_t {
    Header = 1,
    EndOfFile = 14,
    SetStretchMode = 21,
    StretchDiBits = 81,
    AlphaBlend = 114,
};

constexpr std::uint32_t kHeaderBytes = 108;
constexpr std::uint32_t kStretchBytes = 80; // before the bitmap
constexpr std::uint32_t kBlendBytes = 108;
constexpr std::uint32_t kStretchModeBytes = 12;
constexpr std::uint32_t kEndBytes = 20;
// Readers limit the bitmap of one record; a larger picture is cut into several.
constexpr int kMostPixelsARecord = 16'000'000;

// A bitmap of whole rows.
struct Strip {
    int first = 0;
    int rows = 0;
};

// As alike in height as can be: a thin last one would vanish where the picture is drawn small.
std::vector<Strip> stripsOf(QSize size) {
    const int most = std::max(1, kMostPixelsARecord / size.width());
    const int count = (size.height() + most - 1) / most;
    std::vector<Strip> strips;
    for (int i = 0; i < count; ++i) {
        const auto edge = [&](int number) {
            return static_cast<int>(std::int64_t{size.height()} * number / count);
        };
        strips.push_back({edge(i), edge(i + 1) - edge(i)});
    }
    return strips;
}

struct Drawing {
    const QImage& image; // 32 bits; with alpha premultiplied
    bool hasAlpha;

    int bitsPerPixel() const { return hasAlpha ? 32 : 24; }
    std::uint32_t recordBytes(const Strip& strip) const {
        const std::size_t pixels = dibBytes({image.width(), strip.rows}, bitsPerPixel());
        return (hasAlpha ? kBlendBytes : kStretchBytes) + kDibHeaderBytes +
               static_cast<std::uint32_t>(pixels);
    }
};

void writeBounds(ByteWriter& out, int top, QSize size) {
    out.i32(0);
    out.i32(top);
    out.i32(size.width() - 1);
    out.i32(top + size.height() - 1);
}

// A device of 96 pixels an inch whose size is whole millimetres both ways.
constexpr std::uint32_t kDeviceWidth = 1920;
constexpr std::uint32_t kDeviceHeight = 1440;
constexpr std::uint32_t kDeviceMillimetresAcross = 508;
constexpr std::uint32_t kDeviceMillimetresDown = 381;

std::uint32_t hundredthsOfMillimetres(int pixels) {
    constexpr double kAPixel = 2540.0 / 96;
    return static_cast<std::uint32_t>(std::lround(pixels * kAPixel));
}

void writeHeader(ByteWriter& out, QSize size, std::uint32_t fileBytes, std::size_t records) {
    constexpr std::uint32_t kSignature = 0x464D4520; // " EMF"
    constexpr std::uint32_t kVersion = 0x10000;
    constexpr std::uint32_t kHandles = 1; // the one that is never used
    out.u32s({Header, kHeaderBytes});
    writeBounds(out, 0, size);
    out.u32s({0, 0, hundredthsOfMillimetres(size.width()), hundredthsOfMillimetres(size.height())});
    out.u32s({kSignature, kVersion, fileBytes, static_cast<std::uint32_t>(records), kHandles});
    out.u32s({0, 0, 0}); // no description, no palette
    out.u32s({kDeviceWidth, kDeviceHeight, kDeviceMillimetresAcross, kDeviceMillimetresDown});
    out.u32s({0, 0, 0}); // no OpenGL
    out.u32s({kDeviceMillimetresAcross * 1000, kDeviceMillimetresDown * 1000});
}

void writeBitmap(ByteWriter& out, const Drawing& drawing, const Strip& strip) {
    DibForm form;
    form.size = {drawing.image.width(), strip.rows};
    form.bitsPerPixel = drawing.bitsPerPixel();
    form.imageBytes = static_cast<std::uint32_t>(dibBytes(form.size, form.bitsPerPixel));
    writeDibHeader(out, form);
    writeDibRows(out, drawing.image, form.bitsPerPixel, strip.first, strip.rows);
}

// Where header and pixels lie in the record.
void writePlaces(ByteWriter& out, std::uint32_t headerAt, std::uint32_t recordBytes) {
    const std::uint32_t pixelsAt = headerAt + kDibHeaderBytes;
    out.u32s({headerAt, kDibHeaderBytes, pixelsAt, recordBytes - pixelsAt});
}

void writeStretched(ByteWriter& out, const Drawing& drawing, const Strip& strip) {
    constexpr std::uint32_t kCopy = 0x00CC0020;
    const QSize size(drawing.image.width(), strip.rows);
    const std::uint32_t bytes = drawing.recordBytes(strip);
    const auto width = static_cast<std::uint32_t>(size.width());
    const auto height = static_cast<std::uint32_t>(size.height());
    out.u32s({StretchDiBits, bytes});
    writeBounds(out, strip.first, size);
    out.u32s({0, static_cast<std::uint32_t>(strip.first)});
    out.u32s({0, 0, width, height});
    writePlaces(out, kStretchBytes, bytes);
    out.u32s({0, kCopy, width, height});
    writeBitmap(out, drawing, strip);
}

void writeBlended(ByteWriter& out, const Drawing& drawing, const Strip& strip) {
    constexpr std::uint32_t kSourceOverWithAlpha = 0x01FF0000; // opacity 255, the source's alpha
    constexpr std::uint32_t kOne = 0x3F800000;                 // 1.0F
    constexpr std::uint32_t kWhite = 0x00FFFFFF;
    const QSize size(drawing.image.width(), strip.rows);
    const std::uint32_t bytes = drawing.recordBytes(strip);
    const auto width = static_cast<std::uint32_t>(size.width());
    const auto height = static_cast<std::uint32_t>(size.height());
    out.u32s({AlphaBlend, bytes});
    writeBounds(out, strip.first, size);
    out.u32s({0, static_cast<std::uint32_t>(strip.first), width, height});
    out.u32(kSourceOverWithAlpha);
    out.u32s({0, 0});
    out.u32s({kOne, 0, 0, kOne, 0, 0}); // the source is not transformed
    out.u32s({kWhite, 0});
    writePlaces(out, kBlendBytes, bytes);
    out.u32s({width, height});
    writeBitmap(out, drawing, strip);
}

void writeEnd(ByteWriter& out) {
    constexpr std::uint32_t kPaletteAt = 16;
    out.u32s({EndOfFile, kEndBytes, 0, kPaletteAt, kEndBytes});
}

} // namespace

std::vector<std::byte> encodeEmf(const QImage& image) {
    constexpr std::uint32_t kSmooth = 4; // HALFTONE
    constexpr std::size_t kOtherRecords = 3;
    const bool hasAlpha = transparencyOf(image) != Transparency::None;
    const QImage drawn =
        hasAlpha ? image.convertToFormat(QImage::Format_ARGB32_Premultiplied) : image;
    if (drawn.isNull()) {
        throw std::bad_alloc();
    }
    const Drawing drawing{drawn, hasAlpha};
    const std::vector<Strip> strips = stripsOf(image.size());
    std::uint32_t bytes = kHeaderBytes + kStretchModeBytes + kEndBytes;
    for (const Strip& strip : strips) {
        bytes += drawing.recordBytes(strip);
    }
    ByteWriter out;
    out.reserve(bytes);
    writeHeader(out, image.size(), bytes, kOtherRecords + strips.size());
    out.u32s({SetStretchMode, kStretchModeBytes, kSmooth});
    for (const Strip& strip : strips) {
        if (hasAlpha) {
            writeBlended(out, drawing, strip);
        } else {
            writeStretched(out, drawing, strip);
        }
    }
    writeEnd(out);
    return out.take();
}

} // namespace imaging
