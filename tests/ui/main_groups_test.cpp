#include "app/patience.h"
#include "app/settings.h"
#include "app/texts.h"
#include "browser/large_preview.h"
#include "groups/group_tree.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDirIterator>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTreeWidget>

namespace {

class MainGroups : public MainWindowTest {
  protected:
    // Types a name into the new-group dialog and chooses a target by its index (-1: the preset).
    void makeByDialog(const QString& action, const QString& name, int target = -1) {
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) {
                     if (target >= 0) {
                         dialog.findChild<QComboBox*>("cboGruppe")->setCurrentIndex(target);
                     }
                     QTest::keyClicks(dialog.findChild<QLineEdit*>("txtNeu"), name);
                     QTest::keyClick(dialog.findChild<QLineEdit*>("txtNeu"), Qt::Key_Return);
                 });
    }

    QStringList offeredTargets(const QString& action, QString* preset = nullptr) {
        QStringList targets;
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) {
                     const auto* box = dialog.findChild<QComboBox*>("cboGruppe");
                     for (int i = 0; i < box->count(); ++i) {
                         targets.append(box->itemText(i));
                     }
                     if (preset != nullptr) {
                         *preset = box->currentText();
                     }
                 });
        return targets;
    }

    bool isEnabled(const QString& action) { return find<QAction>(action)->isEnabled(); }
};

TEST_F(MainGroups, NestedGroupsAreShownAndAClickShowsThePictures) {
    const auto pumps = makeGroup("Pumpen");
    const auto rotary = makeGroup("Kreisel", pumps);
    const auto steel = makeGroup("Edelstahl", rotary);
    makeGroup("Armaturen");
    addPicture(pumps, "P1");
    addPicture(steel, "E1");
    addPicture(steel, "E2");
    start();
    ASSERT_NE(node("Pumpen/Kreisel/Edelstahl"), nullptr);
    EXPECT_EQ(tree()->topLevelItem(0)->text(0), "Armaturen");
    EXPECT_EQ(selectedNode(), "");
    EXPECT_EQ(label(), "");

    clickNode("Pumpen/Kreisel/Edelstahl");
    EXPECT_EQ(thumbnails(), (QStringList{"E1", "E2"}));
    EXPECT_EQ(label(), "E1");
    clickNode("Pumpen");
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
    clickNode("Pumpen/Kreisel");
    EXPECT_TRUE(thumbnails().isEmpty());
    EXPECT_EQ(label(), app::text(7));
}

TEST_F(MainGroups, ClickOnTheShownGroupReadsNothingAnew) {
    const auto pumps = makeGroup("Pumpen");
    makeGroup("Tanks");
    addPicture(pumps, "P1");
    start();
    clickNode("Pumpen");
    addPicture(pumps, "P2");
    clickNode("Pumpen");
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
    clickNode("Tanks");
    clickNode("Pumpen");
    EXPECT_EQ(thumbnails(), (QStringList{"P1", "P2"}));
}

TEST_F(MainGroups, KeyboardChoosesGroupsLikeTheMouse) {
    addPicture(makeGroup("A"), "P1");
    addPicture(makeGroup("B"), "P2");
    start();
    clickNode("A");
    QTest::keyClick(tree(), Qt::Key_Down);
    settle();
    EXPECT_EQ(selectedNode(), "B");
    EXPECT_EQ(label(), "P2");
}

