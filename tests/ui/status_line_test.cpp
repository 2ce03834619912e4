// What the line below the pictures says.
#include "platform/paths.h"
#include "store/picture_operations.h"
#include "ui/every_language.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QToolTip>
#include <QTreeWidget>

namespace {

class StatusLineTest : public EveryLanguageTest {
  protected:
    QString numbers() { return find<QLabel>("lblSeiten")->text(); }
    QString result() { return find<QLabel>("lblErgebnis")->text(); }

    void arrive(const std::vector<store::PictureAddress>& pictures) {
        window().PicturesArrived([pictures] { return pictures; });
        settle();
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, StatusLineTest, EveryLanguageTest::all());

TEST_P(StatusLineTest, CountsTheShownGroupsPicturesInBothViews) {
    const auto group = makeGroup("Pumpen");
    makeGroup("Leer");
    for (int i = 0; i < 3; ++i) {
        addPicture(group, QString::number(i));
    }
    start();
    clickNode("Pumpen");
    const QString three =
        say("20 \u00d7 10, 1 KB   |   3 Bilder", "20 \u00d7 10, 1 KB   |   3 pictures");
    EXPECT_EQ(numbers(), three);
    clickNode("Leer");
    EXPECT_EQ(numbers(), say("Keine Bilder", "No pictures"));
    clickNode("Pumpen");
    trigger("Men_Extras_0");
    settle();
    EXPECT_EQ(numbers(), three);
}

TEST_P(StatusLineTest, CountsThePagesOfTheGroupThatIsShown) {
    const auto group = makeGroup("Pumpen");
    for (int i = 0; i < 30; ++i) {
        addPicture(group, QString::number(i));
    }
    addPicture(makeGroup("Ventile"), "V");
    start();
    for (int i = 0; i < 6; ++i) {
        trigger("Men_Extras_4"); // as large as they become
    }
    settle();
    for (int round = 0; round < 2; ++round) {
        clickNode("Pumpen");
        EXPECT_TRUE(numbers().contains(say("30 Bilder, Seite 1 von ", "30 pictures, page 1 of ")));
        clickNode("Ventile");
        EXPECT_TRUE(numbers().endsWith(say("   1 Bild", "   1 picture")));
    }
}

TEST_P(StatusLineTest, CountsWhatOthersAdd) {
    const auto group = makeGroup("Pumpen");
    addPicture(group, "P1");
    start();
    clickNode("Pumpen");
    for (const bool isList : {false, true}) {
        addPicture(group, isList ? "P3" : "P2");
        window().lookForChanges();
        settle();
        EXPECT_TRUE(numbers().endsWith(isList ? say("3 Bilder", "3 pictures")
                                              : say("2 Bilder", "2 pictures")));
        trigger("Men_Extras_0");
        settle();
    }
}

TEST_P(StatusLineTest, AddsUpWhatIsSelected) {
    const auto group = makeGroup("Pumpen");
    for (int i = 0; i < 5; ++i) {
        addPicture(group, QStringLiteral("P%1").arg(i));
    }
    std::uint64_t all = 0;
    for (const auto& picture : store::listPictures(library(), group)) {
        all += picture.bytes;
    }
    start();
    clickNode("Pumpen");
    const QString one = numbers();
    const auto selected = [this](int count, std::uint64_t bytes) {
        return say("%1 ausgewählt, %2 KB   |   5 Bilder", "%1 selected, %2 KB   |   5 pictures")
            .arg(count)
            .arg((bytes + 1023) / 1024);
    };
    for (const char* view : {"strip", "list"}) {
        SCOPED_TRACE(view);
        trigger("Men_Bearbeiten_15");
        settle();
        EXPECT_EQ(numbers(), selected(5, all));
        if (*view == 's') {
            QTest::mouseClick(thumbnail("P0"), Qt::LeftButton, Qt::ControlModifier);
            settle();
            EXPECT_EQ(numbers(), selected(4, all / 5 * 4));
            QTest::mouseClick(thumbnail("P0"), Qt::LeftButton);
            settle();
            EXPECT_EQ(numbers(), one);
            trigger("Men_Extras_0");
            settle();
            EXPECT_EQ(numbers(), one);
        }
    }
}

TEST_P(StatusLineTest, TellsWhichCatalogueWasSaved) {
    addPicture(makeGroup("Pumpen"), "P1");
    start();
    clickNode("Pumpen");
    inDialog([this] { trigger("Men_Datei_8"); },
             [this](QDialog& catalogue) {
                 inDialog([&] { catalogue.findChild<QPushButton*>("cmdPdf")->click(); },
                          [this](QDialog& file) {
                              ASSERT_EQ(file.objectName(), "dlgPdf");
                              dynamic_cast<QFileDialog&>(file).selectFile(home_.at("Alle.pdf"));
                              QMetaObject::invokeMethod(&file, "accept");
                          });
             });
    EXPECT_TRUE(QFile::exists(home_.at("Alle.pdf")));
    EXPECT_EQ(result(), say("Katalog gespeichert: Alle.pdf", "Catalogue saved: Alle.pdf"));
}

TEST_P(StatusLineTest, TellsWhatACommandHasDone) {
    const auto group = makeGroup("Pumpen");
    const auto other = makeGroup("Ventile");
    addPicture(group, "P1");
    addPicture(group, "P2");
    start();
    clickNode("Pumpen");
    const auto after = [this](const char* item) {
        trigger(item);
        settle();
        return result();
    };
    trigger("Men_Bearbeiten_15");
    EXPECT_EQ(after("Men_Bearbeiten_13"),
              say("2 Bilder in der Zwischenablage", "2 pictures on the clipboard"));
    clickNode("Ventile");
    EXPECT_EQ(after("Men_Bearbeiten_14"),
              say("2 Bilder nach Ventile kopiert", "2 pictures copied to Ventile"));
    const MessageBoxScript yes({}, app::kAnswerYes);
    EXPECT_EQ(after("Men_Bearbeiten_3"), say("2 Bilder gelöscht", "2 pictures deleted"));
    EXPECT_EQ(after("Men_Bearbeiten_11"),
              say("Rückgängig gemacht: 2 Bilder löschen", "Undone: delete 2 pictures"));
    clickNode("Pumpen");
    after("Men_Bearbeiten_12");
    clickNode("Ventile");
    store::deletePicture(library(), other, {u"P1"});
    store::deletePicture(library(), other, {u"P2"});
    EXPECT_EQ(after("Men_Bearbeiten_14"),
              say("1 Bild nach Ventile verschoben", "1 picture moved to Ventile"));
    EXPECT_EQ(after("Men_Bearbeiten_8"), say("Gruppe Ventile gelöscht", "Group Ventile deleted"));
}

TEST_P(StatusLineTest, TellsWhatHasComeAndWhereItWasAlready) {
    const auto group = makeGroup("Pumpen");
    const auto other = makeGroup("Ventile", makeGroup("Werk"));
    addPicture(group, "Alt", Qt::red);
    addPicture(other, "Neu", Qt::red);
    addPicture(other, "Blau", Qt::blue);
    start();
    clickNode("Werk/Ventile");
    arrive({{other, {u"Blau"}}});
    EXPECT_EQ(result(), say("1 Bild hinzugefügt", "1 picture added"));
    arrive({{other, {u"Neu"}}});
    EXPECT_EQ(result(), say("1 Bild hinzugefügt; schon vorhanden: Neu = Pumpen / Alt",
                            "1 picture added; already there: Neu = Pumpen / Alt"));
    addPicture(group, "Rot", Qt::red);
    addPicture(group, "Zwei", Qt::blue);
    addPicture(group, "Noch eins", Qt::green);
    addPicture(group, "Und eins", Qt::green);
    arrive(
        {{group, {u"Rot"}}, {group, {u"Zwei"}}, {group, {u"Noch eins"}}, {group, {u"Und eins"}}});
    EXPECT_EQ(result(), say("4 Bilder hinzugefügt; 2 davon schon vorhanden",
                            "4 pictures added; 2 of them already there"));
    const QString all = find<QLabel>("lblErgebnis")->accessibleDescription();
    EXPECT_TRUE(
        all.endsWith("\nRot = Pumpen / Alt, Werk / Ventile / Neu\nZwei = Werk / Ventile / Blau"))
        << all.toStdString();
    EXPECT_TRUE(find<QLabel>("lblErgebnis")->toolTip().contains("Zwei = Werk / Ventile / Blau"));
}

TEST_P(StatusLineTest, TabGoesToItWhileThereIsMoreToBeRead) {
    const auto group = makeGroup("Pumpen");
    std::vector<store::PictureAddress> arrived;
    for (int i = 0; i < 40; ++i) {
        addPicture(group, QStringLiteral("A%1").arg(i), QColor(i, 0, 0));
        addPicture(group, QStringLiteral("B%1").arg(i), QColor(i, 0, 0));
        arrived.push_back({group, {QStringLiteral("B%1").arg(i).toStdU16String()}});
    }
    start();
    arrive(arrived);
    QApplication::setActiveWindow(&window());
    find<QWidget>("imgScroll")->setFocus();
    QTest::keyClick(find<QWidget>("imgScroll"), Qt::Key_Tab);
    EXPECT_TRUE(find<QLabel>("lblErgebnis")->hasFocus());
    QCoreApplication::processEvents();
    EXPECT_TRUE(QToolTip::isVisible());
    EXPECT_TRUE(QToolTip::text().contains("B20 = Pumpen / A20"));
    EXPECT_FALSE(QToolTip::text().contains("B39")) << "higher than a screen";
    inDialog([this] { QTest::keyClick(find<QWidget>("lblErgebnis"), Qt::Key_Return); },
             [](QDialog& dialog) {
                 const QString shown =
                     dialog.findChild<QPlainTextEdit*>("txtDateien")->toPlainText();
                 EXPECT_TRUE(shown.contains("B39 = Pumpen / A39")) << shown.toStdString();
             });
    QApplication::setActiveWindow(&window());
    QTest::keyClick(find<QWidget>("lblErgebnis"), Qt::Key_Tab);
    EXPECT_TRUE(tree()->hasFocus());
    window().TellResult("Kurz");
    find<QWidget>("imgScroll")->setFocus();
    QTest::keyClick(find<QWidget>("imgScroll"), Qt::Key_Tab);
    EXPECT_TRUE(tree()->hasFocus());
}

} // namespace
