#include "app/message_box_script.h"
#include "app/patience.h"
#include "app/settings.h"
#include "app/stepped_executor.h"
#include "app/texts.h"
#include "editing/frm_open.h"
#include "picture/picture.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "platform/own_home.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"

#include <QApplication>
#include <QComboBox>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using app::TwipRect;
using editing::frmOpen;

store::TwipSize measure(std::span<const std::byte> bytes) {
    const picture::TwipSize size = picture::measure(bytes).twips;
    return {size.height, size.width};
}

class FrmOpenTest : public testing::Test {
  protected:
    FrmOpenTest() {
        app::setLanguage(app::kGermanLocale);
        app::settings().readPaths();
        QDir().mkpath(home_.at("pictures"));
        app::settings().setDrive("/");
        app::settings().setPath(home_.at("pictures"));
    }

    // A picture file of one colour in the browsed folder.
    void makePicture(const QString& name, const char* format, QSize size = {20, 10},
                     QColor colour = Qt::red) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(home_.at("pictures/" + name), format));
    }

    store::GroupAddress makeGroup() {
        return store::createGroup(library_, std::nullopt, {u"Pumpen"});
    }

    void open(std::optional<store::GroupAddress> group = std::nullopt) {
        window_.load(library_, {std::move(group), "Pumpen"});
        window_.show();
        settle();
    }

    template <typename Control>
    Control* find(const char* name) {
        auto* control = window_.findChild<Control*>(name);
        EXPECT_NE(control, nullptr) << name;
        return control;
    }

    QListWidget* files() { return find<QListWidget>("filDatei"); }
    QTreeWidget* folders() { return find<QTreeWidget>("dirOrdner"); }
    QLineEdit* name() { return find<QLineEdit>("txtName"); }

    QStringList fileNames() {
        QStringList names;
        for (int row = 0; row < files()->count(); ++row) {
            names += files()->item(row)->text();
        }
        return names;
    }

    void pointAt(const QString& fileName) {
        const QList<QListWidgetItem*> items = files()->findItems(fileName, Qt::MatchExactly);
        ASSERT_EQ(items.size(), 1) << fileName.toStdString();
        files()->scrollToItem(items.first());
        QTest::mouseClick(files()->viewport(), Qt::LeftButton, {},
                          files()->visualItemRect(items.first()).center());
    }

    void clickFile(const QString& fileName) {
        pointAt(fileName);
        settle();
    }

    // Waits until the lists show the chosen folder and the preview the chosen file.
    void settle() {
        ASSERT_TRUE(until([this] { return window_.isSettled(); }));
    }

    void press(const char* button) { QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton); }

    void retype(const QString& text) {
        name()->selectAll();
        QTest::keyClick(name(), Qt::Key_Delete);
        QTest::keyClicks(name(), text);
    }

    QByteArray stored(const store::GroupAddress& group, const QString& picture) {
        const auto found = store::readPicture(library_, group, {picture.toStdU16String()});
        return {reinterpret_cast<const char*>(found.bytes.data()),
                static_cast<qsizetype>(found.bytes.size())};
    }

    OwnHome home_;
    store::Library library_{platform::nativeDisk(), makeLibraryFolder(), measure, u'.',
                            std::chrono::milliseconds(0)};
    int refreshed_ = 0;
    int failed_ = 0;
    QStringList taken_;
    frmOpen window_{nullptr,
                    {[this] { ++refreshed_; },
                     [this](const std::exception&) { ++failed_; },
                     {},
                     [this](const editing::TargetGroup&,
                            const std::vector<std::filesystem::path>& files, QWidget*) {
                         taken_.clear();
                         for (const std::filesystem::path& file : files) {
                             taken_.append(platform::fromFilePath(file.filename()));
                         }
                     }}};

  private:
    std::filesystem::path makeLibraryFolder() const {
        QDir().mkpath(home_.at("library"));
        return home_.at("library").toStdString();
    }
};

TEST(PreviewRect, fitsThePictureAndStretchesWideOnes) {
    EXPECT_EQ(editing::previewRect(100, 200), (TwipRect{90, 566.25, 1395, 592.5}));
    EXPECT_EQ(editing::previewRect(200, 100), (TwipRect{491.25, 270, 592.5, 1185}));
    EXPECT_EQ(editing::previewRect(48, 48), (TwipRect{195, 270, 1185, 1185}));
    EXPECT_EQ(editing::previewRect(0, 5), editing::previewRect(5, 5));
}