TEST_F(MainGroups, RestartSelectsTheGroupLastUsed) {
    const auto pumps = makeGroup("Pumpen");
    const auto rotary = makeGroup("Kreisel", pumps);
    addPicture(rotary, "K1");
    start();
    clickNode("Pumpen/Kreisel");
    restart();
    EXPECT_EQ(selectedNode(), "Kreisel");
    EXPECT_EQ(thumbnails(), QStringList{"K1"});
    EXPECT_EQ(label(), ""); // nothing was chosen yet
    // The first click on the selected node fills the view anew.
    addPicture(rotary, "K2");
    clickNode("Pumpen/Kreisel");
    EXPECT_EQ(thumbnails(), (QStringList{"K1", "K2"}));

    store::deleteGroup(library(), rotary);
    restart();
    EXPECT_EQ(selectedNode(), "");
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(MainGroups, NodeAddedByACommandIsFoundAgainAfterARestart) {
    makeGroup("Armaturen");
    start();
    addPicture(makeGroup("Ventile"), "V1");
    window().TreeViewAdd({u"Ventile"});
    settle();
    EXPECT_EQ(selectedNode(), "Ventile");
    EXPECT_EQ(thumbnails(), QStringList{"V1"});
    EXPECT_EQ(window().GetNodeIndex("Ventile"), 2);
    EXPECT_EQ(window().GetNodeIndex("ventile"), 0);
    window().close();
    EXPECT_EQ(app::settings().currentGroup(), "Ventilea");
    restart();
    EXPECT_EQ(selectedNode(), "Ventile");
}

TEST_F(MainGroups, PressOnTheFreeAreaTakesTheSelectionAway) {
    makeGroup("Pumpen");
    start();
    clickNode("Pumpen");
    QContextMenuEvent request(QContextMenuEvent::Mouse, {5, tree()->viewport()->height() - 5},
                              tree()->viewport()->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(tree()->viewport(), &request);
    EXPECT_EQ(selectedNode(), "");
    EXPECT_TRUE(find<QMenu>("Band2")->isVisible());
    find<QMenu>("Band2")->close();
    // What was selected before must not reach the next command.
    EXPECT_EQ(offeredTargets("gNew"), QStringList{"TXSGraphicsLib"});
}

TEST_F(MainGroups, WithoutASelectedNodeNothingIsShownNorOffered) {
    const auto pumps = makeGroup("Pumpen");
    for (const char* name : {"P1", "P2", "P3", "P4", "P5", "P6", "P7", "P8", "P9"}) {
        addPicture(pumps, name);
    }
    makeGroup("Ventile");
    start();
    const auto* preview = find<browser::LargePreview>("imgVorschau");
    const auto expectNothing = [&] {
        settle();
        EXPECT_EQ(selectedNode(), "");
        EXPECT_EQ(label(), "");
        EXPECT_TRUE(preview->isEmpty());
        EXPECT_TRUE(thumbnails().isEmpty());
        EXPECT_TRUE(rows().isEmpty());
        EXPECT_EQ(find<QScrollBar>("imgScroll")->maximum(), 1);
        for (const char* action : {"Men_Datei_4", "Men_Datei_5", "Men_Bearbeiten_1",
                                   "Men_Bearbeiten_3", "Men_Bearbeiten_6", "Men_Bearbeiten_8"}) {
            EXPECT_FALSE(isEnabled(action)) << action;
        }
        EXPECT_TRUE(isEnabled("Men_Datei_0"));
    };
    expectNothing();                                         // nothing is remembered yet
    window().resize(window().minimumSize() + QSize(0, 100)); // few thumbnails
    for (const bool isListTheView : {false, true}) {
        clickNode("Pumpen");
        EXPECT_EQ(label(), "P1");
        EXPECT_TRUE(isEnabled("Men_Bearbeiten_3"));
        EXPECT_GT(find<QScrollBar>("imgScroll")->maximum(), 1);
        clickFreeArea(Qt::LeftButton);
        expectNothing();
        window().refresh();
        expectNothing();
        clickNode("Pumpen"); // the very node is filled again
        EXPECT_GT(isListTheView ? rows().size() : thumbnails().size(), 2);
        trigger("Men_Extras_0");
    }
    // The group goes away behind the window's back.
    clickNode("Pumpen");
    ASSERT_TRUE(std::filesystem::remove(library().folder / "Pumpen.stg"));
    trigger("gInfo");
    EXPECT_EQ(boxes_.take().size(), 1);
    expectNothing();
    window().refresh();
    expectNothing();
}

// The press itself only unfolds the node then.
TEST_F(MainGroups, BandOpenedOnTheUnfoldingSignBelongsToThatNode) {
    makeGroup("Pumpen");
    makeGroup("Kugelhahn", makeGroup("Ventile"));
    start();
    clickNode("Pumpen");
    const QRect row = tree()->visualItemRect(node("Ventile"));
    const QPoint sign(row.left() - 9, row.center().y());
    QTest::mousePress(tree()->viewport(), Qt::RightButton, {}, sign);
    QContextMenuEvent request(QContextMenuEvent::Mouse, sign,
                              tree()->viewport()->mapToGlobal(sign));
    QApplication::sendEvent(tree()->viewport(), &request);
    EXPECT_TRUE(find<QMenu>("Band2")->isVisible());
    EXPECT_EQ(selectedNode(), "Ventile");
    find<QMenu>("Band2")->close();
}

TEST_F(MainGroups, NewGroupOffersTheSelectionOfTheMoment) {
    const auto pumps = makeGroup("Pumpen");
    makeGroup("Kreisel", pumps);
    start();
    QString preset;
    clickNode("Pumpen");
    EXPECT_EQ(offeredTargets("Men_Datei_0", &preset), (QStringList{"TXSGraphicsLib", "Pumpen"}));
    EXPECT_EQ(preset, "TXSGraphicsLib");
    clickNode("Pumpen/Kreisel");
    EXPECT_EQ(offeredTargets("gNew", &preset), (QStringList{"TXSGraphicsLib", "Pumpen / Kreisel"}));
    EXPECT_EQ(preset, "Pumpen / Kreisel");
}

TEST_F(MainGroups, NewGroupsComeToTheTopBelowAndByChoice) {
    start();
    makeByDialog("Men_Datei_0", "Pumpen");
    EXPECT_EQ(selectedNode(), "Pumpen");
    EXPECT_EQ(label(), app::text(7));
    makeByDialog("gNew", "Kreisel", 1); // below, by choice
    ASSERT_NE(node("Pumpen/Kreisel"), nullptr);
    EXPECT_EQ(selectedNode(), "Kreisel");
    makeByDialog("gNew", "Edelstahl"); // below a sub-group by itself
    ASSERT_NE(node("Pumpen/Kreisel/Edelstahl"), nullptr);
    makeByDialog("gNew", "Tanks", 0);
    ASSERT_NE(node("Tanks"), nullptr);
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_EQ(storagesFolder(), (QStringList{"Pumpen.stg", "Tanks.stg"}));

    // The new group is the one that add picture and the rest act on.
    EXPECT_EQ(window().selectedGroup()->address, store::topLevelAddress(u"Tanks"));
    restart();
    EXPECT_NE(node("Pumpen/Kreisel/Edelstahl"), nullptr);
    EXPECT_EQ(selectedNode(), "Tanks");
}

TEST_F(MainGroups, NewGroupRefusesNamesAndStaysOpen) {
    const auto pumps = makeGroup("Pumpen");
    makeGroup("Kreisel", pumps);
    start();
    clickNode("Pumpen/Kreisel");
    const auto messageFor = [&](const QString& name, int target) {
        makeByDialog("Men_Datei_0", name, target);
        const auto boxes = boxes_.take();
        if (boxes.size() != 1) {
            return QStringLiteral("%1 boxes").arg(boxes.size());
        }
        EXPECT_EQ(boxes[0].title, app::text(800));
        return boxes[0].text;
    };
    EXPECT_EQ(messageFor("", 0), app::text(850));
    EXPECT_EQ(messageFor("Pumpen", 0), app::text(851));
    EXPECT_EQ(messageFor("PUMPEN", 0), app::text(852)); // its file would meet Pumpen.stg
    EXPECT_EQ(messageFor("a/b", 0), app::text(852));
    EXPECT_EQ(messageFor("None", 0), app::text(852));
    EXPECT_EQ(messageFor(QString(28, 'x'), 0), app::text(852));
    EXPECT_EQ(messageFor(QString(32, 'x'), 1), app::text(852));
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});

    // A full stop cannot be typed; siblings are compared below the chosen parent only.
    makeByDialog("Men_Datei_0", "V1.2", 1);
    EXPECT_NE(node("Pumpen/Kreisel/V12"), nullptr);
    clickNode("Pumpen/Kreisel");
    EXPECT_EQ(messageFor("V12", 1), app::text(851));
    makeByDialog("Men_Datei_0", "Kreisel", 1);
    EXPECT_NE(node("Pumpen/Kreisel/Kreisel"), nullptr);
}

