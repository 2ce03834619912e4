#include "platform/output_file.h"

#include "compound/error.h"
#include "platform/file_descriptor.h"
#include "platform/native_disk.h"

#include <chrono>
#include <memory>

namespace platform {
namespace {

using compound::Error;
using compound::ErrorCode;

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

struct Output {
    std::filesystem::path temporary;
    std::unique_ptr<compound::DiskFile> file;
};

// False when another program has taken the file for a leftover.
bool isLocked(compound::DiskFile& file) {
    try {
        return file.lock(std::chrono::milliseconds{0}) && file.isStillAtPath();
    } catch (const Error&) {
        return true; // nobody can lock anything there
    }
}

// A file that is replaced hands its attributes on, so nobody else may read the new one before.
void create(Output& output, const std::filesystem::path& path) {
    constexpr int kTries = 10;
    compound::Disk& disk = nativeDisk();
    const bool replaces = disk.exists(path);
    for (int i = 0; i < kTries; ++i) {
        output.temporary = path.parent_path() / nameInTheMaking();
        output.file =
            replaces ? disk.createPrivate(output.temporary) : disk.create(output.temporary);
        if (isLocked(*output.file)) {
            return;
        }
    }
    throw Error(ErrorCode::Locked, path, "other programs clear it away");
}

void fill(compound::DiskFile& file, const std::filesystem::path& path,
          const std::function<void(compound::DiskFile&)>& write) {
    compound::Disk& disk = nativeDisk();
    write(file);
    if (disk.exists(path)) {
        disk.copyAttributes(*disk.open(path, compound::Access::Read), file);
    }
    file.sync();
}

void publish(const std::filesystem::path& temporary, const std::filesystem::path& path,
             IfFileExists ifExists) {
    compound::Disk& disk = nativeDisk();
    if (ifExists == IfFileExists::Replace && disk.exists(path)) {
        disk.renameReplacing(temporary, path);
    } else {
        disk.renameWithoutReplacing(temporary, path);
    }
    try {
        disk.syncFolder(folderOf(path));
    } catch (const Error& error) {
        throw Error(ErrorCode::OutcomeUnknown, path, error.cause());
    }
}

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
    Output output;
    try {
        removeLeftoversIn(folderOf(target));
        create(output, target);
        fill(*output.file, target, write);
        publish(output.temporary, target, ifExists);
    } catch (const Error& error) {
        discard(output.temporary);
        // The user knows of no temporary file.
        const bool isOwn = error.file() == output.temporary || error.file() == target;
        throw Error(error.code(), isOwn ? path : error.file(), error.cause());
    } catch (...) {
        discard(output.temporary);
        throw;
    }
}

void writeOutputFile(const std::filesystem::path& path, IfFileExists ifExists,
                     std::span<const std::byte> bytes) {
    writeOutputFile(path, ifExists, [bytes](compound::DiskFile& file) { file.write(0, bytes); });
}

} // namespace platform
