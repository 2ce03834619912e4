#include "app/help.h"
#include "app/texts.h"
#include "editing/bitmap_editor/frm_optionen_bmp.h"
#include "imaging/encoder_pictures.h"
#include "imaging/encoding/encoders.h"
#include "imaging/picture_bytes.h"
#include "picture/picture.h"
#include "platform/native_disk.h"
#include "platform/temporary_folder.h"
#include "store/picture_operations.h"
#include "ui/main_window_fixture.h"
#include "ui/mnemonics.h"
#include "ui/modal_dialog_steps.h"

#include <QAbstractScrollArea>
#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>

namespace {

using imaging::PictureKind;
using imaging::testing::Alpha;
using imaging::testing::Bytes;
using imaging::testing::colourful;

class FrmOptionenBmp : public MainWindowTest {
  protected:
    void addBytes(const QString& name, const Bytes& bytes, const QString& type = "bmp") {
        home_.write("source." + type, {reinterpret_cast<const char*>(bytes.data()),
                                       static_cast<qsizetype>(bytes.size())});
        store::addPicture(library(), group_, {name.toStdU16String()},
                          platform::toFilePath(home_.at("source." + type)));
    }

    void startWithPhoto() {
        addBytes("Foto", imaging::encode(photo_, PictureKind::Bmp));
        start();
        clickNode("Pumpen");
        ASSERT_EQ(label(), "Foto");
    }

    // Opens the editor on the shown picture by a double click, as for every type.
    void inEditor(const std::function<void(QDialog&)>& steps) {
        inDialog([&] { QTest::mouseDClick(find<QWidget>("imgVorschau"), Qt::LeftButton); },
                 [&](QDialog& dialog) {
                     ASSERT_EQ(dialog.objectName(), "frmOptionenBMP");
                     editor_ = &dialog;
                     QApplication::setActiveWindow(&dialog); // for its shortcuts
                     steps(dialog);
                 });
    }

    QAction* item(const char* name) { return editor_->findChild<QAction*>(name); }
    void choose(const char* name) {
        ASSERT_TRUE(item(name)->isEnabled()) << name;
        item(name)->trigger();
    }
    void expectHistory(bool canUndo, bool canRedo) {
        EXPECT_EQ(item("Men_Bearbeiten_0")->isEnabled(), canUndo);
        EXPECT_EQ(item("Men_Bearbeiten_1")->isEnabled(), canRedo);
    }

    // What the editor shows at its own size, without what lies around it.
    QImage shown() {
        auto* control = editor_->findChild<QAbstractScrollArea*>("LeadControl");
        const QImage all = control->viewport()->grab().toImage();
        const QStringList size =
            editor_->findChild<QLabel*>("lblGroesse")->text().section(u' ', 0, 2).split(" × ");
        QRect place(0, 0, size[0].toInt(), size[1].toInt());
        place.moveTopLeft(
            QPoint((all.width() - place.width()) / 2, (all.height() - place.height()) / 2));
        return all.copy(place).convertToFormat(QImage::Format_RGB32);
    }

    QStringList temporaryFiles() const {
        return QDir(platform::temporaryFolder()).entryList(QDir::Files, QDir::Name);
    }

    QImage stored(const char16_t* name) {
        return picture::decode(store::readPicture(library(), group_, {name}).bytes)
            .image()
            .convertToFormat(QImage::Format_RGB32);
    }

