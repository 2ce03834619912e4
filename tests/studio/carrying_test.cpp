// Pictures between the library and another program: by drag and drop, and by the clipboard.
#include "studio/desktop.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>
#include <optional>

namespace {

constexpr QPoint kFirstGroup(70, 48);
constexpr QPoint kSecondGroup(70, 68);
constexpr QPoint kFirstPicture(254, 70);
constexpr QPoint kSecondPicture(318, 70);
constexpr QPoint kAmongPictures(600, 400);
constexpr QPoint kNeighboursMiddle(150, 100);

class Neighbour {
  public:
    explicit Neighbour(const Desktop& desktop) : desktop_(desktop) {
        desktop.start(process_, TXS_NEIGHBOUR, {});
        EXPECT_TRUE(until([this] { return window() != 0; }));
    }
    ~Neighbour() {
        process_.kill();
        process_.waitForFinished();
    }
    Neighbour(const Neighbour&) = delete;
    Neighbour& operator=(const Neighbour&) = delete;

    std::uint32_t window() const { return desktop_.windowNamed("Neighbour"); }
    bool isAlive() const { return process_.state() == QProcess::Running; }

    // Tells it to do something and gives what it says next.
    QString told(const QString& line) {
        lines_.clear();
        process_.write(line.toUtf8() + '\n');
        EXPECT_TRUE(until([this] { return !lines().isEmpty(); })) << line.toStdString();
        return lines_.value(0);
    }
    void forgetWhatItSaid() {
        lines();
        lines_.clear();
    }
    const QStringList& lines() {
        while (process_.canReadLine()) {
            lines_.append(QString::fromUtf8(process_.readLine()).trimmed());
        }
        return lines_;
    }

