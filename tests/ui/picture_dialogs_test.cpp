// Renaming, deleting and looking at pictures through the real menus and dialogs, in both languages
// and with both decimal separators.
#include "app/settings.h"
#include "commands/enabling.h"
#include "editing/picture_box.h"
#include "platform/native_disk.h"
#include "store/picture_operations.h"
#include "store/storage_access.h"
#include "ui/every_language.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>

namespace {

class PictureDialogs : public EveryLanguageTest {
  protected:
    // A group two levels deep with these pictures; each group above it, and the group of another
    // file, has a picture P1 of its own.
    void makeLibrary(const QStringList& names) {
        const auto pumps = makeGroup("Pumpen");
        const auto rotary = makeGroup("Kreisel", pumps);
        group_ = makeGroup("Stahl & Co", rotary);
        others_ = {pumps, rotary, makeGroup("Sub2")};
        for (const store::GroupAddress& other : others_) {
            addPicture(other, "P1");
        }
        for (const QString& name : names) {
            addPicture(group_, name);
        }
    }

    void startWith(const QStringList& names) {
        makeLibrary(names);
        start();
        choose();
    }

    void choose() { clickNode("Pumpen/Kreisel/Stahl & Co"); }

    QStringList stored(const store::GroupAddress& group) {
        QStringList names;
        for (const auto& picture : store::listPictures(library(), group)) {
            names.append(QString::fromStdU16String(picture.name.text));
        }
        return names;
    }

    void expectOthersUntouched() {
        for (const store::GroupAddress& other : others_) {
            EXPECT_EQ(stored(other), QStringList{"P1"});
        }
    }

    static void press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QString::fromLatin1(button)),
                          Qt::LeftButton);
    }

    // Types the name into the open dialog and presses Enter.
    static void enter(QDialog& dialog, const QString& name) {
        auto* field = dialog.findChild<QLineEdit*>("txtName");
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, name);
        QTest::keyClick(field, Qt::Key_Return);
    }

    void renameTo(const QString& name, const char* action = "Men_Bearbeiten_1") {
        inDialog([&] { trigger(action); }, [&](QDialog& dialog) { enter(dialog, name); });
    }

    // The one box since the last call, checked to have that title.
    QString boxTitled(const QString& title) {
        const auto boxes = boxes_.take();
        if (boxes.size() != 1) {
            return QStringLiteral("(%1 boxes)").arg(boxes.size());
        }
        EXPECT_EQ(boxes[0].title, title);
        return boxes[0].text;
    }

    // A picture of that many bytes, of which none can be decoded; twips as the store measured them.
    void addBytes(const QString& name, qsizetype count, store::TwipSize twips) {
        store::Library measuring = library();
        measuring.measure = [twips](std::span<const std::byte>) { return twips; };
        measuring.decimalSeparator = GetParam().separator.unicode();
        home_.write("source.wmf", QByteArray(count, 'x'));
        store::addPicture(measuring, group_, {name.toStdU16String()},
                          platform::toFilePath(home_.at("source.wmf")));
    }

    void addImage(const QString& name, QSize size) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::blue);
        ASSERT_TRUE(image.save(home_.at("source.bmp"), "BMP"));
        store::addPicture(library(), group_, {name.toStdU16String()},
                          platform::toFilePath(home_.at("source.bmp")));
    }

    void removeRecord(const std::u16string& name) {
        store::StorageAccess access(library());
        access.openGroup(group_, compound::Access::ReadWrite);
        ASSERT_TRUE(access.openInfo(group_));
        access.infoStorage().DestroyElement(name);
        access.Commit();
    }

    static QString shown(QDialog& dialog, const char* label) {
        return dialog.findChild<QLabel*>(QString::fromUtf8(label))->text();
    }

    // "WIDTH x HEIGHT, SIZE, TYPE" as the open information dialog shows it.
    static QString facts(QDialog& dialog) {
        return shown(dialog, "lblBreite2") + " x " + shown(dialog, "lblH_he2") + ", " +
               shown(dialog, "lblSize2") + ", " + shown(dialog, "lblDateiTyp");
    }

    // The facts of one picture, through the list and the menu.
    QString factsOf(const QString& name, QRect* preview = nullptr) {
        auto* list = find<QTreeWidget>("lvwInfo");
        list->setCurrentItem(list->findItems(name, Qt::MatchExactly).value(0));
        QString result;
        inDialog([&] { trigger("Men_Bearbeiten_4"); },
                 [&](QDialog& dialog) {
                     EXPECT_EQ(shown(dialog, "lblName2"), name);
                     result = facts(dialog);
                     if (preview != nullptr) {
                         *preview = dialog.findChild<QWidget*>("imgBild")->geometry();
                     }
                 });
        return result;
    }

    store::GroupAddress group_;
    std::vector<store::GroupAddress> others_;
};

