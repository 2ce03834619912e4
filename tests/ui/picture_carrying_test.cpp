// Pictures dragged, dropped, copied and pasted, and what can be taken back of it.
#include "app/message_box.h"
#include "browser/drag_image.h"
#include "commands/picture_transfer.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTreeWidget>
#include <QUrl>

#include <sys/stat.h>

namespace {

class PictureCarrying : public MainWindowTest {
  protected:
    PictureCarrying() {
        pumps_ = makeGroup("Pumpen");
        tanks_ = makeGroup("Tanks");
        addPicture(pumps_, "P1", Qt::red);
        addPicture(pumps_, "P2", Qt::green);
        addPicture(tanks_, "P2", Qt::blue);
        start();
        clickNode("Pumpen");
    }

    QStringList stored(const store::GroupAddress& group) {
        QStringList names;
        for (const auto& picture : store::listPictures(library(), group)) {
            names.append(QString::fromStdU16String(picture.name.text));
        }
        return names;
    }

    QImage imageOf(const store::GroupAddress& group, const char16_t* name) {
        const auto bytes = store::readPicture(library(), group, {name}).bytes;
        return QImage::fromData(reinterpret_cast<const uchar*>(bytes.data()), int(bytes.size()));
    }

    QColor colourOf(const store::GroupAddress& group, const char16_t* name) {
        return imageOf(group, name).pixelColor(1, 1);
    }

