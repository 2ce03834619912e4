#include "platform/trash.h"

#include "compound/error.h"
#include "platform/file_descriptor.h"
#include "platform/paths.h"

#include <QDir>
#include <QFile>

#include <cerrno>
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
        renameFileWithoutReplacing(file, target);
    } else {
        copyAndRemove(file, target);
    }
}

// Moves `file` into `folder` under its own name, or that name and the first free number.
void moveIntoFolder(const std::filesystem::path& file, const QString& folder) {
    if (!QDir().mkpath(folder)) {
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
            return;
        } catch (const Error& error) {
            if (error.code() != ErrorCode::Exists) {
                throw;
            }
        }
    }
    throw Error(ErrorCode::Failed, file, "the trash holds too many files of that name");
}

bool moveToDesktopTrash(const std::filesystem::path& file) {
    const QString name = fromFilePath(file);
    QString trashed;
    if (!QFile::moveToTrash(name, &trashed)) {
        return false;
    }
    if (!trashed.isEmpty()) {
        syncFolderEntries(folderOf(toFilePath(trashed)));
    }
    return !isThere(file);
}

} // namespace

void moveToTrash(const std::filesystem::path& file) {
    if (!isThere(file)) {
        throw compound::systemError(ENOENT, file, "move to the trash");
    }
    if (!trashFolder().isEmpty()) {
        moveIntoFolder(file, trashFolder());
    } else if (!moveToDesktopTrash(file)) {
        moveIntoFolder(file, keptFolder());
    }
    syncFolderEntries(folderOf(file));
}

} // namespace platform
