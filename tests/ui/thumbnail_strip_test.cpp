// The strip's own keys, its wheel, and what it shows between two groups.
#include "app/stepped_executor.h"
#include "browser/picture_painting.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QApplication>
#include <QPainter>
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
        group_ = makeGroup("Pumpen");
        for (int i = 0; i < pictures; ++i) {
            addPicture(group_, QStringLiteral("A%1").arg(i));
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

    // Turns the wheel by that many eighths of a degree and returns the first thumbnail.
    QString firstAfterTurning(int angle, Qt::KeyboardModifiers keys = {}) {
        const QPointF centre = strip()->rect().center();
        QWheelEvent turn(centre, strip()->mapToGlobal(centre), {}, {0, angle}, Qt::NoButton, keys,
                         Qt::NoScrollPhase, false);
        QApplication::sendEvent(strip(), &turn);
        settle();
        return thumbnails().value(0);
    }

    int page() { return find<QScrollBar>("imgScroll")->value(); }

    store::GroupAddress group_;
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
TEST_F(Strip, ANotchOfTheWheelMovesARow) {
    startWith(20, {1, 3}); // A0 to A9, A10 to A19
    EXPECT_EQ(firstAfterTurning(-60), "A0");
    EXPECT_EQ(firstAfterTurning(-60), "A1");
    EXPECT_EQ(firstAfterTurning(-200), "A2"); // 80 are left
    EXPECT_EQ(firstAfterTurning(-39), "A2");
    EXPECT_EQ(firstAfterTurning(-1), "A3");
    EXPECT_EQ(firstAfterTurning(60), "A3");
    EXPECT_EQ(firstAfterTurning(60), "A2");
    EXPECT_EQ(firstAfterTurning(240), "A0");
    EXPECT_EQ(firstAfterTurning(-120 * 100), "A17");
    EXPECT_EQ(page(), find<QScrollBar>("imgScroll")->maximum());
    EXPECT_EQ(firstAfterTurning(-120), "A17") << "the end is in sight";
}

TEST_F(Strip, KeysAndChangesGoOnFromBetweenTwoPages) {
    startWith(20, {1, 3});
    ASSERT_EQ(firstAfterTurning(-240), "A2");
    EXPECT_EQ(pressedFrom("A4", Qt::Key_Down), "A5");
    EXPECT_TRUE(thumbnails().contains("A5"));
    ASSERT_EQ(firstAfterTurning(-120 * 100), "A17");
    ASSERT_EQ(firstAfterTurning(120), "A16");
    store::deletePicture(library(), group_, {u"A3"});
    window().lookForChanges();
    settle();
    EXPECT_EQ(thumbnails().size(), 3) << "what is on the screen stays full";
}

TEST_F(Strip, HomeAndEndReachTheEndsOfTheGroup) {
    startWith(20, {2, 3});
    EXPECT_EQ(pressedFrom("A2", Qt::Key_End), "A19");
    EXPECT_EQ(page(), find<QScrollBar>("imgScroll")->maximum());
    EXPECT_TRUE(thumbnails().contains("A19"));
    EXPECT_EQ(pressedFrom("A19", Qt::Key_Home), "A0");
    EXPECT_EQ(page(), 1);
}

TEST_F(Strip, TheSelectedPictureStaysSelectedInTheList) {
    startWith(20, {2, 3});
    EXPECT_EQ(pressedFrom("A2", Qt::Key_End), "A19");
    trigger("Men_Extras_0");
    settle();
    auto* list = find<QTreeWidget>("lvwInfo");
    EXPECT_EQ(label(), "A19");
    EXPECT_EQ(list->currentItem()->text(0), "A19");
    list->setFocus();
    QTest::keyClick(list, Qt::Key_Home);
    EXPECT_EQ(label(), "A0");
    QTest::keyClick(list, Qt::Key_End);
    QTest::keyClick(list, Qt::Key_Up);
    EXPECT_EQ(label(), "A18");
    trigger("Men_Extras_0");
    settle();
    EXPECT_EQ(label(), "A18");
    EXPECT_TRUE(thumbnails().contains("A18"));
}

TEST_F(Strip, SizesAndNamesAreChosenByKeysWheelAndMenuAndRemembered) {
    startWith(20, {4, 4});
    QApplication::setActiveWindow(&window());
    strip()->setFocus();
    const QSize first = thumbnail("A0")->size();
    EXPECT_EQ(first, QSize(60, 60));
    EXPECT_EQ(pressedFrom("A7", Qt::Key_End), "A19");
    const auto sizeAfter = [&](Qt::Key key) {
        QTest::keyClick(strip(), key, Qt::ControlModifier);
        settle();
        EXPECT_TRUE(thumbnails().contains("A19")) << "the selected picture stays in sight";
        return thumbnail("A19")->size();
    };
    EXPECT_EQ(sizeAfter(Qt::Key_Plus), QSize(80, 80));
    EXPECT_EQ(sizeAfter(Qt::Key_Minus), first);
    EXPECT_EQ(sizeAfter(Qt::Key_Minus), QSize(40, 40));
    EXPECT_EQ(sizeAfter(Qt::Key_Minus), QSize(40, 40));
    EXPECT_EQ(sizeAfter(Qt::Key_0), first);
    firstAfterTurning(240, Qt::ControlModifier);
    EXPECT_EQ(thumbnail("A19")->width(), 110);
    trigger("Men_Extras_3");
    settle();
    EXPECT_EQ(thumbnail("A19")->width(), 110);
    EXPECT_GT(thumbnail("A19")->height(), 120);
    restart();
    EXPECT_EQ(thumbnail("A0")->width(), 110);
    EXPECT_GT(thumbnail("A0")->height(), 120);
    EXPECT_TRUE(find<QAction>("Men_Extras_3")->isChecked());
    trigger("Men_Extras_3");
    trigger("Men_Extras_6");
    settle();
    EXPECT_EQ(thumbnail("A0")->size(), first);
}

TEST_F(Strip, TheMenuOffersWhatChangesTheThumbnails) {
    startWith(5, {3, 3});
    const auto offered = [this] {
        QString items;
        for (const char* item : {"3", "4", "5", "6"}) {
            items += find<QAction>(QString("Men_Extras_%1").arg(item))->isEnabled() ? item : "-";
        }
        return items;
    };
    EXPECT_EQ(offered(), "345-");
    firstAfterTurning(-120, Qt::ControlModifier);
    EXPECT_EQ(offered(), "34-6");
    firstAfterTurning(120 * 20, Qt::ControlModifier);
    EXPECT_EQ(offered(), "3-56");
    trigger("Men_Extras_0");
    settle();
    EXPECT_EQ(offered(), "----") << "a list has none";
    clickNode("Tanks");
    EXPECT_EQ(offered(), "----");
    trigger("Men_Extras_0");
    settle();
    EXPECT_EQ(offered(), "3-56");
}

TEST_F(Strip, WhatIsLookedAtStaysInSightWhenTheSizeChanges) {
    startWith(90, {3, 3});
    ASSERT_EQ(label(), "A0");
    QTest::keyClick(strip(), Qt::Key_PageDown);
    QTest::keyClick(strip(), Qt::Key_PageDown);
    QTest::keyClick(strip(), Qt::Key_PageDown);
    settle();
    const QString seen = thumbnails().front();
    for (const int angle : {120, 120, -360, 120}) {
        firstAfterTurning(angle, Qt::ControlModifier);
        EXPECT_TRUE(thumbnails().contains(seen))
            << angle << ' ' << seen.toStdString() << ' ' << thumbnails().join(' ').toStdString();
        EXPECT_EQ(label(), "A0");
    }
}

// A name is as wide as its thumbnail at most, whatever it consists of.
TEST(ThumbnailName, StaysInItsArea) {
    for (const char* name : {"P1", "Kreiselpumpe mit Motor und Getriebe, dreistufig",
                             "MMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMMM", "pump\nhouse", ""}) {
        for (const int width : {34, 74, 250}) {
            QImage image(width + 40, 80, QImage::Format_RGB32);
            image.fill(Qt::white);
            const QRect area(20, 10, width, 60);
            QPainter painter(&image);
            browser::paintName(painter, area, name);
            painter.end();
            int inside = 0;
            int outside = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const bool isInk = image.pixelColor(x, y) != QColor(Qt::white);
                    (area.adjusted(-1, 0, 1, 0).contains(x, y) ? inside : outside) += isInk;
                }
            }
            EXPECT_EQ(outside, 0) << name << ' ' << width;
            EXPECT_EQ(inside > 0, *name != 0) << name << ' ' << width;
        }
    }
}

// The next group's pictures come one by one; until then no cell shows, or takes a click for, one of
// the group before.
TEST_F(Strip, IsEmptyUntilTheNextGroupsPicturesCome) {
    startWith(6, {3, 3});
    tree()->scrollToItem(node("Tanks"));
    const QRect row = tree()->visualItemRect(node("Tanks"));
    SteppedExecutor workers;
    const app::WorkersReplacement stepped(workers);
    QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, row.center());
    EXPECT_EQ(label(), "T1");
    EXPECT_TRUE(thumbnails().isEmpty()) << thumbnails().join(' ').toStdString();
    workers.stepAll();
    EXPECT_EQ(thumbnails(), QStringList{"T1"});
}

} // namespace
