// The text code page of group files, which metafiles use as well.
// Table: https://www.unicode.org/Public/MAPPINGS/VENDORS/MICSFT/WindowsBestFit/bestfit1252.txt
#pragma once

#include <array>
#include <cstdint>

namespace store {

// 0x80 to 0x9F; the five bytes without a character stand for the control characters of their value.
inline constexpr std::array<char16_t, 32> kWindows1252Upper = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The character of a byte; outside of that range they have the same value.
constexpr char16_t windows1252(std::uint8_t byte) {
    return byte >= 0x80 && byte < 0xA0 ? kWindows1252Upper.at(byte - 0x80U) : char16_t{byte};
}

} // namespace store
