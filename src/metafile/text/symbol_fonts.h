// Fonts whose letters are symbols, with a code page of their own, to the Unicode characters that
// look the same, so that their text can be drawn where the fonts are not installed.
// Sources: "Adobe Symbol Encoding" and "ITC Zapf Dingbats Encoding" (PDF Reference, annex D), for
// the others the characters that Unicode gives as equivalent (L2/12-368, code charts).
#pragma once

#include <QStringView>

namespace metafile {

// Symbol, Wingdings, Wingdings 2, Wingdings 3, Webdings, ZapfDingbats and MT Extra under the names
// that files give them; upper and lower case are the same.
bool isSymbolFont(QStringView family);

// The Unicode character for a code of that font. Files hold such codes as bytes (0x20 to 0xFF), in
// the private range U+F020 to U+F0FF, or as what a byte becomes in Windows-1252; all three are
// understood. Where several characters look alike, one that common fonts have is chosen. 0 when the
// family is no symbol font or the code has no counterpart.
char32_t unicodeOf(QStringView family, char32_t code);

} // namespace metafile
