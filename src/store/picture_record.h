// The picture record: "h" HEIGHT "w" WIDTH "t" TYPE, sizes in pixels as single-precision decimals,
// for example h48w64tGIF or h31,5w64tBMP.
#pragma once

#include "store/library.h"

#include <string>
#include <string_view>

namespace store {

struct PictureRecord {
    float height = 0; // pixels; 0 when the record is missing or garbled
    float width = 0;
    std::string type; // one of the seven type codes; empty when the record is missing or garbled
};

// The seven type codes in the order of testing; what matches none of them is "JPG".
// `fileName` is a file's name or path; its last three characters decide.
std::string typeCodeOf(std::u16string_view fileName);

PictureRecord recordOf(const TwipSize& size, std::string type);

// Shortest decimal text that gives the number back (7 digits at most), no grouping.
std::string numberText(float number, char16_t decimalSeparator);

// A separator other than "," and ".", as some languages have, is written as ".": no reader knows
// it, and the text code page cannot carry it.
std::string formatRecord(const PictureRecord& record, char16_t decimalSeparator);

// Takes "." and "," for the separator. Sizes that are not written strictly so are 0, both of them,
// and leave the type; what has neither form nor a type code gives the empty record.
PictureRecord parseRecord(std::string_view text);

} // namespace store