    // Drops the data as another program would.
    void drop(QWidget* widget, const QPoint& position, const QMimeData& data,
              Qt::KeyboardModifiers modifiers = {}) {
        QDragEnterEvent enter(position, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                              modifiers);
        QCoreApplication::sendEvent(widget, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDragMoveEvent move(position, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                            modifiers);
        QCoreApplication::sendEvent(widget, &move);
        EXPECT_TRUE(move.isAccepted());
        QDropEvent event(position, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                         modifiers);
        QCoreApplication::sendEvent(widget, &event);
        EXPECT_TRUE(event.isAccepted());
        QCoreApplication::processEvents(); // it is taken once the drop is over
        settle();
    }

    void dropOnPictures(const QMimeData& data) {
        auto* strip = find<QWidget>("shpVorschau");
        drop(strip, strip->rect().center(), data);
    }

    void dropOnNode(const QString& path, const QMimeData& data,
                    Qt::KeyboardModifiers modifiers = {}) {
        drop(tree()->viewport(), tree()->visualItemRect(node(path)).center(), data, modifiers);
    }

    static void offer(QMimeData& data, const QStringList& files) {
        QList<QUrl> urls;
        for (const QString& file : files) {
            urls.append(QUrl::fromLocalFile(file));
        }
        data.setUrls(urls);
    }

    QString imageFile(const QString& name, const QColor& colour, const char* format) {
        QImage image(8, 6, QImage::Format_ARGB32);
        image.fill(colour);
        EXPECT_TRUE(image.save(home_.at(name), format));
        return home_.at(name);
    }

    // What the window about a run says.
    QString summaryOf(const std::function<void()>& run) {
        QString text;
        inDialog(run, [&](QDialog& dialog) {
            EXPECT_EQ(dialog.objectName(), "frmAusgelassen");
            text = dialog.findChild<QPlainTextEdit*>()->toPlainText();
        });
        return text;
    }

    void answerTaken(const std::function<void()>& run, const char* button, bool forAll = false) {
        inDialog(run, [&](QDialog& dialog) {
            ASSERT_EQ(dialog.objectName(), "frmVorhanden");
            EXPECT_TRUE(dialog.findChild<QPushButton*>("cmdBeide")->isDefault()) << "for Enter";
            if (forAll) {
                dialog.findChild<QAbstractButton*>("chkAlle")->click();
            }
            dialog.findChild<QPushButton*>(button)->click();
        });
    }

    void click(const QString& name, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(thumbnail(name), Qt::LeftButton, modifiers);
        settle();
    }

    store::GroupAddress pumps_;
    store::GroupAddress tanks_;
};

TEST_F(PictureCarrying, FilesComeInByDropAndTellWhatIsWrongWithThem) {
    ASSERT_TRUE(QDir().mkdir(home_.at("folder.bmp")));
    ASSERT_EQ(::mkfifo(home_.at("pipe.bmp").toLocal8Bit().constData(), 0600), 0);
    home_.write("broken.bmp", "BM, and no more");
    home_.write("text.txt", "no picture");
    const QString longName(40, 'x');
    QMimeData data;
    offer(data,
          {imageFile("Neu.bmp", Qt::yellow, "BMP"), home_.at("folder.bmp"), home_.at("pipe.bmp"),
           home_.at("broken.bmp"), home_.at("text.txt"), home_.at("gone.bmp"),
           imageFile(longName + ".bmp", Qt::cyan, "BMP"), imageFile("name.bmp", Qt::cyan, "BMP")});
    data.setUrls(data.urls() << QUrl("https://example.org/a.bmp"));
    const QString summary = summaryOf([&] { dropOnPictures(data); });
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2", "Neu", "name_", QString(31, 'x')}));
    for (const char* file : {"folder.bmp", "pipe.bmp", "broken.bmp", "text.txt", "gone.bmp",
                             "https://example.org/a.bmp"}) {
        EXPECT_EQ(summary.count(QLatin1String(file)), 1) << file << "\n" << summary.toStdString();
    }
    EXPECT_TRUE(summary.contains("\nDas ist ein Ordner und kein Bild."));
    EXPECT_TRUE(summary.contains("\nDas ist eine Pipe oder ein Gerät und keine Datei."));
    EXPECT_TRUE(summary.contains('"' + longName + "\" heißt jetzt \"" + QString(31, 'x') + '"'));
    EXPECT_EQ(label(), "Neu");
    EXPECT_EQ(window().selectedPictures().size(), 3U);
    EXPECT_EQ(boxes_.take().size(), 0);
}

TEST_F(PictureCarrying, TakenNamesAreAskedOnceAndOtherTypesBecomeBmp) {
    QMimeData data;
    offer(data, {imageFile("P1.bmp", Qt::yellow, "BMP"), imageFile("P2.bmp", Qt::yellow, "BMP")});
    answerTaken([&] { dropOnPictures(data); }, "cmdAbbruch");
    answerTaken([&] { dropOnPictures(data); }, "cmdUeberspringen", true);
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2"}));
    EXPECT_EQ(colourOf(pumps_, u"P1"), QColor(Qt::red));
    answerTaken([&] { dropOnPictures(data); }, "cmdErsetzen", true);
    EXPECT_EQ(colourOf(pumps_, u"P2"), QColor(Qt::yellow));
    answerTaken([&] { dropOnPictures(data); }, "cmdBeide", true);
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2", "P1 (2)", "P2 (2)"}));

    const QColor glass(10, 20, 30, 40);
    offer(data, {imageFile("Glas.png", glass, "PNG")});
    boxes_.take();
    {
        MessageBoxScript no({}, app::kAnswerNo);
        dropOnNode("Tanks", data);
        EXPECT_TRUE(no.takeText().contains("PNG"));
        EXPECT_EQ(stored(tanks_), QStringList("P2"));
    }
    MessageBoxScript yes({}, app::kAnswerYes);
    dropOnNode("Tanks", data);
    EXPECT_EQ(stored(tanks_), QStringList({"P2", "Glas"}));
    EXPECT_EQ(store::readPictureType(library(), tanks_, {u"Glas"}), "BMP");
    EXPECT_EQ(colourOf(tanks_, u"Glas"), glass);
    EXPECT_EQ(selectedNode(), "Pumpen") << "the drop goes elsewhere, the user stays";
    yes.take();

    // An image without a file; and another program that has died with what it offered.
    QMimeData image;
    QImage pixels(3, 2, QImage::Format_ARGB32);
    pixels.fill(glass);
    image.setImageData(pixels);
    dropOnPictures(image);
    EXPECT_EQ(colourOf(pumps_, u"Bild"), glass);
    QMimeData dead;
    dead.setData("text/uri-list", {});
    EXPECT_FALSE(summaryOf([&] { dropOnPictures(dead); }).isEmpty());
    EXPECT_EQ(stored(pumps_).size(), 5);
}

TEST_F(PictureCarrying, OtherTypesAreAskedForOnceAndDrawingsForTheirSize) {
    const QColor glass(10, 20, 30, 40);
    home_.write("Kreis.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="40" height="20">)"
                             R"(<rect width="40" height="20" fill="#0000ff"/></svg>)");
    QMimeData data;
    offer(data, {imageFile("Web.webp", glass, "WEBP"), imageFile("Scan.tif", Qt::magenta, "TIFF"),
                 home_.at("Kreis.svg")});
    MessageBoxScript yes({}, app::kAnswerYes);
    inDialog([&] { dropOnPictures(data); },
             [](QDialog& dialog) {
                 EXPECT_EQ(dialog.objectName(), "frmGroesse");
                 auto* side = dialog.findChild<QSpinBox*>("spnSeite");
                 EXPECT_EQ(side->value(), 40);
                 QTest::keyClicks(side, "100");
                 dialog.findChild<QPushButton*>("cmdOK")->click();
             });
    EXPECT_EQ(yes.takeText(), "3 Bilder haben Typen, die die Bibliothek nicht kennt "
                              "(WEBP, TIFF, SVG). Sollen sie als BMP mit Transparenz aufgenommen "
                              "werden?");
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2", "Web", "Scan", "Kreis"}));
    EXPECT_EQ(colourOf(pumps_, u"Web").alpha(), 40);
    EXPECT_EQ(colourOf(pumps_, u"Scan"), QColor(Qt::magenta));
    EXPECT_EQ(imageOf(pumps_, u"Kreis").size(), QSize(100, 50));
    EXPECT_EQ(colourOf(pumps_, u"Kreis"), QColor(Qt::blue));
    inDialog([&] { dropOnNode("Tanks", data); },
             [](QDialog& dialog) { dialog.findChild<QPushButton*>("cmdAbbruch")->click(); });
    EXPECT_EQ(stored(tanks_), QStringList("P2")) << "nothing of it was wanted";
}

TEST_F(PictureCarrying, CopiedPicturesAreFilesForOthersAndPicturesForUs) {
    click("P1");
    click("P2", Qt::ControlModifier);
    trigger("Men_Bearbeiten_13");
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    QStringList files;
    for (const QUrl& url : data->urls()) {
        files.append(QFileInfo(url.toLocalFile()).fileName());
        EXPECT_TRUE(QFile::exists(url.toLocalFile()));
    }
    EXPECT_EQ(files, QStringList({"P1.BMP", "P2.BMP"}));
    EXPECT_FALSE(data->hasImage()) << "of which one?";
    trigger("Men_Bearbeiten_14"); // beside themselves
    settle();
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2", "P1 (2)", "P2 (2)"}));
    EXPECT_EQ(window().selectedPictures().size(), 2U);
    clickNode("Tanks");
    answerTaken([&] { trigger("Men_Bearbeiten_14"); }, "cmdBeide");
    EXPECT_EQ(stored(tanks_), QStringList({"P1", "P2", "P2 (2)"}));
    EXPECT_EQ(colourOf(tanks_, u"P2 (2)"), QColor(Qt::green));
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());

    clickNode("Pumpen");
    click("P1");
    trigger("Men_Bearbeiten_12");
    EXPECT_EQ(stored(pumps_).size(), 4) << "nothing has gone yet";
    clickNode("Tanks");
    answerTaken([&] { trigger("Men_Bearbeiten_14"); }, "cmdBeide");
    EXPECT_EQ(stored(pumps_), QStringList({"P2", "P1 (2)", "P2 (2)"}));
    EXPECT_EQ(stored(tanks_), QStringList({"P1", "P2", "P1 (2)", "P2 (2)"}));
    trigger("Men_Bearbeiten_14"); // they cannot be moved twice
    EXPECT_EQ(stored(tanks_).size(), 4);
    trigger("Men_Bearbeiten_11");
    settle();
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2", "P1 (2)", "P2 (2)"}));
    EXPECT_EQ(stored(tanks_), QStringList({"P1", "P2", "P2 (2)"}));
    EXPECT_EQ(selectedNode(), "Pumpen");
    EXPECT_EQ(label(), "P1");
}

TEST_F(PictureCarrying, ShiftMovesWhatAnotherWindowOfTheLibraryDrags) {
    click("P1");
    trigger("Men_Bearbeiten_13");
    QMimeData data;
    for (const QString& format : QGuiApplication::clipboard()->mimeData()->formats()) {
        data.setData(format, QGuiApplication::clipboard()->mimeData()->data(format));
    }
    dropOnNode("Tanks", data);
    EXPECT_EQ(stored(tanks_), QStringList({"P1", "P2"}));
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2"}));
    answerTaken([&] { dropOnNode("Tanks", data, Qt::ShiftModifier); }, "cmdBeide");
    EXPECT_EQ(stored(tanks_), QStringList({"P1", "P2", "P1 (2)"}));
    EXPECT_EQ(stored(pumps_), QStringList("P2"));
}

TEST_F(PictureCarrying, WhatWasCutCanBePastedUntilSomethingWasMoved) {
    click("P2");
    trigger("Men_Bearbeiten_12");
    trigger("Men_Bearbeiten_14"); // where it is
    clickNode("Tanks");
    answerTaken([&] { trigger("Men_Bearbeiten_14"); }, "cmdAbbruch");
    answerTaken([&] { trigger("Men_Bearbeiten_14"); }, "cmdUeberspringen");
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2"}));
    answerTaken([&] { trigger("Men_Bearbeiten_14"); }, "cmdBeide");
    EXPECT_EQ(stored(pumps_), QStringList({"P1"}));
    EXPECT_EQ(stored(tanks_), QStringList({"P2", "P2 (2)"}));
    trigger("Men_Bearbeiten_14");
    EXPECT_EQ(stored(tanks_).size(), 2);
}

TEST_F(PictureCarrying, WhatIsSelectedAmongTheFoundIsCopiedAndNotWhatIsHidden) {
    addPicture(tanks_, "Kessel", Qt::yellow);
    makeGroup("Kesselhaus");
    click("P1");
    window().activateWindow();
    auto* field = find<QLineEdit>("txtFind");
    auto* found = find<QListView>("lvwFind");
    QTest::keyClick(&window(), Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(field, "kessel");
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window().isFinding(); }, 20000));
    QTest::keyClick(field, Qt::Key_Down); // a group, the picture follows
    ASSERT_EQ(found->currentIndex().data(Qt::AccessibleTextRole), "Kesselhaus, Kesselhaus");
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_12")->isEnabled());
    QTest::keyClick(found, Qt::Key_Right);
    ASSERT_EQ(found->currentIndex().data(Qt::AccessibleTextRole), "Kessel, Tanks");
    QTest::keyClick(found, Qt::Key_X, Qt::ControlModifier);
    settle();
    QTest::keyClick(found, Qt::Key_V, Qt::ControlModifier);
    settle();
    EXPECT_FALSE(found->isVisible());
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2", "Kessel"}));
    EXPECT_EQ(colourOf(pumps_, u"Kessel"), QColor(Qt::yellow));
    EXPECT_EQ(stored(tanks_), QStringList("P2"));
    EXPECT_EQ(label(), "Kessel");
    trigger("Men_Bearbeiten_11");
    settle();
    EXPECT_EQ(stored(tanks_), QStringList({"P2", "Kessel"}));
}

