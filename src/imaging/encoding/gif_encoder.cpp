// GIF through giflib: one picture, with the colours that are found to be its best.
// Source: "Graphics Interchange Format, Version 89a" (CompuServe, 1990).
#include "imaging/encoding/error_diffusion.h"
#include "imaging/encoding/formats.h"
#include "imaging/encoding/palette.h"

#include <gif_lib.h>
#include <memory>
#include <new>
#include <unordered_map>

namespace imaging {

namespace {

constexpr std::size_t kMostColours = 256;

struct IndexedPicture {
    std::vector<QRgb> colours; // with the transparent one
    int transparent = NO_TRANSPARENT_COLOR;
    QImage indexes;
};

// The number of each colour, where all of them are there.
void findExactly(const QImage& image, std::span<const QRgb> colours, QImage& indexes) {
    std::unordered_map<QRgb, uchar> numbers;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        numbers.emplace(colours[i], static_cast<uchar>(i));
    }
    const auto numberOf = [&](QRgb pixel) {
        return isSeenThrough(pixel) ? static_cast<uchar>(colours.size())
                                    : numbers.at(pixel | 0xFF000000U);
    };
    for (int y = 0; y < image.height(); ++y) {
        const auto* in = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        uchar* const out = indexes.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            out[x] = x > 0 && in[x] == in[x - 1] ? out[x - 1] : numberOf(in[x]);
        }
    }
}

bool isAnythingSeenThrough(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(), isSeenThrough)) {
            return true;
        }
    }
    return false;
}

IndexedPicture toIndexes(const QImage& image) {
    IndexedPicture picture;
    picture.indexes = QImage(image.size(), QImage::Format_Indexed8);
    if (picture.indexes.isNull()) {
        throw std::bad_alloc();
    }
    const bool needsTransparent = isAnythingSeenThrough(image);
    const std::size_t most = kMostColours - (needsTransparent ? 1 : 0);
    if (auto exact = exactColours(image, most)) {
        picture.colours = std::move(*exact);
        findExactly(image, picture.colours, picture.indexes);
    } else {
        picture.colours = bestColours(image, most);
        diffuse(image, picture.colours, picture.indexes);
    }
    if (needsTransparent) {
        picture.transparent = static_cast<int>(picture.colours.size());
        picture.colours.push_back(qRgb(0, 0, 0));
    }
    return picture;
}

// No exception may pass through the library.
int appendBytes(GifFileType* gif, const GifByteType* bytes, int count) {
    auto* out = static_cast<std::vector<std::byte>*>(gif->UserData);
    try {
        const auto* begin = reinterpret_cast<const std::byte*>(bytes);
        out->insert(out->end(), begin, begin + count);
        return count;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

// The library fails for want of memory only: all else has been checked before.
void require(int result) {
    if (result == GIF_ERROR) {
        throw std::bad_alloc();
    }
}

struct FreeMap {
    void operator()(ColorMapObject* map) const { GifFreeMapObject(map); }
};

struct CloseGif {
    void operator()(GifFileType* gif) const { EGifCloseFile(gif, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, CloseGif>;

std::unique_ptr<ColorMapObject, FreeMap> colourMapOf(const std::vector<QRgb>& colours) {
    const int bits = std::max(1, GifBitSize(static_cast<int>(colours.size())));
    std::unique_ptr<ColorMapObject, FreeMap> map(GifMakeMapObject(1 << bits, nullptr));
    if (!map) {
        throw std::bad_alloc();
    }
    for (std::size_t i = 0; i < colours.size(); ++i) {
        map->Colors[i] = {static_cast<GifByteType>(qRed(colours[i])),
                          static_cast<GifByteType>(qGreen(colours[i])),
                          static_cast<GifByteType>(qBlue(colours[i]))};
    }
    return map;
}

void writeTransparency(GifFileType* gif, int transparent) {
    GraphicsControlBlock control{DISPOSAL_UNSPECIFIED, false, 0, transparent};
    GifByteType extension[4];
    const std::size_t size = EGifGCBToExtension(&control, extension);
    require(EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(size), extension));
}

void writePicture(GifFileType* gif, IndexedPicture& picture) {
    const int width = picture.indexes.width();
    const int height = picture.indexes.height();
    const auto map = colourMapOf(picture.colours);
    require(EGifPutScreenDesc(gif, width, height, map->BitsPerPixel, 0, map.get()));
    if (picture.transparent != NO_TRANSPARENT_COLOR) {
        writeTransparency(gif, picture.transparent);
    }
    require(EGifPutImageDesc(gif, 0, 0, width, height, false, nullptr));
    for (int y = 0; y < height; ++y) {
        require(EGifPutLine(gif, picture.indexes.scanLine(y), width));
    }
}

} // namespace

std::vector<std::byte> encodeGif(const QImage& image) {
    IndexedPicture picture = toIndexes(image);
    std::vector<std::byte> bytes;
    int error = 0;
    Gif gif(EGifOpen(&bytes, appendBytes, &error));
    if (!gif) {
        throw std::bad_alloc();
    }
    EGifSetGifVersion(gif.get(), picture.transparent != NO_TRANSPARENT_COLOR);
    writePicture(gif.get(), picture);
    require(EGifCloseFile(gif.release(), nullptr)); // writes the end
    return bytes;
}

} // namespace imaging
