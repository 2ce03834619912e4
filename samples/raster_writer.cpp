#include "raster_writer.h"

#include "little_endian.h"

#include <QBuffer>
#include <QImageWriter>

#include <cstddef>
#include <gif_lib.h>
#include <memory>
#include <stdexcept>
#include <string>

namespace samples {

namespace {

constexpr std::uint32_t kInfoHeaderSize = 40;

void putInfoHeader(LittleEndian& bytes, QSize size, std::uint16_t bits, std::size_t colours) {
    constexpr int kPixelsPerMetre = 3780; // 96 per inch
    bytes.u32(kInfoHeaderSize).i32(size.width()).i32(size.height()).u16(1).u16(bits);
    bytes.u32(0).u32(0).i32(kPixelsPerMetre).i32(kPixelsPerMetre);
    bytes.u32(static_cast<std::uint32_t>(colours)).u32(0);
}

QByteArray bmpFile(const LittleEndian& head, const LittleEndian& pixels) {
    constexpr std::uint32_t kFileHeaderSize = 14;
    const auto start = static_cast<std::uint32_t>(kFileHeaderSize + head.bytes().size());
    LittleEndian file;
    file.u16(0x4D42).u32(static_cast<std::uint32_t>(start + pixels.bytes().size()));
    file.u32(0).u32(start);
    return file.raw(head.bytes()).raw(pixels.bytes()).bytes();
}

// Rows of a bitmap are padded to whole groups of four bytes.
void padRow(LittleEndian& bytes, std::size_t rowBytes) {
    for (; rowBytes % 4 != 0; ++rowBytes) {
        bytes.u8(0);
    }
}

// The bitmap in an icon: twice the height, colours with alpha, then the mask for old readers.
QByteArray iconFrame(const QImage& picture) {
    const QImage image = picture.convertToFormat(QImage::Format_ARGB32);
    LittleEndian frame;
    putInfoHeader(frame, {image.width(), image.height() * 2}, 32, 0);
    for (int y = image.height() - 1; y >= 0; --y) {
        for (int x = 0; x < image.width(); ++x) {
            frame.u32(image.pixel(x, y));
        }
    }
    for (int y = image.height() - 1; y >= 0; --y) {
        for (int left = 0; left < image.width(); left += 8) {
            unsigned bits = 0;
            for (int x = left; x < left + 8; ++x) {
                bits = bits << 1 | (x < image.width() && qAlpha(image.pixel(x, y)) < 128 ? 1U : 0U);
            }
            frame.u8(static_cast<std::uint8_t>(bits));
        }
        padRow(frame, static_cast<std::size_t>((image.width() + 7) / 8));
    }
    return frame.bytes();
}

struct Frame {
    QImage picture;
    std::uint16_t planesOrHotX; // icon: planes; cursor: the hot spot
    std::uint16_t bitsOrHotY;
};

QByteArray iconFile(std::uint16_t type, const std::vector<Frame>& frames) {
    LittleEndian directory;
    LittleEndian content;
    directory.u16(0).u16(type).u16(static_cast<std::uint16_t>(frames.size()));
    const std::size_t start = 6 + 16 * frames.size();
    for (const Frame& frame : frames) {
        const QByteArray bytes = iconFrame(frame.picture);
        const auto offset =
            static_cast<std::uint32_t>(start) + static_cast<std::uint32_t>(content.bytes().size());
        directory.u8(static_cast<std::uint8_t>(frame.picture.width()));
        directory.u8(static_cast<std::uint8_t>(frame.picture.height())).u8(0).u8(0);
        directory.u16(frame.planesOrHotX).u16(frame.bitsOrHotY);
        directory.u32(static_cast<std::uint32_t>(bytes.size())).u32(offset);
        content.raw(bytes);
    }
    return directory.raw(content.bytes()).bytes();
}

void demand(bool success, const char* step, int error) {
    if (success) {
        return;
    }
    const char* cause = GifErrorString(error);
    throw std::runtime_error(std::string(step) + ": " + (cause != nullptr ? cause : "no cause"));
}

int appendTo(GifFileType* gif, const GifByteType* bytes, int count) {
    static_cast<QByteArray*>(gif->UserData)->append(reinterpret_cast<const char*>(bytes), count);
    return count;
}

using ColourMap = std::unique_ptr<ColorMapObject, decltype(&GifFreeMapObject)>;

// giflib wants a power of two.
ColourMap colourMapOf(const IndexedPicture& picture) {
    int count = 2;
    while (static_cast<std::size_t>(count) < picture.palette.size()) {
        count *= 2;
    }
    ColourMap map(GifMakeMapObject(count, nullptr), &GifFreeMapObject);
    demand(map != nullptr, "making the colour map", E_GIF_ERR_NOT_ENOUGH_MEM);
    for (std::size_t index = 0; index < picture.palette.size(); ++index) {
        const QRgb colour = picture.palette[index];
        map->Colors[index] = {static_cast<GifByteType>(qRed(colour)),
                              static_cast<GifByteType>(qGreen(colour)),
                              static_cast<GifByteType>(qBlue(colour))};
    }
    return map;
}

void putGifFrame(GifFileType* gif, const IndexedPicture& picture) {
    GraphicsControlBlock control{};
    control.TransparentColor = picture.transparent < 0 ? NO_TRANSPARENT_COLOR : picture.transparent;
    GifByteType block[4];
    const auto blockSize = static_cast<int>(EGifGCBToExtension(&control, block));
    demand(EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, blockSize, block) == GIF_OK,
           "writing the control block", gif->Error);
    const int width = picture.size.width();
    const int height = picture.size.height();
    demand(EGifPutImageDesc(gif, 0, 0, width, height, true, nullptr) == GIF_OK,
           "writing the frame's header", gif->Error);
    std::vector<GifPixelType> row(static_cast<std::size_t>(width));
    const int passes[4][2] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    for (const auto& [first, step] : passes) {
        for (int y = first; y < height; y += step) {
            const auto begin = picture.pixels.begin() + static_cast<std::ptrdiff_t>(y) * width;
            row.assign(begin, begin + width);
            demand(EGifPutLine(gif, row.data(), width) == GIF_OK, "writing a row", gif->Error);
        }
    }
}

} // namespace