TEST_F(FrmOpenTest, listsPictureFilesOnly) {
    for (const char* file : {"b.BMP", "A.gif", "c.jpg", "d.wmf", "E.Emf", "f.ico", "g.cur"}) {
        home_.write(QString("pictures/") + file, "");
    }
    for (const char* file : {"x.jpeg", "bmp", "y.bmp.txt", "sub.bmp/z"}) {
        home_.write(QString("pictures/") + file, "");
    }
    ASSERT_EQ(::mkfifo(home_.at("pictures/pipe.bmp").toUtf8().constData(), 0600), 0);
    open();
    EXPECT_EQ(fileNames(),
              (QStringList{"A.gif", "b.BMP", "c.jpg", "d.wmf", "E.Emf", "f.ico", "g.cur"}));
}

TEST_F(FrmOpenTest, showsAClickedPictureAndNamesItUpToTheFirstDot) {
    makePicture("pump.old.bmp", "BMP", {100, 200}, Qt::red);
    makePicture("wide.bmp", "BMP", {200, 100}, Qt::blue);
    open();
    clickFile("pump.old.bmp");
    EXPECT_EQ(name()->text(), "pump");
    auto* preview = find<QWidget>("imgVorschau");
    EXPECT_EQ(preview->geometry(), app::toPixels({491.25, 270, 592.5, 1185}));
    EXPECT_EQ(preview->grab().toImage().pixelColor(preview->rect().center()), QColor(Qt::red));
    QTest::keyClick(files(), Qt::Key_Down);
    settle();
    EXPECT_EQ(name()->text(), "wide");
    EXPECT_EQ(preview->geometry(), app::toPixels({90, 566.25, 1395, 592.5}));
    EXPECT_EQ(preview->grab().toImage().pixelColor(preview->rect().center()), QColor(Qt::blue));
}

// Symbols are drawn in dark lines on nothing.
TEST_F(FrmOpenTest, laysSeeThroughPicturesOnPaperOnADarkDesktop) {
    QImage image(16, 16, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    ASSERT_TRUE(image.save(home_.at("pictures/symbol.ico"), "ICO"));
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(40, 40, 40));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    window_.setPalette(dark);
    open();
    clickFile("symbol.ico");
    auto* preview = find<QWidget>("imgVorschau");
    EXPECT_GT(preview->grab().toImage().pixelColor(preview->rect().center()).lightness(), 200);
}

TEST_F(FrmOpenTest, loadsAHugePicture) {
    QImage image(6000, 6000, QImage::Format_Mono);
    image.fill(1);
    ASSERT_TRUE(image.save(home_.at("pictures/huge.bmp"), "BMP"));
    open();
    MessageBoxScript boxes;
    clickFile("huge.bmp");
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_EQ(name()->text(), "huge");
}

// The name typed before stays, and nothing can be saved until a sound file is chosen.
TEST_F(FrmOpenTest, refusesAFileThatIsNoPicture) {
    makePicture("good.bmp", "BMP");
    home_.write("pictures/bad.bmp", "BM but no picture");
    open(makeGroup());
    clickFile("good.bmp");
    MessageBoxScript boxes;
    clickFile("bad.bmp");
    EXPECT_EQ(boxes.takeText(), "Bild kann nicht geladen werden. Ungültiges Dateiformat.");
    EXPECT_EQ(name()->text(), "good");
    press("cmdOK");
    EXPECT_EQ(boxes.takeText(), "Kein Bild ausgewählt.");
    clickFile("bad.bmp");
    EXPECT_EQ(boxes.takeText(), "Bild kann nicht geladen werden. Ungültiges Dateiformat.");
    clickFile("good.bmp");
    press("cmdOK");
    EXPECT_TRUE(boxes.take().isEmpty());
}

// The user is faster than a large picture.
TEST_F(FrmOpenTest, savesThePictureThatIsBeingLoadedUnderItsOwnName) {
    makePicture("a.bmp", "BMP", {20, 10}, Qt::red);
    makePicture("b.bmp", "BMP", {30, 40}, Qt::green);
    home_.write("pictures/c.bmp", "no picture");
    const store::GroupAddress group = makeGroup();
    open(group);
    clickFile("a.bmp");
    SteppedExecutor workers;
    const app::WorkersReplacement stepped(workers);
    MessageBoxScript boxes;
    pointAt("b.bmp");
    press("cmdOK");
    EXPECT_TRUE(store::listPictures(library_, group).empty());
    workers.stepAll();
    EXPECT_EQ(store::listPictures(library_, group).size(), 1U);
    EXPECT_EQ(stored(group, "b"), home_.read("pictures/b.bmp"));

    pointAt("a.bmp");
    retype("Typed");
    workers.stepAll();
    EXPECT_EQ(name()->text(), "Typed");
    pointAt("c.bmp");
    press("cmdOK");
    workers.stepAll();
    EXPECT_EQ(boxes.takeText(), "Bild kann nicht geladen werden. Ungültiges Dateiformat.");
    EXPECT_EQ(store::listPictures(library_, group).size(), 1U);
}

