// 8-bit text of WMF and EMF records to Unicode, by the character set of the font that is selected.
// Source of the numbers: [MS-WMF] 2.1.1.5 (CharacterSet).
#pragma once

#include <QString>

#include <cstdint>
#include <span>
#include <vector>

namespace metafile {

// The character sets that are more than the name of a code page.
inline constexpr std::uint8_t kAnsiCharacterSet = 0;
inline constexpr std::uint8_t kDefaultCharacterSet = 1;
inline constexpr std::uint8_t kSymbolCharacterSet = 2;

struct DecodedText {
    QString text;
    // For each UTF-16 unit of `text` the index of the first byte that it stands for, never falling.
    // Records space their text byte by byte: the width of a unit is the sum of the widths from its
    // byte up to the byte of the next unit with another one.
    std::vector<int> byteOfUnit;
};

// Every byte comes out: in the symbol set as U+F000 + byte; what the character set does not define
// (half a double-byte character too) as the Windows-1252 character of that byte; likewise all text
// of a set that is unknown or for which this machine has no decoder. DEFAULT counts as
// Windows-1252. Never throws but for want of memory.
DecodedText textOf(std::span<const std::byte> bytes, std::uint8_t characterSet);

} // namespace metafile
