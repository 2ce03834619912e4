// Reading the library again: what F5 keeps, finds and tells.
#include "app/patience.h"
#include "app/texts.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "ui/main_window_fixture.h"

#include <QApplication>
#include <QScrollBar>
#include <QTest>
#include <QTreeWidget>

namespace {

class Refresh : public MainWindowTest {
  protected:
    void pressF5() {
        QApplication::setActiveWindow(&window()); // the progress may have been it
        tree()->setFocus();
        QTest::keyClick(tree(), Qt::Key_F5);
        settle();
        QCoreApplication::processEvents(); // what it found is told after it is done
    }

    bool isUnfolded(const QString& path) { return node(path)->isExpanded(); }

    store::GroupAddress pumps_ = makeGroup("Pumpen");
    store::GroupAddress rotary_ = makeGroup("Kreisel", pumps_);
    store::GroupAddress steel_ = makeGroup("Edelstahl", rotary_);
};

TEST_F(Refresh, KeepsFoldedAndUnfoldedWhatIsSo) {
    makeGroup("Kugelhahn", makeGroup("Armaturen"));
    start();
    clickNode("Pumpen/Kreisel");
    for (const bool isUnfoldedAbove : {true, false}) {
        for (const bool isUnfoldedItself : {true, false}) {
            node("Pumpen/Kreisel")->setExpanded(isUnfoldedItself);
            node("Pumpen")->setExpanded(isUnfoldedAbove); // if not, the selected node is hidden
            node("Armaturen")->setExpanded(!isUnfoldedAbove);
            pressF5();
            EXPECT_EQ(selectedNode(), "Kreisel");
            EXPECT_EQ(isUnfolded("Pumpen/Kreisel"), isUnfoldedItself);
            EXPECT_EQ(isUnfolded("Pumpen"), isUnfoldedAbove);
            EXPECT_EQ(isUnfolded("Armaturen"), !isUnfoldedAbove);
        }
    }
    // Also where the selection goes to the first node.
    node("Armaturen")->setExpanded(false);
    store::deleteGroup(library(), rotary_);
    pressF5();
    EXPECT_EQ(selectedNode(), "Armaturen");
    EXPECT_FALSE(isUnfolded("Armaturen"));
}

TEST_F(Refresh, ARefillAfterACommandKeepsWhatIsUnfolded) {
    makeGroup("Kugelhahn", makeGroup("Armaturen"));
    start();
    node("Pumpen")->setExpanded(true);
    node("Pumpen/Kreisel")->setExpanded(true);
    window().FillTreeView();
    EXPECT_TRUE(isUnfolded("Pumpen"));
    EXPECT_TRUE(isUnfolded("Pumpen/Kreisel"));
    EXPECT_FALSE(isUnfolded("Armaturen"));
}

// While its file is locked the group has no node, and is selected again when it has.
TEST_F(Refresh, AnotherChoiceEndsTheWaitForALockedGroup) {
    makeGroup("Armaturen");
    start();
    const std::vector<std::pair<QString, std::function<void()>>> choices{
        {"Armaturen", [this] { clickNode("Armaturen"); }},
        {"", [this] { clickFreeArea(Qt::LeftButton); }},
    };
    for (const auto& [chosen, choose] : choices) {
        clickNode("Pumpen/Kreisel");
        ASSERT_EQ(selectedNode(), "Kreisel");
        auto file = holdLocked(library().folder / "Pumpen.stg");
        pressF5();
        ASSERT_EQ(selectedNode(), "Pumpen");
        choose();
        file.reset();
        pressF5();
        EXPECT_EQ(selectedNode(), chosen);
    }
}

TEST_F(Refresh, KeepsTheTreeWhereItIsScrolled) {
    for (int i = 10; i < 60; ++i) {
        makeGroup(QStringLiteral("Anlage %1").arg(i));
    }
    start();
    clickNode("Anlage 10");
    auto* bar = tree()->verticalScrollBar();
    bar->setValue(bar->maximum() / 2);
    const int before = bar->value();
    ASSERT_GT(before, 0);
    pressF5();
    EXPECT_EQ(bar->value(), before);
}

TEST_F(Refresh, TellsAtOnceOfADamagedFile) {
    start();
    clickNode("Pumpen");
    pressF5();
    EXPECT_TRUE(boxes_.take().isEmpty());
    writeGroupFile("Kaputt.stg", "no group file");
    pressF5();
    EXPECT_EQ(node("Kaputt"), nullptr);
    const auto boxes = boxes_.take();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes[0].text, "Es wurde 1 kaputte Storage gefunden! Soll diese gelöscht werden?");
    EXPECT_EQ(boxes[1].text, "Die 1 kaputte Storage wurde gelöscht!");
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});
    EXPECT_EQ(selectedNode(), "Pumpen");
    pressF5();
    EXPECT_TRUE(boxes_.take().isEmpty());
}

// A file that was locked at the start may turn out damaged once it is free.
TEST_F(Refresh, ARetryTellsOfADamagedFileAsWell) {
    writeGroupFile("Kaputt.stg", "no group file");
    auto file = holdLocked(library().folder / "Kaputt.stg");
    start();
    ASSERT_NE(node("Kaputt"), nullptr);
    file.reset();
    clickNode("Kaputt");
    ASSERT_TRUE(until([this] { return node("Kaputt") == nullptr; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(boxes_.take().size(), 2);
    EXPECT_EQ(selectedNode(), "Pumpen") << "its neighbour";
    EXPECT_EQ(label(), app::text(app::kTextNoPicture));
}

} // namespace
