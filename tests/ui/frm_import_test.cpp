// Group files from elsewhere come into the library through the real window in the real main window.
#include "app/patience.h"
#include "app/settings.h"
#include "commands/frm_import.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "platform/paths.h"
#include "startup/import_offer.h"
#include "store/picture_operations.h"
#include "ui/every_language.h"
#include "ui/failing_disk_fixture.h"
#include "ui/modal_dialog_steps.h"

#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <semaphore>

namespace {

class FrmImportTest : public EveryLanguageTest {
  protected:
    FrmImportTest() {
        QDir().mkpath(home_.at("colleague"));
        elsewhere_.emplace(library());
        elsewhere_->folder = platform::toFilePath(home_.at("colleague"));
        elsewhere_->cache = std::make_shared<compound::ReadCache>();
    }

    void startAtColleague() {
        start();
        app::settings().setDrive("/");
        app::settings().setPath(home_.at("colleague"));
    }

    // A file Ventile.stg outside of the library: Ventile with P1 and below it Kugelhahn with P2.
    void makeSource() {
        const auto top = store::createGroup(*elsewhere_, std::nullopt, {u"Ventile"});
        const auto below = store::createGroup(*elsewhere_, top, {u"Kugelhahn"});
        addElsewhere(top, u"P1");
        addElsewhere(below, u"P2");
    }

    void addElsewhere(const store::GroupAddress& group, const char16_t* name) {
        QImage image(8, 8, QImage::Format_RGB32);
        image.fill(Qt::red);
        ASSERT_TRUE(image.save(home_.at("picture.bmp")));
        store::addPicture(*elsewhere_, group, {name},
                          platform::toFilePath(home_.at("picture.bmp")));
    }

    static void choose(QDialog& dialog, const QString& file) {
        auto* files = dialog.findChild<QListWidget*>("filDatei");
        const auto items = files->findItems(file, Qt::MatchExactly);
        ASSERT_EQ(items.size(), 1) << file.toStdString();
        QTest::mouseClick(files->viewport(), Qt::LeftButton, {},
                          files->visualItemRect(items.first()).center());
    }

    static void press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
    }

    // The box that importing that file brings.
    QString answerTo(QDialog& dialog, const QString& file) {
        choose(dialog, file);
        press(dialog, "cmdOK");
        const auto boxes = boxes_.take();
        if (boxes.size() != 1) {
            return QStringLiteral("(%1 boxes)").arg(boxes.size());
        }
        EXPECT_EQ(boxes.first().title, say("Gruppe importieren", "Import group"));
        return boxes.first().text;
    }

    QString exists() { return say("Gruppe existiert bereits.", "Group already exists."); }

    std::optional<store::Library> elsewhere_;
};

INSTANTIATE_TEST_SUITE_P(Languages, FrmImportTest, EveryLanguageTest::all());

