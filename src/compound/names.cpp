#include "compound/names.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace compound {
namespace {

#include "compound/upper_case_table.inc"

bool isControl(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

// Whether the units at `at` are the two halves of one character.
bool isPair(std::u16string_view name, std::size_t at) {
    const auto isHalf = [](char16_t unit, char16_t first) { return (unit & 0xFC00U) == first; };
    return at + 1 < name.size() && isHalf(name[at], 0xD800) && isHalf(name[at + 1], 0xDC00);
}

} // namespace

char16_t toUpper(char16_t unit) noexcept {
    if (unit < 0x80)
        return static_cast<char16_t>(unit >= u'a' && unit <= u'z' ? unit - 32 : unit);
    return static_cast<char16_t>(unit + kDifference[kPageOf[unit >> 8U]][unit & 0xFFU]);
}

int compareNames(std::u16string_view left, std::u16string_view right) noexcept {
    if (left.size() != right.size())
        return left.size() < right.size() ? -1 : 1;
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (left[i] == right[i])
            continue;
        const int difference = int{toUpper(left[i])} - int{toUpper(right[i])};
        if (difference != 0)
            return difference;
    }
    return 0;
}

bool isLegalName(std::u16string_view name) noexcept {
    constexpr std::u16string_view kForbidden(u"/\\:!\0", 5);
    return !name.empty() && name.size() <= kMaximumNameUnits &&
           name.find_first_of(kForbidden) == std::u16string_view::npos;
}

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
    if (point >= 0x80)
        follow(0);
}

std::string shownName(std::u16string_view name) {
    std::string text;
    for (std::size_t at = 0; at < name.size(); ++at) {
        const char16_t unit = name[at];
        const bool isHalf = (unit & 0xF800U) == 0xD800;
        if (isPair(name, at))
            appendUtf8(text, 0x10000U + ((unit & 0x3FFU) << 10U) + (name[++at] & 0x3FFU));
        else
            appendUtf8(text, isHalf || isControl(unit) ? U'?' : char32_t{unit});
    }
    return text;
}

} // namespace compound
