// Deleting groups and asking for information about them.
#include "app/settings.h"
#include "platform/native_disk.h"
#include "store/picture_operations.h"
#include "store/storage_access.h"
#include "ui/group_dialogs_fixture.h"

#include <QAction>
#include <QApplication>
#include <QDirIterator>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

namespace {

class GroupRemoval : public GroupDialogsTest {
  protected:
    // What the command asks, answered with `answer`; says so when it asked or told something else.
    QString askedBy(const QString& action, int answer) {
        MessageBoxScript script({answer});
        trigger(action);
        settle();
        const auto boxes = script.take();
        if (boxes.size() != 1) {
            return QStringLiteral("(%1 boxes)").arg(boxes.size());
        }
        EXPECT_EQ(boxes[0].title, "TXSGraphicsLib");
        EXPECT_EQ(boxes[0].buttons, app::Buttons::YesNo);
        return boxes[0].text;
    }

    QString question(const QString& name) {
        return say("Möchten Sie die Gruppe \"%1\" wirklich löschen?",
                   "Are you sure that you want to delete group \"%1\" ?")
            .arg(name);
    }

    // The same where a group goes along that lies below.
    QString questionWithOneBelow(const QString& name) {
        return question(name) + say("\n\nIhre Untergruppe wird mitgelöscht.",
                                    "\n\nIts sub-group is deleted as well.");
    }

    QString noGroup() {
        return say("Es wurde noch keine Gruppe ausgewählt!", "No group selected!");
    }