TEST_F(FrmOpenTest, showsOnlyTheFileChosenLastAndTellsNothingOnceItIsClosed) {
    makePicture("a.bmp", "BMP", {20, 10}, Qt::red);
    makePicture("b.bmp", "BMP", {30, 40}, Qt::green);
    home_.write("pictures/c.bmp", "no picture");
    open(makeGroup());
    SteppedExecutor workers;
    const app::WorkersReplacement stepped(workers);
    MessageBoxScript boxes;
    pointAt("c.bmp");
    pointAt("a.bmp");
    pointAt("b.bmp");
    workers.stepAll();
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_EQ(name()->text(), "b");
    pointAt("c.bmp");
    press("cmdAbbruch");
    workers.stepAll();
    EXPECT_TRUE(boxes.take().isEmpty());
}

TEST_F(FrmOpenTest, checksTheNameInOrder) {
    makePicture("a.bmp", "BMP");
    const store::GroupAddress group = makeGroup();
    open(group);
    MessageBoxScript boxes;
    press("cmdOK");
    EXPECT_EQ(boxes.takeText(), "Kein Bild ausgewählt.");
    clickFile("a.bmp");
    const QList<std::pair<QString, QString>> cases{
        {"- Kein Bild -", "Ungültiger Bildname."},
        {"", "Es wurde kein Name für das Bild angegeben."},
        {"Name", "Ungültiger Bildname."},
        {"PARENT", "Ungültiger Bildname."},
        {"a/b", "Ungültiger Bildname."},
        {"12345678901234567890123456789012", "Ungültiger Bildname."},
    };
    for (const auto& [typed, message] : cases) {
        retype(typed);
        press("cmdOK");
        const auto shown = boxes.take();
        ASSERT_EQ(shown.size(), 1) << typed.toStdString();
        EXPECT_EQ(shown.first().text, message) << typed.toStdString();
        EXPECT_EQ(shown.first().title, "Bild hinzufügen");
    }
    EXPECT_TRUE(store::listPictures(library_, group).empty());
    EXPECT_EQ(store::readGroupName(library_, group).text, u"Pumpen");
}

TEST_F(FrmOpenTest, refusesTheNoPictureTextOfItsOwnLanguageOnly) {
    makePicture("a.bmp", "BMP");
    const store::GroupAddress group = makeGroup();
    app::setLanguage(app::kEnglishLocale);
    open(group);
    clickFile("a.bmp");
    MessageBoxScript boxes;
    retype("- No picture -");
    press("cmdOK");
    EXPECT_EQ(boxes.takeText(), "Invalid picture name.");
    retype("- Kein Bild -");
    press("cmdOK");
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_EQ(store::listPictures(library_, group).size(), 1U);
}

TEST_F(FrmOpenTest, takesSeveralFilesUnderTheirOwnNames) {
    makePicture("a.bmp", "BMP");
    home_.write("pictures/b.bmp", "no picture");
    makePicture("c.bmp", "BMP");
    open(makeGroup());
    clickFile("a.bmp");
    MessageBoxScript boxes;
    QTest::keyClick(files(), Qt::Key_Down, Qt::ShiftModifier);
    settle();
    EXPECT_FALSE(name()->isEnabled());
    EXPECT_EQ(name()->placeholderText(), "2 Dateien");
    press("cmdOK");
    EXPECT_EQ(taken_, QStringList({"a.bmp", "b.bmp"}));
    EXPECT_TRUE(boxes.take().isEmpty()) << "what is no picture is told when it is stored";
    EXPECT_TRUE(window_.isVisible());
    clickFile("c.bmp");
    EXPECT_TRUE(name()->isEnabled());
    EXPECT_EQ(name()->text(), "c");
    QTest::keyClick(files(), Qt::Key_A, Qt::ControlModifier);
    press("cmdOK");
    EXPECT_EQ(taken_, QStringList({"a.bmp", "b.bmp", "c.bmp"}));
}

