// The fonts that metafiles ask for, as fonts that this machine has.
// Source of pitch, family and character set: [MS-WMF] 2.2.1.2 (Font), 2.1.1.8 (FamilyFont).
#pragma once

#include <QFont>
#include <QString>

#include <cstdint>

namespace metafile {

enum class Slant { Upright, Italic };

// What a font record says of the look; size, angle and lines are the player's matter.
struct FontRequest {
    QString family;                  // empty: any font of that pitch and class
    std::uint8_t pitchAndFamily = 0; // bits 0-1 pitch (1 fixed), bits 4-7 class (1 roman, 2 swiss,
                                     // 3 modern, 4 script, 5 decorative)
    std::uint8_t characterSet = 0;
    int weight = 0; // 1 to 1000, 400 normal, 700 bold; 0: normal
    Slant slant = Slant::Upright;
};

// Whether a font of that name (upper and lower case are the same) is installed itself.
bool isInstalled(QStringView family);

// A font with an installed family: the family asked for; else one with the same letter widths
// (Liberation Sans for Arial, Carlito for Calibri ...); else by pitch, class and character set. For
// a symbol font that is missing, one that has many symbols; its text must then go through
// unicodeOf(). The weight is rounded to hundreds; neither size nor underline is set. Needs a
// QGuiApplication. The installed families are looked up once in the life of the program.
QFont installedFont(const FontRequest& request);

} // namespace metafile
