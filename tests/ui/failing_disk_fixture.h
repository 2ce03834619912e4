// Commands on a library in memory whose disk fails when it is told to.
#pragma once

#include "app/message_box_script.h"
#include "app/texts.h"
#include "commands/dispatcher.h"
#include "commands/library_view.h"
#include "commands/undo_history.h"
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"

#include <array>
#include <gtest/gtest.h>
#include <ostream>

// The trash of a disk in memory, which gives nothing back, and takes nothing when told to fail.
class TrashInMemory final : public compound::Trash {
  public:
    TrashInMemory(compound::Disk& disk, std::optional<compound::ErrorCode> failure)
        : disk_(disk), failure_(failure) {}
    std::filesystem::path stagingFolder() const override { return "/staging"; }
    std::filesystem::path moveThere(const std::filesystem::path& file) override {
        if (failure_) {
            throw compound::Error(*failure_, file, "told to fail");
        }
        disk_.trash(file);
        return {};
    }
    void takeBack(const std::filesystem::path& trashed, const std::filesystem::path&) override {
        throw compound::Error(compound::ErrorCode::NotFound, trashed, "gone");
    }

  private:
    compound::Disk& disk_;
    std::optional<compound::ErrorCode> failure_;
};

// A main window that shows the picture P1 of a library in memory, and counts what it is told after
// a change.
class ViewInMemory : public commands::LibraryView {
  public:
    ViewInMemory() {
        disk.makeFolder("/library");
        disk.makeFolder("/staging");
    }

    QWidget* owner() override { return nullptr; }
    const store::Library& library() const override { return library_; }
    std::unique_ptr<compound::Trash> makeTrash() const override {
        return std::make_unique<TrashInMemory>(library_.disk, trashFailure);
    }
    commands::UndoHistory& history() override { return history_; }
    std::optional<commands::SelectedGroup> selectedGroup() const override { return selected; }
    const commands::ShownPicture& shownPicture() const override { return shown_; }
    std::vector<store::PictureName> selectedPictures() const override { return {*shown_.name()}; }
    void selectAll() override {}
    void copyPictures() override {}
    void cutPictures() override {}
    void pastePictures() override {}
    void ShowPictures(const store::GroupAddress&, const std::vector<store::PictureName>&) override {
        ++refreshes;
    }
    void Aktualisieren() override { ++refreshes; }
    void PictureRenamed(const store::GroupAddress&, const QString&) override { ++refreshes; }
    void PictureDeleted(const store::GroupAddress&,
                        const std::optional<store::PictureName>&) override {
        ++refreshes;
    }
    void FillTreeView() override { ++refreshes; }
    void SetCurrentGroup(const store::GroupAddress&) override {}
    void TreeViewSelectNode(const store::GroupAddress&) override {}
    void TreeViewAdd(const store::GroupName&) override {}
    void TreeViewRemove(const store::GroupAddress&) override { ++refreshes; }
    void SelectFirstGroup() override { ++refreshes; }
    void FillListView(const store::GroupAddress&) override {}
    void MiniVorschau(std::size_t) override {}
    void ClearVorschau() override {}
    void NoPictures() override {}
    void ShowNoPicture() override {}
    bool GraphicalPreview() const override { return true; }
    void VorschauAktiviert() override {}
    void VorschauDeaktiviert() override {}
    void HandOver(const QString&) override {}
    void Exit() override {}
    void ExitAfterHandOver() override {}

    MemoryDisk disk;
    std::optional<compound::ErrorCode> trashFailure;
    commands::SelectedGroup selected;
    int refreshes = 0;

  private:
    commands::UndoHistory history_;
    commands::ShownPicture shown_{store::PictureName{u"P1"}};
    store::Library library_{disk, "/library",
                            [](std::span<const std::byte>) {
                                return store::TwipSize{15, 15};
                            },
                            u',', std::chrono::milliseconds(0)};
};

struct DiskFailure {
    compound::ErrorCode code;
    QString german;
    QString english;
};

inline void PrintTo(const DiskFailure& failure, std::ostream* out) {
    *out << failure.english.toStdString();
}

inline const std::array kDiskFailures{
    DiskFailure{compound::ErrorCode::NoSpace, "Der Datenträger ist voll.", "The disk is full."},
    DiskFailure{compound::ErrorCode::Denied, "Keine Berechtigung.", "Permission denied."},
};

// Pumpen / Kreisel is selected; every write fails from the beginning of a test on.

class FailingDiskTest : public testing::TestWithParam<DiskFailure> {
  protected:
    FailingDiskTest() {
        const auto& library = view_.library();
        const auto top = store::createGroup(library, std::nullopt, {u"Pumpen"});
        view_.selected = {store::createGroup(library, top, {u"Kreisel"}), top.storage, "Kreisel",
                          "Pumpen / Kreisel"};
        view_.disk.makeFolder("/sources");
        (void)view_.disk.create("/sources/a.bmp");
        store::addPicture(library, view_.selected.address, {u"P1"}, "/sources/a.bmp");
        before_ = view_.disk.content("/library/Pumpen.stg");
        view_.disk.setInterceptor([](MemoryDisk::Call call) {
            if (call == MemoryDisk::Call::Write) {
                throw compound::Error(GetParam().code, "/library/Pumpen.stg", "told to fail");
            }
        });
    }
    ~FailingDiskTest() override { app::setLanguage(app::kGermanLocale); }

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

    void failAtTrashOnly() {
        view_.disk.setInterceptor({});
        view_.trashFailure = GetParam().code;
    }

    void setGerman(bool isGerman) {
        isGerman_ = isGerman;
        app::setLanguage(isGerman ? app::kGermanLocale : app::kEnglishLocale);
    }

    ViewInMemory view_;
    bool isGerman_ = true;
    std::vector<std::byte> before_;
};
