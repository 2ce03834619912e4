#include "tool/output_file.h"

#include "compound/error.h"
#include "platform/native_disk.h"

#include <random>
#include <string>

namespace tool {
namespace {

using compound::Error;
using compound::ErrorCode;

std::filesystem::path temporaryBeside(const std::filesystem::path& path) {
    std::random_device random;
    return path.parent_path() / (".stgtool-" + std::to_string(random()) + ".tmp");
}

// A path that is taken is refused before anything is written.
void refuseTaken(const std::filesystem::path& path, IfFileExists ifExists) {
    std::error_code ignored;
    const auto status = std::filesystem::status(path, ignored);
    if (!std::filesystem::exists(status) && !std::filesystem::is_symlink(path, ignored)) {
        return;
    }
    if (ifExists == IfFileExists::Refuse) {
        throw Error(ErrorCode::Exists, path, "the file exists already (see --replace)");
    }
    if (!std::filesystem::is_regular_file(status)) {
        throw Error(ErrorCode::Exists, path, "something else than a file stands there");
    }
}

// A file that is replaced hands its attributes on, so nobody else may read the new one before.
void writeTemporary(const std::filesystem::path& temporary, const std::filesystem::path& path,
                    std::span<const std::byte> bytes) {
    compound::Disk& disk = platform::nativeDisk();
    const bool replaces = disk.exists(path);
    const auto file = replaces ? disk.createPrivate(temporary) : disk.create(temporary);
    file->write(0, bytes);
    if (replaces) {
        disk.copyAttributes(*disk.open(path, compound::Access::Read), *file);
    }
    file->sync();
}

void publish(const std::filesystem::path& temporary, const std::filesystem::path& path,
             IfFileExists ifExists) {
    compound::Disk& disk = platform::nativeDisk();
    if (ifExists == IfFileExists::Replace && disk.exists(path)) {
        disk.renameReplacing(temporary, path);
    } else {
        disk.renameWithoutReplacing(temporary, path);
    }
    disk.syncFolder(path.has_parent_path() ? path.parent_path() : ".");
}

} // namespace

void writeOutputFile(const std::filesystem::path& path, std::span<const std::byte> bytes,
                     IfFileExists ifExists) {
    if (!path.has_filename()) {
        throw Error(ErrorCode::InvalidName, path, "that is no file's name");
    }
    refuseTaken(path, ifExists);
    const std::filesystem::path target = platform::nativeDisk().resolved(path); // a link stays one
    const std::filesystem::path temporary = temporaryBeside(target);
    try {
        writeTemporary(temporary, target, bytes);
        publish(temporary, target, ifExists);
    } catch (const Error& error) {
        platform::nativeDisk().removeTemporary(temporary);
        throw Error(error.code(), path, error.cause()); // the user knows of no temporary file
    }
}

} // namespace tool
