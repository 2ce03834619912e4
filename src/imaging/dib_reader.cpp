#include "imaging/dib_reader.h"

#include "imaging/dib_run_length.h"
#include "imaging/new_image.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace imaging {

namespace {

constexpr std::uint32_t kCoreHeader = 12; // OS/2 1.x: 16-bit sizes, 3-byte colours
constexpr std::uint32_t kInfoHeader = 40;
constexpr std::uint32_t kOs2ShortHeader = 16; // OS/2 2.x, cut behind the bit count
constexpr std::uint32_t kOs2Header = 64;
constexpr std::uint32_t kMasksHeader = 52; // with three masks
constexpr std::uint32_t kAlphaHeader = 56; // with four masks
constexpr std::uint32_t kV4Header = 108;
constexpr std::uint32_t kV5Header = 124;

bool isKnownHeader(std::uint32_t size) {
    return size == kCoreHeader || size == kV4Header || size == kV5Header || size == kAlphaHeader ||
           size == kMasksHeader || size == kInfoHeader ||
           (size >= kOs2ShortHeader && size <= kOs2Header);
}

bool hasMasksInside(std::uint32_t size) {
    return size == kMasksHeader || size == kAlphaHeader || size == kV4Header || size == kV5Header;
}

void readSizes(const ByteReader& in, DibHeader& header, DibUse use) {
    std::int64_t height = 0;
    if (header.headerSize == kCoreHeader) {
        header.width = in.u16(4);
        height = in.u16(6);
        header.bitsPerPixel = in.u16(10);
        header.paletteEntrySize = 3;
    } else {
        header.width = in.i32(4);
        height = in.i32(8);
        header.bitsPerPixel = in.u16(14);
    }
    header.topDown = height < 0;
    height = height < 0 ? -height : height;
    if (use == DibUse::IconFrame) {
        height /= 2;
    }
    requireSensibleSize(header.width, height);
    header.height = static_cast<int>(height);
}

DibCompression compressionOf(const ByteReader& in, const DibHeader& header) {
    if (header.headerSize < 20) {
        return DibCompression::None;
    }
    const std::uint32_t value = in.u32(16);
    // In OS/2 2.x headers 3 and 4 mean Huffman coding and 24-bit run lengths.
    const bool isOs2 = header.headerSize == kOs2Header;
    if (value > 6 || (isOs2 && value > 2)) {
        throw DecodeError("the bitmap's compression is not known");
    }
    return static_cast<DibCompression>(value);
}

void requireKnownDepth(const DibHeader& header, DibUse use) {
    const int bits = header.bitsPerPixel;
    const auto is = [&](std::initializer_list<int> allowed) {
        return std::find(allowed.begin(), allowed.end(), bits) != allowed.end();
    };
    bool good = false;
    switch (header.compression) {
    case DibCompression::None:
        good = is({1, 2, 4, 8, 16, 24, 32});
        break;
    case DibCompression::Rle8:
        good = is({8});
        break;
    case DibCompression::Rle4:
        good = is({4});
        break;
    case DibCompression::BitFields:
    case DibCompression::AlphaBitFields:
        good = is({16, 32});
        break;
    case DibCompression::Jpeg:
    case DibCompression::Png:
        good = use != DibUse::IconFrame; // whose depth must be that of its pixels
        break;
    }
    if (!good) {
        throw DecodeError("the bitmap's colour depth is not known");
    }
}

// Fills in the masks and returns how many bytes of them stand behind the header.
std::size_t readMasks(const ByteReader& in, DibHeader& header) {
    const bool fields = header.compression == DibCompression::BitFields ||
                        header.compression == DibCompression::AlphaBitFields;
    if (!fields) {
        if (header.bitsPerPixel == 16) {
            header.masks = {0x7C00, 0x03E0, 0x001F, 0};
        } else {
            header.masks = {0x00FF0000, 0x0000FF00, 0x000000FF, 0};
        }
        return 0;
    }
    std::size_t count = 3;
    if (header.headerSize >= kAlphaHeader || header.compression == DibCompression::AlphaBitFields) {
        count = 4;
    }
    for (std::size_t i = 0; i < count; ++i) {
        header.masks[i] = in.u32(kInfoHeader + 4 * i);
    }
    return hasMasksInside(header.headerSize) ? 0 : 4 * count;
}

std::size_t paletteEntries(const ByteReader& in, const DibHeader& header) {
    const std::size_t used = header.headerSize >= 36 ? in.u32(32) : 0;
    const std::size_t most =
        header.bitsPerPixel <= 8 ? std::size_t{1} << static_cast<unsigned>(header.bitsPerPixel) : 0;
    if (header.bitsPerPixel > 8) {
        return std::min<std::size_t>(used, 256); // a hint for displays; only takes room
    }
    return used == 0 || header.headerSize == kCoreHeader ? most : std::min<std::size_t>(used, 256);
}

// One channel of a pixel, scaled to 0..255.
class Channel {
  public:
    explicit Channel(std::uint32_t mask)
        : mask_(mask),
          shift_(mask == 0 ? 0 : static_cast<unsigned>(std::countr_zero(mask))),
          most_(mask >> shift_) {}

    int of(std::uint32_t pixel, int ifMissing) const {
        if (mask_ == 0) {
            return ifMissing;
        }
        const std::uint64_t value = (pixel & mask_) >> shift_;
        return static_cast<int>((value * 255 + most_ / 2) / most_);
    }

