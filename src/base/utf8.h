// UTF-8 <-> UTF-16, for file names and messages. Bytes that are no UTF-8 survive the round trip: an
// odd byte becomes a lone surrogate, and that the byte again.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace base {

std::u16string fromUtf8(std::string_view bytes);
std::string toUtf8(std::u16string_view text);

std::u16string fromPath(const std::filesystem::path& path);
std::filesystem::path toPath(std::u16string_view text);

// Appends the character in UTF-8; half of one as if it were whole.
void appendUtf8(std::string& text, char32_t point);

} // namespace base
