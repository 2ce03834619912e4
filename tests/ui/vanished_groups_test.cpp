// Commands on a group that another program holds or has removed: the box names group and cause, and
// the window shows afterwards what is there.
#include "app/settings.h"
#include "ui/group_dialogs_fixture.h"

#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QTreeWidget>

namespace {

enum class Vanished { SubGroup, File };

class VanishedGroups : public GroupDialogsTest {
  protected:
    // Shows the vector picture K1 of Kreisel below Pumpen, in a library without what an earlier
    // start has left.
    void startAtSubGroup() {
        for (const char* file : {"Pumpen.stg", "Armaturen.stg"}) {
            std::filesystem::remove(library().folder / file);
        }
        makeGroup("Armaturen");
        group_ = makeGroup("Kreisel", makeGroup("Pumpen"));
        addPicture(group_, "K1", Qt::red, "wmf");
        start();
        clickNode("Pumpen/Kreisel");
        QTest::mouseClick(thumbnail("K1"), Qt::LeftButton);
    }

    void remove(Vanished what) {
        if (what == Vanished::SubGroup) {
            store::deleteGroup(library(), group_);
        } else {
            std::filesystem::remove(library().folder / "Pumpen.stg");
        }
    }

    // How a box begins and goes on that names group, file and cause.
    QString failure(const QString& cause) {
        const auto file = (library().folder / "Pumpen.stg").string();
        return say("Gruppe:", "Group:") + " Pumpen / Kreisel\n" + QString::fromStdString(file) +
               u'\n' + cause;
    }

    static QString gone() { return say("Nicht gefunden.", "Not found."); }

    // The one box since the last call. The node of what has vanished must be gone, and what is left
    // of its file still there.
    QString boxAndRest(Vanished what, const QString& title) {
        settle();
        EXPECT_EQ(node("Pumpen/Kreisel"), nullptr);
        EXPECT_EQ(node("Pumpen") != nullptr, what == Vanished::SubGroup);
        EXPECT_NE(node("Armaturen"), nullptr);
        EXPECT_EQ(selectedNode(), "");
        EXPECT_TRUE(thumbnails().isEmpty());
        EXPECT_EQ(label(), "");
        const auto boxes = boxes_.take();
        EXPECT_EQ(boxes.size(), 1);
        EXPECT_EQ(boxes.value(0).title, title);
        return boxes.value(0).text;
    }