TEST_F(MainGroups, AFailureOfTheDiskIsToldAndKeepsTheDialogOpen) {
    start();
    ASSERT_TRUE(QDir(QString::fromStdString(library().folder.string())).removeRecursively());
    makeByDialog("Men_Datei_0", "Pumpen");
    const auto boxes = boxes_.take();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(boxes[0].text.contains("Storages")) << boxes[0].text.toStdString();
    EXPECT_EQ(boxes[0].title, app::text(800));
}

TEST_F(MainGroups, LockedGroupKeepsItsNodeAndCanBeTriedAgain) {
    const auto pumps = makeGroup("Pumpen");
    makeGroup("Kreisel", pumps);
    addPicture(pumps, "P1");
    auto file = holdLocked(library().folder / "Pumpen.stg");
    start();
    ASSERT_NE(node("Pumpen"), nullptr);
    EXPECT_EQ(node("Pumpen/Kreisel"), nullptr);
    EXPECT_FALSE(node("Pumpen")->toolTip(0).isEmpty());
    clickNode("Pumpen");
    EXPECT_TRUE(thumbnails().isEmpty());
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});

    file.reset();
    clickNode("Pumpen");
    EXPECT_NE(node("Pumpen/Kreisel"), nullptr);
    EXPECT_TRUE(node("Pumpen")->toolTip(0).isEmpty());
    EXPECT_EQ(selectedNode(), "Pumpen");
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
}

