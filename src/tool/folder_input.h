// The picture files of a folder, for commands that take all of them.
#pragma once

#include "store/pictures_from_files.h"
#include "tool/command.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

// The folder's picture files; NotFound when there are none.
std::vector<std::filesystem::path> picturesOfFolder(const std::string& folder);

// What no picture is called, since the program shows it where there is none.
std::vector<std::u16string> reservedNames();

// Tells of every file that was left out; Failed when there is one.
ExitStatus tellSkipped(const store::FilesAdded& added, Console& console);

} // namespace tool
