// The strip's own keys, its wheel, and what it shows between two groups.
#include "ui/main_window_fixture.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QTreeWidget>
#include <QWheelEvent>

namespace {

class Strip : public MainWindowTest {
  protected:
    // A group with pictures A0, A1, ..., selected in a window with a grid of that many cells.
    void startWith(int pictures, const QSize& cells) {
        constexpr int kPitch = 64; // pixels
        const auto group = makeGroup("Pumpen");
        for (int i = 0; i < pictures; ++i) {
            addPicture(group, QStringLiteral("A%1").arg(i));
        }
        addPicture(makeGroup("Tanks"), "T1");
        start();
        window().resize(window().minimumSize() +
                        QSize(kPitch * (cells.width() - 1), kPitch * (cells.height() - 3)));
        QTest::qWait(0);
        clickNode("Pumpen");
        ASSERT_EQ(thumbnails().size(), std::min(pictures, cells.width() * cells.height()));
    }

    QWidget* strip() { return find<QWidget>("shpVorschau"); }

    QString pressedFrom(const QString& name, Qt::Key key) {
        QTest::mouseClick(thumbnail(name), Qt::LeftButton);
        QTest::keyClick(strip(), key);
        settle();
        return label();
    }

    // Turns the wheel by that many eighths of a degree and returns the page.
    int pageAfterTurning(int angle) {
        const QPointF centre = strip()->rect().center();
        QWheelEvent turn(centre, strip()->mapToGlobal(centre), {}, {0, angle}, Qt::NoButton, {},
                         Qt::NoScrollPhase, false);
        QApplication::sendEvent(strip(), &turn);
        settle();
        return find<QScrollBar>("imgScroll")->value();
    }
};

TEST_F(Strip, DownAndUpStayWhereNoRowIsLeft) {
    startWith(5, {3, 3}); // A3 and A4 in the second row
    EXPECT_EQ(pressedFrom("A0", Qt::Key_Down), "A3");
    EXPECT_EQ(pressedFrom("A2", Qt::Key_Down), "A4") << "the end of the shorter row";
    EXPECT_EQ(pressedFrom("A3", Qt::Key_Down), "A3");
    EXPECT_EQ(pressedFrom("A4", Qt::Key_Down), "A4");
    EXPECT_EQ(pressedFrom("A4", Qt::Key_Up), "A1");
    EXPECT_EQ(pressedFrom("A1", Qt::Key_Up), "A1");
    EXPECT_EQ(find<QScrollBar>("imgScroll")->value(), 1);
}

// Touch pads and fine wheels turn by parts of a notch.
TEST_F(Strip, TheWheelKeepsWhatIsNoWholeNotch) {
    startWith(20, {1, 3});
    EXPECT_EQ(pageAfterTurning(-60), 1);
    EXPECT_EQ(pageAfterTurning(-60), 2);
    EXPECT_EQ(pageAfterTurning(-200), 3); // 80 are left
    EXPECT_EQ(pageAfterTurning(-39), 3);
    EXPECT_EQ(pageAfterTurning(-1), 4);
    EXPECT_EQ(pageAfterTurning(60), 4);
    EXPECT_EQ(pageAfterTurning(60), 3);
    EXPECT_EQ(pageAfterTurning(240), 1);
}

// The next group's pictures come one by one; until then no cell shows, or takes a click for, one of
// the group before.
TEST_F(Strip, IsEmptyUntilTheNextGroupsPicturesCome) {
    startWith(6, {3, 3});
    tree()->scrollToItem(node("Tanks"));
    const QRect row = tree()->visualItemRect(node("Tanks"));
    QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, row.center());
    EXPECT_EQ(label(), "T1");
    EXPECT_TRUE(thumbnails().isEmpty()) << thumbnails().join(' ').toStdString();
    settle();
    EXPECT_EQ(thumbnails(), QStringList{"T1"});
}

} // namespace
