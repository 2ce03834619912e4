#include "compound/error.h"
#include "platform/desktop_trash.h"
#include "platform/own_home.h"
#include "platform/paths.h"
#include "platform/temporary_folder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <unistd.h>

namespace {

using platform::CopiedPicture;
using platform::TemporaryFolder;
namespace fs = std::filesystem;

class TemporaryFolderTest : public testing::Test {
  protected:
    QString leftover(int number) const {
        return home_.at(QStringLiteral("TXSGraphicsLib-%1-99-%2").arg(::geteuid()).arg(number));
    }

    void makeOld(const QString& path) const {
        const auto old = fs::file_time_type::clock::now() - std::chrono::hours(1);
        fs::last_write_time(path.toStdString(), old);
    }

    OwnHome home_;
};

TEST_F(TemporaryFolderTest, isPrivateAndGoesWithItsContent) {
    std::optional<TemporaryFolder> folder(std::in_place, home_.root());
    const fs::path path = folder->path().toStdString();
    EXPECT_TRUE(folder->path().endsWith(u'/'));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0700));
    fs::create_directories(path / "sub" / "deeper");
    home_.write("kept", "");
    fs::create_symlink(home_.root().toStdString(), path / "link");
    folder.reset();
    EXPECT_FALSE(fs::exists(path));
    EXPECT_TRUE(fs::exists(home_.at("kept").toStdString()));
}

TEST_F(TemporaryFolderTest, comesBackAfterACleanerHasTakenIt) {
    TemporaryFolder folder(home_.root());
    const fs::path path = folder.path().toStdString();
    fs::remove_all(path);
    folder.restore();
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0700));
    makeOld(folder.path());
    const TemporaryFolder next(home_.root()); // which removes what nobody has locked
    EXPECT_TRUE(fs::exists(path));
    folder.restore(); // nothing to do
    folder.wipe(CopiedPicture::Remove);
    folder.restore();
    EXPECT_FALSE(fs::exists(path));
}

// In a folder for everybody somebody else may take the name, to have pictures written elsewhere.
TEST_F(TemporaryFolderTest, aLinkInItsPlaceIsNotFollowed) {
    TemporaryFolder folder(home_.root());
    const fs::path path = folder.path().chopped(1).toStdString();
    home_.write("elsewhere/kept", "");
    fs::remove_all(path);
    fs::create_directory_symlink(home_.at("elsewhere").toStdString(), path);
    EXPECT_THROW(folder.restore(), compound::Error);
    folder.wipe(CopiedPicture::Remove);
    EXPECT_TRUE(fs::exists(home_.at("elsewhere/kept").toStdString()));
}

// What a program that was killed had on its way to the trash.
TEST_F(TemporaryFolderTest, theOneOfTheTrashGoesWithTheNext) {
    const auto makeAndGetKilled = [] {
        const platform::DesktopTrash trash;
        std::ofstream(trash.stagingFolder() / "a.bmp") << "a picture";
        ::_exit(0);
    };
    EXPECT_EXIT(makeAndGetKilled(), testing::ExitedWithCode(0), "");
    const fs::path parent = platform::dataFolder().toStdString();
    ASSERT_EQ(std::distance(fs::directory_iterator(parent), {}), 1);
    makeOld(QString::fromStdString(fs::directory_iterator(parent)->path().string()));
    const platform::DesktopTrash next;
    EXPECT_TRUE(fs::is_empty(next.stagingFolder()));
    EXPECT_EQ(std::distance(fs::directory_iterator(parent), {}), 1);
}

TEST_F(TemporaryFolderTest, leavesTheClientsPictureOnRequest) {
    TemporaryFolder folder(home_.root());
    const fs::path path = folder.path().toStdString();
    for (const char* name : {"CopiedPicture.BMP", "Picture.BMP", "Undo1.BMP"}) {
        fs::copy_file("/proc/self/comm", path / name);
    }
    folder.wipe(CopiedPicture::Keep);
    EXPECT_TRUE(fs::exists(path / "CopiedPicture.BMP"));
    EXPECT_FALSE(fs::exists(path / "Picture.BMP"));
    EXPECT_FALSE(fs::exists(path / "Undo1.BMP"));
}

TEST_F(TemporaryFolderTest, cleansUpAfterDeadProcessesOnly) {
    const TemporaryFolder living(home_.root());
    makeOld(living.path());
    home_.write(leftover(1).mid(home_.root().size() + 1) + "/Picture.bmp", "");
    makeOld(leftover(1));
    QDir().mkpath(leftover(2)); // just made: its process may not have locked it yet
    QDir().mkpath(home_.at("precious"));
    fs::create_directory_symlink(home_.at("precious").toStdString(), leftover(3).toStdString());
    const TemporaryFolder next(home_.root());
    EXPECT_TRUE(fs::exists(living.path().toStdString()));
    EXPECT_FALSE(fs::exists(leftover(1).toStdString()));
    EXPECT_TRUE(fs::exists(leftover(2).toStdString()));
    EXPECT_TRUE(fs::exists(home_.at("precious").toStdString()));
}

// The home, the data folder or all of them may be places that nobody can write to. A file in the
// place of a folder is one even for an administrator.
class TemporaryFolderOfTheProcessTest : public TemporaryFolderTest {
  protected:
    TemporaryFolderOfTheProcessTest() { home_.write("file", ""); }
    ~TemporaryFolderOfTheProcessTest() override {
        platform::wipeTemporaryFolder(CopiedPicture::Remove);
        qunsetenv("TMPDIR");
        qunsetenv("XDG_DATA_HOME");
    }

    void setTemporaryPath(const QString& path) { qputenv("TMPDIR", path.toUtf8()); }
    void setHome(const QString& path) { qputenv(platform::kHomeVariable, path.toUtf8()); }
};

TEST_F(TemporaryFolderOfTheProcessTest, fallsBackFromPlaceToPlace) {
    const QString nowhere = home_.at("file/none");
    QDir().mkpath(home_.at("temporary"));
    setHome(nowhere);
    setTemporaryPath(home_.at("temporary"));
    EXPECT_TRUE(platform::temporaryFolder().startsWith(home_.at("temporary/")));
    platform::wipeTemporaryFolder(CopiedPicture::Remove);

    setHome({});
    qputenv("XDG_DATA_HOME", home_.at("share").toUtf8());
    setTemporaryPath(nowhere);
    EXPECT_TRUE(platform::temporaryFolder().startsWith(home_.at("share/TXSGraphicsLib/tmp/")));
    platform::wipeTemporaryFolder(CopiedPicture::Remove);

    QString longPath = home_.root();
    while (longPath.size() <= platform::kLongestTemporaryPath) {
        longPath += QStringLiteral("/long name of a folder");
    }
    setTemporaryPath(longPath);
    EXPECT_TRUE(platform::temporaryFolder().startsWith(home_.at("share/TXSGraphicsLib/tmp/")));
}

TEST_F(TemporaryFolderOfTheProcessTest, isAnErrorWhereThereIsNoPlace) {
    setHome(home_.at("file/none"));
    setTemporaryPath(home_.at("file/none either"));
    for (int i = 0; i < 2; ++i) {
        try {
            platform::temporaryFolder();
            ADD_FAILURE() << "no error";
        } catch (const compound::Error& error) {
            EXPECT_EQ(error.file().string(), home_.at("file/none/tmp").toStdString());
        }
    }
    setTemporaryPath(home_.root()); // there is room now
    EXPECT_TRUE(QDir(platform::temporaryFolder()).exists());
}

} // namespace