  private:
    const Desktop& desktop_;
    QProcess process_;
    QStringList lines_;
};

class Carrying : public testing::Test {
  protected:
    Carrying() {
        QDir().mkpath(desktop_.home() + "/settings");
        write("home/settings/machine.conf", "[SOFTWARE\\NORAVEX GmbH\\Talvix\\4.0]\nLCID=1033\n");
        write("home/settings/user.conf",
              "[Software\\NORAVEX GmbH\\GraphicsLib]\nCurrentGroup=Pumps/Pumps\n");
        for (const auto& [name, colour] : {std::pair("A", Qt::red), std::pair("B", Qt::blue),
                                           std::pair("C", Qt::green), std::pair("D", Qt::cyan)}) {
            QImage image(40, 30, QImage::Format_RGB888);
            image.fill(colour);
            EXPECT_TRUE(image.save(picture(name), "BMP"));
        }
        for (const char* group : {"Pumps", "Tanks"}) {
            desktop_.run(TXS_STGTOOL, {"new-group", group});
        }
        desktop_.run(TXS_STGTOOL, {"add", "Pumps/Pumps", picture("A"), picture("B")});
        desktop_.start(library_, TXS_PROGRAM, {});
        EXPECT_TRUE(until([this] { return window() != 0; }));
        neighbour_.emplace(desktop_);
    }
    ~Carrying() override {
        library_.kill();
        library_.waitForFinished();
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

    std::uint32_t window() const { return desktop_.windowNamed("TXSGraphicsLib"); }

    // A command comes to nothing while the program still reads; then it is given once more.
    bool repeatedUntil(const std::function<bool()>& condition, const std::function<void()>& act) {
        return until([&] {
            act();
            return QTest::qWaitFor(condition, 2000);
        });
    }

    // Whether the group holds a picture of that name.
    bool holds(const QString& group, const QString& name) const {
        QProcess tool; // which may find the group locked
        desktop_.start(tool, TXS_STGTOOL, {"pictures", group}, QProcess::SeparateChannels);
        EXPECT_TRUE(tool.waitForFinished(-1));
        return tool.readAllStandardOutput().contains(name.toUtf8() + '\t');
    }

    // Comes to nothing when it ends before there is something to carry, or before the goal was
    // asked whether it takes that: every one is slower than the one before.
    void drag(std::uint32_t from, QPoint taken, std::uint32_t to, QPoint place) {
        moves_ *= 2;
        desktop_.point(from, taken);
        desktop_.hold();
        desktop_.point(from, taken + QPoint(30, 0));
        for (int i = 0; i < moves_; ++i) {
            desktop_.point(to, place + QPoint(i % 2, 0));
        }
        desktop_.letGo();
    }

    void dropFromNeighbour(QPoint place) {
        neighbour_->forgetWhatItSaid();
        const auto isTaken = [this] {
            return !neighbour_->isAlive() || neighbour_->lines().contains("drag ended 1");
        };
        EXPECT_TRUE(repeatedUntil(
            isTaken, [&] { drag(neighbour_->window(), kNeighboursMiddle, window(), place); }));
    }

    Desktop desktop_;
    QProcess library_;
    std::optional<Neighbour> neighbour_;
    int moves_ = 10;
};

TEST_F(Carrying, FilesOfAnotherProgramAreDroppedOnPicturesAndGroups) {
    EXPECT_EQ(neighbour_->told("offer files " + picture("C") + '|' + picture("D")), "ready");
    dropFromNeighbour(kAmongPictures);
    EXPECT_TRUE(until([this] { return holds("Pumps/Pumps", "D"); }));
    EXPECT_TRUE(holds("Pumps/Pumps", "C"));
    dropFromNeighbour(kSecondGroup);
    EXPECT_TRUE(until([this] { return holds("Tanks/Tanks", "D"); }));
}

TEST_F(Carrying, PicturesAreDraggedToAnotherProgramAsTheirFiles) {
    const auto isDropped = [this] {
        const auto lines = neighbour_->lines().filter("dropped");
        return lines.isEmpty() ? QString() : lines.first();
    };
    EXPECT_TRUE(repeatedUntil([&] { return isDropped().contains(u'|'); },
                              [&] {
                                  neighbour_->forgetWhatItSaid();
                                  desktop_.click(window(), kSecondPicture); // no double click
                                  desktop_.press({"ctrl+a"});
                                  drag(window(), kFirstPicture, neighbour_->window(),
                                       kNeighboursMiddle);
                              }));
    const QStringList files = isDropped().section(u' ', 1).split(u'|');
    ASSERT_EQ(files.size(), 2) << isDropped().toStdString();
    for (qsizetype i = 0; i < files.size(); ++i) {
        EXPECT_TRUE(files[i].endsWith(i == 0 ? "/A.BMP" : "/B.BMP")) << files[i].toStdString();
        EXPECT_EQ(bytesOf(files[i]), bytesOf(picture(i == 0 ? "A" : "B")));
    }
    EXPECT_TRUE(holds("Pumps/Pumps", "A")) << "they are copies";
}

TEST_F(Carrying, TheClipboardCarriesBothWays) {
    QString pasted;
    EXPECT_TRUE(repeatedUntil(
        [&] {
            pasted = neighbour_->told("paste");
            return pasted.endsWith("/B.BMP and 40x30");
        },
        [this] {
            desktop_.click(window(), kSecondPicture);
            desktop_.press({"ctrl+c"});
        }))
        << pasted.toStdString();
    EXPECT_EQ(bytesOf(pasted.section(u' ', 1, 1)), bytesOf(picture("B")));

    neighbour_->told("offer image");
    EXPECT_EQ(neighbour_->told("copy"), "copied");
    desktop_.click(window(), kFirstGroup);
    desktop_.press({"ctrl+v"});
    EXPECT_TRUE(until([this] { return holds("Pumps/Pumps", "Picture"); }));
    desktop_.run(TXS_STGTOOL, {"extract", "Pumps/Pumps", "Picture", desktop_.at("taken.bmp")});
    EXPECT_EQ(QImage(desktop_.at("taken.bmp")).pixelColor(1, 1), QColor(10, 20, 30, 40));
}

// The window says so and goes on.
TEST_F(Carrying, AProgramDiesWithWhatItHasPromised) {
    neighbour_->told("offer death");
    dropFromNeighbour(kAmongPictures);
    EXPECT_TRUE(until([this] { return !neighbour_->isAlive(); }));
    EXPECT_TRUE(until([this] { return desktop_.visibleWindowsOf(library_.processId()) == 2; }));
    desktop_.press({"Escape"});
    EXPECT_TRUE(until([this] { return desktop_.visibleWindowsOf(library_.processId()) == 1; }));

    neighbour_.emplace(desktop_);
    neighbour_->told("offer files " + picture("C"));
    neighbour_->told("copy");
    desktop_.click(window(), kFirstGroup);
    desktop_.press({"ctrl+v"});
    EXPECT_TRUE(until([this] { return holds("Pumps/Pumps", "C"); }));
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
