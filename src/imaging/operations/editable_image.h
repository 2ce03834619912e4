// The two formats of pixels that pictures are edited in, and their rows.
#pragma once

#include <QImage>

#include <cstddef>

namespace imaging::operations {

// Pixels of 0xAARRGGBB, `stride` pixels from one row to the next.
template <typename Pixel>
struct PixelRows {
    Pixel* first = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;

    Pixel* row(int y) const { return first + y * stride; }
};

// Makes the image RGB32, or ARGB32 (straight, not premultiplied) if it has alpha; leaves it alone
// if it is one of them. Throws std::bad_alloc if there is no memory, the image then is as it was.
void makeEditable(QImage& image);
QImage editable(const QImage& image);

// The rows of an editable image; writing to a shared one detaches it (std::bad_alloc if it cannot).
PixelRows<QRgb> rowsOf(QImage& image);
PixelRows<const QRgb> constRowsOf(const QImage& image);

// An image of another size and unset pixels with all else (format, resolution, texts, ...) as in
// `image`. Throws std::bad_alloc.
QImage emptyLike(const QImage& image, QSize size);

} // namespace imaging::operations