    store::GroupAddress group_;
};

INSTANTIATE_TEST_SUITE_P(Languages, VanishedGroups,
                         testing::Values(LanguageSetting{app::kGermanLocale, u','},
                                         LanguageSetting{app::kEnglishLocale, u'.'}));

TEST_P(VanishedGroups, NothingIsMadeBelowALockedGroupUntilItIsFree) {
    startAtSubGroup();
    inNameField("gNew", [&](QDialog& dialog, QLineEdit& field) {
        {
            const auto lock = lockFile("Pumpen.stg");
            const QString text = answerTo(field, "Edelstahl", dialog.windowTitle());
            EXPECT_TRUE(
                text.startsWith(failure(say("Die Datei wird von einem anderen Programm benutzt.",
                                            "Another program is using the file."))))
                << qPrintable(text);
        }
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(node("Pumpen/Kreisel")->childCount(), 0);
        EXPECT_EQ(thumbnails(), QStringList{"K1"});
        QTest::keyClick(&field, Qt::Key_Return); // the next try succeeds
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(selectedNode(), "Edelstahl");
    EXPECT_NE(node("Pumpen/Kreisel/Edelstahl"), nullptr);
}

TEST_P(VanishedGroups, AreNamedAndLeaveTheWindow) {
    const QString unreadable =
        say("Das Bild \"K1\" der Gruppe ", "The picture \"K1\" of the group ");
    for (const Vanished what : {Vanished::SubGroup, Vanished::File}) {
        for (const QString action :
             {"bInfo", "Men_Bearbeiten_0", "gInfo", "bEdit", "Men_Bearbeiten_2"}) {
            SCOPED_TRACE(action.toStdString());
            startAtSubGroup();
            remove(what);
            trigger(action);
            const QString text =
                boxAndRest(what, action == "gInfo" ? say("Gruppen-Info", "Group-Info")
                                                   : QStringLiteral("TXSGraphicsLib"));
            const bool isEditing = action == "bEdit" || action == "Men_Bearbeiten_2";
            EXPECT_TRUE(text.startsWith(isEditing ? unreadable : failure(gone())))
                << qPrintable(text);
            EXPECT_TRUE(text.contains("Pumpen / Kreisel") && text.contains("Pumpen.stg\n" + gone()))
                << qPrintable(text);
        }
    }
}

TEST_P(VanishedGroups, AreNamedWhenTheyGoUnderTheOpenDialog) {
    for (const Vanished what : {Vanished::SubGroup, Vanished::File}) {
        startAtSubGroup();
        inDialog([&] { trigger("bRename"); },
                 [&](QDialog& dialog) {
                     remove(what);
                     dialog.findChild<QLineEdit*>("txtName")->setText("Neu");
                     QTest::keyClick(&dialog, Qt::Key_Return);
                 });
        const QString text = boxAndRest(what, say("Bild umbenennen", "Rename picture"));
        EXPECT_TRUE(text.startsWith(failure(gone()))) << qPrintable(text);
    }
}

TEST_P(VanishedGroups, AreNamedWhenTheyWereToTakeAnotherGroup) {
    const QString creating =
        say("Gruppe aus Verzeichnis erstellen", "Create group out of directory");
    const QString importing = say("Gruppe importieren", "Import group");
    home_.write("files/a.bmp", "");
    for (const Vanished what : {Vanished::SubGroup, Vanished::File}) {
        for (const bool isImport : {false, true}) {
            startAtSubGroup();
            QFile::copy(QString::fromStdString((library().folder / "Armaturen.stg").string()),
                        home_.at("files/Ventile.stg"));
            app::settings().setDrive("/");
            app::settings().setPath(home_.at("files"));
            inDialog([&] { trigger(isImport ? "Men_Datei_2" : "Men_Datei_1"); },
                     [&](QDialog& dialog) {
                         remove(what);
                         if (isImport) {
                             dialog.findChild<QListWidget*>("filDatei")->setCurrentRow(0);
                         } else {
                             dialog.findChild<QLineEdit*>("txtName")->setText("Neu");
                         }
                         dialog.findChild<QPushButton*>(isImport ? "cmdOK" : "cmdCreate")->click();
                         EXPECT_TRUE(dialog.isVisible());
                         EXPECT_EQ(dialog.findChild<QComboBox*>("cboGruppe")->count(), 1)
                             << "what has vanished is offered no more";
                     });
            const QString text = boxAndRest(what, isImport ? importing : creating);
            EXPECT_TRUE(text.startsWith(failure(gone()))) << qPrintable(text);
        }
    }
}

// Another group is selected by then.
TEST_P(VanishedGroups, AreOfferedNoMoreWhenTheWindowHasNoticedIt) {
    home_.write("files/a.bmp", "");
    for (const QString action : {"gNew", "Men_Datei_1", "Men_Datei_2", "gRename", "bRename"}) {
        SCOPED_TRACE(action.toStdString());
        startAtSubGroup();
        QFile::copy(QString::fromStdString((library().folder / "Armaturen.stg").string()),
                    home_.at("files/Ventile.stg"));
        app::settings().setDrive("/");
        app::settings().setPath(home_.at("files"));
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) {
                     remove(Vanished::SubGroup);
                     window().lookForChanges();
                     settle();
                     EXPECT_EQ(selectedNode(), "Armaturen");
                     for (auto* field : dialog.findChildren<QLineEdit*>()) {
                         field->setText("Neu");
                     }
                     if (auto* files = dialog.findChild<QListWidget*>("filDatei")) {
                         files->setCurrentRow(0);
                     }
                     auto* create = dialog.findChild<QPushButton*>("cmdCreate");
                     (create ? create : dialog.findChild<QPushButton*>("cmdOK"))->click();
                     const auto* target = dialog.findChild<QComboBox*>("cboGruppe");
                     EXPECT_EQ(dialog.isVisible(), target != nullptr);
                     EXPECT_TRUE(target == nullptr || target->count() == 1);
                 });
        const QString text = boxes_.takeText();
        EXPECT_TRUE(text.startsWith(failure(gone()))) << qPrintable(text);
    }
}

} // namespace
