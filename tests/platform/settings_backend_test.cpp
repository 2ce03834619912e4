#include "compound/error.h"
#include "platform/own_home.h"
#include "platform/settings_backend.h"
#include "platform/settings_file.h"

#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace {

using platform::Hive;
using platform::nativeSettings;
using platform::SettingsFile;

const QString kKey = QStringLiteral("Software\\Test\\GraphicsLib");
const QString kMachineFile = QStringLiteral("settings/machine.conf");
const QString kUserFile = QStringLiteral("settings/user.conf");

QString readUser(const QString& name) {
    return nativeSettings().read(Hive::CurrentUser, kKey, name, QStringLiteral("fallback"));
}

QString readMachine(const QString& key, const QString& name) {
    return nativeSettings().read(Hive::LocalMachine, key, name, QStringLiteral("fallback"));
}

TEST(SettingsBackend, givesTheFallbackForWhatIsMissing) {
    const OwnHome home;
    EXPECT_EQ(readUser("Drive"), "fallback");
    home.write(kUserFile, "[Software\\Test\\GraphicsLib]\nDrive=\n[Other]\nPath=x\n");
    EXPECT_EQ(readUser("Path"), "fallback");
    EXPECT_EQ(readUser("Drive"), "");
}

TEST(SettingsBackend, readsAMachineFileAsAnAdministratorWritesIt) {
    const OwnHome home;
    home.write(kMachineFile, "\xef\xbb\xbf# the studio\r\n"
                             "[SOFTWARE\\Test]\r\n"
                             "Common = /srv/common\\ \r\n"
                             "[software\\test\\4.0]\r\n"
                             "lcid=1033\r\n");
    EXPECT_EQ(readMachine("Software\\Test", "Common"), "/srv/common\\");
    EXPECT_EQ(readMachine("SOFTWARE\\Test\\4.0", "LCID"), "1033");
}

TEST(SettingsBackend, givesBackEveryTextThatWasWritten) {
    const OwnHome home;
    const QStringList texts{"C:\\",
                            "",
                            " outer blanks ",
                            "\"quoted\"",
                            "two\nlines\r",
                            "[section]",
                            "a=b",
                            "# no comment",
                            "hex(1):00",
                            "C:\\new\\table",
                            QStringLiteral("ä€😀"),
                            "\t",
                            QString(QChar(0xdc80)) + "x",
                            QString(QChar(0)),
                            QString(QChar(0x2028)),
                            QString(QChar(0xfeff))};
    for (const QString& text : texts) {
        nativeSettings().write(kKey, "Path", text);
        EXPECT_EQ(readUser("Path"), text) << home.read(kUserFile).toStdString();
    }
}

TEST(SettingsBackend, keepsEverythingElseInTheFile) {
    const OwnHome home;
    home.write(kUserFile, "# mine\n[Other]\nDrive=D:\n\n[SOFTWARE\\Test\\GraphicsLib]\n"
                          "drive=C:\nodd line\n\n[Last]\nx=y\n");
    nativeSettings().write(kKey, "Drive", "E:");
    nativeSettings().write(kKey, "Path", "/srv");
    EXPECT_EQ(home.read(kUserFile), "# mine\n[Other]\nDrive=D:\n\n[SOFTWARE\\Test\\GraphicsLib]\n"
                                    "Drive=E:\nodd line\nPath=/srv\n\n[Last]\nx=y\n");
}

TEST(SettingsBackend, survivesHostileFiles) {
    const OwnHome home;
    const QByteArray huge(platform::kMaximumSettingsBytes + 1, 'x');
    const QByteArrayList contents{QByteArray("\0\1\2", 3),
                                  "\xff\xfe[\xc3",
                                  huge,
                                  "[",
                                  "]=[",
                                  "=",
                                  "[Software\\Test\\GraphicsLib]\nDrive=hex(1):zzzz"};
    for (const QByteArray& content : contents) {
        home.write(kUserFile, content);
        testing::internal::CaptureStderr();
        EXPECT_EQ(readUser("Drive"), "fallback");
        const std::string told = testing::internal::GetCapturedStderr();
        if (&content == &contents.first()) {
            EXPECT_NE(told.find(home.at(kUserFile).toStdString()), std::string::npos) << told;
        }
    }
}

TEST(SettingsBackend, movesAFileThatItCannotReadAsideBeforeWriting) {
    const OwnHome home;
    const QByteArray garbage("\0garbage", 8);
    home.write(kUserFile, garbage);
    nativeSettings().write(kKey, "Drive", "C:");
    EXPECT_EQ(readUser("Drive"), "C:");
    EXPECT_EQ(home.read("trash/user.conf"), garbage);
}

// A limit for the length of files fails what a full disk fails.
TEST(SettingsBackend, leavesTheFileAsItIsWhenItCannotBeWritten) {
    const OwnHome home;
    nativeSettings().write(kKey, "Drive", "C:");
    const QByteArray before = home.read(kUserFile);
    struct rlimit limit {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    for (const rlim_t length : {0, 10}) {
        struct rlimit small = limit;
        small.rlim_cur = length;
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
        EXPECT_THROW(nativeSettings().write(kKey, "Drive", "D:"), compound::Error);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        EXPECT_EQ(home.read(kUserFile), before);
        EXPECT_EQ(QDir(home.at("settings")).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }
}

// As programs do that are closed together. Threads exclude each other as programs do.
TEST(SettingsBackend, losesNothingOfWritersThatMeet) {
    const OwnHome home;
    constexpr int kWriters = 4;
    constexpr int kEach = 6;
    const auto nameOf = [](int writer, int i) {
        return QStringLiteral("%1.%2").arg(writer).arg(i);
    };
    std::vector<std::thread> writers;
    writers.reserve(kWriters);
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([&, writer] {
            for (int i = 0; i < kEach; ++i) {
                nativeSettings().write(kKey, nameOf(writer, i), QString::number(i));
            }
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    int lost = 0;
    for (int writer = 0; writer < kWriters; ++writer) {
        for (int i = 0; i < kEach; ++i) {
            lost += readUser(nameOf(writer, i)) == QString::number(i) ? 0 : 1;
        }
    }
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(QDir(home.at("settings")).entryList(QDir::Files | QDir::Hidden).size(), 1);
}

TEST(SettingsBackend, refusesAPipeInPlaceOfAFileWithoutWaiting) {
    const OwnHome home;
    QDir().mkpath(home.at("settings"));
    ASSERT_EQ(::mkfifo(home.at(kUserFile).toUtf8().constData(), 0600), 0);
    EXPECT_EQ(readUser("Drive"), "fallback");
    EXPECT_THROW(nativeSettings().write(kKey, "Drive", "C:"), compound::Error);
}

TEST(SettingsFile, parsesAnyBytesAndKeepsWhatItUnderstood) {
    std::mt19937 random(20240501);
    const QByteArray alphabet("[]=\"# \n\rhex(1):04aä\\;");
    for (int round = 0; round < 2000; ++round) {
        QByteArray bytes;
        for (int length = static_cast<int>(random() % 60); length > 0; --length) {
            bytes += alphabet.at(static_cast<qsizetype>(random() % alphabet.size()));
        }
        std::optional<SettingsFile> file = SettingsFile::parse(bytes);
        if (!file) {
            continue;
        }
        file->setValue(kKey, "Path", "value");
        const std::optional<SettingsFile> again = SettingsFile::parse(file->toBytes());
        ASSERT_TRUE(again);
        EXPECT_EQ(again->value(kKey, "Path"), "value") << bytes.toStdString();
        EXPECT_EQ(again->toBytes(), file->toBytes());
    }
}

} // namespace
