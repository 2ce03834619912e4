#include "compound/names.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace compound {
namespace {

#include "compound/upper_case_table.inc"

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

} // namespace compound
