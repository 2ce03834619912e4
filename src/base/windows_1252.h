// The code page Windows-1252: Latin-1 but for 0x80 to 0x9F.
// Table: https://www.unicode.org/Public/MAPPINGS/VENDORS/MICSFT/WindowsBestFit/bestfit1252.txt
#pragma once

#include <cstdint>
#include <optional>

namespace base {

// Every byte has a character; the five that the table leaves out keep their own value.
char16_t fromWindows1252(std::uint8_t byte);

// Nothing for a character that the code page lacks.
std::optional<std::uint8_t> toWindows1252(char16_t unit);

} // namespace base
