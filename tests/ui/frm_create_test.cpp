// A folder of pictures becomes a group: the real window in the real main window, and alone where a
// run is to be halted in the middle.
#include "app/long_operation.h"
#include "app/patience.h"
#include "app/settings.h"
#include "app/stepped_executor.h"
#include "commands/frm_create.h"
#include "platform/native_disk.h"
#include "store/picture_operations.h"
#include "ui/every_language.h"
#include "ui/failing_disk_fixture.h"
#include "ui/modal_dialog_steps.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <future>

namespace {

using commands::frmCreate;
using commands::GroupTarget;

void press(QDialog& dialog, const char* button) {
    QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
}

void typeName(QDialog& dialog, const QString& name) {
    auto* field = dialog.findChild<QLineEdit*>("txtName");
    field->setFocus();
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    QTest::keyClicks(field, name);
}

class FrmCreateTest : public EveryLanguageTest {
  protected:
    FrmCreateTest() { QDir().mkpath(home_.at("pictures")); }

    // Starts the program with a folder in mind.
    void startAt(const QString& folder) {
        start();
        app::settings().setDrive("/");
        app::settings().setPath(home_.at(folder));
    }

    void makeFile(const QString& name, QColor colour) {
        QImage image(8, 8, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(home_.at("pictures/" + name), "BMP"));
    }

    QByteArray stored(const store::GroupAddress& group, const char16_t* name) {
        const auto found = store::readPicture(library(), group, {name});
        return {reinterpret_cast<const char*>(found.bytes.data()),
                static_cast<qsizetype>(found.bytes.size())};
    }

