// Folders and paths. Above this floor a path is the text that the settings hold ("C:\...", joined
// with backslashes); nativePath() turns it into a path of this system at the moment a file is
// touched.
//
// The environment variable TXSGRAPHICSLIB_HOME names a folder that takes the place of all of the
// user's: settings, data, temporary folder, trash and default library lie below it. It is read at
// every call, so a test may change it.
#pragma once

#include <QString>
#include <QStringList>

#include <filesystem>

namespace platform {

// Name of the environment variable.
inline constexpr char kHomeVariable[] = "TXSGRAPHICSLIB_HOME";

// The folder named by TXSGRAPHICSLIB_HOME, absolute, without a trailing "/"; empty if not set.
QString homeRoot();

// The program's own data, without a trailing "/". Not created here.
QString dataFolder();

// The folder that "C:\TalvixStudio" stands for on a system without drives.
QString studioFolder();

// The trash under TXSGRAPHICSLIB_HOME; empty when the desktop's trash is to be used.
QString trashFolder();

// The user's pictures, where they are looked for first; empty when there is no such folder.
QString picturesFolder();

// Takes files that no trash accepts.
QString keptFolder();

// Folders that may hold settings: the user's first, then the system's in their order of preference.
QString userSettingsFolder();
QStringList systemSettingsFolders();

// The path on this system for a settings text. Drives map to folders: "C:\TalvixStudio" and below
// to studioFolder(), any other "X:\..." to "/...", "X:" to "/". Backslashes become slashes and
// repeated separators one; a text that begins with "/" is such a path already.
QString nativePath(const QString& text);

// Makes the folder `path` of this system, and those above it that are missing, such that a power
// cut does not take them and what is put into them. False if it cannot be made; true if it is
// there.
bool makeFolder(const QString& path);

// `folder` and `name` with one separator in between; a folder that ends in one gets none. A folder
// that holds backslashes and no slash is joined with a backslash.
QString joinPath(const QString& folder, const QString& name);

// Text and path of one file. Names that are no valid UTF-8 survive the round trip.
std::filesystem::path toFilePath(const QString& nativeText);
QString fromFilePath(const std::filesystem::path& path);

} // namespace platform
