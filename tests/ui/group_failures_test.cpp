// Group commands when the disk is full or read-only.
#include "ui/failing_disk_fixture.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace {

class GroupsOnFailingDisk : public FailingDiskTest {
  protected:
    void selectTopLevelGroup() {
        view_.selected = {store::topLevelAddress(u"Pumpen"), {}, "Pumpen", "Pumpen"};
    }

    // Runs the command, gives the dialog that it opens a name and returns the boxes.
    QList<MessageBoxScript::Box> giveName(const QString& tool) {
        MessageBoxScript boxes;
        commands::Dispatcher dispatcher(view_);
        QTimer::singleShot(0, [] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            dialog->findChild<QLineEdit*>("txtNeu")->setText("Neu");
            dialog->findChild<QPushButton*>("cmdOK")->click();
            EXPECT_TRUE(dialog->isVisible());
            EXPECT_EQ(dialog->findChild<QLineEdit*>("txtNeu")->text(), "Neu");
            dialog->close();
            dialog->deleteLater();
        });
        dispatcher.toolClick(tool);
        return boxes.take();
    }
};

INSTANTIATE_TEST_SUITE_P(Causes, GroupsOnFailingDisk, testing::ValuesIn(kDiskFailures));

TEST_P(GroupsOnFailingDisk, KeepTheDialogsOpenAndNameTheGroup) {
    for (const bool isGerman : {true, false}) {
        setGerman(isGerman);
        const auto renaming = giveName("gRename");
        ASSERT_EQ(renaming.size(), 1);
        expectFailureTold(renaming[0], isGerman ? "Gruppe umbenennen" : "Rename group");
        const auto making = giveName("gNew");
        ASSERT_EQ(making.size(), 1);
        expectFailureTold(making[0], isGerman ? "Neue Gruppe erstellen" : "Create new group");
    }
}

TEST_P(GroupsOnFailingDisk, KeepTheSubGroupThatWasToBeDeleted) {
    failAtTrashOnly();
    MessageBoxScript notForGood({app::kAnswerYes, app::kAnswerNo});
    commands::Dispatcher(view_).toolClick("gDelete");
    const auto boxes = notForGood.take();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes[1].buttons, app::Buttons::YesNoWithCare);
    EXPECT_TRUE(boxes[1].text.startsWith("In den Papierkorb")) << boxes[1].text.toStdString();
    EXPECT_TRUE(boxes[1].text.contains(GetParam().german)) << boxes[1].text.toStdString();
    EXPECT_EQ(view_.disk.content("/library/Pumpen.stg"), before_);
    EXPECT_EQ(view_.refreshes, 0);

    MessageBoxScript yes({}, app::kAnswerYes);
    commands::Dispatcher(view_).toolClick("gDelete");
    EXPECT_EQ(yes.take().size(), 2);
    EXPECT_GT(view_.refreshes, 0);
    EXPECT_FALSE(
        store::subGroupExists(view_.library(), store::topLevelAddress(u"Pumpen"), {u"Kreisel"}));
    EXPECT_TRUE(view_.history().isEmpty());
}

TEST_P(GroupsOnFailingDisk, KeepATopLevelGroupUnderItsName) {
    selectTopLevelGroup();
    const auto renaming = giveName("gRename");
    ASSERT_EQ(renaming.size(), 1);
    EXPECT_TRUE(renaming[0].text.startsWith("Gruppe: Pumpen\n")) << renaming[0].text.toStdString();
    EXPECT_TRUE(renaming[0].text.contains(GetParam().german)) << renaming[0].text.toStdString();
    EXPECT_EQ(view_.disk.content("/library/Pumpen.stg"), before_);
    EXPECT_FALSE(view_.disk.exists("/library/Neu.stg"));
    EXPECT_EQ(view_.refreshes, 0);
}

TEST_P(GroupsOnFailingDisk, SayNothingOfWhatTheUserHasStopped) {
    view_.disk.setInterceptor([](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Write) {
            throw compound::Error(compound::ErrorCode::Cancelled, "/library/Pumpen.stg", "stopped");
        }
    });
    EXPECT_EQ(giveName("gRename").size(), 0);
    EXPECT_EQ(view_.refreshes, 0);
}

// Done, but perhaps not for good: the tree has to show what is there now.
TEST_P(GroupsOnFailingDisk, AreReadAnewWhenNobodyKnowsWhatIsThere) {
    selectTopLevelGroup();
    view_.disk.setInterceptor([](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::SyncFolder) {
            throw compound::Error(GetParam().code, "/library", "told to fail");
        }
    });
    const auto making = giveName("gNew"); // beside the selected group, not in it
    ASSERT_EQ(making.size(), 1);
    EXPECT_EQ(making[0].text.toStdString(),
              "/library/Neu.stg\nEs ist unklar, ob die Änderung gespeichert wurde. (told to fail)");
    EXPECT_GT(view_.refreshes, 0);

    view_.refreshes = 0;
    MessageBoxScript yes({}, app::kAnswerYes);
    commands::Dispatcher(view_).toolClick("gDelete");
    const auto deleting = yes.take();
    ASSERT_EQ(deleting.size(), 2); // the question comes first
    EXPECT_EQ(deleting[1].text.toStdString(),
              "Gruppe: Pumpen\n/library/Pumpen.stg\n"
              "Es ist unklar, ob die Änderung gespeichert wurde. (told to fail)");
    EXPECT_GT(view_.refreshes, 0);
    view_.disk.setInterceptor({});
}

TEST_P(GroupsOnFailingDisk, KeepATopLevelGroupThatNoTrashTakes) {
    selectTopLevelGroup();
    view_.disk.setInterceptor([](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Folder) {
            throw compound::Error(GetParam().code, "/library/Pumpen.stg", "told to fail");
        }
    });
    MessageBoxScript yes({}, app::kAnswerYes);
    commands::Dispatcher(view_).toolClick("gDelete");
    view_.disk.setInterceptor({});
    const auto boxes = yes.take();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_TRUE(boxes[1].text.startsWith("Gruppe: Pumpen\n")) << boxes[1].text.toStdString();
    EXPECT_EQ(view_.disk.content("/library/Pumpen.stg"), before_);
    EXPECT_EQ(view_.refreshes, 0);
}

} // namespace
