// The disk as compound/ and store/ see it. platform/ implements it on the real file system; the
// tests implement it in memory, record it, cut its power, fill it up and make any call fail.
//
// Every call throws compound::Error naming the file; a failed call has done nothing, except that a
// failed write() or truncate() may have reached part of the range it was given.
#pragma once

#include "compound/error.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace compound {

enum class Access { Read, ReadWrite };

// Tells whether a file is still as it was when it was looked at before.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0; // of the file on its device
    std::uint64_t size = 0;
    std::int64_t modified = 0; // time stamps of content and of attributes
    std::int64_t changed = 0;
    bool settled = false; // the last change is so old that a further one gets another time stamp

    bool isSameStateAs(const FileIdentity& other) const {
        return device == other.device && number == other.number && size == other.size &&
               modified == other.modified && changed == other.changed;
    }
};

// One open file. Closing (destruction) releases its lock and writes nothing.
class DiskFile {
  public:
    virtual ~DiskFile() = default;
    DiskFile(const DiskFile&) = delete;
    DiskFile& operator=(const DiskFile&) = delete;

    // The path by which the file was opened; for messages.
    virtual const std::filesystem::path& path() const = 0;

    // Reads into `into` from byte `offset` on; returns the bytes read, fewer only at the file's
    // end.
    virtual std::size_t read(std::uint64_t offset, std::span<std::byte> into) = 0;

    // Writes all of `bytes` at byte `offset`; a write past the end extends the file.
    virtual void write(std::uint64_t offset, std::span<const std::byte> bytes) = 0;

    // The same for bytes that lie in several pieces of memory, one behind the other in the file.
    virtual void writeParts(std::uint64_t offset,
                            std::span<const std::span<const std::byte>> parts);

    // Returns once everything written so far, and the file's length, is on the medium.
    virtual void sync() = 0;

    // Returns once the medium has the file under path(): who gave it that name may have been
    // stopped before that was durable.
    virtual void syncName() = 0;

    // Cuts or extends (with zeros) the file to `size` bytes.
    virtual void truncate(std::uint64_t size) = 0;

    virtual std::uint64_t size() = 0;

    // Lengthens the file to `size` bytes, zeros that have their place on the medium: writing to
    // them later needs no more space. Nothing for a file of that length.
    virtual void extend(std::uint64_t size);

    // Takes the exclusive kernel lock, which goes with the handle. Waits up to `wait` for another
    // holder; false when it still holds then. A second handle of the same process counts as another
    // holder. Only what is read, measured or looked up after it is what the last holder left: on a
    // volume that other machines share, anything from before may be older.
    virtual bool lock(std::chrono::milliseconds wait) = 0;

    // Whether path() still names this very file (it may have been renamed or replaced between
    // opening and locking).
    virtual bool isStillAtPath() = 0;

    // Call it, locked, when the file, open for writing, has lost its path for good and its content
    // lives elsewhere. On a volume that other machines share, whoever opened it by a remembered
    // name then finds that it is no longer at its path, whatever the name says; elsewhere nothing
    // happens.
    virtual void retire() noexcept {}

    // The file's present state, if the disk can tell for sure; asked for while the lock is held.
    virtual std::optional<FileIdentity> identity() { return std::nullopt; }

    // The same for a file that is open for writing and that the caller has just changed: gives it a
    // time stamp that no later change can leave it, however soon that comes. Settled if that went
    // well.
    virtual std::optional<FileIdentity> stamp() { return identity(); }

  protected:
    DiskFile() = default;
};

struct FolderEntry {
    std::filesystem::path name; // without its folder
    bool isRegularFile = false; // after following a link
};

class Disk {
  public:
    virtual ~Disk() = default;
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    // Opens an existing regular file. NotFound, Denied; Locked while another machine replaces it.
    virtual std::unique_ptr<DiskFile> open(const std::filesystem::path& path, Access access) = 0;

    // Creates a new file and opens it for reading and writing; Exists when the path is taken.
    virtual std::unique_ptr<DiskFile> create(const std::filesystem::path& path) = 0;

    // The same, but nobody else may read the file until it is given other attributes: for the copy
    // of a file whose readers are copied last.
    virtual std::unique_ptr<DiskFile> createPrivate(const std::filesystem::path& path) {
        return create(path);
    }

    // Gives `to` the permissions, the access control list, the extended attributes and, as far as
    // the system lets us, the owner of `from`. Durable with the next sync() of `to`.
    virtual void copyAttributes(DiskFile& from, DiskFile& to) = 0;

    // The entries of a folder in no particular order, without "." and "..".
    virtual std::vector<FolderEntry> list(const std::filesystem::path& folder) = 0;

    // Whether the path is taken. On a volume that other machines share the answer may be a little
    // old; creating, opening and renaming never go by it.
    virtual bool exists(const std::filesystem::path& path) = 0;

    // The state of the file at that path, looked at without opening or locking it: a sign whether
    // it is worth reading again. Another state means another content, but the same one proves
    // nothing where other machines write. Nothing when there is no file, or when the disk cannot
    // tell.
    virtual std::optional<FileIdentity> glance(const std::filesystem::path& path) {
        (void)path;
        return std::nullopt;
    }

    // Renames within one folder; Exists (and nothing changed) when `to` is taken.
    virtual void renameWithoutReplacing(const std::filesystem::path& from,
                                        const std::filesystem::path& to) = 0;

    // The file that the path stands for in the end: the target of a link, else the path itself.
    virtual std::filesystem::path resolved(const std::filesystem::path& path) { return path; }

    // Whether both paths lead to one file, by links as well. False when one of them leads nowhere.
    virtual bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
        return exists(one) && resolved(one) == resolved(other);
    }

    // Makes a link at `path` to `target`, relative or absolute as the link `pattern` is. Exists.
    // Failed on a disk without links.
    virtual void linkAs(const std::filesystem::path& pattern, const std::filesystem::path& target,
                        const std::filesystem::path& path) {
        (void)pattern, (void)target;
        throw Error(ErrorCode::Failed, path, "links cannot be made here");
    }

    // Renames within one folder, atomically taking the place of `to`, whose content the caller has
    // made durable in `from`. A link at `to` is replaced itself: see resolved().
    virtual void renameReplacing(const std::filesystem::path& from,
                                 const std::filesystem::path& to) = 0;

    // Makes the folder's entries (created, renamed, removed files) durable.
    virtual void syncFolder(const std::filesystem::path& folder) = 0;

    // Moves a file of the user's to the desktop's trash, or to the program's kept folder where
    // there is none; never unlinks it.
    virtual void trash(const std::filesystem::path& path) = 0;

    // Unlinks a file that this program created for its own use (a temporary file), or whose whole
    // content it has made durable under another name. Missing is no error.
    virtual void removeTemporary(const std::filesystem::path& path) = 0;

  protected:
    Disk() = default;
};

} // namespace compound
