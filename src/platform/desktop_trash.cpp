#include "platform/desktop_trash.h"

#include "compound/error.h"
#include "platform/paths.h"
#include "platform/trash.h"

namespace platform {

std::filesystem::path DesktopTrash::stagingFolder() const {
    try {
        if (!folder_) {
            folder_.emplace(dataFolder(), FolderFor::Itself);
        }
    } catch (const compound::Error& error) {
        throw compound::TrashFailure(error);
    }
    return toFilePath(folder_->path());
}

std::filesystem::path DesktopTrash::moveThere(const std::filesystem::path& file) {
    return moveToTrash(file);
}

void DesktopTrash::takeBack(const std::filesystem::path& trashed, const std::filesystem::path& to) {
    restoreFromTrash(trashed, to);
}

} // namespace platform
