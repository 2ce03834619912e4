// What the window makes of changes by other programs: it shows them, and keeps all that its user
// has chosen, unfolded, scrolled to and typed.
#include "app/executor.h"
#include "app/message_box.h"
#include "app/settings.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"

#include <QComboBox>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTreeWidget>

#include <atomic>

namespace {

class OthersChanges : public MainWindowTest {
  protected:
    void look() {
        window().lookForChanges();
        settle();
    }

    void startSmall() { // so that few pictures are many pages
        start();
        window().resize(500, 400);
        settle();
    }

    QString topVisible() { return tree()->itemAt(0, 0)->text(0); }

    QColor colourOf(const QString& picture) {
        return thumbnail(picture)->grab().toImage().pixelColor(thumbnail(picture)->rect().center());
    }

    void addPictures(const store::GroupAddress& group, int from, int to) {
        for (int i = from; i < to; ++i) {
            addPicture(group, QStringLiteral("P%1").arg(i));
        }
    }

    store::GroupAddress pumps_ = makeGroup("Pumpen");
    store::GroupAddress rotary_ = makeGroup("Kreisel", pumps_);
};

TEST_F(OthersChanges, TheTreeKeepsSelectionUnfoldingAndPlace) {
    for (int i = 10; i < 60; ++i) {
        makeGroup(QStringLiteral("Anlage %1").arg(i));
    }
    start();
    clickNode("Pumpen/Kreisel");
    auto* bar = tree()->verticalScrollBar();
    bar->setValue(bar->maximum() / 2);
    const QString atTop = topVisible();
    const auto* selected = node("Pumpen/Kreisel");
    // Above what is seen one comes and two go; the selected group's file gets more and other
    // groups.
    makeGroup("Aggregate");
    store::removeGroupFile(library(), {u"Anlage 11"});
    store::removeGroupFile(library(), {u"Anlage 12"});
    look();
    EXPECT_EQ(node("Pumpen/Kreisel"), selected) << "its file has not changed";
    store::renameGroup(library(), rotary_, {u"Kreiselpumpen"});
    makeGroup("Edelstahl", rotary_);
    makeGroup("Axial", pumps_);
    look();
    EXPECT_EQ(topVisible(), atTop);
    EXPECT_EQ(tree()->topLevelItem(0)->text(0), "Aggregate") << "in its place by name";
    EXPECT_EQ(node("Anlage 11"), nullptr);
    EXPECT_EQ(selectedNode(), "Kreiselpumpen");
    EXPECT_TRUE(node("Pumpen")->isExpanded());
    ASSERT_NE(node("Pumpen/Axial"), nullptr);
    ASSERT_NE(node("Pumpen/Kreiselpumpen/Edelstahl"), nullptr);
    EXPECT_EQ(boxes_.take().size(), 0);
}

TEST_F(OthersChanges, TheStripKeepsItsPageAndTheSelectedPicture) {
    addPictures(rotary_, 1000, 1040);
    startSmall();
    clickNode("Pumpen/Kreisel");
    auto* bar = find<QScrollBar>("imgScroll");
    bar->setValue(2);
    settle();
    const QStringList page = thumbnails();
    ASSERT_GT(page.size(), 3);
    QTest::mouseClick(thumbnail(page[2]), Qt::LeftButton);
    settle();
    ASSERT_EQ(label(), page[2]);
    // Another colour for the picture beside, one less at the end of the page, many behind it.
    addPicture(rotary_, page[1], Qt::blue);
    store::deletePicture(library(), rotary_, {page.last().toStdU16String()});
    addPictures(rotary_, 1100, 1120);
    const int pages = bar->maximum();
    look();
    EXPECT_EQ(bar->value(), 2);
    EXPECT_GT(bar->maximum(), pages);
    EXPECT_EQ(thumbnails().size(), page.size());
    EXPECT_FALSE(thumbnails().contains(page.last()));
    EXPECT_EQ(label(), page[2]);
    EXPECT_EQ(colourOf(page[1]), QColor(Qt::blue));
    // What was selected goes: the next one takes its place.
    store::deletePicture(library(), rotary_, {page[2].toStdU16String()});
    look();
    EXPECT_EQ(label(), page[3]);
    EXPECT_EQ(bar->value(), 2);
}

TEST_F(OthersChanges, TheListKeepsItsRowsAndAnEditedName) {
    addPictures(rotary_, 1000, 1040);
    startSmall();
    clickNode("Pumpen/Kreisel");
    trigger("Men_Extras_0");
    settle();
    auto* list = find<QTreeWidget>("lvwInfo");
    QTreeWidgetItem* row = list->topLevelItem(15);
    list->setCurrentItem(row);
    settle(); // a look that ends while the row is still being described is made again later
    list->scrollToItem(row, QAbstractItemView::PositionAtTop);
    const int scrolled = list->verticalScrollBar()->value();
    list->editItem(row, 0);
    auto* editor = list->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText("halb get");
    store::deletePicture(library(), rotary_, {u"P1030"});
    addPicture(rotary_, "P1035", Qt::blue, "gif");
    addPicture(rotary_, "P1039x");
    look();
    ASSERT_EQ(list->findChild<QLineEdit*>(), editor);
    EXPECT_EQ(editor->text(), "halb get");
    EXPECT_EQ(list->verticalScrollBar()->value(), scrolled);
    EXPECT_EQ(list->currentItem(), row);
    QStringList expected;
    for (const auto& picture : store::listPictures(library(), rotary_)) {
        expected.append(QString::fromStdU16String(picture.name.text));
    }
    EXPECT_EQ(rows(), expected);
}

TEST_F(OthersChanges, AGroupThatIsGoneIsShownNoLonger) {
    makeGroup("Armaturen");
    addPicture(rotary_, "P1");
    start();
    clickNode("Pumpen/Kreisel");
    ASSERT_EQ(label(), "P1");
    store::deleteGroup(library(), rotary_);
    look();
    EXPECT_EQ(selectedNode(), "Armaturen");
    EXPECT_TRUE(thumbnails().isEmpty());
    // The first picture of an empty group is shown as soon as it is there.
    addPicture(window().selectedGroup()->address, "V1");
    look();
    EXPECT_EQ(label(), "V1");
    EXPECT_EQ(thumbnails(), QStringList{"V1"});
}

TEST_F(OthersChanges, AGroupIsFollowedToItsOtherName) {
    makeGroup("Armaturen");
    addPictures(rotary_, 1, 5);
    start();
    clickNode("Pumpen/Kreisel");
    QTest::mouseClick(thumbnail("P3"), Qt::LeftButton);
    store::renameGroup(library(), pumps_, {u"Verdichter"});
    look();
    EXPECT_EQ(node("Pumpen"), nullptr);
    EXPECT_TRUE(node("Verdichter")->isExpanded());
    EXPECT_EQ(selectedNode(), "Kreisel");
    EXPECT_EQ(thumbnails(), (QStringList{"P1", "P2", "P3", "P4"}));
    EXPECT_EQ(label(), "P3");
    // A top-level group changes its key as well.
    const store::GroupAddress top = store::topLevelAddress(u"Verdichter");
    addPicture(top, "V1");
    look();
    clickNode("Verdichter");
    store::renameGroup(library(), top, {u"Gebläse"});
    look();
    EXPECT_EQ(selectedNode(), QStringLiteral("Gebläse"));
    EXPECT_EQ(label(), "V1");
    // What comes in its place is another group.
    store::removeGroupFile(library(), {u"Gebläse"});
    addPicture(makeGroup("Filter"), "F1");
    look();
    EXPECT_EQ(selectedNode(), "Armaturen");
    EXPECT_EQ(label(), "- Kein Bild -");
}

TEST_F(OthersChanges, AnOpenDialogKeepsWhatWasTyped) {
    start();
    clickNode("Pumpen/Kreisel");
    inDialog([this] { trigger("Men_Bearbeiten_7"); },
             [this](QDialog& dialog) {
                 auto* name = dialog.findChild<QLineEdit*>("txtNeu");
                 ASSERT_NE(name, nullptr);
                 name->setText("Radial");
                 makeGroup("Armaturen");
                 makeGroup("Edelstahl", rotary_);
                 look();
                 ASSERT_NE(node("Armaturen"), nullptr);
                 ASSERT_NE(node("Pumpen/Kreisel/Edelstahl"), nullptr);
                 EXPECT_EQ(name->text(), "Radial");
                 EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
                 QTest::keyClick(name, Qt::Key_Return);
             });
    EXPECT_EQ(selectedNode(), "Radial");
    EXPECT_NE(node("Pumpen/Radial/Edelstahl"), nullptr);
}

// The menu belongs to the group that it was opened for.
TEST_F(OthersChanges, NothingChangesUnderAnOpenMenu) {
    makeGroup("Armaturen");
    addPicture(rotary_, "P1");
    start();
    clickNode("Pumpen/Kreisel");
    auto* menu = find<QMenu>("Band2");
    menu->popup(tree()->mapToGlobal(QPoint(5, 5)));
    store::deleteGroup(library(), rotary_);
    look();
    EXPECT_EQ(selectedNode(), "Kreisel");
    menu->close();
    window().lookForChanges();
    menu->popup(tree()->mapToGlobal(QPoint(5, 5))); // while it looks
    app::workers().finish();
    settle();
    EXPECT_EQ(selectedNode(), "Kreisel");
    menu->close();
    EXPECT_TRUE(QTest::qWaitFor([this] { return selectedNode() == "Armaturen"; }, 20000));
}

// While the user reads that the group was made.
TEST_F(OthersChanges, AGroupThatIsNoticedBeforeItIsAddedIsThereOnce) {
    ASSERT_TRUE(QDir().mkpath(home_.at("files")));
    ASSERT_TRUE(QImage(9, 9, QImage::Format_RGB32).save(home_.at("files/a.bmp")));
    start();
    app::settings().setDrive("/");
    app::settings().setPath(home_.at("files"));
    const auto before = app::setMsgBoxHandler([this](auto&&...) {
        look();
        return app::kAnswerOk;
    });
    inDialog([this] { trigger("Men_Datei_1"); },
             [](QDialog& dialog) {
                 dialog.findChild<QComboBox*>("cboGruppe")->setCurrentIndex(0);
                 dialog.findChild<QLineEdit*>("txtName")->setText("Armaturen");
                 dialog.findChild<QPushButton*>("cmdCreate")->click();
             });
    app::setMsgBoxHandler(before);
    EXPECT_EQ(tree()->topLevelItemCount(), 2);
    EXPECT_EQ(selectedNode(), "Armaturen");
    look();
    EXPECT_EQ(tree()->topLevelItemCount(), 2);
}

TEST_F(OthersChanges, NothingIsSelectedWhereNothingWas) {
    makeGroup("Armaturen");
    makeGroup("Ventile");
    start();
    clickNode("Ventile");
    tree()->clearSelection();
    settle();
    store::removeGroupFile(library(), {u"Ventile"});
    look();
    EXPECT_EQ(node("Ventile"), nullptr);
    EXPECT_TRUE(tree()->selectedItems().isEmpty());
    EXPECT_EQ(thumbnails(), QStringList());
}

// Counts what the workers are given.
class CountingExecutor : public app::Executor {
  public:
    void run(std::function<void()> task) override {
        ++count;
        before_.run(std::move(task));
    }
    void finish() override { before_.finish(); }
    int count = 0;

