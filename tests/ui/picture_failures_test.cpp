// Picture commands when the store fails: first in the real window on files that are locked or gone,
// then on a disk in memory that fails when it is told to.
#include "app/texts.h"
#include "commands/picture_transfer.h"
#include "platform/held_file.h"
#include "platform/native_disk.h"
#include "store/picture_operations.h"
#include "ui/failing_disk_fixture.h"
#include "ui/main_window_fixture.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

class PictureFailures : public MainWindowTest {
  protected:
    void startAtGroup() {
        group_ = makeGroup("Kreisel", makeGroup("Pumpen"));
        addPicture(group_, "P1");
        start();
        clickNode("Pumpen/Kreisel");
    }

    std::filesystem::path file() { return store::pathOf(library(), group_.file); }

    void expectNamed(const QString& text, const QString& cause) {
        EXPECT_TRUE(text.contains("Gruppe: Pumpen / Kreisel\n")) << text.toStdString();
        EXPECT_TRUE(text.contains("Pumpen.stg")) << text.toStdString();
        EXPECT_TRUE(text.contains(cause)) << text.toStdString();
    }

    store::GroupAddress group_;
};

TEST_F(PictureFailures, ALockedGroupIsNamedAndStaysOnTheScreen) {
    startAtGroup();
    auto held = holdLocked(file());
    const QString cause = "Die Datei wird von einem anderen Programm benutzt.";
    for (const char* action : {"Men_Bearbeiten_0", "Men_Bearbeiten_3", "Men_Bearbeiten_4"}) {
        trigger(action);
        expectNamed(boxes_.takeText(), cause);
    }
    inDialog([&] { trigger("bRename"); },
             [&](QDialog& dialog) {
                 auto* field = dialog.findChild<QLineEdit*>("txtName");
                 QTest::keyClicks(field, "Neu");
                 QTest::keyClick(field, Qt::Key_Return);
                 expectNamed(boxes_.takeText(), cause);
                 EXPECT_TRUE(dialog.isVisible());
                 held.reset(); // the next try succeeds
                 QTest::keyClick(field, Qt::Key_Return);
                 EXPECT_FALSE(dialog.isVisible());
             });
    EXPECT_EQ(label(), "Neu");
    EXPECT_EQ(thumbnails(), QStringList{"Neu"});
}

TEST_F(PictureFailures, AGroupThatVanishedIsNamedAndLeavesTheTree) {
    startAtGroup();
    ASSERT_TRUE(std::filesystem::remove(file()));
    trigger("Men_Bearbeiten_3");
    settle();
    expectNamed(boxes_.takeText(), "Nicht gefunden.");
    EXPECT_EQ(node("Pumpen"), nullptr);
    EXPECT_TRUE(thumbnails().isEmpty());
    EXPECT_EQ(label(), "");
    trigger("Men_Bearbeiten_4");
    EXPECT_EQ(boxes_.takeText(), app::text(303));
}

class PicturesOnFailingDisk : public FailingDiskTest {};

INSTANTIATE_TEST_SUITE_P(Causes, PicturesOnFailingDisk, testing::ValuesIn(kDiskFailures));

TEST_P(PicturesOnFailingDisk, LeavesThePictureThatWasToBeDeleted) {
    for (const bool isGerman : {true, false}) {
        setGerman(isGerman);
        MessageBoxScript yes({}, app::kAnswerYes);
        commands::Dispatcher(view_).toolClick("bDelete");
        const auto boxes = yes.take();
        ASSERT_EQ(boxes.size(), 3); // the questions come first
        EXPECT_TRUE(boxes[1].text.contains(isGerman ? GetParam().german : GetParam().english));
        expectFailureTold(boxes[2], "TXSGraphicsLib");
    }
    failAtTrashOnly();
    MessageBoxScript notForGood({app::kAnswerYes, app::kAnswerNo});
    commands::Dispatcher(view_).toolClick("bDelete");
    EXPECT_EQ(view_.disk.content("/library/Pumpen.stg"), before_);
    MessageBoxScript yes({}, app::kAnswerYes);
    commands::Dispatcher(view_).toolClick("bDelete");
    EXPECT_EQ(yes.take().size(), 2);
    EXPECT_TRUE(store::listPictures(view_.library(), view_.selected.address).empty());
}

// Where a picture has come back but could not go from where it was, trying again would bring a
// second one.
TEST(PicturesMovedOnFailingDisk, AreTakenBackOnce) {
    const auto namesIn = [](const store::Library& library, const store::GroupAddress& group) {
        QStringList names;
        for (const auto& picture : store::listPictures(library, group)) {
            names.append(QString::fromStdU16String(picture.name.text));
        }
        return names;
    };
    int told = 0;
    bool isMet = true;
    for (int failing = 0; isMet; ++failing) {
        ViewInMemory view;
        const store::Library& library = view.library();
        const auto pumps = store::createGroup(library, std::nullopt, {u"Pumpen"});
        const auto tanks = store::createGroup(library, std::nullopt, {u"Tanks"});
        view.disk.makeFolder("/sources");
        (void)view.disk.create("/sources/a.bmp");
        store::addPicture(library, pumps, {u"P1"}, "/sources/a.bmp");
        const MessageBoxScript ok;
        commands::transferPictures(view, {pumps, {{u"P1"}}}, {tanks, "Tanks"},
                                   store::PassageKind::Move);
        QTimer closing;
        QObject::connect(&closing, &QTimer::timeout, [&] {
            QWidget* summary = QApplication::activeModalWidget();
            if (summary != nullptr && summary->objectName() == "frmAusgelassen") {
                ++told;
                summary->close();
            }
        });
        closing.start(0);
        int call = 0;
        view.disk.setInterceptor([&](MemoryDisk::Call) {
            if (call++ == failing) {
                throw compound::Error(compound::ErrorCode::NoSpace, "/library/Tanks.stg", "told");
            }
        });
        view.history().undoLast(view);
        view.disk.setInterceptor({});
        isMet = call > failing;
        view.history().undoLast(view);
        EXPECT_TRUE(view.history().isEmpty());
        const QStringList back = namesIn(library, pumps);
        EXPECT_TRUE(back.isEmpty() || back == QStringList("P1")) << failing;
        EXPECT_EQ((back + namesIn(library, tanks)).isEmpty(), false) << failing;
    }
    EXPECT_GT(told, 0) << "that they are in both groups";
}

TEST_P(PicturesOnFailingDisk, KeepsTheRenameDialogOpen) {
    for (const bool isGerman : {true, false}) {
        setGerman(isGerman);
        MessageBoxScript boxes;
        commands::Dispatcher dispatcher(view_);
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            dialog->findChild<QLineEdit*>("txtName")->setText("Neu");
            dialog->findChild<QPushButton*>("cmdOK")->click();
            EXPECT_TRUE(dialog->isVisible());
            dialog->close();
            dialog->deleteLater();
        });
        dispatcher.toolClick("bRename");
        const auto shown = boxes.take();
        ASSERT_EQ(shown.size(), 1);
        expectFailureTold(shown[0], isGerman ? "Bild umbenennen" : "Rename picture");
    }
}

} // namespace