TEST_F(PictureCarrying, WhatWasReplacedComesBack) {
    addPicture(pumps_, "P3");
    clickNode("Tanks");
    clickNode("Pumpen");
    click("P2");
    trigger("Men_Bearbeiten_12");
    clickNode("Tanks");
    answerTaken([&] { trigger("Men_Bearbeiten_14"); }, "cmdErsetzen");
    EXPECT_EQ(colourOf(tanks_, u"P2"), QColor(Qt::green));
    trigger("Men_Bearbeiten_11");
    settle();
    EXPECT_EQ(colourOf(tanks_, u"P2"), QColor(Qt::blue));
    EXPECT_EQ(colourOf(pumps_, u"P2"), QColor(Qt::green));

    QMimeData data;
    offer(data, {imageFile("P1.bmp", Qt::yellow, "BMP"), imageFile("P4.bmp", Qt::yellow, "BMP")});
    clickNode("Pumpen");
    answerTaken([&] { dropOnPictures(data); }, "cmdErsetzen");
    EXPECT_EQ(colourOf(pumps_, u"P1"), QColor(Qt::yellow));
    trigger("Men_Bearbeiten_11");
    settle();
    EXPECT_EQ(colourOf(pumps_, u"P1"), QColor(Qt::red));
    EXPECT_EQ(label(), "P1");
    EXPECT_TRUE(stored(pumps_).contains("P4"));
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());
}

