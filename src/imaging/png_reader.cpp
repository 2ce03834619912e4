#include "imaging/png_reader.h"

#include "imaging/new_image.h"

#include <bit>
#include <png.h>

namespace imaging {

namespace {

// libpng's simplified reader, which prints nothing.
class Reader {
  public:
    explicit Reader(std::span<const std::byte> bytes) {
        image_.version = PNG_IMAGE_VERSION;
        if (png_image_begin_read_from_memory(&image_, bytes.data(), bytes.size()) == 0) {
            fail();
        }
    }
    ~Reader() { png_image_free(&image_); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    std::int64_t width() const { return image_.width; }
    std::int64_t height() const { return image_.height; }

    void read(QImage& into) {
        constexpr bool kLittle = std::endian::native == std::endian::little;
        image_.format = kLittle ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;
        const auto stride = static_cast<png_int_32>(into.bytesPerLine());
        if (png_image_finish_read(&image_, nullptr, into.bits(), stride, nullptr) == 0) {
            fail();
        }
    }

  private:
    [[noreturn]] void fail() {
        png_image_free(&image_);
        throw DecodeError("the PNG picture is damaged or cut short");
    }

    png_image image_{};
};

} // namespace

bool isPng(std::span<const std::byte> bytes) {
    constexpr std::size_t kSignature = 8;
    return bytes.size() >= kSignature &&
           png_sig_cmp(reinterpret_cast<png_const_bytep>(bytes.data()), 0, kSignature) == 0;
}

QSize measurePng(std::span<const std::byte> bytes) {
    const Reader reader(bytes);
    requireSensibleSize(reader.width(), reader.height());
    return {static_cast<int>(reader.width()), static_cast<int>(reader.height())};
}

QImage readPng(std::span<const std::byte> bytes) {
    Reader reader(bytes);
    requireSensibleSize(reader.width(), reader.height());
    QImage image = newImage({static_cast<int>(reader.width()), static_cast<int>(reader.height())},
                            QImage::Format_ARGB32);
    reader.read(image);
    return image;
}

} // namespace imaging
