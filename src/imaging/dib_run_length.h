// Run-length coded bitmaps of 4 and 8 bits. Source: [MS-WMF] 3.1.6 "Bitmap Compression".
#pragma once

#include "imaging/dib_reader.h"

namespace imaging {

// Pixels that the runs leave out are transparent, as are those behind the data's end; DecodeError
// when there is not one run.
QImage readRunLengths(std::span<const std::byte> data, const DibHeader& header,
                      const std::vector<QRgb>& palette);

} // namespace imaging
