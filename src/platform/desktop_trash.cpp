#include "platform/desktop_trash.h"

#include "compound/error.h"
#include "platform/paths.h"
#include "platform/trash.h"

#include <QDir>

namespace platform {
namespace {

QString pattern() {
    const QString parent = dataFolder();
    (void)QDir().mkpath(parent); // what goes wrong here, the next step tells
    return joinPath(parent, QStringLiteral("deleted-XXXXXX"));
}

} // namespace

std::filesystem::path DesktopTrash::stagingFolder() const {
    if (!folder_) {
        folder_.emplace(pattern());
    }
    if (!folder_->isValid()) {
        throw compound::TrashFailure(compound::Error(compound::ErrorCode::Failed,
                                                     toFilePath(dataFolder()),
                                                     folder_->errorString().toStdString()));
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
