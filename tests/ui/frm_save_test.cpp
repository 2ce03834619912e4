#include "app/help.h"
#include "app/message_box_script.h"
#include "app/patience.h"
#include "app/texts.h"
#include "compound/disk.h"
#include "editing/frm_save.h"
#include "editing/picture_pane.h"
#include "groups/group_tree.h"
#include "picture/picture.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "platform/own_home.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"
#include "ui/modal_dialog_steps.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

using editing::frmSave;

store::TwipSize measure(std::span<const std::byte> bytes) {
    const picture::TwipSize size = picture::measure(bytes).twips;
    return {size.height, size.width};
}

class FrmSaveTest : public testing::Test {
  protected:
    FrmSaveTest() {
        app::setLanguage(app::kGermanLocale);
        writePicture("Picture.BMP", Qt::red);
        writePicture("old.bmp", Qt::blue);
    }

    void writePicture(const QString& name, QColor colour) {
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(home_.at(name), "BMP"));
    }

    static QTreeWidgetItem* node(QDialog& dialog, const QString& text) {
        const auto found = dialog.findChild<groups::GroupTree*>()->findItems(
            text, Qt::MatchExactly | Qt::MatchRecursive);
        return found.isEmpty() ? nullptr : found.first();
    }

    static void choose(QDialog& dialog, const QString& group) {
        auto* tree = dialog.findChild<groups::GroupTree*>();
        QTreeWidgetItem* item = node(dialog, group);
        ASSERT_NE(item, nullptr) << group.toStdString();
        tree->scrollToItem(item);
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {},
                          tree->visualItemRect(item).center());
    }

    static void retype(QDialog& dialog, const QString& name) {
        auto* field = dialog.findChild<QLineEdit*>("txtName");
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, name);
    }

    static void press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
    }

    // Opens the dialog for the picture "Kreisel" of the shown group; true if that has changed.
    bool open(const std::function<void(QDialog&)>& steps) {
        QImage preview(2000, 1000, QImage::Format_RGB32);
        preview.fill(Qt::green);
        frmSave form(nullptr);
        auto outcome = frmSave::Outcome::ShownGroupUnchanged;
        const frmSave::Request request{home_.at("Picture.BMP").toStdString(), shown_, "Kreisel",
                                       "BMP", preview};
        inModalDialog([&] { outcome = form.openFor(library_, request); }, steps);
        return outcome == frmSave::Outcome::ShownGroupChanged;
    }

    QByteArray stored(const store::GroupAddress& group, const char16_t* name) {
        const auto found = store::readPicture(library_, group, {name});
        return {reinterpret_cast<const char*>(found.bytes.data()),
                static_cast<qsizetype>(found.bytes.size())};
    }

    void addOld(const store::GroupAddress& group, const char16_t* name) {
        store::addPicture(library_, group, {name}, home_.at("old.bmp").toStdString());
    }

    std::filesystem::path makeLibraryFolder() const {
        QDir().mkpath(home_.at("library"));
        return home_.at("library").toStdString();
    }

    OwnHome home_;
    store::Library library_{platform::nativeDisk(), makeLibraryFolder(), measure, u'.',
                            std::chrono::milliseconds(0)};
    store::GroupAddress top_ = store::createGroup(library_, std::nullopt, {u"Pumpen"});
    store::GroupAddress middle_ = store::createGroup(library_, top_, {u"Kreiselpumpen"});
    store::GroupAddress shown_ = store::createGroup(library_, middle_, {u"Tauchpumpen"});
    store::GroupAddress other_ = store::createGroup(library_, std::nullopt, {u"Ventile"});
    MessageBoxScript boxes_;
};

TEST_F(FrmSaveTest, OpensWithTheShownGroupNameKindAndPreview) {
    home_.write("library/Kaputt.stg", "no group file");
    EXPECT_FALSE(open([](QDialog& dialog) {
        const auto* tree = dialog.findChild<groups::GroupTree*>();
        EXPECT_EQ(tree->nodeCount(), 4);
        EXPECT_EQ(tree->selected()->path, "Pumpen / Kreiselpumpen / Tauchpumpen");
        EXPECT_TRUE(node(dialog, "Pumpen")->isExpanded());
        EXPECT_TRUE(node(dialog, "Kreiselpumpen")->isExpanded());
        EXPECT_EQ(dialog.focusWidget(), dialog.findChild<QLineEdit*>("txtName"));
        EXPECT_EQ(dialog.findChild<QLineEdit*>("txtName")->text(), "Kreisel");
        EXPECT_EQ(dialog.findChild<QLabel*>("lblTyp")->text(), "BMP");
        const auto* pane = dialog.findChild<editing::PicturePane*>();
        ASSERT_TRUE(until([&] { return !pane->isBusy(); }));
        EXPECT_EQ(pane->image().pixelColor(5, 5), QColor(Qt::green));
        EXPECT_LT(pane->image().width(), 1000);
        press(dialog, "cmdEnde");
        EXPECT_FALSE(dialog.isVisible());
    }));
    EXPECT_TRUE(QFile::exists(home_.at("library/Kaputt.stg"))); // the main window's business
    EXPECT_TRUE(boxes_.take().isEmpty());
    EXPECT_TRUE(store::listPictures(library_, shown_).empty());
}

