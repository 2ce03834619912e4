// The bitmaps inside WMF and EMF records.
// Sources: [MS-WMF] 2.2.2.9 (DeviceIndependentBitmap) and 2.2.2.1 (Bitmap16).
#pragma once

#include "metafile/records/records.h"

namespace metafile {

// More would make one record take hundreds of megabytes.
inline constexpr std::int64_t kMaximumBitmapPixels = 24'000'000;

enum class AlphaUse { Ignored, Premultiplied };

struct BitmapSource {
    std::span<const std::byte> header; // with the colours behind it
    std::span<const std::byte> pixels;
    // The colours are 16-bit numbers of this palette's entries.
    const Palette* palette = nullptr;
    AlphaUse alpha = AlphaUse::Ignored;
};

// A device-independent bitmap; DecodeError when it cannot be read. With Ignored the image is opaque
// ARGB32 (unless the header's own masks tell alpha), with Premultiplied ARGB32_Premultiplied.
QImage readBitmap(const BitmapSource& source);

// Header, colours and pixels in one piece, as WMF records and brushes hold them.
QImage readPackedBitmap(std::span<const std::byte> bytes, const Palette* palette);

// A device-dependent bitmap: its 10-byte header begins `header`, its pixels `pixels`.
Bitmap readOldBitmap(std::span<const std::byte> header, std::span<const std::byte> pixels);

} // namespace metafile
