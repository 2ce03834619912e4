#include "store/steps.h"

#include "compound/error.h"

namespace store {

using compound::Error;
using compound::ErrorCode;

void goOn(const std::filesystem::path& file, Progress& progress, std::size_t done,
          std::size_t total) {
    progress.report(done, total);
    if (progress.isStopWanted()) {
        throw Error(ErrorCode::Cancelled, file, "stopped");
    }
}

std::optional<compound::FileIdentity> stateInTrash(compound::Disk& disk,
                                                   const std::filesystem::path& trashed) {
    return trashed.empty() ? std::nullopt : disk.glance(trashed);
}

// Not by its number, which some file systems give anew each time that they read a folder.
void requireInTrash(compound::Disk& disk, const std::filesystem::path& trashed,
                    const std::optional<compound::FileIdentity>& state) {
    const auto now = stateInTrash(disk, trashed);
    if (state && (!now || now->size != state->size || now->modified != state->modified)) {
        throw Error(ErrorCode::NotFound, trashed, "the trash does not hold it any more");
    }
}

void removeFromTrash(compound::Disk& disk, compound::Trash& trash,
                     const std::filesystem::path& trashed) {
    try {
        const std::filesystem::path back = trash.stagingFolder() / trashed.filename();
        trash.takeBack(trashed, back);
        disk.removeTemporary(back);
    } catch (const Error&) {
        return;
    }
}

} // namespace store
