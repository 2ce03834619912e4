// GIF through giflib: the first picture, on the logical screen, as a viewer shows it.
// Source: "Graphics Interchange Format, Version 89a" (CompuServe, 1990).
#include "imaging/byte_reader.h"
#include "imaging/decoders.h"
#include "imaging/new_image.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <gif_lib.h>
#include <memory>
#include <vector>

namespace imaging {

namespace {

struct Source {
    std::span<const std::byte> bytes;
    std::size_t at = 0;
};

int readFromSource(GifFileType* gif, GifByteType* into, int count) {
    auto* source = static_cast<Source*>(gif->UserData);
    const std::size_t part =
        std::min(static_cast<std::size_t>(count), source->bytes.size() - source->at);
    std::memcpy(into, source->bytes.data() + source->at, part);
    source->at += part;
    return static_cast<int>(part);
}

struct CloseGif {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using Gif = std::unique_ptr<GifFileType, CloseGif>;

Gif openGif(Source& source) {
    int error = 0;
    Gif gif(DGifOpen(&source, readFromSource, &error));
    if (!gif) {
        throw DecodeError("the GIF picture's header cannot be read");
    }
    return gif;
}

// The transparent colour of the picture that follows, or -1.
constexpr int kNoTransparency = -1;

void readExtension(GifFileType* gif, int& transparent) {
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(gif, &code, &block) == GIF_ERROR) {
        throw DecodeError("the GIF picture is cut short");
    }
    GraphicsControlBlock control{};
    while (block != nullptr) {
        if (code == GRAPHICS_EXT_FUNC_CODE && block[0] >= 4 &&
            DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
            transparent = control.TransparentColor;
        }
        if (DGifGetExtensionNext(gif, &block) == GIF_ERROR) {
            throw DecodeError("the GIF picture is cut short");
        }
    }
}

// Goes on to the first picture's description; returns its transparent colour.
int findFirstPicture(GifFileType* gif) {
    int transparent = kNoTransparency;
    while (true) {
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(gif, &record) == GIF_ERROR || record == TERMINATE_RECORD_TYPE) {
            throw DecodeError("the GIF file holds no picture");
        }
        if (record == EXTENSION_RECORD_TYPE) {
            readExtension(gif, transparent);
        } else if (record == IMAGE_DESC_RECORD_TYPE) {
            if (DGifGetImageHeader(gif) == GIF_ERROR) {
                throw DecodeError("the GIF picture is cut short");
            }
            return transparent;
        }
    }
}

// The logical screen; where it is missing or the picture sticks out of it, what the picture needs.
QSize screenOf(const GifFileType* gif) {
    const GifImageDesc& picture = gif->Image;
    requireSensibleSize(picture.Width, picture.Height);
    int width = gif->SWidth;
    int height = gif->SHeight;
    if (width == 0 || height == 0) {
        width = picture.Left + picture.Width;
        height = picture.Top + picture.Height;
    }
    requireSensibleSize(width, height);
    return {width, height};
}

class Rows {
  public:
    explicit Rows(const GifImageDesc& picture) : height_(picture.Height), row_(0) {
        interlaced_ = picture.Interlace;
    }

    bool isDone() const { return pass_ >= kPasses.size(); }
    int row() const { return row_; }

    void next() {
        const int step = interlaced_ ? kPasses[pass_].step : 1;
        row_ += step;
        while (row_ >= height_ && !isDone()) {
            pass_ = interlaced_ ? pass_ + 1 : kPasses.size();
            row_ = isDone() ? height_ : kPasses[pass_].first;
        }
    }