TEST_F(FrmOpenTest, saysThatThereIsNoGroup) {
    makePicture("a.bmp", "BMP");
    open();
    clickFile("a.bmp");
    MessageBoxScript boxes;
    press("cmdOK");
    EXPECT_EQ(boxes.takeText(), "Keine Gruppe ausgewählt.");
}

TEST_F(FrmOpenTest, storesTheFilesBytesAndAsksBeforeReplacing) {
    makePicture("a.bmp", "BMP", {20, 10}, Qt::red);
    makePicture("b.bmp", "BMP", {30, 40}, Qt::green);
    const store::GroupAddress group = makeGroup();
    open(group);
    MessageBoxScript boxes({app::kAnswerNo, app::kAnswerYes});
    clickFile("a.bmp");
    QTest::keyClick(name(), Qt::Key_Return);
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_TRUE(window_.isVisible());
    EXPECT_EQ(name()->text(), "a");
    EXPECT_EQ(stored(group, "a"), home_.read("pictures/a.bmp"));

    clickFile("b.bmp");
    retype("A"); // names ignore case
    press("cmdOK");
    const auto asked = boxes.take();
    ASSERT_EQ(asked.size(), 1);
    EXPECT_EQ(asked.first().text, "Bild existiert bereits. Überschreiben?");
    EXPECT_EQ(asked.first().buttons, app::Buttons::YesNo);
    EXPECT_EQ(stored(group, "a"), home_.read("pictures/a.bmp"));
    press("cmdOK");
    EXPECT_EQ(stored(group, "a"), home_.read("pictures/b.bmp"));
    EXPECT_EQ(store::listPictures(library_, group).size(), 1U);
    EXPECT_EQ(refreshed_, 0);
}

TEST_F(FrmOpenTest, namesTheGroupFileThatAnotherProgramHolds) {
    makePicture("a.bmp", "BMP");
    const store::GroupAddress group = makeGroup();
    open(group);
    clickFile("a.bmp");
    const auto held = holdLocked(library_.folder / "Pumpen.stg");
    MessageBoxScript boxes;
    press("cmdOK");
    const QString said = boxes.takeText();
    EXPECT_TRUE(said.startsWith("Gruppe: Pumpen\n")) << said.toStdString();
    EXPECT_TRUE(said.contains("Pumpen.stg")) << said.toStdString();
    EXPECT_TRUE(said.contains("anderen Programm")) << said.toStdString();
    EXPECT_EQ(failed_, 1);
}

TEST_F(FrmOpenTest, setsDamagedFilesAsideWhenItOpensButNoLockedOnes) {
    makeGroup();
    home_.write("library/Broken.stg", "no compound file");
    const auto held = holdLocked(library_.folder / "Pumpen.stg");
    open();
    EXPECT_TRUE(QFile::exists(home_.at("library/Broken.err")));
    EXPECT_FALSE(QFile::exists(home_.at("library/Broken.stg")));
    EXPECT_TRUE(QFile::exists(home_.at("library/Pumpen.stg")));
}

TEST_F(FrmOpenTest, refreshesTheMainWindowWhenTheUserGoesBack) {
    open();
    window_.close();
    EXPECT_FALSE(window_.isVisible());
    EXPECT_EQ(refreshed_, 0);
    open();
    press("cmdAbbruch");
    EXPECT_FALSE(window_.isVisible());
    EXPECT_EQ(refreshed_, 1);
    open();
    QTest::keyClick(name(), Qt::Key_Escape);
    EXPECT_FALSE(window_.isVisible());
    EXPECT_EQ(refreshed_, 2);
}

TEST_F(FrmOpenTest, startsAfreshEachTimeInTheFolderOfTheLastTime) {
    makePicture("a.bmp", "BMP");
    home_.write("pictures/below/b.bmp", "");
    open();
    clickFile("a.bmp");
    QTest::keyClick(folders(), Qt::Key_Right);
    settle();
    QTest::keyClick(folders(), Qt::Key_Down);
    settle();
    EXPECT_EQ(app::settings().path(), home_.at("pictures/below"));
    EXPECT_EQ(fileNames(), QStringList{"b.bmp"});
    press("cmdAbbruch");
    home_.write("pictures/below/c.bmp", "");
    open();
    EXPECT_EQ(fileNames(), (QStringList{"b.bmp", "c.bmp"}));
    EXPECT_EQ(name()->text(), "");
    EXPECT_EQ(app::settings().path(), home_.at("pictures/below"));
}