TEST_P(FrmImportTest, BringsAFileInAsATopLevelGroupAndShowsIt) {
    makeSource();
    const QByteArray source = home_.read("colleague/Ventile.stg");
    startAtColleague();
    inDialog([&] { trigger("gImport"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(dialog.size(), QSize(305, 235));
                 choose(dialog, "Ventile.stg");
                 press(dialog, "cmdOK");
                 EXPECT_FALSE(dialog.isVisible());
             });
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_EQ(selectedNode(), "Ventile");
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
    clickNode("Ventile/Kugelhahn");
    EXPECT_EQ(thumbnails(), QStringList{"P2"});
    EXPECT_EQ(home_.read("colleague/Ventile.stg"), source);
}

// As by a double click on the file in a file manager.
TEST_P(FrmImportTest, IsOfferedAtTheStartWithAGroupFile) {
    makeSource();
    start();
    app::settings().setPath(home_.root());
    bool isOver = false;
    inDialog(
        [&] {
            const startup::ImportOffer offer(
                window(), platform::toFilePath(home_.at("colleague/Ventile.stg")));
            while (!isOver) {
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            }
        },
        [&](QDialog& dialog) {
            EXPECT_EQ(dialog.objectName(), "frmImport");
            press(dialog, "cmdOK");
            EXPECT_FALSE(dialog.isVisible());
            isOver = true;
        });
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_EQ(selectedNode(), "Ventile");
    EXPECT_EQ(app::settings().path(), home_.root());
}

TEST_P(FrmImportTest, MergesAFileBelowASubGroupOnceOnly) {
    makeGroup("Kreisel", makeGroup("Pumpen"));
    makeSource();
    startAtColleague();
    clickNode("Pumpen/Kreisel");
    inDialog([&] { trigger("Men_Datei_2"); },
             [&](QDialog& dialog) {
                 const auto* target = dialog.findChild<QComboBox*>("cboGruppe");
                 EXPECT_EQ(target->currentText(), "Pumpen / Kreisel");
                 EXPECT_EQ(answerTo(dialog, "Ventile.stg"), say("Fertig", "Ready"));
                 EXPECT_TRUE(dialog.isVisible());
                 EXPECT_EQ(answerTo(dialog, "Ventile.stg"), exists());
                 press(dialog, "cmdReset");
                 EXPECT_FALSE(dialog.isVisible());
             });
    EXPECT_EQ(selectedNode(), "Kreisel");
    EXPECT_EQ(node("Pumpen/Kreisel")->childCount(), 1);
    clickNode("Pumpen/Kreisel/Ventile");
    EXPECT_EQ(thumbnails(), QStringList{"P1"});
    clickNode("Pumpen/Kreisel/Ventile/Kugelhahn");
    EXPECT_EQ(thumbnails(), QStringList{"P2"});
}

TEST_P(FrmImportTest, TheUserChoosesThePlace) {
    makeGroup("Pumpen");
    makeSource();
    startAtColleague();
    clickNode("Pumpen");
    inDialog([&] { trigger("gImport"); },
             [&](QDialog& dialog) {
                 auto* target = dialog.findChild<QComboBox*>("cboGruppe");
                 EXPECT_EQ(target->currentText(), "TXSGraphicsLib");
                 target->setCurrentText("Pumpen");
                 EXPECT_EQ(answerTo(dialog, "Ventile.stg"), say("Fertig", "Ready"));
             });
    EXPECT_NE(node("Pumpen/Ventile/Kugelhahn"), nullptr);
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});
}

TEST_P(FrmImportTest, TellsThatTheDriveCannotBeRead) {
    start();
    app::settings().setDrive("/no such drive");
    MessageBoxScript script({app::kAnswerRetry, app::kAnswerCancel});
    inDialog([&] { trigger("gImport"); }, [](QDialog&) {});
    const auto boxes = script.take();
    ASSERT_EQ(boxes.size(), 2) << "one more for the second try";
    EXPECT_EQ(boxes.last().text, say("Laufwerk \"/no such drive\" nicht verfügbar.",
                                     "Drive \"/no such drive\" not available."));
    EXPECT_EQ(boxes.last().title, say("Gruppe importieren", "Import group"));
    EXPECT_EQ(boxes.last().buttons, app::Buttons::RetryCancel);
}

TEST_P(FrmImportTest, TellsWhatKeepsAFileFromBeingImported) {
    makeGroup("Ventile", makeGroup("Pumpen"));
    makeSource();
    home_.write("colleague/Pumpen.stg", "no group file");
    home_.write("colleague/Kaputt.stg", "no group file");
    startAtColleague();
    clickNode("Pumpen");
    const QString invalid = say("Kein gültiges Dateiformat.", "Invalid file format.");
    inDialog([&] { trigger("gImport"); },
             [&](QDialog& dialog) {
                 press(dialog, "cmdOK");
                 EXPECT_EQ(boxes_.takeText(),
                           say("Es wurde noch keine Datei ausgewählt.", "Please select a file."));
                 EXPECT_EQ(answerTo(dialog, "Pumpen.stg"), exists());
                 EXPECT_EQ(answerTo(dialog, "Kaputt.stg"), invalid);
                 dialog.findChild<QComboBox*>("cboGruppe")->setCurrentText("Pumpen");
                 EXPECT_EQ(answerTo(dialog, "Ventile.stg"), exists());
                 EXPECT_EQ(answerTo(dialog, "Kaputt.stg"), invalid);
                 const auto held = holdLocked(elsewhere_->folder / "Ventile.stg");
                 dialog.findChild<QComboBox*>("cboGruppe")->setCurrentIndex(0);
                 const QString locked = answerTo(dialog, "Ventile.stg");
                 EXPECT_TRUE(locked.contains("Ventile.stg")) << locked.toStdString();
                 EXPECT_TRUE(locked.contains(say("anderen Programm", "Another program")));
                 EXPECT_TRUE(dialog.isVisible());
             });
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});
    EXPECT_EQ(home_.read("colleague/Kaputt.stg"), "no group file"); // left where it is
}