    QStringList filesOfHomeNamed(const QString& name) const {
        QStringList found;
        QDirIterator files(home_.root(), {name}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            found.append(files.next());
        }
        return found;
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, GroupRemoval, EveryLanguageTest::all());

TEST_P(GroupRemoval, ATopLevelGroupGoesToTheTrashAfterAYes) {
    addPicture(makeGroup("Armaturen"), "A1");
    const auto pumps = makeGroup("Pumpen");
    makeGroup("Kreisel", pumps);
    addPicture(pumps, "P1");
    start();
    clickNode("Pumpen");
    const QByteArray content = bytesOf("Pumpen.stg");
    EXPECT_EQ(askedBy("Men_Bearbeiten_8", app::kAnswerNo), questionWithOneBelow("Pumpen"));
    EXPECT_EQ(selectedNode(), "Pumpen");
    EXPECT_EQ(label(), "P1");
    EXPECT_EQ(storagesFolder(), (QStringList{"Armaturen.stg", "Pumpen.stg"}));

    EXPECT_EQ(askedBy("gDelete", app::kAnswerYes), questionWithOneBelow("Pumpen"));
    EXPECT_EQ(node("Pumpen"), nullptr);
    EXPECT_EQ(storagesFolder(), QStringList{"Armaturen.stg"});
    const QStringList kept = filesOfHomeNamed("Pumpen*");
    ASSERT_FALSE(kept.isEmpty());
    EXPECT_EQ(home_.read(QDir(home_.root()).relativeFilePath(kept.first())), content);
    EXPECT_EQ(selectedNode(), "Armaturen");
    EXPECT_EQ(thumbnails(), QStringList{"A1"});
    EXPECT_EQ(label(), "A1");
}

TEST_P(GroupRemoval, ASubGroupGoesWithThoseBelowItAndNoOther) {
    const auto pumps = makeGroup("Pumpen");
    const auto rotary = makeGroup("Kreisel", pumps);
    addPicture(makeGroup("Edelstahl", rotary), "E1");
    addPicture(makeGroup("Guss", pumps), "G1");
    const auto twin = makeGroup("Kreisel", makeGroup("Armaturen"));
    ASSERT_EQ(twin.storage, rotary.storage); // the same key but for the file
    addPicture(pumps, "P1");
    start();
    clickNode("Pumpen/Kreisel");
    EXPECT_EQ(askedBy("gDelete", app::kAnswerYes), questionWithOneBelow("Kreisel"));
    EXPECT_EQ(node("Pumpen/Kreisel"), nullptr);
    EXPECT_NE(node("Armaturen/Kreisel"), nullptr);
    EXPECT_EQ(selectedNode(), "Armaturen");
    clickNode("Pumpen/Guss");
    EXPECT_EQ(label(), "G1");
    restart();
    EXPECT_EQ(node("Pumpen")->childCount(), 1);
    EXPECT_EQ(store::readGroupSize(library(), pumps).pictures, 1U);

    // Two deep, from the menu: the group above stays.
    const auto inner = makeGroup("Innen", twin);
    addPicture(inner, "I1");
    restart();
    clickNode("Armaturen/Kreisel/Innen");
    EXPECT_EQ(askedBy("Men_Bearbeiten_8", app::kAnswerYes), question("Innen"));
    EXPECT_NE(node("Armaturen/Kreisel"), nullptr);
    EXPECT_EQ(node("Armaturen/Kreisel")->childCount(), 0);
}

TEST_P(GroupRemoval, TheLastGroupLeavesTheEmptyState) {
    for (const bool isListTheView : {false, true}) {
        addPicture(makeGroup("Pumpen"), "P1");
        start();
        if (isListTheView) {
            trigger("Men_Extras_0");
        }
        clickNode("Pumpen");
        EXPECT_EQ(askedBy("Men_Bearbeiten_8", app::kAnswerYes), question("Pumpen"));
        EXPECT_EQ(tree()->topLevelItemCount(), 0);
        EXPECT_TRUE(rows().isEmpty());
        EXPECT_TRUE(thumbnails().isEmpty());
        EXPECT_EQ(label(), "");
        EXPECT_FALSE(find<QAction>("Men_Bearbeiten_8")->isEnabled());
        EXPECT_TRUE(find<QAction>("Men_Datei_0")->isEnabled());
        // No command acts on the group that was there.
        trigger("gDelete");
        EXPECT_EQ(boxes_.takeText(), noGroup());
        trigger("Men_Bearbeiten_9");
        EXPECT_EQ(boxes_.takeText(), noGroup());
        window().close();
        EXPECT_EQ(app::settings().currentGroup(), "");
    }
}

// As another program may leave it.
TEST_P(GroupRemoval, ASubGroupWithoutItsNameHasItsInformation) {
    const auto group = makeGroup("Kreisel", makeGroup("Pumpen"));
    addPicture(group, "P1");
    {
        store::StorageAccess access(library());
        access.openGroup(group, compound::Access::ReadWrite);
        access.groupStorage().DestroyElement(u"Name");
        access.Commit();
    }
    start();
    clickNode("Pumpen/Sub1");
    inDialog([&] { trigger("gInfo"); },
             [](QDialog& dialog) {
                 EXPECT_EQ(dialog.findChild<QLabel*>("lblName2")->text(), "Sub1");
                 EXPECT_EQ(dialog.findChild<QLabel*>("lblBilder2")->text(), "1");
             });
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_P(GroupRemoval, ANodeAddedByACommandCanBeDeleted) {
    makeGroup("Armaturen");
    start();
    makeGroup("Ventile");
    window().TreeViewAdd({u"Ventile"});
    settle();
    EXPECT_EQ(askedBy("gDelete", app::kAnswerYes), question("Ventile"));
    EXPECT_EQ(node("Ventile"), nullptr);
    EXPECT_EQ(storagesFolder(), QStringList{"Armaturen.stg"});
}

TEST_P(GroupRemoval, ALockedOrVanishedGroupIsNamed) {
    makeGroup("Armaturen");
    makeGroup("Kreisel", makeGroup("Pumpen"));
    start();
    for (const QString path : {"Pumpen", "Pumpen/Kreisel"}) {
        clickNode(path);
        const QString shown = QString(path).replace("/", " / ");
        const auto lock = lockFile("Pumpen.stg");
        MessageBoxScript script({app::kAnswerYes});
        trigger("gDelete");
        trigger("gInfo");
        const auto boxes = script.take();
        ASSERT_EQ(boxes.size(), 3);
        for (const int failure : {1, 2}) {
            const QString text = boxes[failure].text;
            EXPECT_TRUE(text.contains(shown + u'\n')) << text.toStdString();
            EXPECT_TRUE(text.contains(say("wird von einem anderen Programm benutzt",
                                          "Another program is using the file")))
                << text.toStdString();
        }
        EXPECT_EQ(boxes[1].title, "TXSGraphicsLib");
        EXPECT_EQ(boxes[2].title, say("Gruppen-Info", "Group-Info"));
        EXPECT_NE(node(path), nullptr);
        EXPECT_EQ(window().selectedGroup()->path, shown);
    }
    EXPECT_EQ(storagesFolder(), (QStringList{"Armaturen.stg", "Pumpen.stg"}));

    store::removeGroupFile(library(), {u"Pumpen"});
    MessageBoxScript script({app::kAnswerYes});
    trigger("gDelete");
    settle();
    const auto boxes = script.take();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_TRUE(boxes[1].text.contains(say("Nicht gefunden", "Not found")));
    EXPECT_EQ(node("Pumpen"), nullptr);
    trigger("gInfo");
    EXPECT_EQ(script.takeText(), noGroup());
}

// --- Information

class GroupInfo : public GroupDialogsTest {
  protected:
    // Name, pictures and size as the dialog shows them.
    QStringList factsBy(const QString& action) {
        QStringList facts;
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) {
                     for (const char* name : {"lblName2", "lblBilder2", "lblGr_e2"}) {
                         facts.append(dialog.findChild<QLabel*>(name)->text());
                     }
                     QTest::keyClick(&dialog, Qt::Key_Return);
                     EXPECT_FALSE(dialog.isVisible());
                 });
        return facts;
    }

