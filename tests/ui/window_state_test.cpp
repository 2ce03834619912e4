// Where the main window opens: as it was left, and always where it can be seen.
#include "browser/window_state.h"
#include "platform/settings_backend.h"
#include "ui/main_window_fixture.h"

#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QTreeWidget>

namespace {

using browser::placeOnScreens;
using browser::WindowState;

const QString kSection = QStringLiteral("Software\\NORAVEX GmbH\\GraphicsLib\\Window");

class WindowStateTest : public MainWindowTest {};

TEST(WindowPlace, LiesOnAScreenWhateverHasBecomeOfThem) {
    const QSize minimum(300, 300);
    const QRect left(0, 0, 1000, 800);
    const QRect right(1000, 0, 1000, 800);
    const QRect inside(1100, 100, 600, 500);
    EXPECT_EQ(placeOnScreens(inside, minimum, {left, right}), inside);
    // The right screen is gone.
    EXPECT_TRUE(left.contains(placeOnScreens(inside, minimum, {left})));
    EXPECT_EQ(placeOnScreens(inside, minimum, {left}).size(), inside.size());
    EXPECT_TRUE(left.contains(placeOnScreens({-5000, -5000, 400, 400}, minimum, {left})));
    // Larger than the screen, and smaller than the window can be.
    EXPECT_TRUE(left.contains(placeOnScreens({10, 10, 5000, 5000}, minimum, {left})));
    // The title bar, by which it can be moved, lies above the place.
    EXPECT_GT(placeOnScreens({10, -20, 400, 400}, minimum, {left}).top(), 20);
    EXPECT_GT(placeOnScreens({10, 10, 5000, 5000}, minimum, {left}).top(), 20);
    EXPECT_EQ(placeOnScreens({10, 10, 20, 20}, minimum, {left}).size(), minimum);
    // Half on either: it stays where most of it is.
    EXPECT_TRUE(right.contains(placeOnScreens({900, 50, 600, 400}, minimum, {left, right})));
    EXPECT_FALSE(placeOnScreens({}, minimum, {left}).isValid());
}

TEST_F(WindowStateTest, IsRememberedFromOneRunToTheNext) {
    makeGroup("Pumpen");
    start();
    const QRect place(37, 41, 620, 530);
    window().setGeometry(place);
    settle();
    window().close();
    EXPECT_EQ(browser::readWindowState().place, place);
    QWidget next;
    browser::restoreWindowState(next);
    EXPECT_EQ(next.geometry(), place);
    EXPECT_FALSE(next.isMaximized());

    start();
    window().setGeometry(place);
    window().showMaximized();
    settle();
    window().close();
    EXPECT_TRUE(browser::readWindowState().maximised);
    EXPECT_EQ(browser::readWindowState().place, place) << "to which it goes back";
    QWidget maximised;
    browser::restoreWindowState(maximised);
    EXPECT_TRUE(maximised.isMaximized());
}

TEST_F(WindowStateTest, GarbledValuesCountAsNone) {
    browser::writeWindowState({QRect(10, 10, 700, 600), true});
    for (const char* garbled : {"", "x", "-1", "99999999999", "12.5"}) {
        platform::nativeSettings().write(kSection, "Width", garbled);
        EXPECT_FALSE(browser::readWindowState().place.isValid()) << garbled;
        EXPECT_FALSE(browser::readWindowState().maximised) << garbled;
    }
}

TEST_F(WindowStateTest, KeepsTheEdgesThatWereMoved) {
    makeGroup("Pumpen");
    start();
    const int width = tree()->width();
    const int height = tree()->height();
    const auto drag = [this](const char* name, QPoint by) {
        auto* handle = find<QWidget>(name);
        const QPoint from = handle->rect().center();
        QTest::mousePress(handle, Qt::LeftButton, {}, from);
        QTest::mouseMove(handle, from + by);
        QTest::mouseRelease(handle, Qt::LeftButton);
    };
    drag("splSpalten", {40, 7});
    drag("splVorschau", {5, -30});
    EXPECT_EQ(tree()->size(), QSize(width + 40, height - 30));
    EXPECT_GT(find<QWidget>("imgVorschau")->width(), width);
    settle();
    restart();
    EXPECT_EQ(tree()->size(), QSize(width + 40, height - 30));
    QTest::mouseDClick(find<QWidget>("splSpalten"), Qt::LeftButton);
    QTest::mouseDClick(find<QWidget>("splVorschau"), Qt::LeftButton);
    EXPECT_EQ(tree()->size(), QSize(width, height));
    QApplication::setActiveWindow(&window());
    QTest::keyClick(tree(), Qt::Key_Right, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(tree()->width(), width + 20);
    settle();
}

} // namespace
