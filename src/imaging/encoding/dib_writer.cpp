#include "imaging/encoding/dib_writer.h"

#include "imaging/dib_reader.h"

namespace imaging {

namespace {

void writeRow(std::byte* out, const QRgb* in, int width, int bitsPerPixel) {
    for (int x = 0; x < width; ++x) {
        *out++ = static_cast<std::byte>(qBlue(in[x]));
        *out++ = static_cast<std::byte>(qGreen(in[x]));
        *out++ = static_cast<std::byte>(qRed(in[x]));
        if (bitsPerPixel == 32) {
            *out++ = static_cast<std::byte>(qAlpha(in[x]));
        }
    }
}

void writeMaskRow(std::span<std::byte> out, const QRgb* in, int width) {
    for (int x = 0; x < width; ++x) {
        if (qAlpha(in[x]) == 0) {
            out[static_cast<std::size_t>(x / 8)] |=
                static_cast<std::byte>(0x80U >> static_cast<unsigned>(x % 8));
        }
    }
}

const QRgb* rowOf(const QImage& image, int y) {
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

} // namespace

void writeDibHeader(ByteWriter& out, const DibForm& form) {
    constexpr std::uint32_t kPlanes = 1;
    out.u32(form.headerBytes);
    out.i32(form.size.width());
    out.i32(form.size.height() * form.heightFactor);
    out.u16(kPlanes);
    out.u16(static_cast<std::uint32_t>(form.bitsPerPixel));
    out.u32(form.compression);
    out.u32(form.imageBytes);
    out.i32(form.dotsPerMetre.width());
    out.i32(form.dotsPerMetre.height());
    out.u32s({0, 0}); // no colours of a palette
}

std::size_t dibBytes(QSize size, int bitsPerPixel) {
    return dibRowBytes(size.width(), bitsPerPixel) * static_cast<std::size_t>(size.height());
}

void writeDibRows(ByteWriter& out, const QImage& image, int bitsPerPixel, int first, int count) {
    const std::size_t rowBytes = dibRowBytes(image.width(), bitsPerPixel);
    std::byte* at = out.room(rowBytes * static_cast<std::size_t>(count)).data();
    for (int y = first + count - 1; y >= first; --y, at += rowBytes) {
        writeRow(at, rowOf(image, y), image.width(), bitsPerPixel);
    }
}

void writeMask(ByteWriter& out, const QImage& image) {
    const std::size_t rowBytes = dibRowBytes(image.width(), 1);
    for (int y = image.height() - 1; y >= 0; --y) {
        writeMaskRow(out.room(rowBytes), rowOf(image, y), image.width());
    }
}

} // namespace imaging