// As after a deletion.
TEST_F(PictureCarrying, WhatIsMovedAwayLeavesTheNextOneCurrent) {
    addPicture(pumps_, "P3");
    clickNode("Tanks");
    clickNode("Pumpen");
    click("P2");
    const commands::PicturesOfGroup moved{pumps_, window().selectedPictures()};
    answerTaken(
        [&] {
            commands::transferPictures(window(), moved, {tanks_, "Tanks"},
                                       store::PassageKind::Move);
        },
        "cmdBeide");
    settle();
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P3"}));
    EXPECT_EQ(label(), "P3");
}

TEST_F(PictureCarrying, RenamingsAndDeletedGroupsAreTakenBack) {
    const auto rotary = makeGroup("Kreisel", pumps_);
    addPicture(rotary, "Rad");
    makeGroup("Stahl", rotary);
    window().FillTreeView();
    clickNode("Pumpen");
    inDialog([&] { trigger("bRename"); },
             [](QDialog& dialog) {
                 dialog.findChild<QLineEdit*>("txtName")->setText("Anders");
                 dialog.findChild<QPushButton*>("cmdOK")->click();
             });
    EXPECT_EQ(stored(pumps_), QStringList({"P2", "Anders"}));
    MessageBoxScript yes({}, app::kAnswerYes);
    clickNode("Pumpen/Kreisel/Stahl");
    trigger("gDelete");
    EXPECT_FALSE(yes.takeText().contains("ntergruppe"));
    clickNode("Pumpen");
    trigger("gDelete");
    EXPECT_TRUE(yes.takeText().endsWith("wirklich löschen?\n\nIhre Untergruppe wird mitgelöscht."));
    EXPECT_EQ(node("Pumpen"), nullptr);
    EXPECT_EQ(QDir(home_.at("trash")).entryList(QDir::Files),
              QStringList({"Pumpen.stg", "Stahl.stg"}));
    trigger("Men_Bearbeiten_11");
    EXPECT_EQ(selectedNode(), "Pumpen");
    EXPECT_EQ(stored(rotary), QStringList("Rad"));
    trigger("Men_Bearbeiten_11");
    EXPECT_NE(node("Pumpen/Kreisel/Stahl"), nullptr);
    trigger("Men_Bearbeiten_11");
    settle();
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2"}));
    EXPECT_EQ(label(), "P1");
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());

    // Somebody has emptied the trash.
    trigger("bDelete");
    QDir(home_.at("trash")).removeRecursively();
    yes.take();
    trigger("Men_Bearbeiten_11");
    EXPECT_TRUE(yes.takeText().startsWith("Bild \"P1\" löschen kann nicht"));
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());
}