TEST_F(FrmSaveTest, SpeaksBothLanguagesAndHelps) {
    QList<int> topics;
    app::setHelpHandler(
        [&](const app::HelpCall& call) { topics.append(static_cast<int>(call.topic)); });
    const auto captions = [this] {
        QStringList texts;
        open([&](QDialog& dialog) {
            texts.append(dialog.windowTitle());
            for (const auto* frame : dialog.findChildren<QGroupBox*>()) {
                texts.append(frame->title());
            }
            for (const char* name : {"lblGruppe", "lblName", "lblDateityp"}) {
                texts.append(dialog.findChild<QLabel*>(name)->text());
            }
            for (const char* name : {"cmdSave", "cmdEnde", "cmdHelp"}) {
                texts.append(dialog.findChild<QPushButton*>(name)->text());
            }
            press(dialog, "cmdHelp");
        });
        return texts.join('|');
    };
    EXPECT_EQ(captions(), "Bild speichern|Optionen:|Vorschau:|Gruppe:|Bildname:|Dateityp:|"
                          "Speichern|Abbrechen|Hilfe");
    app::setLanguage(app::kEnglishLocale);
    EXPECT_EQ(captions(), "Save picture|Options:|Preview:|Group:|Picture name:|File format:|"
                          "Save|Abort|Help");
    EXPECT_EQ(topics, (QList<int>{10, 10}));
    app::setHelpHandler({});
}

TEST_F(FrmSaveTest, OnlyTheShownGroupIsToBeRefreshed) {
    const QByteArray file = home_.read("Picture.BMP");
    EXPECT_TRUE(open([](QDialog& dialog) {
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
    }));
    EXPECT_EQ(stored(shown_, u"Kreisel"), file);
    for (const char* group : {"Pumpen", "Kreiselpumpen", "Ventile"}) {
        EXPECT_FALSE(open([&](QDialog& dialog) {
            choose(dialog, group);
            press(dialog, "cmdSave");
            EXPECT_FALSE(dialog.isVisible());
        })) << group;
    }
    EXPECT_EQ(stored(top_, u"Kreisel"), file);
    EXPECT_EQ(stored(middle_, u"Kreisel"), file);
    EXPECT_EQ(stored(other_, u"Kreisel"), file);
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_F(FrmSaveTest, AnOlderPictureIsOverwrittenOnlyAfterYes) {
    addOld(shown_, u"KREISEL");
    const QByteArray old = home_.read("old.bmp");
    MessageBoxScript answers({app::kAnswerNo}, app::kAnswerYes);
    EXPECT_FALSE(open([](QDialog& dialog) {
        press(dialog, "cmdSave");
        EXPECT_TRUE(dialog.isVisible());
    }));
    EXPECT_EQ(stored(shown_, u"Kreisel"), old);
    EXPECT_TRUE(open([](QDialog& dialog) { press(dialog, "cmdSave"); }));
    EXPECT_EQ(stored(shown_, u"Kreisel"), home_.read("Picture.BMP"));
    const auto asked = answers.take();
    ASSERT_EQ(asked.size(), 2);
    EXPECT_EQ(asked.last().text, "Bild existiert bereits. Überschreiben?");
    EXPECT_EQ(asked.last().title, "Bild hinzufügen");
    EXPECT_EQ(asked.last().buttons, app::Buttons::YesNo);
    EXPECT_EQ(store::listPictures(library_, shown_).size(), 1U);
}

TEST_F(FrmSaveTest, RefusesWhatNoPictureCanBeCalledAndIgnoresNoName) {
    open([&](QDialog& dialog) {
        retype(dialog, "");
        press(dialog, "cmdSave");
        EXPECT_TRUE(boxes_.take().isEmpty());
        for (const char* name : {"- Kein Bild -", "name", "PARENT", "a/b", "a:b"}) {
            retype(dialog, name);
            press(dialog, "cmdSave");
            const auto boxes = boxes_.take();
            ASSERT_EQ(boxes.size(), 1) << name;
            EXPECT_EQ(boxes.first().text, "Ungültiger Bildname.");
            EXPECT_EQ(boxes.first().title, "Bild hinzufügen");
            EXPECT_TRUE(dialog.isVisible());
        }
        retype(dialog, "Kreisel");
        dialog.findChild<groups::GroupTree*>()->clearSelection();
        press(dialog, "cmdSave");
        EXPECT_EQ(boxes_.takeText(), "Keine Gruppe ausgewählt.");
    });
    EXPECT_EQ(store::readGroupName(library_, shown_).text, u"Tauchpumpen");
    EXPECT_TRUE(store::listPictures(library_, shown_).empty());
}

TEST_F(FrmSaveTest, AFailureNamesGroupAndFileAndTheDialogStays) {
    EXPECT_TRUE(open([&](QDialog& dialog) {
        {
            const auto held = holdLocked(store::pathOf(library_, shown_.file));
            press(dialog, "cmdSave");
        }
        const QString locked = boxes_.takeText();
        EXPECT_TRUE(locked.contains("Pumpen / Kreiselpumpen / Tauchpumpen"));
        EXPECT_TRUE(locked.contains("Pumpen.stg")) << locked.toStdString();
        QFile::rename(home_.at("Picture.BMP"), home_.at("away"));
        press(dialog, "cmdSave");
        EXPECT_TRUE(boxes_.takeText().contains("Picture.BMP"));
        QFile::rename(home_.at("away"), home_.at("Picture.BMP"));
        EXPECT_TRUE(dialog.isVisible());
        press(dialog, "cmdSave");
        EXPECT_FALSE(dialog.isVisible());
    }));
}

TEST_F(FrmSaveTest, ALibraryThatCannotBeListedIsTold) {
    QFile::rename(home_.at("library"), home_.at("unplugged"));
    frmSave form(nullptr);
    EXPECT_EQ(
        form.openFor(library_, {home_.at("Picture.BMP").toStdString(), shown_, "P", "BMP", {}}),
        frmSave::Outcome::ShownGroupUnchanged);
    EXPECT_TRUE(boxes_.takeText().contains("library"));
}

} // namespace
