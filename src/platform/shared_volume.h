// Volumes that other machines write to as well. There the system's memory of a file (its pages, its
// size, even which file a name stands for) may be older than the last change by another machine,
// and holding the lock does not make it younger. The functions here make it forget.
#pragma once

#include "compound/error.h"

#include <cstdint>
#include <filesystem>
#include <sys/stat.h>

namespace platform {

// Whether the volume of an open file or folder may be shared, by the kind of its file system. One
// that does not tell its kind counts as shared. On a local volume nothing of what follows is
// needed.
bool isSharedVolume(int descriptor);
bool isSharedVolume(int descriptor, dev_t device); // of the file; may be remembered
bool isSharedVolume(const std::filesystem::path& folder);

// Whether a file system of this kind (statfs(2), f_type) may be shared between machines.
bool isSharedKind(std::uint64_t kind);

// Drops what the system remembers of the open file's content. What this machine has written and
// not yet sent goes to the volume first.
void forgetContent(int descriptor);

// As stat(2) and fstat(2), but asks the volume instead of the system's memory: device, number,
// mode, links, owner, size and times. False with errno set.
bool askStatus(const std::filesystem::path& path, struct stat& status);
bool askStatus(int descriptor, struct stat& status);

// Marks the open file, which has no path any more, as given up, and tells such a file from others.
// Names are remembered by file systems in user space and by their caches as well; content is not.
void markRetired(int descriptor) noexcept;
bool isRetired(int descriptor);

// The error for a lock that could not be taken for `cause` (errno), other than that somebody holds
// it. Not every shared volume offers locks.
compound::Error lockFailure(int cause, const std::filesystem::path& path);

// Makes the next look-up of the path ask the volume what it names.
void forgetName(const std::filesystem::path& path);

} // namespace platform