TEST_F(PictureCarrying, TheImageOfADragHasNoEmptyEdges) {
    for (const int pictures : {1, 2, 3, 200}) {
        const QImage image = browser::dragImage(QImage(), pictures, *tree())
                                 .toImage()
                                 .convertToFormat(QImage::Format_ARGB32);
        bool isLastRowPainted = false;
        bool isLastColumnPainted = false;
        for (int i = 0; i < image.width(); ++i) {
            isLastRowPainted |= qAlpha(image.pixel(i, image.height() - 1)) > 0 ||
                                qAlpha(image.pixel(i, image.height() - 2)) > 0;
            isLastColumnPainted |= qAlpha(image.pixel(image.width() - 1, i)) > 0 ||
                                   qAlpha(image.pixel(image.width() - 2, i)) > 0;
        }
        EXPECT_TRUE(isLastRowPainted && isLastColumnPainted) << pictures;
    }
}

TEST_F(PictureCarrying, UndoTellsOfMovedPicturesThatAreGone) {
    addPicture(pumps_, "P3");
    window().refresh();
    settle();
    const auto move = [&](const std::vector<store::PictureName>& names) {
        commands::transferPictures(window(), {pumps_, names}, {tanks_, "Tanks"},
                                   store::PassageKind::Move);
        settle();
    };
    move({{u"P1"}, {u"P3"}});
    store::deletePicture(library(), tanks_, {u"P3"});
    EXPECT_EQ(summaryOf([&] { trigger("Men_Bearbeiten_11"); }),
              "Das Bild \"P3\" war nicht mehr da.");
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2"}));
    move({{u"P1"}});
    store::deletePicture(library(), tanks_, {u"P1"});
    MessageBoxScript ok({}, app::kAnswerOk);
    trigger("Men_Bearbeiten_11");
    EXPECT_TRUE(ok.takeText().startsWith("Bild \"P1\" verschieben kann nicht"));
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());
}

