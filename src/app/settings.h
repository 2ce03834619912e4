// The state that the whole program shares: the paths, the temporary folder, and what is remembered
// from one run to the next. One instance; everything runs on one thread.
//
// Texts are kept exactly as configured and joined ("C:\TalvixStudio\Common\Graphics\Storages\");
// the functions that return a std::filesystem::path convert to this system (platform/paths.h).
#pragma once

#include "platform/settings_backend.h"

#include <QString>

#include <cstdint>
#include <filesystem>

namespace app {

class Settings {
  public:
    explicit Settings(platform::SettingsBackend& backend);

    // Reads `LCID`, chooses the language and builds the text table. First step of every start.
    void chooseLanguage();

    // Reads `Common` (once for each of the two paths built from it), `Drive` and `Path`. Where no
    // `Common` is configured, the default storages folder is created; a configured one never is. A
    // missing or unreadable folder is not an error here.
    void readPaths();

    // Makes the process's temporary folder, once. Throws compound::Error when there is no place for
    // one; then no temporary folder is known, and nothing is to be written into one.
    void makeTemporaryFolder();

    // Reads `CurrentGroup` (the key S/T of the group last selected; empty for none).
    void readCurrentGroup();

    // Writes `CurrentGroup`, `Drive` and `Path`, in this order, all or nothing. Throws
    // compound::Error naming the settings file.
    void save();

    const QString& storagesFolder() const { return storagesFolder_; }
    const QString& helpFile() const { return helpFile_; }
    // Ends in a separator; empty when there is none.
    const QString& temporaryFolder() const { return temporaryFolder_; }
    std::filesystem::path storagesFolderPath() const;
    std::filesystem::path helpFilePath() const;
    std::filesystem::path temporaryFolderPath() const;

    // The same, for writing to it: made if there was no place before, and made again if a cleaner
    // of temporary files has taken it. Throws compound::Error when that fails.
    std::filesystem::path restoredTemporaryFolderPath();

    const QString& drive() const { return drive_; }
    void setDrive(const QString& drive) { drive_ = drive; }
    const QString& path() const { return path_; }
    void setPath(const QString& path) { path_ = path; }
    bool isPathChosen() const; // or the one that it is before any was
    const QString& currentGroup() const { return currentGroup_; }
    void setCurrentGroup(const QString& key) { currentGroup_ = key; }

  private:
    QString readCommon() const;
    void createDefaultStoragesFolder() const;

    platform::SettingsBackend& backend_;
    QString storagesFolder_;
    QString helpFile_;
    QString temporaryFolder_;
    QString drive_;
    QString path_;
    QString currentGroup_;
};

// The program's instance, on the native backend.
Settings& settings();

} // namespace app
