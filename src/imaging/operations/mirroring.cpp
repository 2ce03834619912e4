#include "imaging/operations/mirroring.h"

#include "imaging/operations/editable_image.h"
#include "imaging/operations/pixel_swaps.h"
#include "imaging/operations/row_bands.h"
#include "imaging/operations/vector_code.h"

namespace imaging::operations {

void flip(QImage& image) {
    makeEditable(image);
    const PixelRows<QRgb> rows = rowsOf(image);
    forRowBands(rows.height / 2, 2 * std::int64_t{rows.width}, [&](int first, int last) {
        runVectorised([=]() TXS_INLINE_LOOP {
            for (int y = first; y < last; ++y) {
                swapPixels(rows.row(y), rows.row(rows.height - 1 - y), rows.width);
            }
        });
    });
}

void reverse(QImage& image) {
    makeEditable(image);
    const PixelRows<QRgb> rows = rowsOf(image);
    forRowBands(rows.height, rows.width, [&](int first, int last) {
        runVectorised([=]() TXS_INLINE_LOOP {
            for (int y = first; y < last; ++y) {
                swapMirrored(rows.row(y), rows.row(y) + rows.width, rows.width / 2);
            }
        });
    });
}

QPoint flippedPoint(QPoint pixel, QSize size) {
    return {pixel.x(), size.height() - 1 - pixel.y()};
}

QPoint reversedPoint(QPoint pixel, QSize size) {
    return {size.width() - 1 - pixel.x(), pixel.y()};
}

} // namespace imaging::operations
