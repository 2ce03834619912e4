#include "store/text_codec.h"

#include "base/windows_1252.h"

namespace store {

std::optional<std::vector<std::byte>> encodeText(std::u16string_view text) {
    std::vector<std::byte> bytes;
    bytes.reserve(text.size());
    for (const char16_t unit : text) {
        const std::optional<std::uint8_t> byte = base::toWindows1252(unit);
        if (!byte) {
            return std::nullopt;
        }
        bytes.push_back(std::byte{*byte});
    }
    return bytes;
}

std::u16string decodeText(std::span<const std::byte> bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (const std::byte byte : bytes) {
        if (byte == std::byte{0}) {
            break;
        }
        text.push_back(base::fromWindows1252(std::to_integer<std::uint8_t>(byte)));
    }
    return text;
}

} // namespace store