  private:
    app::Executor& before_ = app::workers();
};

TEST_F(OthersChanges, OwnChangesAreNotReadTwice) {
    addPictures(rotary_, 1000, 1010);
    start();
    clickNode("Pumpen/Kreisel");
    boxes_.take();
    trigger("Men_Bearbeiten_3"); // delete the picture
    ASSERT_EQ(boxes_.take().size(), 1);
    settle();
    const auto* selected = node("Pumpen/Kreisel");
    CountingExecutor workers;
    const app::WorkersReplacement replaced(workers);
    look();
    EXPECT_EQ(workers.count, 1) << "the look, and no picture";
    EXPECT_EQ(node("Pumpen/Kreisel"), selected);
}

// The folder itself tells.
TEST_F(OthersChanges, AreNoticedWithoutAnybodyAsking) {
    browser::frmMain window(browser::StartMode::Standalone);
    window.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return window.isSettled(); }, 20000));
    const auto* nodes = window.findChild<QTreeWidget*>("tvwGruppen");
    makeGroup("Armaturen");
    EXPECT_TRUE(QTest::qWaitFor([&] { return nodes->topLevelItemCount() == 2; }, 20000));
    makeGroup("Axial", pumps_); // in the file
    EXPECT_TRUE(QTest::qWaitFor([&] { return nodes->topLevelItem(1)->childCount() == 2; }, 20000));
}

} // namespace
