// The library information and the editor options, in both languages.
#include "app/long_operation.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "store/picture_operations.h"
#include "store/storage_access.h"
#include "ui/every_language.h"

#include <QAction>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

class ProgramDialogs : public EveryLanguageTest {
  protected:
    // What the library information says, in one line.
    QString counts() {
        QString result;
        inDialog([&] { trigger("Men_Hilfe_3"); },
                 [&](QDialog& dialog) {
                     EXPECT_EQ(dialog.objectName(), "frmInfo");
                     EXPECT_EQ(dialog.windowTitle(), "TXSGraphicsLib-Info");
                     result = dialog.findChild<QLabel*>("Label2")->text() + ", " +
                              dialog.findChild<QLabel*>("Label3")->text();
                     QTest::mouseClick(dialog.findChild<QPushButton*>("cmdZur_ck"), Qt::LeftButton);
                     EXPECT_FALSE(dialog.isVisible());
                 });
        return result;
    }

    static QString countsText(const QString& groups, const QString& pictures) {
        return (isGerman() ? QStringLiteral("Vorhandene Gruppen: %1, Vorhandene Bilder: %2")
                           : QStringLiteral("Existing groups: %1, Existing pictures: %2"))
            .arg(groups, pictures);
    }

    void tickAndSave(const QStringList& boxes) {
        inDialog([&] { trigger("Men_Extras_1"); },
                 [&](QDialog& dialog) {
                     for (auto* box : dialog.findChildren<QCheckBox*>()) {
                         EXPECT_FALSE(box->isChecked()) << "left over from the last time";
                         box->setChecked(boxes.contains(box->objectName()));
                     }
                     auto* save = dialog.findChild<QPushButton*>("cmdSpeichern");
                     EXPECT_EQ(save->text(), isGerman() ? "Speichern" : "Save");
                     QTest::mouseClick(save, Qt::LeftButton);
                     EXPECT_FALSE(dialog.isVisible());
                 });
    }

    QStringList takeTexts() {
        QStringList texts;
        for (const auto& box : boxes_.take()) {
            EXPECT_EQ(box.title, "TXSGraphicsLib");
            texts.append(box.text);
        }
        return texts;
    }
};

INSTANTIATE_TEST_SUITE_P(Languages, ProgramDialogs, EveryLanguageTest::all());

TEST_P(ProgramDialogs, InformationCountsTheLibraryAfreshEachTime) {
    start();
    EXPECT_EQ(counts(), countsText("0", "0"));
    const auto pumps = makeGroup("Pumpen");
    const auto steel = makeGroup("Stahl", makeGroup("Kreisel", pumps));
    makeGroup("Leer");
    addPicture(pumps, "P1");
    addPicture(steel, "P1");
    addPicture(steel, "P2");
    EXPECT_EQ(counts(), countsText("2", "3"));
    EXPECT_EQ(counts(), countsText("2", "3"));

    store::StorageAccess access(library());
    access.openGroup(steel, compound::Access::ReadWrite);
    ASSERT_TRUE(access.openInfo(steel));
    access.infoStorage().DestroyElement(u"P2");
    access.Commit();
    access.release();
    EXPECT_EQ(counts(), countsText("2", number("2.5")));

    // Neither what is no group file nor what cannot be read counts.
    writeGroupFile("Kaputt.stg", "no compound file");
    const auto held = holdLocked(store::pathOf(library(), pumps.file));
    EXPECT_EQ(counts(), countsText("1", "0"));
}

TEST_P(ProgramDialogs, InformationSaysWhenThereIsNoLibrary) {
    start();
    ASSERT_TRUE(std::filesystem::remove_all(library().folder) > 0);
    trigger("Men_Hilfe_3");
    const QString text = boxes_.takeText();
    EXPECT_TRUE(text.startsWith(QString::fromStdString(library().folder.string())))
        << text.toStdString();
}

TEST_P(ProgramDialogs, TheHelpOpensAtTheMainWindowsTopicAndGoesWithIt) {
    start();
    trigger("Men_Hilfe_1"); // German in both languages
    EXPECT_EQ(takeTexts(), QStringList{"Leider noch keine Hilfe verfügbar"});
    const auto helpTitles = [] {
        QStringList titles;
        for (const QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == "helpWindow" && widget->isVisible()) {
                titles.append(widget->windowTitle());
            }
        }
        return titles;
    };
    trigger("Men_Hilfe_0");
    EXPECT_EQ(takeTexts(), QStringList());
    EXPECT_EQ(helpTitles(),
              QStringList{say("Bilder in Gruppen - Hilfe", "Pictures in groups - Help")});
    window().close();
    EXPECT_EQ(helpTitles(), QStringList());
}

TEST_P(ProgramDialogs, ACatalogueThatIsPrintedToAFileIsCalledLikeTheGroup) {
    makeGroup("Tanks", makeGroup("Behälter"));
    start();
    clickNode("Behälter/Tanks");
    inDialog([this] { trigger("Men_Datei_8"); },
             [this](QDialog& catalogue) {
                 inDialog([&] { catalogue.findChild<QPushButton*>("cmdDrucken")->click(); },
                          [](QDialog& print) {
                              EXPECT_EQ(dynamic_cast<QPrintDialog&>(print).printer()->docName(),
                                        "Tanks");
                          });
             });
}

// Nobody was asked about it when the name was chosen.
TEST_P(ProgramDialogs, ACatalogueTakesNotThePlaceOfAFileThatHasComeMeanwhile) {
    makeGroup("Tanks");
    start();
    clickNode("Tanks");
    const QString pdf = home_.at("Alle.pdf");
    std::unique_ptr<compound::DiskFile> held;
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&] {
        if (app::isLongOperationRunning()) {
            home_.write("Alle.pdf", "another program's");
            held.reset(); // and the catalogue can be made
            other.stop();
        }
    });
    inDialog([this] { trigger("Men_Datei_8"); },
             [&](QDialog& catalogue) {
                 inDialog([&] { catalogue.findChild<QPushButton*>("cmdPdf")->click(); },
                          [&](QDialog& file) {
                              dynamic_cast<QFileDialog&>(file).selectFile(pdf);
                              held = holdLocked(library().folder / "Tanks.stg");
                              other.start(0);
                              QMetaObject::invokeMethod(&file, "accept");
                          });
                 EXPECT_TRUE(catalogue.isVisible());
             });
    EXPECT_EQ(home_.read("Alle.pdf"), "another program's");
    const QString text = boxes_.takeText();
    EXPECT_TRUE(text.contains(pdf)) << qPrintable(text);
}

TEST_P(ProgramDialogs, EditorOptionsOnlyTell) {
    start();
    tickAndSave({});
    EXPECT_EQ(takeTexts(), QStringList());
    tickAndSave({"chkGrafik"});
    EXPECT_EQ(takeTexts(), QStringList{"Grafik an!"});
    tickAndSave({"chkGruppe"});
    EXPECT_EQ(takeTexts(), QStringList{"Gruppe speichern!"});
    tickAndSave({"chkGrafik", "chkGruppe"});
    EXPECT_EQ(takeTexts(), (QStringList{"Grafik an!", "Gruppe speichern!"}));
}

} // namespace