// A library and a source on a disk in memory, so that the disk can fail or halt in the middle.
class ImportInMemory : public testing::Test {
  protected:
    ImportInMemory() {
        app::settings().readPaths();
        app::settings().setDrive("/");
        app::settings().setPath(home_.root());
        home_.write("Ventile.stg", ""); // for the list of files; the group lies in memory
        view_.selected.address = store::createGroup(view_.library(), std::nullopt, {u"Pumpen"});
        view_.selected.path = "Pumpen";
        store::Library elsewhere(view_.library());
        elsewhere.folder = platform::toFilePath(home_.root());
        elsewhere.cache = std::make_shared<compound::ReadCache>();
        view_.disk.makeFolder(elsewhere.folder);
        store::createGroup(elsewhere, std::nullopt, {u"Ventile"});
    }

    // What is asked while the file's import into the target at that place of the list is shown.
    void import(int target, const std::function<void()>& whileItRuns = {}) {
        commands::frmImport form(view_, nullptr);
        const auto steps = [&](QDialog& dialog) {
            auto* files = dialog.findChild<QListWidget*>("filDatei");
            ASSERT_TRUE(until([&] { return files->count() == 1; }));
            files->setCurrentRow(0);
            dialog.findChild<QComboBox*>("cboGruppe")->setCurrentIndex(target);
            if (whileItRuns) {
                whileItRuns();
            }
            dialog.findChild<QPushButton*>("cmdOK")->click();
            EXPECT_TRUE(dialog.isVisible());
        };
        inModalDialog(
            [&] { form.openFor(commands::contextOf(view_.selected, view_.shownPicture())); },
            steps);
    }

    OwnHome home_;
    MessageBoxScript boxes_;
    ViewInMemory view_;
};

TEST_F(ImportInMemory, TellsThatTheFileCouldNotBeRenumbered) {
    std::atomic<bool> isMerged = false; // then the disk is full
    view_.disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Folder && isMerged) {
            throw compound::Error(compound::ErrorCode::NoSpace, "/somewhere/Ventile.stg", "told");
        }
        isMerged = isMerged || call == MemoryDisk::Call::Sync;
    });
    import(1);
    const auto boxes = boxes_.take();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes[0].text, "Fertig");
    EXPECT_TRUE(boxes[1].text.contains("konnte nicht umnummeriert werden") &&
                boxes[1].text.contains("/somewhere/Ventile.stg\nDer Datenträger ist voll."))
        << boxes[1].text.toStdString();
}

TEST_F(ImportInMemory, IsDroppedWhenTheUserAborts) {
    std::binary_semaphore go(0);
    std::atomic<bool> isHalted = false;
    view_.disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Write && !isHalted.exchange(true)) {
            go.acquire();
        }
    });
    const auto before = view_.disk.content("/library/Pumpen.stg");
    QTimer looking;
    QObject::connect(&looking, &QTimer::timeout, [&] {
        const QWidget* shown = QApplication::activeModalWidget();
        if (shown != nullptr && shown->objectName() == "frmFortschritt" && isHalted) {
            looking.stop();
            shown->findChild<QPushButton*>("cmdAbbruch")->click();
            go.release();
        }
    });
    import(0, [&] { looking.start(0);
});
view_.disk.setInterceptor({});
EXPECT_FALSE(looking.isActive());
EXPECT_TRUE(boxes_.take().isEmpty());
EXPECT_EQ(view_.refreshes, 0);
EXPECT_EQ(view_.disk.content("/library/Pumpen.stg"), before);
EXPECT_EQ(view_.disk.list("/library").size(), 1U);
} // namespace

} // namespace