    // Adds the picture that makes the group's streams take `total` bytes together.
    void fillUpTo(const store::GroupAddress& group, const QString& name, std::uint64_t total) {
        const std::uint64_t taken = store::readGroupSize(library(), group).bytes;
        ASSERT_LT(taken, total);
        home_.write("filler.bmp", QByteArray(static_cast<qsizetype>(total - taken), 'x'));
        store::addPicture(library(), group, {name.toStdU16String()},
                          platform::toFilePath(home_.at("filler.bmp")));
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, GroupInfo, EveryLanguageTest::all());

TEST_P(GroupInfo, TellsNamePicturesAndSizeOfTheSelectedGroup) {
    const auto pumps = makeGroup("Pumpen");
    const auto rotary = makeGroup("Kreisel", pumps);
    const auto steel = makeGroup("A & B", rotary);
    fillUpTo(steel, "E1", 1000);
    fillUpTo(steel, "E2", 1536);
    fillUpTo(rotary, "K1", 1048576);
    start();
    clickNode("Pumpen/Kreisel/A & B");
    EXPECT_EQ(factsBy("gInfo"), (QStringList{"A & B", "2", number("1.5 KB")}));
    clickNode("Pumpen/Kreisel");
    EXPECT_EQ(factsBy("Men_Bearbeiten_9"), (QStringList{"Kreisel", "1", "1024 KB"}));
    // Counted afresh; only a comma cuts the digits.
    fillUpTo(rotary, "K2", 1048577);
    EXPECT_EQ(factsBy("gInfo"),
              (QStringList{"Kreisel", "2", hasComma() ? "1,00 MB" : "1.00000095367432 MB"}));
}

TEST_P(GroupInfo, IsCaptionedAndClosed) {
    makeGroup("Pumpen");
    start();
    trigger("gInfo");
    EXPECT_EQ(boxes_.takeText(),
              say("Es wurde noch keine Gruppe ausgewählt!", "No group selected!"));
    clickNode("Pumpen");
    inDialog([&] { trigger("gInfo"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(dialog.windowTitle(), say("Gruppen-Info", "Group-Info"));
                 EXPECT_EQ(dialog.findChild<QGroupBox*>("fraGr_e")->title(),
                           say("Größe der Gruppe:", "Size of group:"));
                 EXPECT_EQ(dialog.findChild<QLabel*>("lblName2")->textFormat(), Qt::PlainText);
                 QTest::keyClick(&dialog, Qt::Key_Escape);
                 EXPECT_FALSE(dialog.isVisible());
             });
}

} // namespace
