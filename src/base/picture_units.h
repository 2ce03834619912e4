// What every floor that deals with pictures calls their kinds, and the unit of their sizes.
#pragma once

#include <array>
#include <string_view>

namespace base {

// The type codes of the seven kinds of pictures, in the order in which they are tested; they are
// the file names' endings too.
inline constexpr std::array<std::string_view, 7> kTypeCodes = {"WMF", "EMF", "ICO", "CUR",
                                                               "BMP", "GIF", "JPG"};

inline constexpr int kTwipsPerPixel = 15; // a device-independent pixel
inline constexpr int kTwipsPerInch = 1440;

} // namespace base
