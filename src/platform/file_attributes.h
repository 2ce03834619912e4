// What a file has beside its content: owner, permissions, access control list, extended attributes.
#pragma once

#include <filesystem>

namespace platform {

// Gives the open file `to`, which only its owner may read so far, what the open file `from` has.
// Nobody gets to read it at any moment who may not read `from`: who may read comes last, and where
// the system does not let us keep the group, its rights shrink to everybody's. Attributes that the
// system keeps to itself (labels of security, for one) stay as they are. Not synced here.
//
// Throws compound::Error naming the file at which it failed; `to` may have got a part then.
void copyFileAttributes(int from, const std::filesystem::path& fromPath, int to,
                        const std::filesystem::path& toPath);

} // namespace platform
