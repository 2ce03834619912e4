#pragma once

#include "plant_scene.h"
#include "shapes.h"

#include <QString>

#include <variant>
#include <vector>

namespace samples {

/// How many colours a bitmap has.
enum class Depth { TrueColour, Colours256, Colours16 };

/// One picture of the library. Its kind is the file name's suffix: a JPG shows a drawing on a
/// photographer's backdrop, BMP on white, the others have transparent or no ground.
struct Entry {
    QString file;                            ///< "Kreiselpumpe.wmf"
    std::variant<Drawing, Daylight> content; ///< a daylight means the plant's photograph
    int width = 0;                           ///< pixels; the height follows from the content
    Depth depth = Depth::TrueColour;         ///< BMP only
};

/// One group: its folder below the library ("Pumpen/Kreiselpumpen") and its pictures.
struct Group {
    QString folder;
    std::vector<Entry> entries;
};

/// Every group of the library, each after the group it belongs to.
std::vector<Group> catalogue();

} // namespace samples