INSTANTIATE_TEST_SUITE_P(Languages, PictureDialogs, EveryLanguageTest::all());

// --- Renaming

TEST_P(PictureDialogs, EveryRefusedNameIsToldAndChangesNothing) {
    startWith({"P1", "P2"});
    const QString noPicture = say("- Kein Bild -", "- No picture -");
    const QString reserved =
        say("Der Bildname \"%1\" ist nicht möglich!", "Picture name \"%1\" is not valid!");
    const QString exists =
        say("Name existiert bereits in der Gruppe.", "Name is already existing.");
    const QString invalid = say("Ungültiger Bildname.", "Invalid picture name.");
    const std::vector<std::pair<QString, QString>> cases{
        {"NAME", reserved.arg("NAME")},
        {"name", reserved.arg("name")},
        {"Parent", reserved.arg("Parent")},
        {noPicture,
         '"' + noPicture +
             say("\" ist kein gültiger Name für Bilder.", "\" is not a valid name for pictures.")},
        {"", say("Bitte geben Sie einen neuen Namen an.", "Please enter a new name.")},
        {"P2", exists},
        {"P1", exists}, // also the picture's own name
        {"p2", invalid},
        {"a/b", invalid},
        {QString(32, 'x'), invalid},
    };
    inDialog([&] { trigger("Men_Bearbeiten_1"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(dialog.windowTitle(), say("Bild umbenennen", "Rename picture"));
                 for (const auto& [name, message] : cases) {
                     enter(dialog, name);
                     EXPECT_EQ(boxTitled(dialog.windowTitle()), message) << name.toStdString();
                     EXPECT_TRUE(dialog.isVisible()) << name.toStdString();
                 }
             });
    EXPECT_EQ(stored(group_), (QStringList{"P1", "P2"}));
    EXPECT_EQ(label(), "P1");
    expectOthersUntouched();
}

TEST_P(PictureDialogs, ARenamedPictureStaysTheShownOne) {
    startWith({"P1", "P2", "P3"});
    QTest::mouseClick(thumbnail("P2"), Qt::LeftButton);
    renameTo("A.2");
    EXPECT_EQ(label(), "A.2");
    EXPECT_EQ(thumbnails(), (QStringList{"P1", "P3", "A.2"})); // short names come first
    EXPECT_EQ(store::readPictureType(library(), group_, {u"A.2"}), "BMP");

    trigger("Men_Extras_0");
    auto* list = find<QTreeWidget>("lvwInfo");
    list->setCurrentItem(list->findItems("P3", Qt::MatchExactly).value(0));
    renameTo("p3", "bRename"); // a change of case alone
    EXPECT_EQ(label(), "p3");
    EXPECT_EQ(rows(), (QStringList{"P1", "p3", "A.2"}));
    EXPECT_EQ(list->currentItem()->text(0), "p3");
    EXPECT_TRUE(boxes_.take().isEmpty());
    expectOthersUntouched();
}

TEST_P(PictureDialogs, TheRenameDialogOffersTheOldNameEachTime) {
    startWith({"P1"});
    QDialog* first = nullptr;
    inDialog([&] { trigger("bRename"); },
             [&](QDialog& dialog) {
                 first = &dialog;
                 EXPECT_EQ(dialog.findChild<QLineEdit*>("txtName")->selectedText(), "P1");
                 QTest::keyClicks(dialog.findChild<QLineEdit*>("txtName"), "half typed");
                 QTest::keyClick(&dialog, Qt::Key_Escape);
                 EXPECT_FALSE(dialog.isVisible());
             });
    inDialog([&] { trigger("bRename"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(&dialog, first);
                 auto* field = dialog.findChild<QLineEdit*>("txtName");
                 EXPECT_EQ(field->selectedText(), "P1");
                 press(dialog, "cmdCancel");
                 EXPECT_FALSE(dialog.isVisible());
             });
    EXPECT_EQ(stored(group_), QStringList{"P1"});
    inDialog([&] { trigger("bRename"); },
             [&](QDialog& dialog) { // what is typed takes the old name's place
                 auto* field = dialog.findChild<QLineEdit*>("txtName");
                 QTest::keyClicks(field, "P");
                 QTest::keyClick(field, Qt::Key_End);
                 QTest::keyClicks(field, "7");
                 QTest::keyClick(field, Qt::Key_Return);
             });
    EXPECT_EQ(stored(group_), QStringList{"P7"});
}

TEST_P(PictureDialogs, WithoutAPictureOnlyThePopUpRenameOpensAndSaysSo) {
    startWith({});
    EXPECT_EQ(label(), say("- Kein Bild -", "- No picture -"));
    const QString title = say("Bild umbenennen", "Rename picture");
    const QString message = say("Kein Bild ausgewählt.", "No picture selected.");
    renameTo("Neu", "bRename");
    EXPECT_EQ(boxTitled(title), message);
    for (const char* action : {"Men_Bearbeiten_1", "Men_Bearbeiten_3", "Men_Bearbeiten_4",
                               "bDelete", "bInfo", "Men_Bearbeiten_0"}) {
        trigger(action); // an open dialog would wait for ever
        EXPECT_TRUE(boxes_.take().isEmpty()) << action;
    }
    clickFreeArea(Qt::LeftButton);
    ASSERT_EQ(selectedNode(), "");
    renameTo("Neu", "bRename");
    EXPECT_EQ(boxTitled(title), message);
}

// A program in the other language, or another program, may have given it that name.
TEST_P(PictureDialogs, APictureNamedLikeTheWordsForNoneIsAPicture) {
    const QString name = say("- Kein Bild -", "- No picture -");
    startWith({name});
    trigger("Men_Bearbeiten_0");
    EXPECT_TRUE(QFile::exists(app::settings().temporaryFolder() + "Picture.BMP"));
    renameTo(say("- No picture -", "- Kein Bild -"), "Men_Bearbeiten_1");
    EXPECT_EQ(label(), say("- No picture -", "- Kein Bild -"));
    store::renamePicture(library(), group_, {label().toStdU16String()}, {name.toStdU16String()});
    window().Aktualisieren();
    settle();
    EXPECT_EQ(label(), name);
    const MessageBoxScript yes({}, app::kAnswerYes);
    trigger("Men_Bearbeiten_3");
    settle();
    EXPECT_TRUE(stored(group_).isEmpty());
    EXPECT_EQ(label(), name) << "now it says that there is none";
    trigger("Men_Bearbeiten_3");
    EXPECT_TRUE(boxes_.take().isEmpty());
}

TEST_P(PictureDialogs, APictureThatWentBehindTheWindowsBackIsTakenOffTheScreen) {
    startWith({"P1", "P2"});
    store::deletePicture(library(), group_, {u"P1"});
    MessageBoxScript yes({}, app::kAnswerYes);
    trigger("bDelete");
    settle();
    EXPECT_TRUE(yes.take().isEmpty());
    EXPECT_EQ(thumbnails(), QStringList{"P2"});
    EXPECT_EQ(label(), "P2");
    EXPECT_EQ(stored(group_), QStringList{"P2"});
}

// --- Deleting

TEST_P(PictureDialogs, DeletingAsksByNameAndTakesThatPictureOnly) {
    startWith({"P1", "P2"});
    const auto group = QStringLiteral("Stahl & Co");
    const auto question = [&](const QString& picture) {
        return say("Sind Sie sicher, dass Sie das Bild \"%1\" aus der Gruppe \"%2\" löschen "
                   "möchten?",
                   "Are you sure that you want to delete picture \"%1\" from group \"%2\" ?")
            .arg(picture, group);
    };
    MessageBoxScript script({app::kAnswerNo, app::kAnswerYes, app::kAnswerYes});
    for (const char* action : {"Men_Bearbeiten_3", "bDelete"}) {
        trigger(action);
        settle();
        const auto boxes = script.take();
        ASSERT_EQ(boxes.size(), 1);
        EXPECT_EQ(boxes[0].text, question("P1"));
        EXPECT_EQ(boxes[0].buttons, app::Buttons::YesNo);
        EXPECT_EQ(boxes[0].title, "TXSGraphicsLib");
    }
    EXPECT_EQ(thumbnails(), QStringList{"P2"});
    EXPECT_EQ(label(), "P2");

    trigger("Men_Bearbeiten_3");
    settle();
    EXPECT_EQ(script.takeText(), question("P2"));
    EXPECT_TRUE(thumbnails().isEmpty());
    EXPECT_EQ(label(), say("- Kein Bild -", "- No picture -"));
    EXPECT_TRUE(stored(group_).isEmpty());
    expectOthersUntouched();
}

TEST_P(PictureDialogs, DeletingInTheListShowsItsFirstRow) {
    makeLibrary({"P1", "P3"});
    addPicture(group_, "P2", Qt::red, "gif");
    start();
    trigger("Men_Extras_0");
    choose();
    const MessageBoxScript yes({}, app::kAnswerYes);
    const auto isEditable = [&] { return find<QAction>("Men_Bearbeiten_2")->isEnabled(); };
    EXPECT_TRUE(isEditable());
    trigger("Men_Bearbeiten_3");
    EXPECT_EQ(rows(), (QStringList{"P2", "P3"}));
    EXPECT_EQ(label(), "P2");
    EXPECT_FALSE(isEditable()) << "a GIF cannot be edited";
    trigger("Men_Bearbeiten_3");
    EXPECT_EQ(label(), "P3");
    EXPECT_TRUE(isEditable());
    trigger("Men_Bearbeiten_3");
    EXPECT_TRUE(rows().isEmpty());
    EXPECT_EQ(label(), app::text(7));
    expectOthersUntouched();
}

TEST_P(PictureDialogs, APictureWithoutRecordCanBeRenamedAndDeleted) {
    makeLibrary({"P1"});
    removeRecord(u"P1");
    start();
    choose();
    renameTo("Waise");
    EXPECT_EQ(label(), "Waise");
    const MessageBoxScript yes({}, app::kAnswerYes);
    trigger("Men_Bearbeiten_3");
    settle();
    EXPECT_TRUE(stored(group_).isEmpty());
}

// --- Information

TEST_P(PictureDialogs, InformationShowsTheFactsInPixelsAndTwips) {
    makeLibrary({});
    addBytes("Klein", 1536, {480, 720});
    addBytes("Halb", 20480, {472.5, 150});
    addBytes("Leer", 0, {0, 0});
    start();
    trigger("Men_Extras_0");
    choose();
    EXPECT_EQ(factsOf("Klein"), hasComma() ? "48 x 32, 1,5 KB, WMF" : "48 x 32, 1 KB, WMF");
    EXPECT_EQ(factsOf("Halb"), hasComma() ? "10 x 31,5, 2 KB, WMF" : "10 x 31.5, 2 KB, WMF");
    EXPECT_EQ(factsOf("Leer"), "0 x 0, 0 KB, WMF");

    find<QTreeWidget>("lvwInfo")->setCurrentItem(
        find<QTreeWidget>("lvwInfo")->findItems("Halb", Qt::MatchExactly).value(0));
    for (int opening = 0; opening < 2; ++opening) { // the second time it starts in pixels again
        inDialog([&] { trigger("bInfo"); },
                 [&](QDialog& dialog) {
                     EXPECT_TRUE(dialog.findChild<QRadioButton*>("optPixel")->isChecked());
                     const auto click = [&](const char* option) {
                         dialog.findChild<QRadioButton*>(QString::fromLatin1(option))->click();
                         return shown(dialog, "lblBreite2") + "/" + shown(dialog, "lblH_he2");
                     };
                     EXPECT_EQ(click("optTwip"), "150/472"); // cut, not rounded
                     EXPECT_EQ(click("optPixel"), "10/31");
                     EXPECT_EQ(click("optPixel"), "0/2"); // every click converts what is shown
                     EXPECT_EQ(click("optTwip"), "0/30");
                     auto* twip = dialog.findChild<QRadioButton*>("optTwip");
                     QApplication::setActiveWindow(&dialog);
                     twip->setFocus();
                     QTest::keyClick(twip, Qt::Key_Left);
                     EXPECT_EQ(shown(dialog, "lblH_he2"), "2"); // chosen by key
                 });
    }
}

TEST_P(PictureDialogs, InformationIsCaptionedInTheProgramsLanguage) {
    startWith({"P1"});
    const QString title = say("Bild-Info", "Picture-Info");
    inDialog([&] { trigger("Men_Bearbeiten_4"); },
             [&](QDialog& dialog) {
                 EXPECT_EQ(dialog.windowTitle(), title);
                 EXPECT_EQ(dialog.findChild<QGroupBox*>("fraEinheit")->title(),
                           say("Maßeinheit:", "Scale mode:"));
                 EXPECT_EQ(shown(dialog, "Label4"), say("Größe:", "Size:"));
                 press(dialog, "cmdOK"); // its name and that of the help button are crossed
                 EXPECT_FALSE(dialog.isVisible());
             });
}

TEST_P(PictureDialogs, ThePreviewKeepsProportionsAndStartsFromItsPlaceEachTime) {
    makeLibrary({"Breit"}); // measured as 20 x 10 pixels
    addImage("Hoch", {50, 200});
    addImage("Quadrat", {20, 20});
    addImage("Strich", {3000, 1});
    addBytes("Rätsel", 1, {3000, 750});
    makeGroup("Leer");
    start();
    trigger("Men_Extras_0");
    choose();
    QRect square;
    QRect preview;
    factsOf("Quadrat", &square);
    EXPECT_EQ(square.size(), QSize(145, 145)); // 2175 twips
    EXPECT_EQ(square.left(), 6);
    for (int opening = 0; opening < 2; ++opening) {
        factsOf("Breit", &preview);
        EXPECT_EQ(preview, QRect(6, square.top() + 36, 145, 73));
        factsOf("Hoch", &preview);
        EXPECT_EQ(preview, QRect(60, square.top(), 36, 145));
        factsOf("Quadrat", &preview);
        EXPECT_EQ(preview, square);
        factsOf("Strich", &preview);
        EXPECT_EQ(preview, QRect(6, square.top() + 72, 145, 1));
    }
    removeRecord(u"Breit"); // the picture itself is measured
    EXPECT_EQ(factsOf("Breit", &preview), hasComma() ? "0 x 0, 0,6 KB, " : "0 x 0, 0 KB, ");
    EXPECT_EQ(preview, QRect(6, square.top() + 36, 145, 73));
    factsOf("Rätsel", &preview);
    EXPECT_EQ(preview, square); // with nothing in it
}

TEST_P(PictureDialogs, ThePreviewShowsThePicture) {
    startWith({"P1"});
    inDialog([&] { trigger("bInfo"); },
             [&](QDialog& dialog) {
                 auto* box = dialog.findChild<QWidget*>("imgBild");
                 const QImage image = box->grab().toImage();
                 EXPECT_EQ(image.pixelColor(image.rect().center()), QColor(Qt::red));
             });
}

// The dialog is kept: what it showed before must not stand for a picture that nobody can decode.
TEST_P(PictureDialogs, ThePreviewIsEmptyForAnUndecodablePicture) {
    makeLibrary({"P1"});
    addUndecodable(group_, "P2");
    start();
    choose();
    for (const char* name : {"P1", "P2", "P1"}) {
        QTest::mouseClick(thumbnail(name), Qt::LeftButton);
        inDialog([&] { trigger("bInfo"); },
                 [&](QDialog& dialog) {
                     const auto* preview = dialog.findChild<editing::PictureBox*>("imgBild");
                     EXPECT_EQ(preview->isEmpty(), QLatin1String(name) == "P2");
                     EXPECT_EQ(shown(dialog, "lblName2"), name);
                 });
    }
}

TEST_P(PictureDialogs, InformationAsksForAPictureBeforeAnyChoice) {
    makeLibrary({"P1"});
    start();
    ASSERT_EQ(label(), "");
    for (const char* action : {"Men_Bearbeiten_4", "bInfo"}) {
        trigger(action);
        EXPECT_EQ(boxTitled("TXSGraphicsLib"),
                  say("Es wurde noch kein Bild ausgewählt!", "No picture selected!"));
    }
}

// --- The hidden command

TEST_P(PictureDialogs, ReadingThePictureShowsNothing) {
    startWith({"P1"});
    auto* action = find<QAction>("Men_Bearbeiten_0");
    EXPECT_FALSE(action->isVisible());
    EXPECT_EQ(action->text(), "");
    action->trigger();
    EXPECT_EQ(boxes_.takeText(), "(0 boxes)");
    const QString copy = app::settings().temporaryFolder() + "Picture.BMP";
    EXPECT_EQ(QFile(copy).size(), qint64(54 + 10 * 60));
    window().close();
    EXPECT_FALSE(QFile::exists(copy));
}

} // namespace