// The pictures of a group that could not be read are not waited for once more.
TEST_F(MainGroups, LockedGroupLastUsedIsSelectedButEmptyAfterAStart) {
    addPicture(makeGroup("Pumpen"), "P1");
    start();
    clickNode("Pumpen");
    window().close();
    auto file = holdLocked(library().folder / "Pumpen.stg");
    restart();
    EXPECT_EQ(selectedNode(), "Pumpen");
    EXPECT_TRUE(thumbnails().isEmpty());
    file.reset();
    clickNode("Pumpen");
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
    EXPECT_EQ(label(), "P1");
}

TEST_F(MainGroups, RefreshShowsThePicturesOfATopLevelGroupAfterItsRelease) {
    addPicture(makeGroup("Pumpen"), "P1");
    start();
    clickNode("Pumpen");
    const auto refresh = [this] {
        window().refresh();
        settle();
    };
    const auto path = library().folder / "Pumpen.stg";
    for (const auto& meanwhile : std::vector<std::function<void()>>{
             refresh, [this] { restart(); }, [this] { clickNode("Pumpen"); }}) {
        auto file = holdLocked(path);
        refresh();
        meanwhile();
        EXPECT_EQ(selectedNode(), "Pumpen");
        EXPECT_TRUE(thumbnails().isEmpty());
        file.reset();
        refresh();
        EXPECT_EQ(thumbnails(), QStringList{"P1"});
        EXPECT_EQ(label(), "P1");
    }
}

TEST_F(MainGroups, ASubGroupOfALockedFileStaysRemembered) {
    makeGroup("Kreisel", makeGroup("Pumpen"));
    start();
    clickNode("Pumpen/Kreisel");
    window().close();
    {
        auto file = holdLocked(library().folder / "Pumpen.stg");
        restart();
        EXPECT_EQ(selectedNode(), "");
        window().close();
    }
    restart();
    EXPECT_EQ(selectedNode(), "Kreisel");
}

TEST_F(MainGroups, UnfoldingALockedGroupTriesItAgain) {
    makeGroup("Kreisel", makeGroup("Pumpen"));
    auto file = holdLocked(library().folder / "Pumpen.stg");
    start();
    file.reset();
    tree()->expandItem(node("Pumpen"));
    ASSERT_TRUE(until([&] { return node("Pumpen/Kreisel") != nullptr; }));
}

TEST_F(MainGroups, DamagedFilesAreSetAsideReportedAndGone) {
    makeGroup("Pumpen");
    writeGroupFile("Kaputt.stg", "no group file");
    start();
    EXPECT_EQ(node("Kaputt"), nullptr);
    const auto one = boxes_.take();
    ASSERT_EQ(one.size(), 2);
    EXPECT_EQ(one[0].text, "Es wurde 1 kaputte Storage gefunden! Soll diese gelöscht werden?");
    EXPECT_EQ(one[0].title, "Achtung");
    EXPECT_EQ(one[0].buttons, app::Buttons::OkCancel);
    EXPECT_EQ(one[1].text, "Die 1 kaputte Storage wurde gelöscht!");
    EXPECT_EQ(one[1].title, "TXSGraphicsLib");
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});

    for (const char* name : {"a.stg", "b.stg", "c.stg"}) {
        writeGroupFile(name, "no group file");
    }
    app::setLanguage(app::kEnglishLocale);
    restart();
    const auto three = boxes_.take();
    ASSERT_EQ(three.size(), 2);
    EXPECT_EQ(three[0].text, "3 corrupt storages detected! Do you wan't to delete them?");
    EXPECT_EQ(three[1].text, "3 corrupt storage was deleted!");
}

