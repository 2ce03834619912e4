// The library as another program drives it: through the bus, inside that program's window.
#include "studio/desktop.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTest>

#include <filesystem>
#include <gtest/gtest.h>

namespace {

const QString kName = QStringLiteral("com.noravex.TXSGraphicsLib");
const QString kObject = QStringLiteral("/com/noravex/TXSGraphicsLib/Connect");
const QString kInterface = QStringLiteral("com.noravex.TXSGraphicsLib.Connect");
constexpr QSize kHostSize(900, 640);
constexpr QPoint kFirstGroup(70, 48);
constexpr QPoint kFirstPicture(254, 70);
constexpr QPoint kSecondPicture(318, 70);
constexpr QPoint kNoteInStudio(1120, 302);
constexpr int kCallTimeout = 120'000;

bool isRunning(qint64 process) {
    QFile state(QStringLiteral("/proc/%1/stat").arg(process));
    return state.open(QFile::ReadOnly) && !state.readAll().contains(") Z ");
}

// Another program on the bus.
class Client : public QObject {
    Q_OBJECT

  public:
    Client(const Desktop& desktop, const QString& name)
        : name_(name), bus_(QDBusConnection::connectToBus(desktop.busAddress(), name)) {
        bus_.connect(kName, kObject, kInterface, "PictureSelected", this, SLOT(take(QString)));
    }
    ~Client() override { QDBusConnection::disconnectFromBus(name_); }

    QDBusMessage call(const QString& method, const QVariantList& arguments = {}) {
        QDBusMessage message = QDBusMessage::createMethodCall(kName, kObject, kInterface, method);
        message.setArguments(arguments);
        return send(message);
    }
    QDBusMessage send(const QDBusMessage& message) {
        return bus_.call(message, QDBus::BlockWithGui, kCallTimeout);
    }
    void show(std::uint32_t window) {
        const QDBusMessage answer = call("ShowGraficsLib", {QVariant::fromValue<uint>(window)});
        ASSERT_EQ(answer.type(), QDBusMessage::ReplyMessage) << qPrintable(answer.errorMessage());
    }
    void terminate() {
        const QDBusMessage answer = call("Terminate");
        ASSERT_EQ(answer.type(), QDBusMessage::ReplyMessage) << qPrintable(answer.errorMessage());
    }
    bool isLibraryOnBus() { return bus_.interface()->isServiceRegistered(kName); }
    void startLibrary() { bus_.interface()->startService(kName); }
    qint64 library() { return bus_.interface()->servicePid(kName).value(); }

    QStringList taken;

  private slots:
    void take(const QString& path) { taken.append(path); }

  private:
    QString name_;
    QDBusConnection bus_;
};

class Automation : public testing::Test {
  protected:
    Automation() {
        QDir().mkpath(desktop_.home() + "/settings");
        write("home/settings/machine.conf", "[SOFTWARE\\NORAVEX GmbH\\Talvix\\4.0]\nLCID=1033\n");
        write("home/settings/user.conf",
              "[Software\\NORAVEX GmbH\\GraphicsLib]\nCurrentGroup=Pumps/Pumps\n");
        for (const auto& [name, colour] : {std::pair("A", Qt::red), std::pair("B", Qt::blue)}) {
            QImage image(40, 30, QImage::Format_RGB888);
            image.fill(colour);
            EXPECT_TRUE(image.save(picture(name), "BMP"));
        }
        desktop_.run(TXS_STGTOOL, {"new-group", "Pumps"});
        desktop_.run(TXS_STGTOOL, {"add", "Pumps/Pumps", picture("A"), picture("B")});
    }

