#include "metafile/metafile_bytes.h"

#include "imaging/byte_reader.h"
#include "metafile/metafile.h"

#include <bit>
#include <cmath>

namespace metafile::testing {

namespace {

void append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

Bytes words32(const std::vector<std::int32_t>& words) {
    Bytes bytes;
    for (const std::int32_t word : words) {
        put32(bytes, static_cast<std::uint32_t>(word));
    }
    return bytes;
}

Bytes units16(std::u16string_view text) {
    Bytes bytes;
    for (const char16_t unit : text) {
        put16(bytes, unit);
    }
    while (bytes.size() % 4 != 0) {
        bytes.push_back({});
    }
    return bytes;
}

} // namespace

EmfFile& EmfFile::add(std::uint32_t type, const std::vector<std::int32_t>& words) {
    return addBytes(type, words32(words));
}

EmfFile& EmfFile::addBytes(std::uint32_t type, const Bytes& body) {
    Bytes padded = body;
    while (padded.size() % 4 != 0) {
        padded.push_back({});
    }
    put32(records_, type);
    put32(records_, static_cast<std::uint32_t>(padded.size() + 8));
    append(records_, padded);
    return *this;
}

EmfFile& EmfFile::pen(int handle, int style, int width, std::uint32_t colour) {
    add(38, {handle, style, width, 0, static_cast<std::int32_t>(colour)});
    return add(37, {handle});
}

EmfFile& EmfFile::brush(int handle, std::uint32_t colour) {
    add(39, {handle, 0, static_cast<std::int32_t>(colour), 0});
    return add(37, {handle});
}

EmfFile& EmfFile::stock(int number) {
    return add(37, {std::bit_cast<std::int32_t>(0x80000000U + static_cast<unsigned>(number))});
}

EmfFile& EmfFile::rectangle(int left, int top, int right, int bottom) {
    return add(43, {left, top, right, bottom});
}

EmfFile& EmfFile::font(int handle, int height, int escapement, std::u16string_view family,
                       int characterSet) {
    Bytes body = words32({handle, height, 0, escapement, escapement, 400});
    putBytes(body, {0, 0, 0, characterSet, 0, 0, 0, 0});
    Bytes name = units16(family);
    name.resize(64);
    append(body, name);
    addBytes(82, body);
    return add(37, {handle});
}

EmfFile& EmfFile::text(int x, int y, std::u16string_view characters,
                       const std::vector<int>& advances, int options) {
    constexpr int kCharactersAt = 76;
    const Bytes units = units16(characters);
    const int advancesAt = advances.empty() ? 0 : kCharactersAt + static_cast<int>(units.size());
    Bytes body = words32({0, 0, -1, -1, 1, 0, 0, x, y, static_cast<int>(characters.size()),
                          kCharactersAt, options, 0, 0, 30, 30, advancesAt});
    append(body, units);
    append(body, words32(advances));
    return addBytes(84, body);
}

Bytes EmfFile::bytes() const {
    constexpr int kHeader = 88;
    Bytes bytes = words32({1,
                           kHeader,
                           0,
                           0,
                           width_ - 1,
                           height_ - 1,
                           0,
                           0,
                           width_ * 100,
                           height_ * 100,
                           0x464D4520,
                           0x10000,
                           static_cast<int>(records_.size()) + kHeader + 20,
                           0,
                           100,
                           0,
                           0,
                           0,
                           1000,
                           1000,
                           1000,
                           1000});
    append(bytes, records_);
    append(bytes, words32({14, 20, 0, 16, 20}));
    return bytes;
}

QImage EmfFile::drawn(double scale) const {
    return drawnMetafile(bytes(), {static_cast<int>(std::lround(width_ * scale)),
                                   static_cast<int>(std::lround(height_ * scale))});
}

WmfFile& WmfFile::add(std::uint16_t type, const std::vector<int>& words) {
    Bytes body;
    for (const int word : words) {
        put16(body, static_cast<unsigned>(word) & 0xFFFFU);
    }
    return addBytes(type, body);
}

WmfFile& WmfFile::addBytes(std::uint16_t type, const Bytes& body) {
    Bytes padded = body;
    if (padded.size() % 2 != 0) {
        padded.push_back({});
    }
    put32(records_, static_cast<std::uint32_t>(padded.size() / 2 + 3));
    put16(records_, type);
    append(records_, padded);
    return *this;
}

WmfFile& WmfFile::window(int x, int y, int width, int height) {
    return add(0x020B, {y, x}).add(0x020C, {height, width});
}

Bytes WmfFile::plain() const {
    Bytes bytes;
    for (const unsigned word : {1U, 9U, 0x300U}) {
        put16(bytes, word);
    }
    put32(bytes, static_cast<std::uint32_t>(records_.size() / 2 + 12));
    put16(bytes, 8);
    put32(bytes, 100);
    put16(bytes, 0);
    append(bytes, records_);
    put32(bytes, 3);
    put16(bytes, 0);
    return bytes;
}

Bytes WmfFile::placeable(int left, int top, int right, int bottom, int unitsPerInch) const {
    Bytes bytes;
    put32(bytes, 0x9AC6CDD7);
    for (const int word : {0, left, top, right, bottom, unitsPerInch, 0, 0, 0}) {
        put16(bytes, static_cast<unsigned>(word) & 0xFFFFU);
    }
    append(bytes, plain());
    return bytes;
}

Bytes bitmapHeader(int width, int height, int bits) {
    return imaging::testing::infoHeader({width, height, bits, 0, 0});
}

Bytes bitmapPixels(int width, const std::vector<QRgb>& pixels) {
    Bytes bytes;
    const auto columns = static_cast<std::size_t>(width);
    for (std::size_t row = pixels.size() / columns; row-- > 0;) {
        for (std::size_t x = 0; x < columns; ++x) {
            const QRgb pixel = pixels[row * columns + x];
            putBytes(bytes, {qBlue(pixel), qGreen(pixel), qRed(pixel)});
        }
        while (bytes.size() % 4 != 0) {
            bytes.push_back({});
        }
    }
    return bytes;
}

QImage drawnMetafile(const Bytes& bytes, QSize size) {
    return draw(bytes, size, stoppedClock).image;
}

void drawWithRandomBytes(const Bytes& sound, std::size_t from, std::mt19937& random) {
    constexpr int kRounds = 1500;
    constexpr int kBytes = 4;
    for (int round = 0; round < kRounds; ++round) {
        Bytes bytes = sound;
        for (int i = 0; i < kBytes; ++i) {
            bytes[from + random() % (bytes.size() - from)] = static_cast<std::byte>(random());
        }
        try {
            draw(bytes, {32, 32});
        } catch (const imaging::DecodeError&) {
            // Some are broken in a way that must be noticed.
        }
    }
}

QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 200) {
                ink |= QRect(x, y, 1, 1);
            }
        }
    }
    return ink;
}

} // namespace metafile::testing
