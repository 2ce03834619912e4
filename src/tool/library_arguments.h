// The library, the group and the names that a command line speaks of.
#pragma once

#include "store/library.h"
#include "store/picture_operations.h"
#include "tool/arguments.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tool {

// The folder of --library, or the storages folder of the settings. compound::Error when the
// settings cannot be used.
store::Library libraryOf(const Arguments& arguments);

// The library that holds the group file `path`, wherever that lies.
store::Library libraryAround(const std::filesystem::path& path);

// The group that a key names. compound::Error (NotFound) for a text that cannot be a key.
store::GroupAddress groupOf(const store::Library& library, const std::string& key);

// NotFound for the empty text, which the store takes for "no picture".
store::PictureName pictureOf(const store::Library& library, const store::GroupAddress& group,
                             const std::string& name);

store::IfPictureExists ifPictureExists(const Arguments& arguments);

} // namespace tool
