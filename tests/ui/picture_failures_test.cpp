// Picture commands when the store fails: first in the real window on files that are locked or gone,
// then on a disk in memory that fails when it is told to.
#include "app/texts.h"
#include "commands/dispatcher.h"
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "platform/native_disk.h"
#include "store/picture_operations.h"
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
    auto held = library().disk.open(file(), compound::Access::Read);
    ASSERT_TRUE(held->lock(std::chrono::milliseconds(0)));
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
    EXPECT_EQ(label(), app::text(7));
    trigger("Men_Bearbeiten_4");
    EXPECT_TRUE(boxes_.take().isEmpty());
}

// A main window that shows the picture P1 of a library in memory, and counts what it is told.
class ViewInMemory : public commands::LibraryView {
  public:
    ViewInMemory() { disk.makeFolder("/library"); }

    QWidget* owner() override { return nullptr; }
    const store::Library& library() const override { return library_; }
    std::optional<commands::SelectedGroup> selectedGroup() const override {
        return commands::SelectedGroup{group, {u"Pumpen"}, "Kreisel", "Pumpen / Kreisel"};
    }
    QString shownPicture() const override { return "P1"; }
    void Aktualisieren() override { ++refreshes; }
    void PictureRenamed(const store::GroupAddress&, const QString&) override { ++refreshes; }
    void FillTreeView() override { ++refreshes; }
    void SetCurrentGroup(const store::GroupAddress&) override {}
    void TreeViewSelectNode(const store::GroupAddress&) override {}
    void TreeViewAdd(const store::GroupName&) override {}
    void SelectFirstGroup() override {}
    void FillListView(const store::GroupAddress&) override {}
    void MiniVorschau(std::size_t) override {}
    void ClearVorschau() override {}
    void NoPictures() override {}
    void ShowNoPicture() override {}
    bool GraphicalPreview() const override { return true; }
    void VorschauAktiviert() override {}
    void VorschauDeaktiviert() override {}
    void Exit() override {}

    MemoryDisk disk;
    store::GroupAddress group;
    int refreshes = 0;

  private:
    store::Library library_{disk, "/library",
                            [](std::span<const std::byte>) {
                                return store::TwipSize{15, 15};
                            },
                            u',', std::chrono::milliseconds(0)};
};

struct Failure {
    compound::ErrorCode code;
    QString german;
    QString english;
};

class FailingDisk : public testing::TestWithParam<Failure> {
  protected:
    FailingDisk() {
        const auto& library = view_.library();
        const auto top = store::createGroup(library, std::nullopt, {u"Pumpen"});
        view_.group = store::createGroup(library, top, {u"Kreisel"});
        view_.disk.makeFolder("/sources");
        (void)view_.disk.create("/sources/a.bmp");
        store::addPicture(library, view_.group, {u"P1"}, "/sources/a.bmp");
        before_ = view_.disk.content("/library/Pumpen.stg");
        view_.disk.setInterceptor([](MemoryDisk::Call call) {
            if (call == MemoryDisk::Call::Write) {
                throw compound::Error(GetParam().code, "/library/Pumpen.stg", "told to fail");
            }
        });
    }
    ~FailingDisk() override { app::setLanguage(app::kGermanLocale); }

    // The box about the failure, and that nothing was changed or refreshed for it.
    void expectFailureTold(const MessageBoxScript::Box& box, const QString& title) {
        EXPECT_EQ(box.text, QStringLiteral("%1 Pumpen / Kreisel\n/library/Pumpen.stg\n%2 "
                                           "(told to fail)")
                                .arg(isGerman_ ? "Gruppe:" : "Group:",
                                     isGerman_ ? GetParam().german : GetParam().english));
        EXPECT_EQ(box.title, title);
        EXPECT_EQ(view_.disk.content("/library/Pumpen.stg"), before_);
        EXPECT_EQ(view_.refreshes, 0);
    }

    void setGerman(bool isGerman) {
        isGerman_ = isGerman;
        app::setLanguage(isGerman ? app::kGermanLocale : app::kEnglishLocale);
    }

    ViewInMemory view_;
    bool isGerman_ = true;
    std::vector<std::byte> before_;
};

INSTANTIATE_TEST_SUITE_P(Causes, FailingDisk,
                         testing::Values(Failure{compound::ErrorCode::NoSpace,
                                                 "Der Datenträger ist voll.", "The disk is full."},
                                         Failure{compound::ErrorCode::Denied, "Keine Berechtigung.",
                                                 "Permission denied."}));

TEST_P(FailingDisk, LeavesThePictureThatWasToBeDeleted) {
    for (const bool isGerman : {true, false}) {
        setGerman(isGerman);
        MessageBoxScript yes({}, app::kAnswerYes);
        commands::Dispatcher(view_).toolClick("bDelete");
        const auto boxes = yes.take();
        ASSERT_EQ(boxes.size(), 2); // the question comes first
        expectFailureTold(boxes[1], "TXSGraphicsLib");
    }
}

TEST_P(FailingDisk, KeepsTheRenameDialogOpen) {
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