QByteArray trueColourBmp(const QImage& picture) {
    const QImage image = picture.convertToFormat(QImage::Format_RGB32);
    LittleEndian head;
    putInfoHeader(head, image.size(), 24, 0);
    LittleEndian pixels;
    for (int y = image.height() - 1; y >= 0; --y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb colour = image.pixel(x, y);
            for (const int part : {qBlue(colour), qGreen(colour), qRed(colour)}) {
                pixels.u8(static_cast<std::uint8_t>(part));
            }
        }
        padRow(pixels, static_cast<std::size_t>(image.width()) * 3);
    }
    return bmpFile(head, pixels);
}

QByteArray paletteBmp(const IndexedPicture& picture) {
    const bool small = picture.palette.size() <= 16;
    LittleEndian head;
    putInfoHeader(head, picture.size, small ? 4 : 8, picture.palette.size());
    for (const QRgb colour : picture.palette) {
        head.u32(colour & 0x00FFFFFFU);
    }
    LittleEndian pixels;
    const auto width = static_cast<std::size_t>(picture.size.width());
    for (int y = picture.size.height() - 1; y >= 0; --y) {
        const unsigned char* row = picture.pixels.data() + static_cast<std::size_t>(y) * width;
        for (std::size_t x = 0; x < width; x += small ? 2 : 1) {
            const unsigned right = x + 1 < width ? row[x + 1] : 0;
            pixels.u8(small ? static_cast<std::uint8_t>(row[x] << 4 | right) : row[x]);
        }
        padRow(pixels, small ? (width + 1) / 2 : width);
    }
    return bmpFile(head, pixels);
}

QByteArray iconOf(const std::vector<QImage>& pictures) {
    std::vector<Frame> frames;
    frames.reserve(pictures.size());
    for (const QImage& picture : pictures) {
        frames.push_back({picture, 1, 32});
    }
    return iconFile(1, frames);
}

QByteArray cursorOf(const QImage& picture, QPoint hotSpot) {
    return iconFile(2, {{picture, static_cast<std::uint16_t>(hotSpot.x()),
                         static_cast<std::uint16_t>(hotSpot.y())}});
}

QByteArray gifOf(const IndexedPicture& picture) {
    QByteArray bytes;
    int error = 0;
    const auto close = [](GifFileType* gif) { EGifCloseFile(gif, nullptr); };
    std::unique_ptr<GifFileType, decltype(close)> gif(EGifOpen(&bytes, &appendTo, &error), close);
    demand(gif != nullptr, "starting a GIF", error);
    EGifSetGifVersion(gif.get(), true);
    const ColourMap map = colourMapOf(picture);
    demand(EGifPutScreenDesc(gif.get(), picture.size.width(), picture.size.height(), 8, 0,
                             map.get()) == GIF_OK,
           "writing the screen's header", gif->Error);
    putGifFrame(gif.get(), picture);
    demand(EGifCloseFile(gif.release(), &error) == GIF_OK, "ending a GIF", error);
    return bytes;
}

QByteArray jpgOf(const QImage& picture, int quality) {
    QBuffer buffer;
    QImageWriter writer(&buffer, "jpg");
    writer.setQuality(quality);
    writer.setOptimizedWrite(true);
    if (!buffer.open(QIODevice::WriteOnly) || !writer.write(picture)) {
        throw std::runtime_error("writing a JPEG: " + writer.errorString().toStdString());
    }
    return buffer.data();
}

} // namespace samples
