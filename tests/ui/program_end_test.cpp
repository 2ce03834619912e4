// The whole program, ended by the system: it leaves as by its Exit command.
#include "platform/native_disk.h"
#include "platform/own_home.h"
#include "store/group_operations.h"

#include <QProcess>
#include <QTest>

#include <array>
#include <csignal>
#include <gtest/gtest.h>

namespace {

constexpr int kPatienceMilliseconds = 60000;
const QString kLibrary = QStringLiteral("TalvixStudio/Common/Graphics/Storages");

class ProgramEnd : public testing::TestWithParam<int> {
  protected:
    ~ProgramEnd() override {
        if (program_.state() != QProcess::NotRunning) {
            program_.kill();
            program_.waitForFinished();
        }
    }

    // The names of the program's own folders for temporary pictures.
    QStringList temporaryFolders() const {
        return QDir(home_.at("tmp")).entryList({"TXSGraphicsLib-*"}, QDir::Dirs);
    }

    void makeGroup(const std::u16string& name) const {
        ASSERT_TRUE(QDir().mkpath(home_.at(kLibrary)));
        const store::Library library{
            platform::nativeDisk(), platform::toFilePath(home_.at(kLibrary)), {}};
        store::createGroup(library, {}, {name});
    }

    // It has loaded the library once it has its temporary folder.
    void startProgram() {
        program_.setChildProcessModifier([] { // the test itself may run without a terminal
            for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
                std::signal(signal, SIG_DFL);
            }
        });
        program_.start(TXS_PROGRAM, QStringList());
        ASSERT_TRUE(program_.waitForStarted(kPatienceMilliseconds));
        ASSERT_TRUE(QTest::qWaitFor([this] { return !temporaryFolders().isEmpty(); },
                                    kPatienceMilliseconds));
    }

    void end(int signal) {
        ASSERT_EQ(::kill(static_cast<pid_t>(program_.processId()), signal), 0);
        ASSERT_TRUE(program_.waitForFinished(kPatienceMilliseconds));
        EXPECT_EQ(program_.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program_.exitCode(), 0);
        EXPECT_TRUE(temporaryFolders().isEmpty());
    }

    OwnHome home_;
    QProcess program_;
};

INSTANTIATE_TEST_SUITE_P(Signals, ProgramEnd, testing::Values(SIGTERM, SIGHUP, SIGINT));

TEST_P(ProgramEnd, ASignalSavesTheSettingsAndCleansUp) {
    const QByteArray remembered = "CurrentGroup=Pumpen/Pumpen\n";
    home_.write("settings/user.conf", "[Software\\NORAVEX GmbH\\GraphicsLib]\n" + remembered);
    makeGroup(u"Pumpen");
    for (const bool isBoxOpen : {false, true}) { // a box before anything is selected
        if (isBoxOpen) {
            home_.write(kLibrary + QStringLiteral("/Kaputt.stg"), "no group file");
        }
        startProgram();
        end(GetParam());
        const QByteArray settings = home_.read("settings/user.conf");
        for (const QByteArray& part : {remembered, QByteArray("Drive="), QByteArray("Width=")}) {
            EXPECT_TRUE(settings.contains(part)) << settings.toStdString();
        }
    }
}

// A box waits for an answer, and what is to be saved cannot be: nothing keeps the program.
TEST_P(ProgramEnd, NoBoxKeepsTheProgram) {
    home_.write(kLibrary + QStringLiteral("/Kaputt.stg"), "no group file");
    home_.write("settings", "a file where the folder should be");
    startProgram();
    end(GetParam());
    EXPECT_TRUE(program_.readAllStandardError().contains("settings"));
}

} // namespace
