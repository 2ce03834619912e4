// Names of storages and streams: which are legal, and how they compare.
// [MS-CFB] 2.6.4: the shorter name comes first; names of one length compare by their upper-cased
// UTF-16 units. Upper case is Unicode's simple mapping, the same on every system.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace compound {

inline constexpr std::size_t kMaximumNameUnits = 31;

char16_t toUpper(char16_t unit) noexcept;

// Negative, 0 or positive as `left` comes before, is the same name as, or comes after `right`.
int compareNames(std::u16string_view left, std::u16string_view right) noexcept;

// 1 to 31 units, none of them / \ : ! or zero.
bool isLegalName(std::u16string_view name) noexcept;

// The name with a number behind it, " (2)", and cut so that it can still be one.
std::u16string withNumber(std::u16string_view name, unsigned number);

// The name in UTF-8 for messages; "?" for control characters and halves of characters.
std::string shownName(std::u16string_view name);

} // namespace compound