    store::GroupAddress group_ = makeGroup("Pumpen");
    QImage photo_ = colourful({40, 30}, Alpha::Opaque).convertToFormat(QImage::Format_RGB32);
    QDialog* editor_ = nullptr;
};

TEST_F(FrmOptionenBmp, OpensEveryTypeButWmfOnBothWays) {
    const std::vector<std::pair<QString, PictureKind>> kinds{
        {"bmp", PictureKind::Bmp}, {"jpg", PictureKind::Jpg}, {"ico", PictureKind::Ico},
        {"cur", PictureKind::Cur}, {"emf", PictureKind::Emf}, {"gif", PictureKind::Gif}};
    for (const auto& [type, kind] : kinds) {
        addBytes(type, imaging::encode(photo_, kind), type);
    }
    start();
    clickNode("Pumpen");
    for (const auto& [type, kind] : kinds) {
        SCOPED_TRACE(type.toStdString());
        QWidget* cell = thumbnail(type);
        QTest::mouseClick(cell, Qt::LeftButton);
        window().awaitShown();
        EXPECT_EQ(find<QAction>("Men_Bearbeiten_2")->isEnabled(), kind != PictureKind::Gif);
        QContextMenuEvent request(QContextMenuEvent::Mouse, cell->rect().center(),
                                  cell->mapToGlobal(cell->rect().center()));
        QApplication::sendEvent(cell, &request);
        EXPECT_TRUE(find<QAction>("bEdit")->isEnabled());
        find<QMenu>("Band1")->close();
        const auto expectName = [&](QDialog& dialog) {
            EXPECT_EQ(dialog.objectName(), "frmOptionenBMP");
            EXPECT_EQ(dialog.findChild<QLabel*>("lblBildname")->text(), type);
        };
        inDialog([&] { trigger("bEdit"); }, expectName);
        inEditor(expectName);
    }
    EXPECT_EQ(window().findChildren<editing::frmOptionenBMP*>().size(), 1);
}

TEST_F(FrmOptionenBmp, ShowsEachChangeAndTakesItBack) {
    startWithPhoto();
    inEditor([&](QDialog&) {
        EXPECT_EQ(shown(), photo_);
        expectHistory(false, false);
        choose("Men_Bild_2");
        EXPECT_EQ(shown(), photo_.mirrored(false, true));
        expectHistory(true, false);
        choose("Men_Bearbeiten_0");
        EXPECT_EQ(shown(), photo_);
        expectHistory(false, true);
        choose("Men_Bild_3");
        EXPECT_EQ(shown(), photo_.mirrored(true, false));
        expectHistory(true, false);
        choose("Men_BildRotation_0");
        choose("Men_BildRotation_0");
        choose("Men_BildRotation_1");
        EXPECT_EQ(shown(), photo_.mirrored(true, false).transformed(QTransform().rotate(-90)));
        choose("Men_Farben_4");
        QImage inverted = photo_.mirrored(true, false).transformed(QTransform().rotate(-90));
        inverted.invertPixels();
        EXPECT_EQ(shown(), inverted);
        for (int i = 0; i < 5; ++i) {
            choose("Men_Bearbeiten_0");
        }
        EXPECT_EQ(shown(), photo_);
        for (int i = 0; i < 5; ++i) {
            choose("Men_Bearbeiten_1");
        }
        EXPECT_EQ(shown(), inverted);
        expectHistory(true, false);
        EXPECT_EQ(temporaryFiles(), (QStringList{"EditPicture.BMP", "Undo1.BMP", "Undo2.BMP",
                                                 "Undo3.BMP", "Undo4.BMP", "Undo5.BMP"}));
    });
    EXPECT_EQ(temporaryFiles(), QStringList{"EditPicture.BMP"});
    EXPECT_EQ(stored(u"Foto"), photo_);
    inEditor([&](QDialog&) {
        EXPECT_EQ(shown(), photo_);
        expectHistory(false, false);
    });
}

// The dialogs give the window back to the user, who may go to another program, too: neither may
// cost the step that was just kept.
TEST_F(FrmOptionenBmp, OnlyAConfirmedDialogMakesAStep) {
    startWithPhoto();
    inEditor([&](QDialog& dialog) {
        const auto ask = [&](const char* command, Qt::Key answer) {
            const auto give = [&](QDialog& question) {
                if (item(command)->objectName() != "Men_BildRotation_2") {
                    EXPECT_EQ(question.windowTitle(), item(command)->text());
                }
                QTest::keyClick(&question, answer);
            };
            inModalDialog([&] { choose(command); }, give);
        };
        bool canRedo = false;
        for (const char* command : {"Men_BildRotation_2", "Men_Farben_0", "Men_Farben_1",
                                    "Men_Farben_2", "Men_Farben_3"}) {
            SCOPED_TRACE(command);
            ask(command, Qt::Key_Escape);
            expectHistory(false, canRedo);
            ask(command, Qt::Key_Return);
            QApplication::setActiveWindow(&window());
            QApplication::setActiveWindow(&dialog);
            expectHistory(true, false);
            choose("Men_Bearbeiten_0");
            EXPECT_EQ(shown(), photo_);
            canRedo = true;
        }
    });
}

TEST_F(FrmOptionenBmp, ZoomsWithoutAStep) {
    startWithPhoto();
    inEditor([&](QDialog& dialog) {
        const auto* zoom = dialog.findChild<QLabel*>("lblZoom");
        EXPECT_EQ(zoom->text(), "Zoom: 100 %");
        choose("Men_Bild_0");
        QTest::keyClick(&dialog, Qt::Key_Plus, Qt::ControlModifier);
        EXPECT_EQ(zoom->text(), "Zoom: 225 %");
        choose("Men_Bild_1");
        EXPECT_EQ(zoom->text(), "Zoom: 150 %");
        expectHistory(false, false);
        QTest::keyClick(&dialog, Qt::Key_Z, Qt::ControlModifier);
        choose("Men_Bild_2");
        QTest::keyClick(&dialog, Qt::Key_Z, Qt::ControlModifier);
        expectHistory(false, true);
        QTest::keyClick(&dialog, Qt::Key_Y, Qt::ControlModifier);
        expectHistory(true, false);
        EXPECT_EQ(zoom->text(), "Zoom: 150 %");
    });
}

TEST_F(FrmOptionenBmp, TellsAFaultyPictureAndDoesNotOpen) {
    addBytes("Kaputt", Bytes(40));
    start();
    clickNode("Pumpen");
    for (const int language : {app::kGermanLocale, app::kEnglishLocale}) {
        app::setLanguage(language);
        trigger("bEdit");
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        const auto boxes = boxes_.take();
        ASSERT_EQ(boxes.size(), 1);
        const bool isGerman = language == app::kGermanLocale;
        EXPECT_EQ(boxes[0].text, isGerman ? "Das Bild ist kaputt" : "Selected picture is faulty");
        EXPECT_EQ(boxes[0].title, isGerman ? "Bild bearbeiten" : "Edit picture");
        EXPECT_EQ(boxes[0].buttons, app::Buttons::Ok);
    }
}

// Root may write everywhere, so the folder's place is taken by a file instead of its rights.
TEST_F(FrmOptionenBmp, TellsWhatCannotBeKeptAndChangesNothing) {
    startWithPhoto();
    inEditor([&](QDialog&) {
        choose("Men_Bild_2");
        const QImage before = shown();
        ASSERT_TRUE(QDir(platform::temporaryFolder()).mkpath("Undo2.BMP/x")); // cannot be replaced
        choose("Men_Bild_3");
        EXPECT_TRUE(boxes_.takeText().contains("Undo2.BMP"));
        EXPECT_EQ(shown(), before);
        expectHistory(true, false);
        ASSERT_TRUE(QDir(platform::temporaryFolder() + "Undo2.BMP").removeRecursively());
        choose("Men_Bild_3");
        EXPECT_EQ(shown(), before.mirrored(true, false));

        ASSERT_TRUE(QDir(platform::temporaryFolder()).mkpath("Picture.BMP/x"));
        choose("Men_Datei_0");
        EXPECT_TRUE(boxes_.takeText().contains("Picture.BMP"));
        expectHistory(true, false);
    });
}

TEST_F(FrmOptionenBmp, SavesUnderANewNameAndOverTheOldOne) {
    startWithPhoto();
    MessageBoxScript yes({}, app::kAnswerYes);
    const auto save = [&](const QString& name) {
        inModalDialog([&] { choose("Men_Datei_0"); },
                      [&](QDialog& dialog) {
                          EXPECT_EQ(dialog.objectName(), "frmSave");
                          EXPECT_EQ(dialog.parentWidget(), editor_);
                          auto* field = dialog.findChild<QLineEdit*>("txtName");
                          field->setText(name);
                          QTest::keyClick(field, name.isEmpty() ? Qt::Key_Escape : Qt::Key_Return);
                      });
    };
    inEditor([&](QDialog& dialog) {
        choose("Men_Bild_2");
        choose("Men_Bild_3");
        choose("Men_Bearbeiten_0");
        save("");
        expectHistory(false, false);
        choose("Men_Farben_4");
        save("Neu");
        EXPECT_EQ(thumbnails(), QStringList{"Foto"}) << "not before the editor is closed";
        choose("Men_Farben_4");
        save("Foto");
        dialog.close();
    });
    EXPECT_TRUE(thumbnails().contains("Neu"));
    EXPECT_EQ(yes.takeText(), "Bild existiert bereits. Überschreiben?");
    const QImage flipped = photo_.mirrored(false, true);
    QImage inverted = flipped;
    inverted.invertPixels();
    EXPECT_EQ(stored(u"Neu"), inverted);
    EXPECT_EQ(stored(u"Foto"), flipped);
}

TEST_F(FrmOptionenBmp, ARotatedPictureMayBeTooLarge) {
    photo_ = QImage(30000, 40, QImage::Format_RGB32);
    photo_.fill(Qt::red);
    startWithPhoto();
    inEditor([&](QDialog& dialog) {
        inModalDialog([&] { choose("Men_BildRotation_2"); },
                      [&](QDialog& question) {
                          auto* angle = question.findChild<QAbstractSpinBox*>();
                          angle->selectAll();
                          QTest::keyClicks(angle, "45");
                          QTest::keyClick(&question, Qt::Key_Return);
                      });
        EXPECT_TRUE(boxes_.takeText().contains("40 Millionen"));
        expectHistory(false, false);
        EXPECT_TRUE(dialog.findChild<QWidget*>("LeadControl")->isVisible());
        EXPECT_EQ(dialog.findChild<QLabel*>("lblGroesse")->text(), "30000 × 40 Pixel");
    });
}

TEST_F(FrmOptionenBmp, BackRefreshesTheMainWindowAndClosingDoesNot) {
    startWithPhoto();
    inEditor([&](QDialog& dialog) {
        addBytes("Neu", imaging::encode(photo_, PictureKind::Bmp));
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(thumbnails(), QStringList{"Foto"});
    inEditor([&](QDialog& dialog) {
        choose("Men_Datei_2");
        EXPECT_FALSE(dialog.isVisible());
    });
    EXPECT_EQ(thumbnails().size(), 2);
}

TEST_F(FrmOptionenBmp, SpeaksTheProgramsLanguageAndHelps) {
    startWithPhoto();
    for (const int language : {app::kEnglishLocale, app::kGermanLocale}) {
        app::setLanguage(language);
        inEditor([&](QDialog& dialog) {
            const bool isGerman = language == app::kGermanLocale;
            EXPECT_EQ(dialog.windowTitle(), isGerman ? "Bild bearbeiten" : "Edit picture");
            EXPECT_EQ(item("Men_Bild_2")->text(),
                      isGerman ? "Spiegeln (&Vertikal)" : "Flip (&Vertical)");
            EXPECT_EQ(item("Men_Bild_4")->text(), isGerman ? "&Drehen" : "&Rotate");
            EXPECT_TRUE(item("Men_Datei_1")->isSeparator());
            QList<int> topics;
            app::setHelpHandler(
                [&](const app::HelpCall& call) { topics.append(static_cast<int>(call.topic)); });
            QTest::keyClick(&dialog, Qt::Key_F1);
            choose("Men_Hilfe_0");
            EXPECT_EQ(topics, (QList<int>{9, 9}));
            app::setHelpHandler({});
            for (const auto* menu : dialog.findChildren<QMenu*>()) {
                QStringList captions;
                for (const QAction* action : menu->actions()) {
                    captions.append(action->text());
                }
                if (menu->objectName() != "Men_BildRotation") { // its own letters meet in English
                    expectOwnMnemonics(captions);
                }
            }
        });
    }
}

} // namespace