  private:
    std::uint32_t mask_;
    unsigned shift_;
    std::uint64_t most_;
};

struct RowReader {
    const DibHeader& header;
    const std::vector<QRgb>& palette;
    Channel red{header.masks[0]};
    Channel green{header.masks[1]};
    Channel blue{header.masks[2]};
    Channel alpha{header.masks[3]};

    QRgb indexed(std::span<const std::byte> row, int x) const {
        const int bits = header.bitsPerPixel;
        const int perByte = 8 / bits;
        const auto byte = std::to_integer<unsigned>(row[static_cast<std::size_t>(x / perByte)]);
        const unsigned shift = static_cast<unsigned>(bits * (perByte - 1 - x % perByte));
        const std::size_t index = (byte >> shift) & ((1U << static_cast<unsigned>(bits)) - 1);
        return index < palette.size() ? palette[index] : qRgb(0, 0, 0);
    }

    QRgb direct(std::span<const std::byte> row, int x) const {
        const auto bytes = static_cast<std::size_t>(header.bitsPerPixel / 8);
        const std::size_t at = static_cast<std::size_t>(x) * bytes;
        std::uint32_t pixel = 0;
        for (std::size_t i = bytes; i-- > 0;) {
            pixel = pixel << 8U | std::to_integer<std::uint32_t>(row[at + i]);
        }
        return qRgba(red.of(pixel, 0), green.of(pixel, 0), blue.of(pixel, 0), alpha.of(pixel, 255));
    }

    void read(std::span<const std::byte> row, QRgb* out, int count) const {
        if (header.bitsPerPixel == 24) {
            for (int x = 0; x < count; ++x) {
                const std::byte* const at = row.data() + std::size_t{3} * static_cast<unsigned>(x);
                out[x] = qRgb(std::to_integer<int>(at[2]), std::to_integer<int>(at[1]),
                              std::to_integer<int>(at[0]));
            }
            return;
        }
        for (int x = 0; x < count; ++x) {
            out[x] = header.bitsPerPixel <= 8 ? indexed(row, x) : direct(row, x);
        }
    }
};

// A mask that promises alpha in a picture all of whose pixels have none left it unused.
void ignoreUnusedAlpha(QImage& image) {
    if (hasAnyAlpha(image)) {
        return;
    }
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::transform(row, row + image.width(), row,
                       [](QRgb pixel) { return pixel | 0xFF000000U; });
    }
}

} // namespace

bool hasAnyAlpha(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(), [](QRgb pixel) { return qAlpha(pixel) != 0; })) {
            return true;
        }
    }
    return false;
}

std::size_t dibRowBytes(int width, int bits) {
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
}

DibHeader readDibHeader(std::span<const std::byte> bytes, DibUse use) {
    const ByteReader in(bytes);
    DibHeader header;
    header.headerSize = in.u32(0);
    if (!isKnownHeader(header.headerSize)) {
        throw DecodeError("the bitmap's header is not known");
    }
    in.part(0, header.headerSize);
    readSizes(in, header, use);
    header.compression = compressionOf(in, header);
    requireKnownDepth(header, use);
    const std::size_t masks = readMasks(in, header);
    if (use != DibUse::File && header.bitsPerPixel == 32 && header.masks[3] == 0) {
        header.masks[3] = 0xFF000000;
    }
    header.paletteAt = header.headerSize + masks;
    header.paletteEntries = paletteEntries(in, header);
    header.pixelsAt = header.paletteAt + header.paletteEntries * header.paletteEntrySize;
    return header;
}

std::vector<QRgb> readDibPalette(std::span<const std::byte> bytes, const DibHeader& header) {
    const ByteReader in(bytes);
    std::vector<QRgb> palette;
    for (std::size_t i = 0; i < header.paletteEntries; ++i) {
        const std::size_t at = header.paletteAt + i * header.paletteEntrySize;
        if (!in.has(at, 3)) {
            break;
        }
        palette.push_back(qRgb(in.u8(at + 2), in.u8(at + 1), in.u8(at)));
    }
    return palette;
}

QImage readDibPixels(std::span<const std::byte> bytes, const DibHeader& header,
                     std::size_t pixelsAt, DibUse use) {
    return readDibPixels(ByteReader(bytes).rest(pixelsAt), header, readDibPalette(bytes, header),
                         use);
}

QImage readDibPixels(std::span<const std::byte> pixels, const DibHeader& header,
                     const std::vector<QRgb>& palette, DibUse use) {
    if (header.compression == DibCompression::Rle4 || header.compression == DibCompression::Rle8) {
        return readRunLengths(pixels, header, palette);
    }
    const std::size_t rowBytes = dibRowBytes(header.width, header.bitsPerPixel);
    if (pixels.size() < rowBytes) {
        throw DecodeError("the bitmap has no pixels");
    }
    QImage image = newImage({header.width, header.height}, QImage::Format_ARGB32);
    const RowReader reader{header, palette};
    for (int y = 0; y < header.height; ++y) {
        const std::size_t at = rowBytes * static_cast<std::size_t>(y);
        if (at + rowBytes > pixels.size()) {
            break;
        }
        const int row = header.topDown ? y : header.height - 1 - y;
        reader.read(pixels.subspan(at, rowBytes), reinterpret_cast<QRgb*>(image.scanLine(row)),
                    header.width);
    }
    const bool isAlphaMeant = header.compression == DibCompression::AlphaBitFields;
    if (use == DibUse::File && header.masks[3] != 0 && !isAlphaMeant) {
        ignoreUnusedAlpha(image);
    }
    return image;
}

} // namespace imaging
