// A file descriptor that closes itself, and the durable copy that both the disk and the trash need
// where a rename cannot cross volumes.
#pragma once

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace platform {

class FileDescriptor {
  public:
    explicit FileDescriptor(int number = -1) : number_(number) {}
    ~FileDescriptor();
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    int get() const { return number_; }
    bool isOpen() const { return number_ >= 0; }

  private:
    int number_;
};

// Opens an existing regular file with open(2) `flags`; throws compound::Error naming `path`.
// `opened`, if given, gets what fstat(2) says of it.
FileDescriptor openRegularFile(const std::filesystem::path& path, int flags,
                               struct stat* opened = nullptr);

// Who may read a new file: whom the process's mask lets, or its owner only.
enum class Readers { Usual, OwnerOnly };

// Creates `path`, which must not exist (compound::ErrorCode::Exists), for reading and writing.
FileDescriptor createFile(const std::filesystem::path& path, Readers readers);

// A name for a file of passage (see docs/file-format.md): whoever makes one holds its lock.
std::string nameInTheMaking();

// Removes what crashes have left of files of passage. The library's folder is cleared by its
// listings, any other one only by whoever makes the next one there.
void removeLeftoversIn(const std::filesystem::path& folder);

// Writes a new file `to` with the content and attributes of `from` and syncs it. It bears that name
// once it is whole; until then it is a file of passage (see docs/file-format.md). A failure leaves
// nothing behind; `from` is never changed. Exists when `to` is taken.
void copyDurably(const std::filesystem::path& from, const std::filesystem::path& to);

// Renames; throws Exists, with nothing changed, when `to` is taken, and Failed on a file system
// that can neither rename without replacing nor link.
void renameFileWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

// The same by way of a second link, for file systems that only know renames that replace. False,
// and nothing done, where files have one name only.
bool renameByLinking(const std::filesystem::path& from, const std::filesystem::path& to);

// The same where there are no second links either: a lock keeps those programs out that rename so,
// and no others. It is a file in the folder that is gone afterwards.
void renameInTurn(const std::filesystem::path& from, const std::filesystem::path& to);

// Makes the entries of `folder` durable. A file system that cannot sync folders is no error.
void syncFolderEntries(const std::filesystem::path& folder);

// The same for the folder that holds `path` and for those above it, up to the root of their volume:
// a file is not to be lost because a folder that was made for it is. Folders above that may not be
// read are left out.
void syncWayTo(const std::filesystem::path& path);

// The folder that holds `path`; "." for a bare name.
std::filesystem::path folderOf(const std::filesystem::path& path);

} // namespace platform
