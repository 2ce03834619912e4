#include "store/merged_source.h"

#include "compound/error.h"
#include "store/leftovers.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace store {
namespace {

using compound::Access;
using compound::DiskFile;
using compound::Error;
using compound::ErrorCode;

void copyBytes(DiskFile& from, DiskFile& to) {
    constexpr std::size_t kChunk = std::size_t{1} << 20U;
    std::vector<std::byte> chunk(kChunk);
    std::uint64_t done = 0;
    while (const std::size_t count = from.read(done, chunk)) {
        to.write(done, std::span(chunk).first(count));
        done += count;
    }
}

// Gives the copy the first of the names N.stg.bak, N.stg.bak2, ... that is free, and returns it.
std::filesystem::path publishCopy(compound::Disk& disk, const std::filesystem::path& temporary,
                                  const std::filesystem::path& original) {
    for (unsigned number = 1;; ++number) {
        std::filesystem::path kept = original;
        kept += number == 1 ? ".bak" : ".bak" + std::to_string(number);
        try {
            disk.renameWithoutReplacing(temporary, kept);
            return kept;
        } catch (const Error& error) {
            if (error.code() != ErrorCode::Exists) {
                throw;
            }
        }
    }
}

// Returns where the bytes are kept, before that is durable.
std::filesystem::path keepOriginal(const Library& library, DiskFile& original) {
    constexpr int kTries = 10; // another program may take the copy for a leftover
    compound::Disk& disk = library.disk;
    const std::filesystem::path path = disk.resolved(original.path());
    const std::filesystem::path folder = folderOf(path);
    removeUnfinishedFiles(library, folder);
    std::filesystem::path temporary;
    std::unique_ptr<DiskFile> copy;
    for (int i = 0; i < kTries && !copy; ++i) {
        temporary = folder / nameInTheMaking();
        copy = lockNew(library, disk.createPrivate(temporary));
    }
    if (!copy) {
        throw Error(ErrorCode::Locked, path, "other programs clear its copy away");
    }
    try {
        copyBytes(original, *copy);
        disk.copyAttributes(original, *copy);
        copy->sync();
        return publishCopy(disk, temporary, path);
    } catch (...) { // also when memory runs out: nobody looks for leftovers in that folder
        disk.removeTemporary(temporary);
        throw;
    }
}

// What has kept the source as it is, is what the user is told.
void discard(compound::Disk& disk, const std::filesystem::path& kept) noexcept {
    try {
        disk.removeTemporary(kept);
        disk.syncFolder(folderOf(kept)); // no power cut brings it back
    } catch (const std::exception&) {    // NOLINT(bugprone-empty-catch)
    }
}

} // namespace

bool belongsToLibrary(const Library& library, const std::filesystem::path& file) {
    const std::vector<FileName> files = everyGroupFile(library);
    return std::any_of(files.begin(), files.end(), [&](const FileName& other) {
        return library.disk.isSameFile(pathOf(library, other), file);
    });
}

Access openSource(StorageAccess& source, const Library& library, const std::filesystem::path& path,
                  Access wanted) {
    try {
        source.openFile(path, wanted, library.lockWait);
        return wanted;
    } catch (const Error& error) {
        if (error.code() != ErrorCode::Denied || wanted == Access::Read) {
            throw;
        }
    }
    source.openFile(path, Access::Read, library.lockWait);
    return Access::Read;
}

void keepAndRenumber(const Library& library, StorageAccess& source,
                     const std::vector<Passage>& passages) {
    const std::filesystem::path kept = keepOriginal(library, source.file().disk());
    try {
        library.disk.syncFolder(folderOf(kept));
        renumberSource(passages, source.root());
        source.Commit();
    } catch (const Error& error) {
        if (error.code() != ErrorCode::OutcomeUnknown) {
            discard(library.disk, kept); // nothing needs it, and every further try leaves one more
        }
        throw;
    } catch (...) {
        discard(library.disk, kept);
        throw;
    }
}

} // namespace store
