// Reading a folder. What the system's readdir(3) tells of a larger one it fetches in several
// pieces, between which files come and go: a file that gets another name meanwhile is told by both
// or by neither.
#pragma once

#include "compound/disk.h"

#include <filesystem>
#include <vector>

namespace platform {

enum class FolderIs { Local, Shared };

// The entries of the open folder, in no particular order, without "." and "..". They are those of
// one moment where the file system tells them in one piece, as local ones do, but for names given
// at the very beginning. When a local folder's time stamps have changed meanwhile, or those of
// a shared one that came in pieces, it is read anew, a few times at most; of what was told in one
// piece the longest counts then. Throws compound::Error naming `path`.
std::vector<compound::FolderEntry> readFolder(int folder, FolderIs folderIs,
                                              const std::filesystem::path& path);

} // namespace platform
