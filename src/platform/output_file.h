// Files that are written for the user: complete under their name, or not there at all.
#pragma once

#include "compound/disk.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <span>

namespace platform {

enum class IfFileExists { Refuse, Replace };

// Has `write` fill a file of passage (see docs/file-format.md) beside `path`, syncs it, and gives
// it its name. Exists when the path is taken and `ifExists` is Refuse, or when something else than
// a regular file stands there. OutcomeUnknown when the file bears the name, but only until the next
// power cut perhaps. Any other failure, or what `write` throws, leaves an earlier file as it was.
void writeOutputFile(const std::filesystem::path& path, IfFileExists ifExists,
                     const std::function<void(compound::DiskFile&)>& write);

// The same with these bytes.
void writeOutputFile(const std::filesystem::path& path, IfFileExists ifExists,
                     std::span<const std::byte> bytes);

} // namespace platform
