#include "platform/output_file.h"

#include "compound/error.h"
#include "platform/native_disk.h"

#include <random>
#include <string>

namespace platform {
namespace {

using compound::Error;
using compound::ErrorCode;

std::filesystem::path temporaryBeside(const std::filesystem::path& path) {
    std::random_device random;
    return path.parent_path() / (".output-" + std::to_string(random()) + ".tmp");
}

// A path that is taken is refused before anything is written.
void refuseTaken(const std::filesystem::path& path, IfFileExists ifExists) {
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    if (!std::filesystem::exists(status) && !std::filesystem::is_symlink(path, ignored)) {
        return;
    }
    if (ifExists == IfFileExists::Refuse) {
        throw Error(ErrorCode::Exists, path, "the file exists already");
    }
    if (!std::filesystem::is_regular_file(status)) {
        throw Error(ErrorCode::Exists, path, "something else than a file stands there");
    }
}

// A file that is replaced hands its attributes on, so nobody else may read the new one before.
void writeTemporary(const std::filesystem::path& temporary, const std::filesystem::path& path,
                    const std::function<void(compound::DiskFile&)>& write) {
    compound::Disk& disk = nativeDisk();
    const bool replaces = disk.exists(path);
    const auto file = replaces ? disk.createPrivate(temporary) : disk.create(temporary);
    write(*file);
    if (replaces) {
        disk.copyAttributes(*disk.open(path, compound::Access::Read), *file);
    }
    file->sync();
}

void publish(const std::filesystem::path& temporary, const std::filesystem::path& path,
             IfFileExists ifExists) {
    compound::Disk& disk = nativeDisk();
    if (ifExists == IfFileExists::Replace && disk.exists(path)) {
        disk.renameReplacing(temporary, path);
    } else {
        disk.renameWithoutReplacing(temporary, path);
    }
    disk.syncFolder(path.has_parent_path() ? path.parent_path() : ".");
}

} // namespace

namespace {

// What has gone wrong before is what the user is told: where nothing can be written, nothing can be
// removed either.
void discard(const std::filesystem::path& temporary) noexcept {
    try {
        nativeDisk().removeTemporary(temporary);
    } catch (const Error&) { // NOLINT(bugprone-empty-catch)
    }
}

} // namespace

void writeOutputFile(const std::filesystem::path& path, IfFileExists ifExists,
                     const std::function<void(compound::DiskFile&)>& write) {
    if (!path.has_filename()) {
        throw Error(ErrorCode::InvalidName, path, "that is no file's name");
    }
    refuseTaken(path, ifExists);
    const std::filesystem::path target = nativeDisk().resolved(path); // a link stays one
    const std::filesystem::path temporary = temporaryBeside(target);
    try {
        writeTemporary(temporary, target, write);
        publish(temporary, target, ifExists);
    } catch (const Error& error) {
        discard(temporary);
        // The user knows of no temporary file.
        const bool isOwn = error.file() == temporary || error.file() == target;
        throw Error(error.code(), isOwn ? path : error.file(), error.cause());
    } catch (...) {
        discard(temporary);
        throw;
    }
}

void writeOutputFile(const std::filesystem::path& path, IfFileExists ifExists,
                     std::span<const std::byte> bytes) {
    writeOutputFile(path, ifExists, [bytes](compound::DiskFile& file) { file.write(0, bytes); });
}

} // namespace platform
