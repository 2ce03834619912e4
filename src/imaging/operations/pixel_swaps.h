// Exchanges of pixels that lie apart, for loops in vector code.
#pragma once

#include "imaging/operations/vector_code.h"

#include <QRgb>

#include <utility>

namespace imaging::operations {

TXS_INLINE_LOOP inline void swapPixels(QRgb* __restrict one, QRgb* __restrict other, int count) {
    for (int x = 0; x < count; ++x) {
        std::swap(one[x], other[x]);
    }
}

// The first pixel of one for the last of the other, and so on; `otherEnd` points behind that last
// one.
TXS_INLINE_LOOP inline void swapMirrored(QRgb* __restrict one, QRgb* __restrict otherEnd,
                                         int count) {
    for (int x = 0; x < count; ++x) {
        std::swap(one[x], otherEnd[-1 - x]);
    }
}

} // namespace imaging::operations
