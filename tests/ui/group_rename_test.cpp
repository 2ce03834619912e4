// New group and rename group through their dialogs.
#include "store/picture_operations.h"
#include "ui/group_dialogs_fixture.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

namespace {

class GroupNames : public GroupDialogsTest {
  protected:
    QString title() { return say("Gruppe umbenennen", "Rename group"); }
    QString exists(const QString& name) {
        return say("Die Gruppe %1 existiert bereits.", "The group %1 already exists.").arg(name);
    }
    QString invalid() { return say("Ungültiger Gruppenname.", "Invalid name for the group."); }
    QString renamed(const QString& from, const QString& to) {
        return say("Die Gruppe %1 wurde in %2 umbenannt.", "The group %1 was renamed into %2.")
            .arg(from, to);
    }

    store::GroupAddress selectedAddress() {
        const auto selected = window().selectedGroup();
        return selected ? selected->address : store::GroupAddress{};
    }

    void rename(const QString& action, const QString& to, const QString& message) {
        inNameField(action, [&](QDialog& dialog, QLineEdit& field) {
            EXPECT_EQ(answerTo(field, to, title()), message);
            EXPECT_FALSE(dialog.isVisible());
        });
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, GroupNames, EveryLanguageTest::all());

TEST_P(GroupNames, RenamingRefusesInItsOwnOrderAndWritesNothing) {
    const auto pumps = makeGroup("Pumpen");
    const auto rotary = makeGroup("Kreisel", pumps);
    makeGroup("Edelstahl", rotary);
    makeGroup("Guss", rotary);
    start();
    clickNode("Pumpen/Kreisel/Edelstahl");
    const QByteArray before = bytesOf("Pumpen.stg");
    inNameField("gRename", [&](QDialog& dialog, QLineEdit& field) {
        EXPECT_EQ(answerTo(field, "Guss", title()), exists("Guss"));
        EXPECT_EQ(answerTo(field, "Edelstahl", title()), exists("Edelstahl"));
        EXPECT_EQ(answerTo(field, "a:b", title()), invalid());
        EXPECT_EQ(answerTo(field, QString(32, 'x'), title()), invalid());
        EXPECT_EQ(answerTo(field, "", title()), invalid());
        EXPECT_EQ(answerTo(field, "V1.2", title()), invalid());
        EXPECT_EQ(field.text(), "V1.2");
        EXPECT_TRUE(dialog.isVisible());
    });
    EXPECT_EQ(bytesOf("Pumpen.stg"), before);
    EXPECT_EQ(selectedNode(), "Edelstahl");
    // Names are compared among siblings only: the parent's name is free here.
    rename("Men_Bearbeiten_7", "Kreisel", renamed("Edelstahl", "Kreisel"));
    EXPECT_NE(node("Pumpen/Kreisel/Kreisel"), nullptr);
}

TEST_P(GroupNames, RenamingWithoutASelectionSaysWhatIsMissing) {
    makeGroup("Pumpen");
    start();
    inNameField("gRename", [&](QDialog& dialog, QLineEdit& field) {
        EXPECT_EQ(answerTo(field, "Pumpen", title()), exists("Pumpen"));
        EXPECT_EQ(answerTo(field, "a/b", title()), invalid());
        EXPECT_EQ(answerTo(field, "", title()), invalid());
        EXPECT_EQ(answerTo(field, "Tanks", title()),
                  say("Bitte wählen Sie eine Gruppe aus, die umbenannt werden soll.",
                      "Please select a group to rename."));
        EXPECT_TRUE(dialog.isVisible());
    });
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});
}

TEST_P(GroupNames, ASubGroupKeepsWhatHangsBelowIt) {
    const auto pumps = makeGroup("Pumpen");
    const auto rotary = makeGroup("Kreisel", pumps);
    const auto twin = makeGroup("Kreisel", makeGroup("Andere", pumps));
    addPicture(makeGroup("Edelstahl", rotary), "E1");
    addPicture(rotary, "K1");
    addPicture(twin, "Z1");
    start();
    // Both are called the same; the selected one is meant.
    clickNode("Pumpen/Andere/Kreisel");
    rename("Men_Bearbeiten_7", "Zweite", renamed("Kreisel", "Zweite"));
    EXPECT_EQ(selectedNode(), "Zweite");
    EXPECT_EQ(label(), "Z1");
    clickNode("Pumpen/Kreisel");
    rename("gRename", "Rotor", renamed("Kreisel", "Rotor"));
    EXPECT_EQ(selectedNode(), "Rotor");
    EXPECT_EQ(thumbnails(), QStringList{"K1"});
    EXPECT_NE(node("Pumpen/Andere/Zweite"), nullptr);
    clickNode("Pumpen/Rotor/Edelstahl");
    EXPECT_EQ(label(), "E1");
    EXPECT_EQ(store::readGroupName(library(), rotary), (store::GroupName{u"Rotor"}));
}

TEST_P(GroupNames, ATopLevelGroupMovesWithItsSubGroups) {
    const auto pumps = makeGroup("Pumpen");
    addPicture(makeGroup("Kreisel", pumps), "K1");
    makeGroup("Zahnrad", makeGroup("Anlage")); // a node of the new name comes first in the tree
    start();
    trigger("Men_Extras_0"); // with the list as the view
    clickNode("Pumpen/Kreisel");
    clickNode("Pumpen");
    rename("Men_Bearbeiten_7", "Zahnrad", renamed("Pumpen", "Zahnrad"));
    EXPECT_EQ(storagesFolder(), (QStringList{"Anlage.stg", "Zahnrad.stg"}));
    EXPECT_EQ(selectedAddress(), store::topLevelAddress(u"Zahnrad"));
    clickNode("Zahnrad/Kreisel");
    EXPECT_EQ(rows(), QStringList{"K1"});
    // The next command acts on the group under its new name.
    clickNode("Zahnrad");
    rename("gRename", "ZAHNRAD", renamed("Zahnrad", "ZAHNRAD"));
    inNameField("gRename", [&](QDialog&, QLineEdit& field) {
        EXPECT_EQ(answerTo(field, "anlage", title()), invalid()); // its file would meet Anlage.stg
    });
    restart();
    EXPECT_EQ(selectedNode(), "ZAHNRAD");
    EXPECT_NE(node("ZAHNRAD/Kreisel"), nullptr);
}

