// A library for the store's tests, with short ways to make groups, pictures and foreign elements
// and to look at what a file holds. It lies on the in-memory disk, or, for tools/file-systems, in
// the folder that TXS_TEST_FOLDER names.
#pragma once

#include "compound/compound_file.h"
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "compound/trash.h"
#include "store/damaged_groups.h"
#include "store/folder_disk.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace store::testing {

// Measures our make-believe pictures: "PIC" HEIGHT " " WIDTH (twips), anything after them.
TwipSize measureText(std::span<const std::byte> bytes);

// A trash on the disk in memory.
class MemoryTrash final : public compound::Trash {
  public:
    explicit MemoryTrash(MemoryDisk& disk) : disk_(disk) {
        disk_.makeFolder("/staging");
        disk_.makeFolder("/trash");
    }

    std::filesystem::path stagingFolder() const override { return "/staging"; }
    std::filesystem::path moveThere(const std::filesystem::path& file) override;
    void takeBack(const std::filesystem::path& trashed, const std::filesystem::path& to) override;

    std::vector<std::string> fileNames() const;    // of what is in it, in the order of coming
    std::size_t thrown() const { return thrown_; } // ever

  private:
    MemoryDisk& disk_;
    std::size_t thrown_ = 0;
    std::vector<std::filesystem::path> files_;
};

class StoreTest : public ::testing::Test {
  protected:
    StoreTest();

    // Writes a source file outside the library; its bytes are a picture of that size in twips.
    std::filesystem::path source(const std::string& fileName, int heightTwips, int widthTwips,
                                 const std::string& rest = {});
    std::filesystem::path fileOf(const std::string& name, const std::string& bytes);

    GroupAddress topGroup(std::u16string_view name);
    GroupAddress subGroup(const GroupAddress& parent, std::u16string_view name);
    void add(const GroupAddress& group, std::u16string_view name, const std::string& rest = {});

    // Opens a group file for what only a foreign program would do to it.
    compound::CompoundFile openRaw(std::u16string_view file);
    void makeForeignGroup(std::u16string_view file, std::u16string_view storage,
                          std::u16string_view name, std::u16string_view parent);

    // The names of the root's elements, sorted.
    std::vector<std::u16string> rootOf(std::u16string_view file);
    // "PARENT>S:NAME" for every group but the first, in the order of the listing.
    std::vector<std::string> treeOf(std::u16string_view file);
    std::vector<std::string> pictureNames(const GroupAddress& group);
    std::string bytesOf(const GroupAddress& group, std::u16string_view name);
    void expectSound(std::u16string_view file);

    // The code of the error that `action` throws; fails the test when it throws none.
    template <typename Action>
    compound::ErrorCode errorOf(Action action);

    std::unique_ptr<MemoryDisk> owned = makeTestDisk();
    MemoryDisk& disk = *owned;
    MemoryTrash trash{disk};
    Library library{disk, "/library", measureText, u'.', std::chrono::milliseconds{0}};
};

template <typename Action>
compound::ErrorCode StoreTest::errorOf(Action action) {
    try {
        action();
    } catch (const compound::Error& error) {
        return error.code();
    }
    ADD_FAILURE() << "no error";
    return compound::ErrorCode::Failed;
}

} // namespace store::testing