TEST_F(MainGroups, DamagedFilesGoWhenTheQuestionIsCancelledButToTheTrash) {
    writeGroupFile("Kaputt.stg", "no group file");
    {
        const MessageBoxScript cancel({app::kAnswerCancel});
        start();
    }
    EXPECT_TRUE(storagesFolder().isEmpty());
    bool isKept = false;
    QDirIterator files(home_.root(), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        isKept = isKept || QFileInfo(files.next()).fileName().startsWith("Kaputt");
    }
    EXPECT_TRUE(isKept);
}

TEST_F(MainGroups, AnUnreachableLibraryIsAnEmptyTreeAndForgetsNothing) {
    makeGroup("Pumpen");
    start();
    clickNode("Pumpen");
    window().close();
    const QString folder = QString::fromStdString(library().folder.string());
    const QString parent = QFileInfo(QDir::cleanPath(folder)).path();
    ASSERT_TRUE(QFile::rename(QDir::cleanPath(folder), parent + "/Elsewhere"));
    ASSERT_TRUE(QFile(QDir::cleanPath(folder)).open(QIODevice::WriteOnly)); // a file stands there
    restart();
    EXPECT_EQ(tree()->topLevelItemCount(), 0);
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_FALSE(isEnabled("Men_Bearbeiten_6"));
    EXPECT_TRUE(isEnabled("Men_Datei_0"));
    window().close();
    ASSERT_TRUE(QFile::remove(QDir::cleanPath(folder)));
    ASSERT_TRUE(QFile::rename(parent + "/Elsewhere", QDir::cleanPath(folder)));
    restart();
    EXPECT_EQ(selectedNode(), "Pumpen");
}

// Items are destroyed by recursion; a chain as long as a hostile file can hold must not be one.
TEST(GroupTreeNodes, AChainOfVeryManyGroupsIsShownAndTakenDown) {
    constexpr int kGroups = 200'000;
    groups::GroupFile file{{u"Pumpen"}, {}};
    file.reading.state = store::GroupFileState::Sound;
    store::GroupAddress address = store::topLevelAddress(u"Pumpen");
    file.reading.groups.push_back({address, {u"Pumpen"}, {}});
    for (int i = 1; i <= kGroups; ++i) {
        const store::StorageName parent = address.storage;
        address.storage.text = u"Sub" + QString::number(i).toStdU16String();
        file.reading.groups.push_back({address, {u"x"}, parent});
    }
    groups::GroupTree tree;
    tree.rebuild({&file, 1});
    EXPECT_EQ(tree.nodeCount(), kGroups + 1);
    ASSERT_TRUE(tree.select(address));
    EXPECT_EQ(tree.selected()->address, address);
}

TEST_F(MainGroups, CaptionsFollowTheLanguage) {
    app::setLanguage(app::kEnglishLocale);
    makeGroup("Pumpen");
    start();
    EXPECT_EQ(find<QAction>("Men_Extras_0")->text(), "&Graphical prewiev");
    EXPECT_EQ(find<QAction>("gCreate")->text(), "Create group out of &directory...");
    EXPECT_EQ(find<QMenu>("Men_Datei")->title(), "&File");
    EXPECT_FALSE(find<QAction>("Men_Bearbeiten_0")->isVisible());
    trigger("gEdit"); // stands in the layout without a command
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(MainGroups, LeavingSavesTheSettingsAndRemovesTemporaryPictures) {
    makeGroup("Pumpen");
    start();
    clickNode("Pumpen");
    app::settings().setPath("/somewhere");
    const QDir temporary(app::settings().temporaryFolder());
    ASSERT_TRUE(temporary.mkpath("."));
    for (const char* name : {"Picture.BMP", "EditPicture.gif", "UndoPicture.ICO", "Other.bmp"}) {
        QFile file(temporary.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name;
    }
    trigger("Men_Datei_6");
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(temporary.entryList(QDir::Files), QStringList{"Other.bmp"});
    app::settings().setPath({});
    app::settings().setCurrentGroup({});
    app::settings().readPaths();
    app::settings().readCurrentGroup();
    EXPECT_EQ(app::settings().path(), "/somewhere");
    EXPECT_EQ(app::settings().currentGroup(), "Pumpen/Pumpen");
}

} // namespace
