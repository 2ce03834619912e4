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
