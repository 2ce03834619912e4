#include "store/text_codec.h"

#include "store/windows_1252.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace store {
namespace {

std::optional<std::byte> encodeUnit(char16_t unit) {
    if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF))
        return static_cast<std::byte>(unit);
    const auto* const found = std::find(kWindows1252Upper.begin(), kWindows1252Upper.end(), unit);
    if (found == kWindows1252Upper.end())
        return std::nullopt;
    return static_cast<std::byte>(0x80 + std::distance(kWindows1252Upper.begin(), found));
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
        text.push_back(windows1252(std::to_integer<std::uint8_t>(byte)));
    }
    return text;
}

} // namespace store
