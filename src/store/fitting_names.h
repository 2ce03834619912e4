// Names for pictures that come from anywhere: what no picture can be called is cut and replaced,
// and of two pictures with one name the later one gets a number.
#pragma once

#include "store/address.h"

#include <functional>
#include <string>

namespace store {

// `text` as near as a picture can be called so: at most 31 units, "_" for what no name holds or
// where it would be one that has a meaning of its own, and "_" for nothing at all.
PictureName fittingPictureName(std::u16string_view text);

// `name`, or, where that is taken, `name` with the first free number in brackets behind it, cut so
// that it fits: "Pump (2)".
PictureName freePictureName(const PictureName& name,
                            const std::function<bool(const PictureName&)>& isTaken);

// `text` as near as a top-level group, and so its file, can be called so.
GroupName fittingGroupName(std::u16string_view text);

// What a file with that picture's name is called, without its ending: "_" for what no file system
// takes. Names in a group file that another program has written may be paths.
std::string fileBaseNameFor(const PictureName& name);

} // namespace store
