#include "compound/names.h"

#include "base/utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

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
    if (unit < 0x80) {
        return static_cast<char16_t>(unit >= u'a' && unit <= u'z' ? unit - 32 : unit);
    }
    return static_cast<char16_t>(unit + kDifference[kPageOf[unit >> 8U]][unit & 0xFFU]);
}

int compareNames(std::u16string_view left, std::u16string_view right) noexcept {
    if (left.size() != right.size()) {
        return left.size() < right.size() ? -1 : 1;
    }
    if (left.empty() || std::memcmp(left.data(), right.data(), 2 * left.size()) == 0) {
        return 0;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        const int difference = int{toUpper(left[i])} - int{toUpper(right[i])};
        if (difference != 0) {
            return difference;
        }
    }
    return 0;
}

bool isLegalName(std::u16string_view name) noexcept {
    constexpr std::u16string_view kForbidden(u"/\\:!\0", 5);
    return !name.empty() && name.size() <= kMaximumNameUnits &&
           name.find_first_of(kForbidden) == std::u16string_view::npos;
}

std::u16string withNumber(std::u16string_view name, unsigned number) {
    std::u16string suffix = u" (";
    for (const char digit : std::to_string(number)) {
        suffix += static_cast<char16_t>(digit);
    }
    suffix += u')';
    return std::u16string(name.substr(0, kMaximumNameUnits - suffix.size())) + suffix;
}

std::string shownName(std::u16string_view name) {
    std::string text;
    for (std::size_t at = 0; at < name.size(); ++at) {
        const char16_t unit = name[at];
        const bool isHalf = (unit & 0xF800U) == 0xD800;
        if (isPair(name, at)) {
            base::appendUtf8(text, 0x10000U + ((unit & 0x3FFU) << 10U) + (name[++at] & 0x3FFU));
        } else {
            base::appendUtf8(text, isHalf || isControl(unit) ? U'?' : char32_t{unit});
        }
    }
    return text;
}

} // namespace compound