    // What the window offers as the new group's place, the preset one first.
    QStringList targetsOf(const char* action) {
        QStringList targets;
        inDialog([&] { trigger(action); },
                 [&](QDialog& dialog) {
                     const auto* box = dialog.findChild<QComboBox*>("cboGruppe");
                     targets.append(box->currentText());
                     for (int i = 0; i < box->count(); ++i) {
                         if (i != box->currentIndex()) {
                             targets.append(box->itemText(i));
                         }
                     }
                 });
        return targets;
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, FrmCreateTest, EveryLanguageTest::all());

TEST_P(FrmCreateTest, MakesATopLevelGroupOfAllPicturesAndShowsIt) {
    makeFile("a.bmp", Qt::red);
    makeFile("Name.bmp", Qt::green); // can be no picture's name
    makeFile("pump.bmp", Qt::blue);
    makeFile("pump.gif", Qt::yellow); // replaces the one before
    home_.write("pictures/note.txt", "no picture");
    store::addPicture(library(), makeGroup("Alt"), {u"Rot"},
                      platform::toFilePath(home_.at("pictures/a.bmp")));
    startAt("pictures");
    inDialog([&] { trigger("gCreate"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(dialog.size(), QSize(342, 288));
                 EXPECT_EQ(dialog.windowTitle(), say("Gruppe aus Verzeichnis erstellen",
                                                     "Create group out of directory"));
                 EXPECT_EQ(dialog.findChild<QListWidget*>("filDatei")->count(), 4);
                 typeName(dialog, "Pumpen");
                 press(dialog, "cmdCreate");
                 EXPECT_FALSE(dialog.isVisible());
             });
    const auto boxes = boxes_.take();
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes.first().text,
              say("Die Gruppe Pumpen wurde erstellt.", "The group Pumpen was created."));
    EXPECT_EQ(boxes.first().title,
              say("Gruppe aus Verzeichnis erstellen", "Create group out of directory"));
    EXPECT_EQ(selectedNode(), "Pumpen");
    EXPECT_EQ(thumbnails(), (QStringList{"a", "pump", "Picture1"}));
    EXPECT_EQ(stored(store::topLevelAddress(u"Pumpen"), u"pump"), home_.read("pictures/pump.gif"));
    EXPECT_EQ(stored(store::topLevelAddress(u"Pumpen"), u"Picture1"),
              home_.read("pictures/Name.bmp"));
    EXPECT_EQ(find<QLabel>("lblErgebnis")->text(),
              say("3 Bilder hinzugefügt; schon vorhanden: a = Alt / Rot",
                  "3 pictures added; already there: a = Alt / Rot"));
}

TEST_P(FrmCreateTest, PresetsThePlaceByWhatIsSelectedAndWhereTheCommandWasChosen) {
    const QString top = "TXSGraphicsLib";
    makeGroup("Kreisel", makeGroup("Pumpen"));
    startAt("pictures");
    clickNode("Pumpen");
    EXPECT_EQ(targetsOf("gCreate"), (QStringList{top, "Pumpen"}));
    EXPECT_EQ(targetsOf("Men_Datei_1"), (QStringList{"Pumpen", top}));
    clickNode("Pumpen/Kreisel");
    EXPECT_EQ(targetsOf("gCreate"), (QStringList{"Pumpen / Kreisel", top}));
    EXPECT_EQ(targetsOf("Men_Datei_1"), (QStringList{"Pumpen / Kreisel", top}));
    clickFreeArea(Qt::LeftButton);
    ASSERT_TRUE(selectedNode().isEmpty());
    EXPECT_EQ(targetsOf("gCreate"), QStringList{top});
    EXPECT_EQ(targetsOf("Men_Datei_1"), QStringList{top});
}

TEST_P(FrmCreateTest, MakesASubGroupAndListsWhatItHasLeftOut) {
    const auto pumps = makeGroup("Pumpen");
    makeGroup("Neu"); // another one of that name at the top level does not matter
    makeFile("a.bmp", Qt::red);
    home_.write("pictures/bad.bmp", "BM but no picture");
    startAt("pictures");
    clickNode("Pumpen");
    inDialog([&] { trigger("Men_Datei_1"); },
             [&](QDialog& dialog) {
                 typeName(dialog, "Neu");
                 inModalDialog(
                     [&] { press(dialog, "cmdCreate"); },
                     [&](QDialog& summary) {
                         EXPECT_EQ(summary.objectName(), "frmAusgelassen");
                         EXPECT_EQ(summary.findChild<QLabel*>("lblAnzahl")->text(),
                                   say("Eine Datei wurde ausgelassen:", "One file was left out:"));
                         const QString list = summary.findChild<QPlainTextEdit*>()->toPlainText();
                         EXPECT_TRUE(list.contains("bad.bmp")) << list.toStdString();
                         EXPECT_TRUE(
                             list.contains(say("kein lesbares Bild", "no readable picture")));
                         QTest::keyClick(&summary, Qt::Key_Escape);
                     });
                 EXPECT_FALSE(dialog.isVisible());
             });
    EXPECT_EQ(boxes_.takeText(),
              say("Die Gruppe Neu wurde erstellt.", "The group Neu was created."));
    EXPECT_EQ(window().selectedGroup()->path, "Pumpen / Neu");
    EXPECT_EQ(thumbnails(), QStringList{"a"});
    EXPECT_TRUE(store::listPictures(library(), pumps).empty());
}

// The user is faster than a slow volume.
TEST_P(FrmCreateTest, WaitsForAFolderThatIsStillBeingRead) {
    makeFile("a.bmp", Qt::red);
    startAt("pictures");
    SteppedExecutor workers;
    const app::WorkersReplacement stepped(workers);
    for (const bool isGivenUp : {true, false}) {
        inModalDialog([&] { trigger("gCreate"); },
                      [&](QDialog& dialog) {
                          typeName(dialog, "Pumpen");
                          press(dialog, "cmdCreate");
                          EXPECT_TRUE(boxes_.take().isEmpty());
                          if (isGivenUp) {
                              press(dialog, "cmdBack");
                          }
                          workers.stepAll();
                          EXPECT_FALSE(dialog.isVisible());
                      });
        EXPECT_EQ(boxes_.take().size(), isGivenUp ? 0 : 1);
        EXPECT_EQ(storagesFolder().size(), isGivenUp ? 0 : 1);
    }
    window().awaitShown();
    workers.stepAll();
    EXPECT_EQ(thumbnails(), QStringList{"a"});
}

TEST_P(FrmCreateTest, TellsThatTheDriveCannotBeRead) {
    start();
    app::settings().setDrive("/no such drive");
    MessageBoxScript script({app::kAnswerRetry, app::kAnswerCancel});
    inDialog([&] { trigger("gCreate"); }, [](QDialog&) {});
    const auto boxes = script.take();
    ASSERT_EQ(boxes.size(), 2) << "one more for the second try";
    EXPECT_EQ(boxes.last().text,
              say("Das von Ihnen gewählte Laufwerk /no such drive ist zur Zeit nicht verfügbar.",
                  "The selected drive /no such drive is temporaly not available."));
    EXPECT_EQ(boxes.last().title,
              say("Gruppe aus Verzeichnis erstellen", "Create group out of directory"));
    EXPECT_EQ(boxes.last().buttons, app::Buttons::RetryCancel);
}

TEST_P(FrmCreateTest, TellsWhatIsMissingTakenOrInvalidAndMakesNothing) {
    makeGroup("Kreisel", makeGroup("Pumpen"));
    QDir().mkpath(home_.at("empty"));
    startAt("empty");
    clickNode("Pumpen");
    const auto refusal = [&](QDialog& dialog, const QString& name) {
        typeName(dialog, name);
        press(dialog, "cmdCreate");
        EXPECT_TRUE(dialog.isVisible());
        return boxes_.takeText();
    };
    inDialog([&] { trigger("gCreate"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(refusal(dialog, ""), say("Bitte geben Sie einen Gruppennamen an.",
                                                    "The name for the group can not be empty."));
                 EXPECT_EQ(refusal(dialog, "Pumpen"),
                           say("Im ausgewählten Verzeichnis sind keine Bilddateien vorhanden.",
                               "There are no pictures in the selected directory."));
             });
    makeFile("a.bmp", Qt::red);
    app::settings().setPath(home_.at("pictures"));
    inDialog([&] { trigger("gCreate"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(refusal(dialog, "Pumpen"), say("Die Gruppe Pumpen existiert bereits.",
                                                          "The group Pumpen already exists."));
                 const QString invalid =
                     say("Ungültiger Gruppenname.", "Invalid name for the group.");
                 EXPECT_EQ(refusal(dialog, "PUMPEN"), invalid); // the file could not lie beside it
                 EXPECT_EQ(refusal(dialog, "a/b"), invalid);
                 dialog.findChild<QComboBox*>("cboGruppe")->setCurrentIndex(1);
                 EXPECT_EQ(refusal(dialog, "Kreisel"), say("Die Gruppe Kreisel existiert bereits.",
                                                           "The group Kreisel already exists."));
             });
    EXPECT_EQ(storagesFolder(), QStringList{"Pumpen.stg"});
}

// A main window on a real library, the measuring of whose pictures waits to be let go.
class HaltedView : public ViewInMemory {
  public:
    explicit HaltedView(const std::filesystem::path& folder)
        : native_{platform::nativeDisk(), folder, [this](std::span<const std::byte>) {
                      halted.set_value();
                      go.get_future().wait();
                      return store::TwipSize{15, 15};
                  }} {}

    const store::Library& library() const override { return native_; }

    std::promise<void> halted;
    std::promise<void> go;

  private:
    store::Library native_;
};

class HaltedCreation : public testing::TestWithParam<const char*> {
  protected:
    HaltedCreation() {
        app::settings().readPaths();
        QDir().mkpath(home_.at("library"));
        app::settings().setDrive("/");
        app::settings().setPath(home_.root());
        home_.write("first.bmp", "1");
        home_.write("second.bmp", "2");
    }

    // What is not dead while the first picture is being added.
    static QStringList enabledIn(const QDialog& dialog) {
        QStringList enabled;
        for (const auto* control : dialog.findChildren<QWidget*>()) {
            const bool takesFocus = control->focusPolicy() != Qt::NoFocus;
            if (takesFocus && control->isVisible() && control->isEnabled()) {
                enabled.append(control->objectName());
            }
        }
        return enabled;
    }

    static bool isProgramEnding() { return std::string(GetParam()) == "end"; }

    void abort(QDialog& dialog) {
        const std::string way = GetParam();
        if (way == "button") {
            press(dialog, "cmdBack");
        } else if (way == "Escape") {
            QTest::keyClick(&dialog, Qt::Key_Escape);
        } else if (way == "close box") {
            dialog.close();
        } else { // the program is to end
            app::afterLongOperation(&dialog, [this] { ++answeredLater_; });
        }
        EXPECT_TRUE(dialog.isVisible());
        EXPECT_EQ(answeredLater_, 0);
    }

    OwnHome home_;
    MessageBoxScript boxes_;
    int answeredLater_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Ways, HaltedCreation,
                         testing::Values("button", "Escape", "close box", "end"));

TEST_P(HaltedCreation, CanOnlyBeAbortedAndLeavesNothingBehind) {
    HaltedView view(home_.at("library").toStdString());
    frmCreate form(view, nullptr);
    bool wasRunning = false;
    inModalDialog([&] { form.openFor({}, GroupTarget::TopLevel); },
                  [&](QDialog& dialog) {
                      const auto* files = dialog.findChild<QListWidget*>("filDatei");
                      ASSERT_TRUE(until([&] { return files->count() == 2; }));
                      typeName(dialog, "Pumpen");
                      auto halted = view.halted.get_future();
                      QTimer looking;
                      QObject::connect(&looking, &QTimer::timeout, [&] {
                          if (halted.wait_for(std::chrono::seconds(0)) !=
                              std::future_status::ready) {
                              return;
                          }
                          looking.stop();
                          wasRunning = true;
                          EXPECT_EQ(enabledIn(dialog), QStringList{"cmdBack"});
                          auto* back = dialog.findChild<QPushButton*>("cmdBack");
                          EXPECT_EQ(back->text(), "Abbrechen");
                          EXPECT_TRUE(dialog.findChild<QProgressBar*>()->isVisible());
                          abort(dialog);
                          view.go.set_value();
                      });
                      looking.start(0);
                      press(dialog, "cmdCreate");
                      EXPECT_TRUE(wasRunning);
                      QCoreApplication::processEvents();
                      EXPECT_EQ(answeredLater_, isProgramEnding() ? 1 : 0);
                      EXPECT_TRUE(dialog.isVisible());
                      EXPECT_EQ(dialog.findChild<QPushButton*>("cmdBack")->text(), "Zurück");
                      EXPECT_TRUE(enabledIn(dialog).contains("cmdCreate"));
                      EXPECT_FALSE(dialog.findChild<QProgressBar*>()->isVisible());
                      press(dialog, "cmdBack");
                      EXPECT_FALSE(dialog.isVisible());
                  });
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_TRUE(QDir(home_.at("library")).isEmpty());
}

} // namespace
