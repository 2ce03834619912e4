#include "store/text_codec.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace store {
namespace {

// 0x80 to 0x9F; the five bytes without a character stand for the control characters of their value.
constexpr std::array<char16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::optional<std::byte> encodeUnit(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return static_cast<std::byte>(unit);
    const auto* const found = std::find(kUpperControls.begin(), kUpperControls.end(), unit);
    if (found == kUpperControls.end())
        return std::nullopt;
    return static_cast<std::byte>(0x80 + std::distance(kUpperControls.begin(), found));
}

char16_t decodeByte(std::byte byte) {
    const auto value = std::to_integer<unsigned>(byte);
    if (value >= 0x80 && value < 0xA0)
        return kUpperControls.at(value - 0x80);
    return static_cast<char16_t>(value);
}

} // namespace

std::optional<std::vector<std::byte>> encodeText(std::u16string_view text) {
    std::vector<std::byte> bytes;
    bytes.reserve(text.size());
    for (const char16_t unit : text) {
        const std::optional<std::byte> byte = encodeUnit(unit);
        if (!byte)
            return std::nullopt;
        bytes.push_back(*byte);
    }
    return bytes;
}

std::u16string decodeText(std::span<const std::byte> bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (const std::byte byte : bytes) {
        if (byte == std::byte{0})
            break;
        text.push_back(decodeByte(byte));
    }
    return text;
}

} // namespace store
