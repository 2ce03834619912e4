// Several pictures selected at once, in the thumbnails and in the list.
#include "app/message_box.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <QTreeWidget>

namespace {

class ManyPictures : public MainWindowTest {
  protected:
    void startWith(const QStringList& names) {
        group_ = makeGroup("Pumpen");
        for (const QString& name : names) {
            addPicture(group_, name);
        }
        start();
        clickNode("Pumpen");
    }

    void click(const QString& name, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(thumbnail(name), Qt::LeftButton, modifiers);
        settle();
    }

    void press(int key, Qt::KeyboardModifiers modifiers = {}) {
        QApplication::setActiveWindow(&window()); // a dialog may have been it
        find<QWidget>("shpVorschau")->setFocus();
        QTest::keyClick(find<QWidget>("shpVorschau"), static_cast<Qt::Key>(key), modifiers);
        settle();
    }

    QStringList selected() {
        QStringList names;
        for (const store::PictureName& name : window().selectedPictures()) {
            names.append(QString::fromStdU16String(name.text));
        }
        return names;
    }

    QStringList stored() {
        QStringList names;
        for (const auto& picture : store::listPictures(library(), group_)) {
            names.append(QString::fromStdU16String(picture.name.text));
        }
        return names;
    }

    QStringList trashed() const { return QDir(home_.at("trash")).entryList(QDir::Files); }

    void drag(QWidget* widget, const QPoint& from, const QPoint& to,
              Qt::KeyboardModifiers modifiers = {}) {
        QTest::mousePress(widget, Qt::LeftButton, modifiers, from);
        for (const QPoint& at : {(from + to) / 2, to}) {
            QMouseEvent move(QEvent::MouseMove, at, widget->mapToGlobal(at), Qt::NoButton,
                             Qt::LeftButton, modifiers);
            QCoreApplication::sendEvent(widget, &move);
        }
        QTest::mouseRelease(widget, Qt::LeftButton, modifiers, to);
    }

