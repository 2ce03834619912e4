// The program's folder for temporary pictures: its own for each process, readable by its user only.
#pragma once

#include "platform/file_descriptor.h"

#include <QString>

#include <filesystem>

namespace platform {

enum class CopiedPicture { Remove, Keep };

inline constexpr int kLongestTemporaryPath = 254;

// Clients are given paths, so theirs has a limit. A folder for the program itself is made wherever
// that is possible, where there are no locks as well: then its leftover stays.
enum class FolderFor { Clients, Itself };

// A private folder below `parent` (mode 0700, locked by the kernel for as long as the object
// lives, so that other processes can tell it from the leftover of a dead one). The constructor
// removes such leftovers of the same user. Throws compound::Error naming the folder, also when
// `parent` is not absolute.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const QString& parent, FolderFor whom = FolderFor::Clients);
    ~TemporaryFolder(); // as wipe(CopiedPicture::Remove)
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // With a trailing separator; for clients at most kLongestTemporaryPath characters.
    const QString& path() const { return path_; }

    // Makes the folder again, private and locked as before, when a cleaner of temporary files has
    // taken it. Throws compound::Error naming it when that fails, or when somebody else has put a
    // folder or a link of that name in its place.
    void restore();

    // Removes everything in the folder and the folder itself. Keep leaves the files named
    // "CopiedPicture" and a type, and so the folder, to the client that was given their path. What
    // somebody else has put in the folder's place stays.
    void wipe(CopiedPicture copiedPicture);

  private:
    QString path_;
    FileDescriptor lock_;
    bool isWiped_ = false;
};

// The process's temporary folder, made at the first call below the system's temporary path (or
// TXSGRAPHICSLIB_HOME/tmp); when nothing can be made there, or its path would be too long, in the
// program's data folder or below the system's temporary path after all. Throws compound::Error, and
// tries again at the next call, when all of them fail.
QString temporaryFolder();

// Makes the same folder again when it is gone; see TemporaryFolder::restore.
void restoreTemporaryFolder();

// The same folder's end; call it when the program ends.
void wipeTemporaryFolder(CopiedPicture copiedPicture);

} // namespace platform
