// What the line below the pictures says.
#include "platform/paths.h"
#include "store/picture_operations.h"
#include "ui/every_language.h"

#include <QAction>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

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

TEST_P(StatusLineTest, TellsWhatHasComeAndWhereItWasAlready) {
    const auto group = makeGroup("Pumpen");
    const auto other = makeGroup("Ventile");
    addPicture(group, "Alt", Qt::red);
    addPicture(other, "Neu", Qt::red);
    addPicture(other, "Blau", Qt::blue);
    start();
    clickNode("Ventile");
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
    EXPECT_TRUE(all.endsWith("\nRot = Pumpen / Alt, Ventile / Neu\nZwei = Ventile / Blau"))
        << all.toStdString();
    EXPECT_TRUE(find<QLabel>("lblErgebnis")->toolTip().contains("Zwei = Ventile / Blau"));
}

} // namespace
