#include "app/settings.h"

#include "app/texts.h"
#include "platform/paths.h"
#include "platform/temporary_folder.h"

namespace app {

namespace {

using platform::Hive;

const QString kProductKey = QStringLiteral("SOFTWARE\\NORAVEX GmbH\\Talvix\\4.0");
const QString kMakerKey = QStringLiteral("Software\\NORAVEX GmbH");
const QString kProgramKey = QStringLiteral("Software\\NORAVEX GmbH\\GraphicsLib");
const QString kDefaultPath = QStringLiteral("C:\\");
const QString kDefaultCommon = QStringLiteral("C:\\TalvixStudio\\Common");
const QString kStoragesSuffix = QStringLiteral("\\Graphics\\Storages\\");
const QString kHelpFileSuffix = QStringLiteral("\\HelpFiles\\TXSGraphicsLib.chm");
const QString kDriveName = QStringLiteral("Drive");
const QString kPathName = QStringLiteral("Path");
const QString kCurrentGroupName = QStringLiteral("CurrentGroup");

// A number written plainly or, as registry editors show it, as "0x...".
std::int32_t localeNumber(const QString& text) {
    bool isNumber = false;
    const int number = text.trimmed().toInt(&isNumber, 0);
    return isNumber ? number : kGermanLocale;
}

} // namespace

Settings::Settings(platform::SettingsBackend& backend) : backend_(backend) {}

void Settings::chooseLanguage() {
    setLanguage(localeNumber(backend_.read(Hive::LocalMachine, kProductKey, QStringLiteral("LCID"),
                                           QString::number(kGermanLocale))));
}

void Settings::readPaths() {
    storagesFolder_ = readCommon() + kStoragesSuffix;
    helpFile_ = readCommon() + kHelpFileSuffix;
    createDefaultStoragesFolder();
    drive_ = backend_.read(Hive::CurrentUser, kProgramKey, kDriveName, QStringLiteral("C:"));
    path_ = backend_.read(Hive::CurrentUser, kProgramKey, kPathName, kDefaultPath);
}

bool Settings::isPathChosen() const {
    return path_ != kDefaultPath;
}

void Settings::readCurrentGroup() {
    currentGroup_ = backend_.read(Hive::CurrentUser, kProgramKey, kCurrentGroupName, QString());
}

void Settings::save() {
    backend_.write({{kProgramKey, kCurrentGroupName, currentGroup_},
                    {kProgramKey, kDriveName, drive_},
                    {kProgramKey, kPathName, path_}});
}

std::filesystem::path Settings::storagesFolderPath() const {
    return platform::toFilePath(platform::nativePath(storagesFolder_));
}

std::filesystem::path Settings::helpFilePath() const {
    return platform::toFilePath(platform::nativePath(helpFile_));
}

std::filesystem::path Settings::temporaryFolderPath() const {
    return platform::toFilePath(temporaryFolder_);
}

void Settings::makeTemporaryFolder() {
    temporaryFolder_ = platform::temporaryFolder();
}

std::filesystem::path Settings::restoredTemporaryFolderPath() {
    makeTemporaryFolder(); // there may have been no room for one before
    platform::restoreTemporaryFolder();
    return temporaryFolderPath();
}

QString Settings::readCommon() const {
    return backend_.read(Hive::LocalMachine, kMakerKey, QStringLiteral("Common"), kDefaultCommon);
}

// Without it nobody could make a first group on a fresh account. The user who configured another
// folder shall notice when it is missing. A failure shows when the folder is used.
void Settings::createDefaultStoragesFolder() const {
    if (storagesFolder_ == kDefaultCommon + kStoragesSuffix) {
        (void)platform::makeFolder(platform::nativePath(storagesFolder_));
    }
}

Settings& settings() {
    static Settings instance(platform::nativeSettings());
    return instance;
}

} // namespace app