    store::GroupAddress group_;
};

TEST_F(ManyPictures, AreSelectedByCtrlShiftAndRubberBand) {
    startWith({"P1", "P2", "P3", "P4", "P5"});
    click("P2");
    EXPECT_EQ(selected(), QStringList("P2"));
    click("P4", Qt::ControlModifier);
    EXPECT_EQ(selected(), QStringList({"P2", "P4"}));
    EXPECT_EQ(label(), "P4");
    EXPECT_EQ(find<QWidget>("shpVorschau")->accessibleDescription(), "P4, 2 ausgewählt");
    click("P5", Qt::ShiftModifier);
    EXPECT_EQ(selected(), QStringList({"P4", "P5"}));
    click("P2", Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(selected(), QStringList({"P2", "P3", "P4", "P5"}));
    click("P3", Qt::ControlModifier); // no longer
    EXPECT_EQ(selected(), QStringList({"P2", "P4", "P5"}));
    EXPECT_EQ(label(), "P2");
    click("P2", Qt::ControlModifier); // the current one: another becomes it
    EXPECT_EQ(selected(), QStringList({"P4", "P5"}));
    EXPECT_EQ(label(), "P4");

    auto* strip = find<QWidget>("shpVorschau");
    const QPoint corner = strip->rect().bottomRight() - QPoint(5, 5);
    drag(strip, corner, thumbnail("P1")->geometry().topLeft());
    EXPECT_EQ(selected().size(), 5);
    EXPECT_EQ(label(), "P4") << "which is among them";
    drag(strip, corner, corner - QPoint(40, 20));
    EXPECT_EQ(selected(), QStringList("P4")) << "an empty one leaves the current one";
    click("P1");
    EXPECT_EQ(selected(), QStringList("P1"));
    EXPECT_EQ(label(), "P1");

    press(Qt::Key_Right, Qt::ShiftModifier);
    press(Qt::Key_Right, Qt::ControlModifier);
    press(Qt::Key_Right, Qt::ControlModifier); // past P3
    press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(selected(), QStringList({"P1", "P2", "P4"}));
    EXPECT_EQ(label(), "P4");
    press(Qt::Key_Left);
    EXPECT_EQ(selected(), QStringList("P3"));
    trigger("Men_Bearbeiten_15");
    EXPECT_EQ(selected().size(), 5);
    EXPECT_EQ(label(), "P3");
    window().refresh();
    settle();
    EXPECT_EQ(selected().size(), 5);
    // What has the same name in another group is another picture.
    addPicture(makeGroup("Tanks"), "P1");
    window().FillTreeView();
    clickNode("Tanks");
    clickNode("Pumpen");
    EXPECT_EQ(selected(), QStringList("P1"));
}

// Shift, held from the beginning, is to move all of them.
TEST_F(ManyPictures, PressingOneOfThemWithShiftOrCtrlChangesNothingUntilTheRelease) {
    startWith({"P1", "P2", "P3", "P4", "P5"});
    click("P1");
    click("P5", Qt::ShiftModifier);
    for (const auto modifier : {Qt::ShiftModifier, Qt::ControlModifier}) {
        QTest::mousePress(thumbnail("P3"), Qt::LeftButton, modifier);
        settle();
        EXPECT_EQ(selected(), QStringList({"P1", "P2", "P3", "P4", "P5"}));
        QTest::mouseRelease(thumbnail("P3"), Qt::LeftButton, modifier);
        settle();
        EXPECT_EQ(selected(), modifier == Qt::ShiftModifier
                                  ? QStringList({"P1", "P2", "P3"})
                                  : QStringList({"P1", "P2", "P4", "P5"}));
        click("P1");
        click("P5", Qt::ShiftModifier);
    }
}

TEST_F(ManyPictures, WithNoneChosenYetAllOfThemHaveACurrentOne) {
    startWith({"P1", "P2", "P3"});
    restart(); // the group is shown, and none of its pictures
    ASSERT_EQ(label(), "");
    trigger("Men_Bearbeiten_15");
    settle();
    EXPECT_EQ(selected().size(), 3);
    EXPECT_EQ(label(), "P1");
    EXPECT_TRUE(find<QAction>("Men_Bearbeiten_13")->isEnabled());
    MessageBoxScript yes({}, app::kAnswerYes);
    trigger("Men_Bearbeiten_3");
    EXPECT_EQ(stored(), QStringList());
}

TEST_F(ManyPictures, OneCommandWorksOnTheCurrentOneDeletingOnAll) {
    startWith({"P1", "P2", "P3", "P4", "P5"});
    click("P2");
    click("P4", Qt::ControlModifier);
    inDialog([&] { trigger("bRename"); },
             [](QDialog& dialog) { EXPECT_EQ(dialog.objectName(), "frmEditSymbol"); });
    boxes_.take();
    {
        MessageBoxScript no({}, app::kAnswerNo);
        trigger("bDelete");
        EXPECT_EQ(no.takeText(), "Sind Sie sicher, dass Sie 2 Bilder aus der Gruppe \"Pumpen\" "
                                 "löschen möchten?");
        EXPECT_EQ(stored().size(), 5);
    }
    MessageBoxScript yes({}, app::kAnswerYes);
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());
    press(Qt::Key_Delete);
    EXPECT_EQ(yes.take().size(), 1);
    EXPECT_EQ(stored(), QStringList({"P1", "P3", "P5"}));
    EXPECT_EQ(label(), "P5");
    EXPECT_EQ(selected(), QStringList("P5"));
    EXPECT_EQ(trashed(), QStringList({"P2.BMP", "P4.BMP"}));

    press(Qt::Key_Delete);
    clickNode("Pumpen");
    trigger("Men_Bearbeiten_11");
    settle();
    EXPECT_EQ(stored(), QStringList({"P1", "P3", "P5"}));
    EXPECT_EQ(label(), "P5");
    trigger("Men_Bearbeiten_11");
    settle();
    EXPECT_EQ(stored(), QStringList({"P1", "P2", "P3", "P4", "P5"}));
    EXPECT_EQ(selected(), QStringList({"P2", "P4"}));
    EXPECT_EQ(trashed(), QStringList());
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_11")->isEnabled());
}

TEST_F(ManyPictures, AreSelectedInTheListAsWell) {
    startWith({"P1", "P2", "P3"});
    trigger("Men_Extras_0");
    auto* list = find<QTreeWidget>("lvwInfo");
    const auto clickRow = [&](int row, Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers,
                          list->visualItemRect(list->topLevelItem(row)).center());
    };
    clickRow(1, {});
    clickRow(2, Qt::ShiftModifier);
    EXPECT_EQ(selected(), QStringList({"P2", "P3"}));
    EXPECT_EQ(label(), "P3");
    clickRow(2, Qt::ControlModifier);
    EXPECT_EQ(selected(), QStringList("P2"));
    EXPECT_EQ(label(), "P2");
    trigger("Men_Bearbeiten_15");
    EXPECT_EQ(selected(), QStringList({"P1", "P2", "P3"}));
    MessageBoxScript yes({}, app::kAnswerYes);
    trigger("Men_Bearbeiten_3");
    EXPECT_EQ(stored(), QStringList());
    EXPECT_EQ(label(), "- Kein Bild -");
    trigger("Men_Bearbeiten_11");
    EXPECT_EQ(rows(), QStringList({"P1", "P2", "P3"}));
    EXPECT_EQ(selected(), QStringList({"P1", "P2", "P3"}));
}

} // namespace
