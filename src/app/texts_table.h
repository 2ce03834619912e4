// The numbered texts in both languages.
#pragma once

#include <span>

namespace app {

struct TextEntry {
    int id;
    const char16_t* german;
    const char16_t* english;
};

// All entries, by ascending id.
std::span<const TextEntry> textEntries();

} // namespace app
