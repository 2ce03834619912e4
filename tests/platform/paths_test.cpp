#include "platform/drives.h"
#include "platform/own_home.h"
#include "platform/paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using platform::joinPath;
using platform::nativePath;

std::string native(const char* text) {
    return nativePath(QString::fromUtf8(text)).toStdString();
}

TEST(NativePath, mapsDrivesToFolders) {
    const OwnHome home;
    EXPECT_EQ(native("C:"), "/");
    EXPECT_EQ(native("C:\\"), "/");
    EXPECT_EQ(native("D:\\Pictures\\a.bmp"), "/Pictures/a.bmp");
    EXPECT_EQ(native("D:Pictures"), "/Pictures");
    EXPECT_EQ(native("/srv/common\\Graphics\\Storages\\"), "/srv/common/Graphics/Storages/");
    EXPECT_EQ(native("/srv/common\\\\Graphics\\Storages\\"), "/srv/common/Graphics/Storages/");
    EXPECT_EQ(native(""), "");
}

TEST(NativePath, mapsTheStudioFolderAndOnlyThat) {
    const OwnHome home;
    const std::string studio = home.at("TalvixStudio").toStdString();
    EXPECT_EQ(native("C:\\TalvixStudio\\Common\\Graphics\\Storages\\"),
              studio + "/Common/Graphics/Storages/");
    EXPECT_EQ(native("c:\\talvixstudio"), studio);
    EXPECT_EQ(native("C:\\TalvixStudio2\\x"), "/TalvixStudio2/x");
    EXPECT_EQ(native("D:\\TalvixStudio\\x"), "/TalvixStudio/x");
}

TEST(JoinPath, putsExactlyOneSeparatorBetween) {
    EXPECT_EQ(joinPath("/srv", "a"), "/srv/a");
    EXPECT_EQ(joinPath("/", "a"), "/a");
    EXPECT_EQ(joinPath("C:\\", "a"), "C:\\a");
    EXPECT_EQ(joinPath("C:\\x", "a"), "C:\\x\\a");
}

TEST(FilePath, keepsBytesThatAreNoUtf8) {
    const std::filesystem::path odd("/srv/\xff\xfe/ä.bmp");
    EXPECT_EQ(platform::toFilePath(platform::fromFilePath(odd)), odd);
}

TEST(OwnRoot, holdsEverything) {
    const OwnHome home;
    const QString root = home.root();
    for (const QString& folder :
         {platform::dataFolder(), platform::studioFolder(), platform::trashFolder(),
          platform::keptFolder(), platform::userSettingsFolder()}) {
        EXPECT_TRUE(folder.startsWith(root)) << folder.toStdString();
    }
    for (const QString& folder : platform::systemSettingsFolders()) {
        EXPECT_TRUE(folder.startsWith(root)) << folder.toStdString();
    }
}

TEST(Drives, areTheMountedVolumesThatHoldFiles) {
    const QByteArray table = "22 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
                             "23 22 0:5 / /proc rw - proc proc rw\n"
                             "24 22 8:2 / /srv/pictures rw shared:2 master:3 - ext4 /dev/sda2 rw\n"
                             "25 22 0:6 / /run rw - tmpfs tmpfs rw\n"
                             "26 25 8:17 / /run/media/anna/USB\\040stick rw - vfat /dev/sdb1 rw\n"
                             "27 22 7:0 / /snap/core/1 ro - squashfs /dev/loop0 ro\n"
                             "28 22 0:40 / /mnt/server rw - nfs4 server:/export rw\n"
                             "29 22 8:1 /docker/hosts /etc/hosts rw - ext4 /dev/sda1 rw\n"
                             "30 22 0:41 / /run/user/1000/doc rw - fuse.portal portal rw\n"
                             "a line that makes no sense - \n";
    EXPECT_EQ(platform::mountedVolumes(table),
              (QStringList{"/mnt/server", "/run/media/anna/USB stick", "/srv/pictures"}));
    EXPECT_EQ(platform::drives().first(), "/");
}

TEST(Drives, ofAFolderIsTheDeepestThatHoldsIt) {
    const QStringList drives{"/", "/home/anna", "/mnt/usb"};
    EXPECT_EQ(platform::driveOf("/home/anna/pictures", drives), "/home/anna");
    EXPECT_EQ(platform::driveOf("/home/anna2", drives), "/");
    EXPECT_EQ(platform::driveOf("/mnt/usb", drives), "/mnt/usb");
}

TEST(Listable, isFalseForMissingFoldersAndFiles) {
    const OwnHome home;
    home.write("file", "");
    EXPECT_TRUE(platform::isListable(home.root()));
    EXPECT_FALSE(platform::isListable(home.at("none")));
    EXPECT_FALSE(platform::isListable(home.at("file")));
}

} // namespace