// Its storage may be another group's by now.
TEST_F(PictureCarrying, ARenamingOfAGroupIsNotTakenBackFromAnother) {
    const auto rotary = makeGroup("Kreisel", pumps_);
    window().FillTreeView();
    const auto rename = [&](const QString& group, const QString& name) {
        clickNode("Pumpen/" + group);
        inDialog([&] { trigger("gRename"); },
                 [&](QDialog& dialog) {
                     dialog.findChild<QLineEdit*>("txtNeu")->setText(name);
                     dialog.findChild<QPushButton*>("cmdOK")->click();
                 });
    };
    MessageBoxScript ok({}, app::kAnswerOk);
    rename("Kreisel", "Radial");
    store::deleteGroup(library(), rotary);
    ASSERT_EQ(makeGroup("Axial", pumps_), rotary);
    ok.take();
    trigger("Men_Bearbeiten_11");
    EXPECT_TRUE(ok.takeText().startsWith("Gruppe \"Kreisel\" umbenennen kann nicht"));
    EXPECT_EQ(store::readGroupName(library(), rotary).text, u"Axial");
    EXPECT_NE(node("Pumpen/Axial"), nullptr);
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());
    rename("Axial", "Halbaxial");
    trigger("Men_Bearbeiten_11");
    EXPECT_EQ(store::readGroupName(library(), rotary).text, u"Axial");
}

// Else what was deleted before it could never be brought back.
TEST_F(PictureCarrying, ARenamingWhoseOldNameIsTakenStandsInNoOthersWay) {
    MessageBoxScript yes({}, app::kAnswerYes);
    click("P2");
    trigger("bDelete");
    settle();
    click("P1");
    inDialog([&] { trigger("bRename"); },
             [](QDialog& dialog) {
                 dialog.findChild<QLineEdit*>("txtName")->setText("Anders");
                 dialog.findChild<QPushButton*>("cmdOK")->click();
             });
    addPicture(pumps_, "P1");
    yes.take();
    trigger("Men_Bearbeiten_11");
    EXPECT_TRUE(yes.takeText().startsWith("Bild \"P1\" umbenennen kann nicht"));
    trigger("Men_Bearbeiten_11");
    settle();
    EXPECT_EQ(stored(pumps_), QStringList({"P1", "P2", "Anders"}));
    EXPECT_EQ(colourOf(pumps_, u"P2"), QColor(Qt::green));
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());
}

} // namespace
