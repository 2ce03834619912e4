// Files that a command writes for the user: complete under their name, or not there at all.
#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

namespace tool {

enum class IfFileExists { Refuse, Replace };

// Writes a temporary file beside `path`, syncs it, and gives it its name. Exists when the path is
// taken and `ifExists` is Refuse, or when something else than a regular file stands there. A
// failure leaves an earlier file as it was.
void writeOutputFile(const std::filesystem::path& path, std::span<const std::byte> bytes,
                     IfFileExists ifExists);

} // namespace tool
