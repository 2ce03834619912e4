// Every caption and message of the program comes from here: the bilingual table of 174 numbered
// texts, and the few fixed pairs that have no number.
//
// The language is chosen once at start-up, before any window exists, from the studio's locale
// number. Blanks at the ends of a text and its misspellings belong to it: callers join texts with
// names and numbers as they stand.
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>

namespace app {

// Locale numbers that have a meaning of their own; every other one means German.
inline constexpr std::int32_t kGermanLocale = 1031;
inline constexpr std::int32_t kEnglishLocale = 1033;

// Chooses the language for all later look-ups and builds the table.
void setLanguage(std::int32_t localeNumber);

// The number given to setLanguage(); kGermanLocale before that.
std::int32_t languageCode();

// What a look-up adds to a text id: 0 for German, 10000 for English.
int languageOffset();

// The text of that id in the chosen language; "Resource ID not found" for an id without an entry.
QString text(int id);

// A text outside the table, as for a button that the table does not know.
struct TextPair {
    const char16_t* german;
    const char16_t* english;
};
QString text(const TextPair& pair);

// "1 picture", "25 pictures": `many` with the count at its %1, or `one` as it stands.
QString counted(std::size_t count, const TextPair& one, const TextPair& many);

// Text ids that several windows use; each window names its own ones itself.
inline constexpr int kTextNoPicture = 7;

// Title of the main window's boxes. Not translated.
inline const QString kProgramTitle = QStringLiteral("TXSGraphicsLib");

} // namespace app
