#include "base/windows_1252.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace base {
namespace {

constexpr unsigned kFirst = 0x80;
constexpr unsigned kEnd = 0xA0;
constexpr std::array<char16_t, kEnd - kFirst> kBetween = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

} // namespace

char16_t fromWindows1252(std::uint8_t byte) {
    return byte >= kFirst && byte < kEnd ? kBetween.at(byte - kFirst) : char16_t{byte};
}

std::optional<std::uint8_t> toWindows1252(char16_t unit) {
    if (unit < kFirst || (unit >= kEnd && unit <= 0xFF)) {
        return static_cast<std::uint8_t>(unit);
    }
    const auto* const found = std::find(kBetween.begin(), kBetween.end(), unit);
    if (found == kBetween.end()) {
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(kFirst + std::distance(kBetween.begin(), found));
}

} // namespace base
