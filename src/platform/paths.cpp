#include "platform/paths.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "platform/file_descriptor.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace platform {

namespace {

const QString kStudioPrefix = QStringLiteral("C:/TalvixStudio");
const QString kStudioName = QStringLiteral("TalvixStudio");
const QString kProgramName = QStringLiteral("TXSGraphicsLib");

QString below(QStandardPaths::StandardLocation location, const QString& name) {
    return joinPath(QStandardPaths::writableLocation(location), name);
}

bool startsWithDrive(const QString& text) {
    return text.size() >= 2 && text.at(1) == u':' && text.at(0).unicode() < 128 &&
           text.at(0).isLetter();
}

// Slashes only, and never two in a row.
QString withSingleSlashes(const QString& text) {
    QString result;
    result.reserve(text.size());
    for (QChar character : text) {
        const bool isSeparator = character == u'\\' || character == u'/';
        if (!isSeparator) {
            result += character;
        } else if (!result.endsWith(u'/')) {
            result += u'/';
        }
    }
    return result;
}

bool isBelowStudio(const QString& path) {
    return path.startsWith(kStudioPrefix, Qt::CaseInsensitive) &&
           (path.size() == kStudioPrefix.size() || path.at(kStudioPrefix.size()) == u'/');
}

} // namespace

QString homeRoot() {
    const QString root = qEnvironmentVariable(kHomeVariable);
    return root.isEmpty() ? QString() : QDir::cleanPath(QDir(root).absolutePath());
}

QString dataFolder() {
    const QString root = homeRoot();
    return root.isEmpty() ? below(QStandardPaths::GenericDataLocation, kProgramName)
                          : joinPath(root, QStringLiteral("data"));
}

QString studioFolder() {
    const QString root = homeRoot();
    return root.isEmpty() ? below(QStandardPaths::GenericDataLocation, kStudioName)
                          : joinPath(root, kStudioName);
}

QString trashFolder() {
    const QString root = homeRoot();
    return root.isEmpty() ? QString() : joinPath(root, QStringLiteral("trash"));
}

QString picturesFolder() {
    const QString root = homeRoot();
    const QString folder = root.isEmpty()
                               ? QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)
                               : joinPath(root, QStringLiteral("Pictures"));
    return QFileInfo(folder).isDir() ? folder : QString();
}

QString keptFolder() {
    return joinPath(dataFolder(), QStringLiteral("kept"));
}

QString userSettingsFolder() {
    const QString root = homeRoot();
    return root.isEmpty() ? below(QStandardPaths::GenericConfigLocation, kProgramName)
                          : joinPath(root, QStringLiteral("settings"));
}

QStringList systemSettingsFolders() {
    const QString root = homeRoot();
    if (!root.isEmpty()) {
        return {joinPath(root, QStringLiteral("settings"))};
    }
    QStringList folders;
    const QString user = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    for (const QString& folder :
         QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation)) {
        if (folder != user) {
            folders += joinPath(folder, kProgramName);
        }
    }
    return folders;
}

QString nativePath(const QString& text) {
    QString path = withSingleSlashes(text);
    if (isBelowStudio(path)) {
        return studioFolder() + path.mid(kStudioPrefix.size());
    }
    if (!startsWithDrive(path)) {
        return path;
    }
    const QString rest = path.mid(2);
    return rest.startsWith(u'/') ? rest : u'/' + rest;
}

bool makeFolder(const QString& path) {
    if (QFileInfo(path).isDir()) {
        return true;
    }
    if (!QDir().mkpath(path)) {
        return false;
    }
    try {
        syncWayTo(toFilePath(path));
    } catch (const compound::Error&) {
        return false; // a drive that fails here is not to be trusted with what goes into the folder
    }
    return true;
}

QString joinPath(const QString& folder, const QString& name) {
    if (folder.isEmpty() || folder.endsWith(u'/') || folder.endsWith(u'\\')) {
        return folder + name;
    }
    const bool isBackslashed = folder.contains(u'\\') || startsWithDrive(folder);
    return folder + (isBackslashed && !folder.contains(u'/') ? u'\\' : u'/') + name;
}

std::filesystem::path toFilePath(const QString& nativeText) {
    return base::toPath(nativeText.toStdU16String());
}

QString fromFilePath(const std::filesystem::path& path) {
    return QString::fromStdU16String(base::fromPath(path));
}

} // namespace platform
