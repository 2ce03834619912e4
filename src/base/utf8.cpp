#include "base/utf8.h"

namespace base {
namespace {

constexpr char16_t kEscapeBase = 0xDC00; // an odd byte b becomes the lone surrogate 0xDC00 + b

struct Decoded {
    char32_t point = 0;
    std::size_t length = 0; // 0: no valid sequence here
};

Decoded decodeAt(std::string_view bytes, std::size_t at) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) {
        return {lead, 1};
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || at + length > bytes.size()) {
        return {};
    }
    char32_t point = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0U) != 0x80) {
            return {};
        }
        point = (point << 6U) | (byte(at + i) & 0x3FU);
    }
    const bool overlong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
    const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
    if (overlong || surrogate || point > 0x10FFFF) {
        return {};
    }
    return {point, length};
}

bool isHigh(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLow(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

} // namespace

void appendUtf8(std::string& text, char32_t point) {
    const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    const auto follow = [&](unsigned shift) { put(0x80U | ((point >> shift) & 0x3FU)); };
    if (point < 0x80) {
        put(point);
    } else if (point < 0x800) {
        put(0xC0U | (point >> 6U));
    } else if (point < 0x10000) {
        put(0xE0U | (point >> 12U));
        follow(6);
    } else {
        put(0xF0U | (point >> 18U));
        follow(12);
        follow(6);
    }
    if (point >= 0x80) {
        follow(0);
    }
}

std::u16string fromUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();) {
        const Decoded decoded = decodeAt(bytes, at);
        if (decoded.length == 0) {
            const auto odd = static_cast<unsigned char>(bytes[at++]);
            text.push_back(static_cast<char16_t>(kEscapeBase + odd));
            continue;
        }
        if (decoded.point < 0x10000) {
            text.push_back(static_cast<char16_t>(decoded.point));
        } else {
            const char32_t offset = decoded.point - 0x10000;
            text.push_back(static_cast<char16_t>(0xD800U + (offset >> 10U)));
            text.push_back(static_cast<char16_t>(0xDC00U + (offset & 0x3FFU)));
        }
        at += decoded.length;
    }
    return text;
}

std::string toUtf8(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t unit = text[at];
        if (isHigh(unit) && at + 1 < text.size() && isLow(text[at + 1])) {
            const char32_t high = unit - 0xD800U;
            const char32_t low = text[++at] - 0xDC00U;
            appendUtf8(bytes, 0x10000U + (high << 10U) + low);
        } else if (unit >= kEscapeBase + 0x80 && unit <= kEscapeBase + 0xFF) {
            bytes.push_back(static_cast<char>(unit - kEscapeBase));
        } else {
            appendUtf8(bytes, unit);
        }
    }
    return bytes;
}

std::u16string fromPath(const std::filesystem::path& path) {
    return fromUtf8(path.string());
}

std::filesystem::path toPath(std::u16string_view text) {
    return toUtf8(text);
}

} // namespace base
