#include "imaging/picture_bytes.h"

#include <QBuffer>

namespace imaging::testing {

void put16(Bytes& bytes, unsigned value) {
    bytes.push_back(static_cast<std::byte>(value & 0xFFU));
    bytes.push_back(static_cast<std::byte>(value >> 8U & 0xFFU));
}

void put32(Bytes& bytes, std::uint32_t value) {
    put16(bytes, value & 0xFFFFU);
    put16(bytes, value >> 16U);
}

void putBytes(Bytes& bytes, std::initializer_list<int> values) {
    for (const int value : values) {
        bytes.push_back(static_cast<std::byte>(value));
    }
}

void set32(Bytes& bytes, std::size_t at, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes.at(at + i) = static_cast<std::byte>(value >> (8U * i) & 0xFFU);
    }
}

Bytes joined(const Bytes& first, const Bytes& second) {
    Bytes bytes = first;
    bytes.insert(bytes.end(), second.begin(), second.end());
    return bytes;
}

Bytes infoHeader(const Dib& dib) {
    Bytes bytes;
    put32(bytes, 40);
    put32(bytes, static_cast<std::uint32_t>(dib.width));
    put32(bytes, static_cast<std::uint32_t>(dib.height));
    put16(bytes, 1);
    put16(bytes, static_cast<unsigned>(dib.bits));
    put32(bytes, dib.compression);
    for (int i = 0; i < 3; ++i) {
        put32(bytes, 0);
    }
    put32(bytes, dib.colours);
    put32(bytes, 0);
    return bytes;
}

Bytes bmpFile(const Bytes& dib, const Bytes& pixels) {
    Bytes bytes;
    putBytes(bytes, {'B', 'M'});
    put32(bytes, static_cast<std::uint32_t>(14 + dib.size() + pixels.size()));
    put32(bytes, 0);
    put32(bytes, static_cast<std::uint32_t>(14 + dib.size()));
    return joined(joined(bytes, dib), pixels);
}

Bytes iconFile(int type, const std::vector<IconFrame>& frames) {
    Bytes bytes;
    put16(bytes, 0);
    put16(bytes, static_cast<unsigned>(type));
    put16(bytes, static_cast<unsigned>(frames.size()));
    std::size_t at = 6 + 16 * frames.size();
    for (const IconFrame& frame : frames) {
        putBytes(bytes, {0, 0, 0, 0}); // sizes that say nothing, as some writers leave them
        put16(bytes, static_cast<unsigned>(frame.hotX));
        put16(bytes, static_cast<unsigned>(frame.hotY));
        put32(bytes, static_cast<std::uint32_t>(frame.data.size()));
        put32(bytes, static_cast<std::uint32_t>(at));
        at += frame.data.size();
    }
    for (const IconFrame& frame : frames) {
        bytes = joined(bytes, frame.data);
    }
    return bytes;
}

Bytes iconFrame32(int width, int height, const std::vector<std::uint32_t>& pixels,
                  const std::vector<int>& maskRows) {
    Bytes bytes = infoHeader({width, 2 * height, 32, 0, 0});
    for (const std::uint32_t pixel : pixels) {
        put32(bytes, pixel);
    }
    for (const int row : maskRows) {
        putBytes(bytes, {row, 0, 0, 0});
    }
    return bytes;
}

namespace {

// Codes of three bits, with a clear code before the table would make them longer.
Bytes lzwOf(const std::vector<int>& indexes) {
    Bytes codes;
    unsigned buffer = 0;
    unsigned bits = 0;
    const auto write = [&](unsigned code) {
        buffer |= code << bits;
        for (bits += 3; bits >= 8; bits -= 8, buffer >>= 8U) {
            codes.push_back(static_cast<std::byte>(buffer & 0xFFU));
        }
    };
    constexpr unsigned kClear = 4;
    constexpr unsigned kEnd = 5;
    for (std::size_t i = 0; i < indexes.size(); ++i) {
        if (i % 2 == 0) {
            write(kClear);
        }
        write(static_cast<unsigned>(indexes[i]));
    }
    write(kEnd);
    codes.push_back(static_cast<std::byte>(buffer & 0xFFU));
    return codes;
}

} // namespace

