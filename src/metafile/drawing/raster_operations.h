// Operations that combine pixels bit by bit.
// Source: [MS-WMF] 2.1.1.31 (TernaryRasterOperation).
#pragma once

#include <QImage>

#include <cstdint>

namespace metafile {

// An operation of pattern, source and destination: bit 4P + 2S + D of the number is the result for
// those three bits.
bool usesPattern(std::uint8_t operation);
bool usesSource(std::uint8_t operation);
bool usesDestination(std::uint8_t operation);

struct OperationLayers {
    const QImage& destination; // 32 bits a pixel, all of one size
    const QImage& source;      // null when it is not used; transparent pixels take no part
    const QImage& pattern;     // null when it is not used
    const QImage& mask;        // null without one; where it is black `behindMask` applies
};

// The destination's new pixels; transparent where the source takes no part.
QImage combined(const OperationLayers& layers, std::uint8_t operation, std::uint8_t behindMask);

} // namespace metafile
