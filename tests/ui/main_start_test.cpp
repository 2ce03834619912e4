// The main window right after its start, before anything is chosen, and when it is left.
#include "app/patience.h"
#include "app/settings.h"
#include "ui/group_dialogs_fixture.h"

#include <QAction>
#include <QFile>
#include <QSignalSpy>
#include <QTreeWidget>

namespace {

class MainStart : public GroupDialogsTest {};

INSTANTIATE_TEST_SUITE_P(Languages, MainStart, EveryLanguageTest::all());

// The group last used is selected and its pictures are there, but none of them is chosen.
TEST_P(MainStart, WithoutAChosenPictureNothingHappensToAny) {
    const auto group = makeGroup("Pumpen");
    addPicture(group, "P1");
    addPicture(group, "P2");
    start();
    clickNode("Pumpen");
    restart();
    ASSERT_EQ(selectedNode(), "Pumpen");
    ASSERT_EQ(label(), "");
    const QByteArray before = bytesOf("Pumpen.stg");
    MessageBoxScript yes({}, app::kAnswerYes);
    for (const char* action :
         {"bEdit", "Men_Bearbeiten_2", "Men_Bearbeiten_0", "bDelete", "Men_Bearbeiten_3"}) {
        trigger(action);
        settle();
        EXPECT_TRUE(yes.take().isEmpty()) << action;
        EXPECT_EQ(label(), "") << action;
    }
    for (const char* action : {"bRename", "Men_Bearbeiten_1"}) {
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) {
                     dialog.findChild<QLineEdit*>("txtName")->setText("Neu");
                     QTest::keyClick(&dialog, Qt::Key_Return);
                     EXPECT_EQ(yes.takeText(),
                               say("Kein Bild ausgewählt.", "No picture selected."));
                 });
    }
    EXPECT_EQ(bytesOf("Pumpen.stg"), before);
    EXPECT_FALSE(QFile::exists(app::settings().temporaryFolder() + "Picture.BMP"));
    EXPECT_EQ(thumbnails(), (QStringList{"P1", "P2"}));
    EXPECT_EQ(label(), "");
}

TEST_P(MainStart, TheGraphicalPreviewIsTickedAndFollowsTheToggle) {
    const auto group = makeGroup("Pumpen");
    addPicture(group, "P1");
    start();
    clickNode("Pumpen");
    auto* preview = find<QAction>("Men_Extras_0");
    const auto expectThumbnails = [&](bool areShown) {
        EXPECT_EQ(preview->isChecked(), areShown);
        EXPECT_EQ(find<QWidget>("shpVorschau")->isVisible(), areShown);
        EXPECT_EQ(find<QTreeWidget>("lvwInfo")->isVisible(), !areShown);
    };
    expectThumbnails(true);
    preview->trigger();
    expectThumbnails(false);
    EXPECT_TRUE(thumbnails().isEmpty());
    addPicture(group, "P2"); // comes with the thumbnails
    preview->trigger();
    settle();
    expectThumbnails(true);
    EXPECT_EQ(thumbnails(), (QStringList{"P1", "P2"}));
}

TEST_P(MainStart, LeavingAServerOnlyHidesItsWindow) {
    addPicture(makeGroup("Pumpen"), "P1");
    browser::frmMain server(browser::StartMode::Server);
    const QSignalSpy unloaded(&server, &browser::frmMain::unloaded);
    auto* groups = server.findChild<QTreeWidget*>("tvwGruppen");
    for (const int visit : {1, 2}) {
        server.show();
        ASSERT_TRUE(until([&] { return server.isSettled(); }));
        groups->setCurrentItem(groups->topLevelItem(0));
        server.awaitShown();
        EXPECT_EQ(server.shownPicture().caption(), "P1") << visit;
        server.findChild<QAction*>("Men_Datei_6")->trigger();
        EXPECT_FALSE(server.isVisible()) << visit;
        EXPECT_EQ(unloaded.count(), 0) << visit;
    }
}

} // namespace