TEST_P(GroupNames, ALockedGroupIsNamedAndCanBeRenamedLater) {
    const auto rotary = makeGroup("Kreisel", makeGroup("Pumpen"));
    start();
    clickNode("Pumpen/Kreisel");
    inNameField("gRename", [&](QDialog& dialog, QLineEdit& field) {
        {
            const auto lock = lockFile("Pumpen.stg");
            const QString text = answerTo(field, "Rotor", title());
            EXPECT_TRUE(text.contains("Pumpen / Kreisel")) << text.toStdString();
            EXPECT_TRUE(text.contains(say("wird von einem anderen Programm benutzt",
                                          "Another program is using the file")));
        }
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(store::readGroupName(library(), rotary), (store::GroupName{u"Kreisel"}));
        EXPECT_EQ(answerTo(field, "Rotor", title()), renamed("Kreisel", "Rotor"));
    });
    EXPECT_NE(node("Pumpen/Rotor"), nullptr);
}

TEST_P(GroupNames, AGroupThatVanishedIsNamedAndLeavesTheTree) {
    makeGroup("Armaturen");
    const auto rotary = makeGroup("Kreisel", makeGroup("Pumpen"));
    start();
    clickNode("Pumpen/Kreisel");
    store::deleteGroup(library(), rotary);
    inNameField("gRename", [&](QDialog& dialog, QLineEdit& field) {
        EXPECT_TRUE(answerTo(field, "Rotor", title()).contains("Pumpen / Kreisel"));
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_NE(node("Pumpen"), nullptr);
    EXPECT_EQ(node("Pumpen/Kreisel"), nullptr);
    EXPECT_EQ(selectedNode(), "");
    EXPECT_EQ(label(), "");
}

TEST_P(GroupNames, TheDialogOffersTheOldNameAndEscapeChangesNothing) {
    makeGroup("Pumpen");
    makeGroup("Tanks");
    start();
    clickNode("Pumpen");
    QPointer<QDialog> first;
    inNameField("gRename", [&](QDialog& dialog, QLineEdit& field) {
        first = &dialog;
        EXPECT_EQ(dialog.windowTitle(), title());
        EXPECT_EQ(field.accessibleName(), say("Neuer Gruppenname:", "New name for the group:"));
        EXPECT_EQ(dialog.findChild<QPushButton*>("cmdAbbruch")->text(), say("Abbrechen", "Abort"));
        QTest::keyClicks(&field, "Neu");
        QTest::keyClick(&field, Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    });
    clickNode("Tanks");
    inNameField("Men_Bearbeiten_7", [&](QDialog& dialog, QLineEdit& field) {
        EXPECT_EQ(&dialog, first);
        EXPECT_EQ(field.selectedText(), "Tanks");
        EXPECT_EQ(answerTo(field, "Becken", title()), renamed("Tanks", "Becken"));
    });
    EXPECT_EQ(storagesFolder(), (QStringList{"Becken.stg", "Pumpen.stg"}));
}

TEST_P(GroupNames, NewGroupsAreRefusedInTheProgramsLanguage) {
    makeGroup("Kreisel", makeGroup("Pumpen"));
    start();
    clickNode("Pumpen/Kreisel");
    const QString newGroup = say("Neue Gruppe erstellen", "Create new group");
    inNameField("gNew", [&](QDialog& dialog, QLineEdit& field) {
        EXPECT_EQ(answerTo(field, "", newGroup),
                  say("Bitte geben Sie einen Namen an.", "Please enter a name."));
        EXPECT_EQ(answerTo(field, "a\\b", newGroup), say("Ungültiger Name.", "Invalid name."));
        dialog.findChild<QComboBox*>("cboGruppe")->setCurrentIndex(0);
        EXPECT_EQ(answerTo(field, "Pumpen", newGroup),
                  say("Gruppe existiert bereits.", "Group already exists."));
        EXPECT_TRUE(dialog.isVisible());
    });
}

// The parent went behind the window's back: it is named, and offered no longer.
TEST_P(GroupNames, NewGroupsFindTheirParentVanished) {
    const auto rotary = makeGroup("Kreisel", makeGroup("Pumpen"));
    start();
    clickNode("Pumpen/Kreisel");
    store::deleteGroup(library(), rotary);
    const QString newGroup = say("Neue Gruppe erstellen", "Create new group");
    inNameField("gNew", [&](QDialog& dialog, QLineEdit& field) {
        EXPECT_TRUE(answerTo(field, "Edelstahl", newGroup).contains("Pumpen / Kreisel"));
        EXPECT_EQ(node("Pumpen/Kreisel"), nullptr);
        const auto* target = dialog.findChild<QComboBox*>("cboGruppe");
        EXPECT_EQ(target->count(), 1);
        EXPECT_EQ(target->currentText(), "TXSGraphicsLib");
        QTest::keyClick(&field, Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(selectedNode(), "Edelstahl");
    EXPECT_EQ(storagesFolder(), (QStringList{"Edelstahl.stg", "Pumpen.stg"}));
}

} // namespace