Bytes gifFile(const Gif& gif) {
    Bytes bytes;
    putBytes(bytes, {'G', 'I', 'F', '8', '9', 'a'});
    put16(bytes, static_cast<unsigned>(gif.screenWidth));
    put16(bytes, static_cast<unsigned>(gif.screenHeight));
    putBytes(bytes, {0x81, 0, 0});
    putBytes(bytes, {0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255});
    if (gif.transparent >= 0) {
        putBytes(bytes, {0x21, 0xF9, 4, 1, 0, 0, gif.transparent, 0});
    }
    putBytes(bytes, {0x2C});
    for (const int value : {gif.left, gif.top, gif.width, gif.height}) {
        put16(bytes, static_cast<unsigned>(value));
    }
    putBytes(bytes, {gif.interlaced ? 0x40 : 0, 2});
    const Bytes codes = lzwOf(gif.indexes);
    for (std::size_t at = 0; at < codes.size(); at += 200) {
        const std::size_t part = std::min<std::size_t>(200, codes.size() - at);
        putBytes(bytes, {static_cast<int>(part)});
        bytes.insert(bytes.end(), codes.begin() + static_cast<std::ptrdiff_t>(at),
                     codes.begin() + static_cast<std::ptrdiff_t>(at + part));
    }
    putBytes(bytes, {0, 0x3B});
    return bytes;
}

Bytes encoded(const QImage& image, const char* format) {
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, 95);
    const auto* begin = reinterpret_cast<const std::byte*>(data.constData());
    return {begin, begin + data.size()};
}

Bytes turnedJpg(const QImage& image) {
    const Bytes plain = encoded(image, "JPG");
    Bytes exif;
    putBytes(exif, {0xFF, 0xE1, 0, 34, 'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0});
    putBytes(exif, {1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0});
    const Bytes start(plain.begin(), plain.begin() + 2);
    return joined(joined(start, exif), Bytes(plain.begin() + 2, plain.end()));
}

std::vector<Bytes> oneOfEachKind() {
    QImage plain(12, 9, QImage::Format_ARGB32);
    plain.fill(qRgb(200, 40, 90));
    Bytes palette;
    for (std::uint32_t i = 0; i < 256; ++i) {
        put32(palette, i * 0x010101U);
    }
    Bytes runs;
    putBytes(runs, {3, 7, 0, 4, 1, 2, 3, 4, 0, 0, 0, 2, 1, 1, 5, 9, 0, 1});
    Bytes placeable;
    put32(placeable, 0x9AC6CDD7);
    for (const unsigned value : {0U, 0U, 0U, 100U, 50U, 96U, 0U, 0U, 0U}) {
        put16(placeable, value);
    }
    for (const unsigned value : {1U, 9U, 0x300U, 12U, 0U, 0U, 3U, 0U, 0U, 3U, 0U, 0U}) {
        put16(placeable, value);
    }
    Bytes emf(108);
    set32(emf, 0, 1);
    set32(emf, 4, 108);
    set32(emf, 32, 2540);
    set32(emf, 36, 1270);
    set32(emf, 40, 0x464D4520);
    const Bytes frame = iconFrame32(2, 2, {1, 2, 3, 0xFF000004}, {0, 0});
    const Bytes png = encoded(plain, "PNG");
    return {bmpFile(infoHeader({4, 3, 24, 0, 0}), Bytes(36, std::byte{9})),
            bmpFile(joined(infoHeader({8, 3, 8, 1, 256}), palette), runs),
            bmpFile(joined(infoHeader({5, 2, 16, 3, 0}), Bytes(12, std::byte{0x0F})),
                    Bytes(24, std::byte{0x5A})),
            iconFile(1, {{frame, 0, 0}, {png, 0, 0}}),
            iconFile(2, {{frame, 1, 1}}),
            gifFile({6, 5, 0, 0, 6, 5, true, 2, std::vector<int>(30, 1)}),
            encoded(plain, "JPG"),
            placeable,
            emf};
}

} // namespace imaging::testing
