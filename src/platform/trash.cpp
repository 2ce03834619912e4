#include "platform/trash.h"

#include "compound/error.h"
#include "platform/file_descriptor.h"
#include "platform/paths.h"

#include <QFile>

#include <cerrno>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

using compound::Error;
using compound::ErrorCode;

constexpr int kMostNamesakes = 100000;

bool isThere(const std::filesystem::path& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

// Across volumes: the copy is durable before the original goes.
void copyAndRemove(const std::filesystem::path& file, const std::filesystem::path& target) {
    copyDurably(file, target);
    syncFolderEntries(folderOf(target));
    if (::unlink(file.c_str()) != 0) {
        const int cause = errno;
        ::unlink(target.c_str());
        throw compound::systemError(cause, file, "move to the trash");
    }
}

void moveTo(const std::filesystem::path& file, const std::filesystem::path& target) {
    if (isThere(target)) {
        throw Error(ErrorCode::Exists, target, "exists");
    }
    struct stat source {};
    struct stat folder {};
    const bool isSameVolume = ::lstat(file.c_str(), &source) == 0 &&
                              ::stat(folderOf(target).c_str(), &folder) == 0 &&
                              source.st_dev == folder.st_dev;
    if (isSameVolume) {
        try {
            renameFileWithoutReplacing(file, target);
            return;
        } catch (const Error& error) {
            if (error.code() != ErrorCode::Failed) {
                throw;
            } // between two mounts of one volume nothing can be renamed
        }
    }
    copyAndRemove(file, target);
}

// Moves `file` into `folder` under its own name, or that name and the first free number.
std::filesystem::path moveIntoFolder(const std::filesystem::path& file, const QString& folder) {
    if (!makeFolder(folder)) {
        throw Error(ErrorCode::Failed, toFilePath(folder), "the folder cannot be created");
    }
    const std::filesystem::path target = toFilePath(folder);
    for (int number = 1; number < kMostNamesakes; ++number) {
        std::filesystem::path candidate = target / file.filename();
        if (number > 1) {
            candidate.concat(".").concat(std::to_string(number));
        }
        try {
            moveTo(file, candidate);
            syncFolderEntries(target);
            return candidate;
        } catch (const Error& error) {
            if (error.code() != ErrorCode::Exists) {
                throw;
            }
        }
    }
    throw Error(ErrorCode::Failed, file, "the trash holds too many files of that name");
}

// Where the file lies then, as far as the desktop tells; nothing if it has none for it.
std::optional<std::filesystem::path> moveToDesktopTrash(const std::filesystem::path& file) {
    const QString name = fromFilePath(file);
    QString trashed;
    if (!QFile::moveToTrash(name, &trashed)) {
        return std::nullopt;
    }
    if (!trashed.isEmpty()) {
        syncWayTo(toFilePath(trashed));
    }
    if (isThere(file)) {
        return std::nullopt;
    }
    return trashed.isEmpty() ? std::filesystem::path() : toFilePath(trashed);
}

// A desktop's trash keeps, beside its folder "files", a note on each of them in the folder "info".
void forgetNote(const std::filesystem::path& trashed) {
    const std::filesystem::path folder = folderOf(trashed);
    if (folder.filename() == "files") {
        std::filesystem::path note = folder.parent_path() / "info" / trashed.filename();
        note.concat(".trashinfo");
        ::unlink(note.c_str()); // one that stays names a file that is gone, which desktops ignore
    }
}

} // namespace

std::filesystem::path moveToTrash(const std::filesystem::path& file) {
    if (!isThere(file)) {
        throw compound::systemError(ENOENT, file, "move to the trash");
    }
    std::filesystem::path trashed;
    if (!trashFolder().isEmpty()) {
        trashed = moveIntoFolder(file, trashFolder());
    } else if (const auto desktops = moveToDesktopTrash(file)) {
        trashed = *desktops;
    } else {
        trashed = moveIntoFolder(file, keptFolder());
    }
    syncFolderEntries(folderOf(file));
    return trashed;
}

void restoreFromTrash(const std::filesystem::path& trashed, const std::filesystem::path& to) {
    if (!isThere(trashed)) {
        throw Error(ErrorCode::NotFound, trashed, "the trash does not hold it any more");
    }
    moveTo(trashed, to);
    syncFolderEntries(folderOf(to));
    forgetNote(trashed);
}

} // namespace platform