    QString picture(const QString& name) const { return desktop_.at(name + ".bmp"); }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(desktop_.at(name));
        EXPECT_TRUE(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
    }
    static QByteArray bytesOf(const QString& path) {
        QFile file(path);
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList strayFolders() const {
        return QDir(desktop_.home() + "/tmp").entryList({"TXSGraphicsLib-*"}, QDir::Dirs);
    }

    bool fills(std::uint32_t host) const {
        const auto children = desktop_.childrenOf(host);
        return children.size() == 1 && desktop_.placeOf(children[0]) == desktop_.placeOf(host);
    }
    // The commands come to life when the pictures have been read.
    bool takeOver(Client& client, std::uint32_t host, QPoint cell) const {
        const qsizetype before = client.taken.size();
        return until([&] {
            desktop_.click(host, cell);
            desktop_.press({"alt+f", "m"});
            if (QTest::qWaitFor([&] { return client.taken.size() > before; }, 2000)) {
                return true;
            }
            desktop_.press({"Escape", "Escape"});
            return false;
        });
    }
    bool openRenaming(std::uint32_t host) const {
        return until([&] {
            desktop_.click(host, kFirstGroup);
            desktop_.press({"F2"});
            return QTest::qWaitFor([&] { return desktop_.windowNamed("Rename group") != 0; }, 2000);
        });
    }

    // Makes a folder of so many pictures, opens the window that makes a group of it, and has it
    // begin. Returns once something of it is on the disk.
    bool beginGroupOfMany(std::uint32_t host, int pictures) const {
        QDir().mkpath(desktop_.at("many"));
        for (int i = 0; i < pictures; ++i) {
            std::filesystem::create_hard_link(
                picture("A").toStdString(),
                desktop_.at(QStringLiteral("many/%1.bmp").arg(i)).toStdString());
        }
        const QString title = "Create group out of directory";
        const bool isOpen = until([&] {
            desktop_.click(host, kFirstGroup);
            desktop_.press({"alt+f", "d"});
            return QTest::qWaitFor([&] { return desktop_.windowNamed(title) != 0; }, 2000);
        });
        if (!isOpen || !until([&] { return desktop_.hasKeyboard(desktop_.windowNamed(title)); })) {
            return false;
        }
        const qint64 before = QFileInfo(groupFile()).size();
        desktop_.press({"Tab", "Tab", "Tab", "N", "Return"});
        return until([&] { return QFileInfo(groupFile()).size() > before; });
    }
    QString groupFile() const {
        return desktop_.home() + "/TalvixStudio/Common/Graphics/Storages/Pumps.stg";
    }

    Desktop desktop_;
    Client client_{desktop_, "client"};
};

TEST_F(Automation, ActivationShowsNothing) {
    client_.startLibrary();
    ASSERT_TRUE(client_.isLibraryOnBus());
    EXPECT_EQ(desktop_.visibleWindowsOf(client_.library()), 0);
    const qint64 library = client_.library();
    client_.terminate();
    EXPECT_TRUE(until([&] { return !isRunning(library); }));
}

TEST_F(Automation, ASecondServerSaysWhyItEnds) {
    client_.startLibrary();
    QProcess second;
    desktop_.start(second, TXS_PROGRAM, {"--automation"}, QProcess::SeparateChannels);
    ASSERT_TRUE(second.waitForFinished(kCallTimeout));
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_TRUE(second.readAllStandardError().contains("belongs to another program"));
}

TEST_F(Automation, TheDocumentationHolds) {
    const QDBusMessage introspect = QDBusMessage::createMethodCall(
        kName, kObject, "org.freedesktop.DBus.Introspectable", "Introspect");
    const QByteArray offered = client_.send(introspect).arguments().value(0).toByteArray();
    for (const QByteArray& line : bytesOf(TXS_DOCS "/" + kInterface + ".xml").split('\n')) {
        const QByteArray element = line.trimmed().replace("/>", "");
        if (element.startsWith("<method") || element.startsWith("<signal") ||
            element.startsWith("<arg")) {
            EXPECT_TRUE(offered.contains(element)) << element.constData();
        }
    }
    const qint64 library = client_.library();
    int calls = 0;
    for (const QByteArray& line : bytesOf(TXS_DOCS "/automation.md").split('\n')) {
        if (line.startsWith("gdbus call")) {
            desktop_.run("sh", {"-c", QString::fromUtf8(line)});
            ++calls;
        }
    }
    EXPECT_EQ(calls, 2);
    EXPECT_TRUE(until([&] { return !isRunning(library); }));
}

TEST_F(Automation, TheLibraryFillsTheClientsWindow) {
    const auto host = desktop_.makeWindow(kHostSize);
    client_.show(host);
    ASSERT_TRUE(until([&] { return fills(host); }));
    const auto window = desktop_.childrenOf(host)[0];

    client_.show(host);
    EXPECT_TRUE(until([&] { return fills(host); }));
    EXPECT_EQ(desktop_.childrenOf(host)[0], window);
    EXPECT_EQ(desktop_.visibleWindowsOf(client_.library()), 1);

    desktop_.resizeWindow(host, {1100, 720});
    EXPECT_TRUE(
        until([&] { return desktop_.placeOf(host).size() == QSize(1100, 720) && fills(host); }));
}

TEST_F(Automation, ASecondClientTakesTheWindowOver) {
    const auto first = desktop_.makeWindow(kHostSize);
    const auto second = desktop_.makeWindow(kHostSize);
    client_.show(first);
    {
        Client other(desktop_, "other");
        other.show(second);
        EXPECT_TRUE(until([&] { return fills(second); }));
        EXPECT_TRUE(desktop_.childrenOf(first).empty());
        desktop_.destroyWindow(first);
        EXPECT_TRUE(takeOver(other, second, kFirstPicture));
    }
    // The client that has shown it last has left the bus.
    EXPECT_TRUE(until([&] { return desktop_.childrenOf(second).empty(); }));
    EXPECT_TRUE(client_.isLibraryOnBus());
    EXPECT_TRUE(until([&] { return strayFolders().isEmpty(); }));
}

TEST_F(Automation, PicturesAreTakenOverAfterAClick) {
    const auto host = desktop_.makeWindow(kHostSize);
    client_.show(host);
    ASSERT_TRUE(takeOver(client_, host, kFirstPicture));
    EXPECT_TRUE(client_.taken[0].endsWith("/CopiedPicture.BMP")) << qPrintable(client_.taken[0]);
    EXPECT_EQ(bytesOf(client_.taken[0]), bytesOf(picture("A")));
    // A slow machine may have taken the first one over twice.
    ASSERT_TRUE(until([&] {
        return takeOver(client_, host, kSecondPicture) &&
               bytesOf(client_.taken.last()) == bytesOf(picture("B"));
    }));
    EXPECT_EQ(client_.taken.last(), client_.taken[0]);
    client_.terminate();
    EXPECT_EQ(strayFolders(), QStringList());
}

TEST_F(Automation, TheKeyboardFollowsClicksBetweenStudioAndLibrary) {
    QProcess studio;
    desktop_.start(studio, TXS_SAMPLE_STUDIO, {"--show"});
    ASSERT_TRUE(until([&] { return desktop_.windowNamed("TXSGraphicsLib") != 0; }));
    const auto library = desktop_.windowNamed("TXSGraphicsLib");
    QByteArray said;
    for (const char* note : {"a", "b"}) {
        ASSERT_TRUE(openRenaming(library));
        ASSERT_TRUE(until([&] {
            desktop_.press({"Escape"});
            return QTest::qWaitFor([&] { return desktop_.windowNamed("Rename group") == 0; }, 2000);
        }));
        // The keys may be faster than the keyboard's way back to the studio.
        EXPECT_TRUE(until([&] {
            desktop_.click(desktop_.windowNamed("Sample studio"), kNoteInStudio);
            desktop_.press({note, "Return"});
            return QTest::qWaitFor(
                [&] {
                    said += studio.readAllStandardOutput();
                    return said.contains(QByteArray("Note: ") + note + '\n');
                },
                2000);
        })) << said.constData();
    }
    studio.terminate();
    studio.waitForFinished();
}

TEST_F(Automation, AKilledStudioTakesTheWindowWithItButNotTheLibrary) {
    qint64 library = 0;
    for (const bool isDialogOpen : {false, true}) {
        QProcess studio;
        desktop_.start(studio, TXS_SAMPLE_STUDIO, {"--show"});
        ASSERT_TRUE(until([&] { return desktop_.windowNamed("TXSGraphicsLib") != 0; }));
        const auto window = desktop_.windowNamed("TXSGraphicsLib");
        if (library != 0) {
            EXPECT_EQ(client_.library(), library);
        }
        library = client_.library();
        ASSERT_TRUE(takeOver(client_, window, kFirstPicture));
        if (isDialogOpen) {
            ASSERT_TRUE(openRenaming(window));
        }
        studio.kill();
        studio.waitForFinished();
        EXPECT_TRUE(until([&] { return desktop_.visibleWindowsOf(library) == 0; }));
        EXPECT_TRUE(until([&] { return strayFolders().isEmpty(); }));
        EXPECT_TRUE(isRunning(library));
    }
    const auto host = desktop_.makeWindow(kHostSize);
    client_.show(host);
    EXPECT_TRUE(until([&] { return fills(host); }));
    EXPECT_EQ(client_.library(), library);
}

TEST_F(Automation, TerminateEndsTheProgramUnderAnOpenDialog) {
    const auto host = desktop_.makeWindow(kHostSize);
    client_.show(host);
    ASSERT_TRUE(openRenaming(host));
    const qint64 library = client_.library();
    client_.terminate();
    EXPECT_TRUE(until([&] { return !isRunning(library); }));
    EXPECT_EQ(strayFolders(), QStringList());
    const QByteArray settings = bytesOf(desktop_.home() + "/settings/user.conf");
    EXPECT_TRUE(settings.contains("CurrentGroup=Pumps/Pumps")) << settings.constData();
    EXPECT_TRUE(settings.contains("Drive=")) << settings.constData();
}

TEST_F(Automation, TerminateDuringALongRunLeavesAllOrNothingOfIt) {
    constexpr int kPictures = 20'000; // seconds of work
    write("home/settings/user.conf", "[Software\\NORAVEX GmbH\\GraphicsLib]\n"
                                     "CurrentGroup=Pumps/Pumps\nDrive=/\nPath=" +
                                         desktop_.at("many").toUtf8() + '\n');
    const QByteArray before = desktop_.run(TXS_STGTOOL, {"groups"});
    const auto host = desktop_.makeWindow(kHostSize);
    client_.show(host);
    ASSERT_TRUE(beginGroupOfMany(host, kPictures));
    const qint64 library = client_.library();
    client_.terminate();
    EXPECT_TRUE(until([&] { return !isRunning(library); }));
    const QByteArray groups = desktop_.run(TXS_STGTOOL, {"groups"});
    const QByteArray whole = "N\tPumps/Pumps\t" + QByteArray::number(kPictures);
    EXPECT_TRUE(groups == before || groups.contains(whole)) << groups.constData();
    desktop_.run(TXS_STGTOOL, {"check", groupFile()});
    EXPECT_EQ(QFileInfo(groupFile()).dir().entryList(QDir::Files | QDir::Hidden),
              QStringList{"Pumps.stg"});
    EXPECT_EQ(strayFolders(), QStringList());
}

TEST_F(Automation, WithoutAUsableWindowTheLibraryIsAnOrdinaryOne) {
    const auto destroyed = desktop_.makeWindow(kHostSize);
    desktop_.destroyWindow(destroyed);
    for (const std::uint32_t handle : {0U, destroyed, 0xffffffffU}) {
        client_.show(handle);
        ASSERT_TRUE(until([&] { return desktop_.windowNamed("TXSGraphicsLib") != 0; })) << handle;
    }
    // Its close box ends the window alone.
    const qint64 library = client_.library();
    desktop_.click(desktop_.windowNamed("TXSGraphicsLib"), {300, 300});
    desktop_.press({"alt+F4"});
    EXPECT_TRUE(until([&] { return desktop_.visibleWindowsOf(library) == 0; }));
    const auto host = desktop_.makeWindow(kHostSize);
    client_.show(host);
    EXPECT_TRUE(until([&] { return fills(host); }));
    EXPECT_EQ(client_.library(), library);
}

TEST_F(Automation, WithoutABusTheProgramEnds) {
    client_.show(desktop_.makeWindow(kHostSize));
    const qint64 library = client_.library();
    desktop_.killBus();
    EXPECT_TRUE(until([&] { return !isRunning(library); }));
}

TEST_F(Automation, ManyRunsLeaveNothingBehind) {
    constexpr int kRuns = 8;
    const auto host = desktop_.makeWindow(kHostSize);
    for (int i = 0; i < kRuns; ++i) {
        client_.show(host);
        const qint64 library = client_.library();
        client_.terminate();
        EXPECT_TRUE(until([&] { return !isRunning(library); }));
        EXPECT_EQ(strayFolders(), QStringList());
        EXPECT_TRUE(until([&] { return desktop_.childrenOf(host).empty(); }));
    }
}

} // namespace

#include "automation_test.moc"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
