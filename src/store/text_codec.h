// Texts of a group file (`Name`, `Parent`, records): Windows-1252, one byte a character, without
// prefix or terminator.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace store {

// Nothing when a character has no place in the code page.
std::optional<std::vector<std::byte>> encodeText(std::u16string_view text);

// Every byte decodes; a zero byte ends the text.
std::u16string decodeText(std::span<const std::byte> bytes);

} // namespace store