// A folder may take long to read, and the user be faster.
TEST_F(FrmOpenTest, listsTheFolderThatWasChosenLast) {
    home_.write("pictures/a.bmp", "");
    home_.write("root.bmp", "");
    QDir().mkpath(home_.at("Pictures"));
    QDir().mkpath(home_.at("Zulauf"));
    SteppedExecutor workers;
    const app::WorkersReplacement stepped(workers);
    window_.load(library_, {std::nullopt, ""});
    window_.show();
    QTreeWidgetItem* pictures = folders()->currentItem();
    ASSERT_EQ(pictures->text(0), "pictures");
    QTreeWidgetItem* root = pictures->parent();
    folders()->setCurrentItem(root);
    folders()->setCurrentItem(pictures);
    EXPECT_TRUE(fileNames().isEmpty());
    EXPECT_FALSE(window_.isSettled());
    workers.stepLatest();
    EXPECT_EQ(fileNames(), QStringList{"a.bmp"});
    workers.stepAll();
    EXPECT_TRUE(window_.isSettled());
    EXPECT_EQ(fileNames(), QStringList{"a.bmp"});
    QStringList rows;
    for (int row = 0; row < root->childCount(); ++row) {
        rows += root->child(row)->text(0);
    }
    EXPECT_EQ(rows, (QStringList{"library", "Pictures", "pictures", "TalvixStudio", "Zulauf"}));
    EXPECT_EQ(folders()->currentItem(), pictures);
    EXPECT_TRUE(folders()->viewport()->rect().intersects(folders()->visualItemRect(pictures)));
}

TEST_F(FrmOpenTest, keepsTheNamesOfDeepFoldersInSight) {
    const QString deep = home_.at("a/b/c/d/e/f/g/h/i/j/k/l/m/Umwälzpumpen");
    QDir().mkpath(deep);
    QDir().mkpath(home_.at("a/b/c/d/e/f/g/h/i/j/k/l/m/" + QString(90, u'w'))); // a wider column
    app::settings().setPath(deep);
    open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window_));
    QTreeWidgetItem* row = folders()->currentItem();
    ASSERT_EQ(row->text(0), "Umwälzpumpen");
    const QRect shown = folders()->visualItemRect(row);
    EXPECT_GE(shown.left(), folders()->indentation());
    EXPECT_LE(shown.left() + folders()->fontMetrics().horizontalAdvance(row->text(0)),
              folders()->viewport()->width());
    EXPECT_GE(shown.width(), folders()->fontMetrics().horizontalAdvance(row->text(0)));
}

TEST_F(FrmOpenTest, offersToTryAnUnreadableDriveAgain) {
    app::settings().setDrive("/no such drive");
    MessageBoxScript boxes({app::kAnswerRetry, app::kAnswerCancel});
    open();
    const auto shown = boxes.take();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown.last().text, "Laufwerk \"/no such drive\" nicht verfügbar.");
    EXPECT_EQ(shown.last().buttons, app::Buttons::RetryCancel);
    EXPECT_EQ(shown.last().title, "Bild hinzufügen");
    auto* drives = find<QComboBox>("drvDrive");
    EXPECT_EQ(drives->currentText(), "/no such drive");
    EXPECT_EQ(app::settings().drive(), "/no such drive");
    EXPECT_EQ(app::settings().path(), home_.at("pictures"));

    QTest::keyClick(drives, Qt::Key_Home);
    EXPECT_TRUE(boxes.take().isEmpty());
    EXPECT_EQ(app::settings().drive(), "/");
    EXPECT_EQ(app::settings().path(), "/");
}

// An unplugged volume must not cost the user the folder on it.
TEST_F(FrmOpenTest, keepsAFolderThatIsGoneInMind) {
    const QString gone = home_.at("unplugged");
    app::settings().setPath(gone);
    open();
    EXPECT_EQ(app::settings().path(), gone);
}

TEST_F(FrmOpenTest, leadsTheKeyboardThroughAllControlsInReadingOrder) {
    open();
    QApplication::setActiveWindow(&window_);
    QStringList order;
    for (int step = 0; step < 7; ++step) {
        order += QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order, (QStringList{"drvDrive", "dirOrdner", "filDatei", "txtName", "cmdOK",
                                  "cmdAbbruch", "cmdHilfe"}));
    EXPECT_EQ(window_.size(), QSize(476, 325));
}

} // namespace
