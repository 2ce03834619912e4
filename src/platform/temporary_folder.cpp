#include "platform/temporary_folder.h"

#include "compound/error.h"
#include "platform/paths.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

namespace {

using compound::Error;

// A folder this young may belong to a process that has not locked it yet.
constexpr qint64 kStartUpSeconds = 60;
const QString kCopiedPicture = QStringLiteral("CopiedPicture.");

// The program's own may lie in a home that several machines share, and the lock of a folder is
// often known to one of them only.
QString namePrefix(FolderFor whom) {
    return whom == FolderFor::Clients
               ? QStringLiteral("TXSGraphicsLib-%1-").arg(::geteuid())
               : QStringLiteral("deleted-%1-").arg(QSysInfo::machineHostName());
}

FileDescriptor openFolder(const QString& path) {
    return FileDescriptor(::open(QFile::encodeName(path).constData(),
                                 O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

bool tryLock(const FileDescriptor& folder) {
    return folder.isOpen() && ::flock(folder.get(), LOCK_EX | LOCK_NB) == 0;
}

bool isOwnedByUser(const FileDescriptor& folder) {
    struct stat status {};
    return folder.isOpen() && ::fstat(folder.get(), &status) == 0 && status.st_uid == ::geteuid();
}

// Whatever cannot be removed is the next start's business.
void removeLeftovers(const QString& parent, FolderFor whom) {
    const QDir::Filters folders =
        QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot;
    const QDateTime youngest = QDateTime::currentDateTime().addSecs(-kStartUpSeconds);
    QDirIterator leftovers(parent, {namePrefix(whom) + u'*'}, folders);
    while (leftovers.hasNext()) {
        const QString path = leftovers.next();
        if (leftovers.fileInfo().lastModified() > youngest) {
            continue;
        }
        const FileDescriptor folder = openFolder(path);
        if (tryLock(folder) && isOwnedByUser(folder)) {
            QDir(path).removeRecursively();
        }
    }
}

std::unique_ptr<TemporaryFolder>& processFolder() {
    static std::unique_ptr<TemporaryFolder> folder;
    return folder;
}

// Where the process's folder may lie, the best place first.
QStringList temporaryParents() {
    QStringList parents;
    if (!homeRoot().isEmpty()) {
        parents += joinPath(homeRoot(), QStringLiteral("tmp"));
    } else {
        parents += QDir::tempPath();
    }
    parents += joinPath(dataFolder(), QStringLiteral("tmp"));
    parents += QDir::tempPath(); // the home may be one that cannot be written to
    return parents;
}

std::unique_ptr<TemporaryFolder> makeProcessFolder() {
    std::optional<Error> first;
    for (const QString& parent : temporaryParents()) {
        try {
            return std::make_unique<TemporaryFolder>(parent);
        } catch (const Error& error) {
            if (!first) {
                first = error;
            }
        }
    }
    throw *std::move(first);
}

} // namespace

TemporaryFolder::TemporaryFolder(const QString& parent, FolderFor whom) {
    // The system's temporary path is empty when it names no folder, and then anything joined to it
    // would lie where the program was started.
    if (QDir::isRelativePath(parent)) {
        throw compound::systemError(ENOENT, toFilePath(parent), "create a temporary folder");
    }
    (void)QDir().mkpath(parent);
    removeLeftovers(parent, whom);
    const QString pattern =
        joinPath(parent, namePrefix(whom) + QStringLiteral("%1-XXXXXX").arg(::getpid()));
    QByteArray name = QFile::encodeName(pattern);
    if (::mkdtemp(name.data()) == nullptr) {
        throw compound::systemError(errno, toFilePath(parent), "create a temporary folder");
    }
    path_ = QFile::decodeName(name) + u'/';
    lock_ = openFolder(path_);
    if (whom == FolderFor::Clients && path_.size() > kLongestTemporaryPath) {
        wipe(CopiedPicture::Remove);
        throw compound::systemError(ENAMETOOLONG, toFilePath(parent), "create a temporary folder");
    }
    if (!tryLock(lock_) && whom == FolderFor::Clients) {
        const int cause = errno;
        wipe(CopiedPicture::Remove);
        throw compound::systemError(cause, toFilePath(parent), "lock the temporary folder");
    }
}

TemporaryFolder::~TemporaryFolder() {
    wipe(CopiedPicture::Remove);
}

void TemporaryFolder::restore() {
    if (isWiped_) {
        return;
    }
    const QString folder = path_.chopped(1); // without the separator a link is not followed
    (void)QDir().mkpath(QFileInfo(folder).path());
    if (::mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0) {
        lock_ = openFolder(folder);
        (void)tryLock(lock_);
        return;
    }
    const int cause = errno;
    if (!isOwnedByUser(openFolder(folder))) {
        throw compound::systemError(cause, toFilePath(folder), "make the temporary folder again");
    }
}

void TemporaryFolder::wipe(CopiedPicture copiedPicture) {
    if (isWiped_) {
        return;
    }
    isWiped_ = true;
    if (!isOwnedByUser(openFolder(path_.chopped(1)))) {
        return; // what has taken its place is none of ours to remove
    }
    const QDir folder(path_);
    const QDir::Filters everything =
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    for (const QFileInfo& entry : folder.entryInfoList(everything)) {
        const QString name = entry.fileName();
        const bool isClients = name.startsWith(kCopiedPicture, Qt::CaseInsensitive);
        if (isClients && copiedPicture == CopiedPicture::Keep) {
            continue;
        }
        if (entry.isDir() && !entry.isSymLink()) {
            QDir(entry.filePath()).removeRecursively();
        } else {
            QFile::remove(entry.filePath());
        }
    }
    // Fails, as it shall, when the client's picture is still in it.
    (void)QDir().rmdir(path_);
}

QString temporaryFolder() {
    if (!processFolder()) {
        processFolder() = makeProcessFolder();
    }
    return processFolder()->path();
}

void restoreTemporaryFolder() {
    if (processFolder()) {
        processFolder()->restore();
    }
}

void wipeTemporaryFolder(CopiedPicture copiedPicture) {
    if (processFolder()) {
        processFolder()->wipe(copiedPicture);
    }
    processFolder().reset();
}

} // namespace platform