  private:
    struct Pass {
        int first, step;
    };
    static constexpr std::array<Pass, 4> kPasses = {{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};

    int height_;
    int row_;
    bool interlaced_ = false;
    std::size_t pass_ = 0;
};

std::vector<QRgb> coloursOf(const GifFileType* gif, int transparent) {
    constexpr std::size_t kMostColours = 256;
    std::vector<QRgb> colours(kMostColours, qRgb(0, 0, 0));
    const ColorMapObject* map = gif->Image.ColorMap ? gif->Image.ColorMap : gif->SColorMap;
    for (int i = 0; map != nullptr && i < map->ColorCount; ++i) {
        const GifColorType& colour = map->Colors[i];
        colours[static_cast<std::size_t>(i)] = qRgb(colour.Red, colour.Green, colour.Blue);
    }
    if (transparent >= 0 && transparent < static_cast<int>(kMostColours)) {
        colours[static_cast<std::size_t>(transparent)] = qRgba(0, 0, 0, 0);
    }
    return colours;
}

// The part of a row from `left` on, as far as the screen goes.
void paint(std::span<const GifPixelType> part, const GifImageDesc& picture, QPoint at,
           const std::vector<QRgb>& colours, QImage& screen) {
    const int y = picture.Top + at.y();
    if (y >= screen.height()) {
        return;
    }
    auto* out = reinterpret_cast<QRgb*>(screen.scanLine(y));
    int x = picture.Left + at.x();
    for (const GifPixelType pixel : part) {
        if (x >= screen.width()) {
            return;
        }
        out[x++] = colours[pixel];
    }
}

// Paints the rows that can be read as a whole; returns how many there were.
int readRows(GifFileType* gif, const std::vector<QRgb>& colours, QImage& screen) {
    const GifImageDesc& picture = gif->Image;
    std::vector<GifPixelType> line(static_cast<std::size_t>(picture.Width));
    int count = 0;
    for (Rows rows(picture); !rows.isDone(); rows.next(), ++count) {
        if (DGifGetLine(gif, line.data(), picture.Width) == GIF_ERROR) {
            break;
        }
        paint(line, picture, {0, rows.row()}, colours, screen);
    }
    return count;
}

// giflib tells a row that is cut short by failing, and not how much of it there is: behind the
// whole rows, which are read once more, the pixels are asked for one by one.
void readCutRow(std::span<const std::byte> bytes, int wholeRows, const std::vector<QRgb>& colours,
                QImage& screen) {
    Source source{bytes};
    const Gif gif = openGif(source);
    findFirstPicture(gif.get());
    const GifImageDesc& picture = gif->Image;
    std::vector<GifPixelType> line(static_cast<std::size_t>(picture.Width));
    Rows rows(picture);
    for (int row = 0; row < wholeRows; ++row, rows.next()) {
        DGifGetLine(gif.get(), line.data(), picture.Width);
    }
    GifPixelType pixel = 0;
    for (int x = 0; x < picture.Width && DGifGetLine(gif.get(), &pixel, 1) == GIF_OK; ++x) {
        paint({&pixel, 1}, picture, {x, rows.row()}, colours, screen);
    }
}

PictureFacts factsOf(const GifFileType* gif) {
    const ColorMapObject* map = gif->Image.ColorMap ? gif->Image.ColorMap : gif->SColorMap;
    return rasterFacts(PictureKind::Gif, screenOf(gif), map != nullptr ? map->BitsPerPixel : 8);
}

} // namespace

PictureFacts measureGif(std::span<const std::byte> bytes) {
    Source source{bytes};
    const Gif gif = openGif(source);
    findFirstPicture(gif.get());
    return factsOf(gif.get());
}

RasterPicture decodeGif(std::span<const std::byte> bytes) {
    Source source{bytes};
    const Gif gif = openGif(source);
    const int transparent = findFirstPicture(gif.get());
    const PictureFacts facts = factsOf(gif.get());
    QImage screen = newImage(facts.pixels, QImage::Format_ARGB32);
    const std::vector<QRgb> colours = coloursOf(gif.get(), transparent);
    const int whole = readRows(gif.get(), colours, screen);
    if (whole < gif->Image.Height) {
        readCutRow(bytes, whole, colours, screen);
    }
    return {facts, screen};
}

} // namespace imaging
