#include "app/help.h"
#include "app/message_box_script.h"
#include "app/settings.h"
#include "app/texts.h"
#include "compound/error.h"
#include "platform/own_home.h"
#include "platform/temporary_folder.h"

#include <QDir>
#include <QMap>

#include <filesystem>
#include <gtest/gtest.h>

namespace {

using platform::Hive;

// Settings in memory that note how they are used.
class MemorySettings final : public platform::SettingsBackend {
  public:
    QString read(Hive hive, const QString& key, const QString& name,
                 const QString& fallback) override {
        const QString where = hive == Hive::LocalMachine ? "machine " : "user ";
        log += where + key + ' ' + name;
        return values.value(name, fallback);
    }

    void write(const std::vector<platform::Setting>& settings) override {
        for (const auto& [key, name, value] : settings) {
            log += "write " + key + ' ' + name + '=' + value;
            values[name] = value;
        }
    }

    QMap<QString, QString> values;
    QStringList log;
};

class SettingsTest : public testing::Test {
  protected:
    void TearDown() override {
        platform::wipeTemporaryFolder(platform::CopiedPicture::Remove);
        app::setLanguage(app::kGermanLocale);
    }

    OwnHome home_;
    MemorySettings backend_;
    app::Settings settings_{backend_};
};

TEST_F(SettingsTest, areReadInTheirOrderFromTheirPlaces) {
    settings_.chooseLanguage();
    settings_.readPaths();
    settings_.readCurrentGroup();
    EXPECT_EQ(backend_.log, (QStringList{
                                "machine SOFTWARE\\NORAVEX GmbH\\Talvix\\4.0 LCID",
                                "machine Software\\NORAVEX GmbH Common",
                                "machine Software\\NORAVEX GmbH Common",
                                "user Software\\NORAVEX GmbH\\GraphicsLib Drive",
                                "user Software\\NORAVEX GmbH\\GraphicsLib Path",
                                "user Software\\NORAVEX GmbH\\GraphicsLib CurrentGroup",
                            }));
    EXPECT_EQ(settings_.storagesFolder(), "C:\\TalvixStudio\\Common\\Graphics\\Storages\\");
    EXPECT_EQ(settings_.helpFile(), "C:\\TalvixStudio\\Common\\HelpFiles\\TXSGraphicsLib.chm");
    EXPECT_EQ(settings_.drive(), "C:");
    EXPECT_EQ(settings_.path(), "C:\\");
    EXPECT_EQ(settings_.currentGroup(), "");
}

TEST_F(SettingsTest, areSavedInTheirOrder) {
    settings_.readPaths();
    settings_.setDrive("/mnt");
    settings_.setPath("/mnt/pictures");
    settings_.setCurrentGroup("Sub2/Pumps");
    backend_.log.clear();
    settings_.save();
    EXPECT_EQ(backend_.log, (QStringList{
                                "write Software\\NORAVEX GmbH\\GraphicsLib CurrentGroup=Sub2/Pumps",
                                "write Software\\NORAVEX GmbH\\GraphicsLib Drive=/mnt",
                                "write Software\\NORAVEX GmbH\\GraphicsLib Path=/mnt/pictures",
                            }));
}

TEST_F(SettingsTest, takeTheLanguageFromAnyFormOfNumber) {
    const QList<std::pair<QString, int>> cases{
        {"1033", 10000}, {"0x409", 10000}, {" 1033 ", 10000}, {"1031", 0},
        {"1036", 0},     {"english", 0},   {"", 0},           {"99999999999", 0}};
    for (const auto& [text, offset] : cases) {
        backend_.values["LCID"] = text;
        settings_.chooseLanguage();
        EXPECT_EQ(app::languageOffset(), offset) << text.toStdString();
    }
}

TEST_F(SettingsTest, joinAConfiguredFolderAsItStands) {
    backend_.values["Common"] = "D:\\Studio\\";
    settings_.readPaths();
    EXPECT_EQ(settings_.storagesFolder(), "D:\\Studio\\\\Graphics\\Storages\\");
    EXPECT_EQ(settings_.storagesFolderPath(), "/Studio/Graphics/Storages/");
}

// On a fresh account nobody could make a group otherwise; a configured folder that is missing
// (an unmounted share) must not be made up.
TEST_F(SettingsTest, createTheDefaultFolderButNoConfiguredOne) {
    const QString configured = home_.at("share");
    backend_.values["Common"] = configured;
    settings_.readPaths();
    EXPECT_FALSE(QDir(configured).exists());
    backend_.values.clear();
    settings_.readPaths();
    EXPECT_TRUE(QDir(home_.at("TalvixStudio/Common/Graphics/Storages")).exists());
}

TEST_F(SettingsTest, giveAPrivateTemporaryFolderBelowTheirRoot) {
    settings_.readPaths();
    EXPECT_FALSE(QDir(home_.at("tmp")).exists()) << "nobody has asked for one";
    settings_.makeTemporaryFolder();
    EXPECT_TRUE(settings_.temporaryFolder().startsWith(home_.root()));
    EXPECT_TRUE(settings_.temporaryFolder().endsWith('/'));
    EXPECT_TRUE(QDir(settings_.temporaryFolder()).exists());
}

// Closing writes the remembered drive and folder back, whatever became of the temporary folder; and
// nothing may be written to where the program was started.
TEST_F(SettingsTest, areReadWithoutAnyPlaceForTemporaryFiles) {
    home_.write("file", "");
    qputenv(platform::kHomeVariable, home_.at("file/none").toUtf8());
    qputenv("TMPDIR", home_.at("file/none").toUtf8());
    backend_.values["Drive"] = "/mnt";
    backend_.values["Path"] = "/mnt/pictures";
    settings_.readPaths();
    EXPECT_THROW(settings_.makeTemporaryFolder(), compound::Error);
    EXPECT_THROW((void)settings_.restoredTemporaryFolderPath(), compound::Error);
    EXPECT_EQ(settings_.temporaryFolder(), "");
    EXPECT_EQ(settings_.drive(), "/mnt");
    EXPECT_EQ(settings_.path(), "/mnt/pictures");
    qputenv("TMPDIR", home_.root().toUtf8());
    EXPECT_TRUE(std::filesystem::is_directory(settings_.restoredTemporaryFolderPath()));
    qunsetenv("TMPDIR");
}

TEST_F(SettingsTest, nameTheHelpFileThatIsMissing) {
    app::settings().readPaths();
    app::setOwnHelpFolder(home_.at("none"));
    MessageBoxScript boxes;
    app::showHelp(app::HelpTopic::AddPicture, nullptr);
    const QString file = home_.at("TalvixStudio/Common/HelpFiles/TXSGraphicsLib.chm");
    EXPECT_EQ(boxes.takeText(), "Die Hilfedatei fehlt:\n" + file);
    app::setOwnHelpFolder({});
}

} // namespace
