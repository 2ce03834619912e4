// Two machines on one library: each remembers files and the folder as it has last seen them, and
// believes that until it has a lock.
#include "base/utf8.h"
#include "compound/error.h"
#include "store/group_import.h"
#include "store/store_fixture.h"

#include <gmock/gmock.h>
#include <map>
#include <utility>

namespace store::testing {
namespace {

using compound::Access;
using compound::DiskFile;
using compound::ErrorCode;
using ::testing::ElementsAre;

using Memory = std::map<std::filesystem::path, std::vector<std::byte>>;

std::vector<std::byte> contentOf(DiskFile& file) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(file.size()));
    file.read(0, bytes);
    return bytes;
}

class MachineFile final : public DiskFile {
  public:
    MachineFile(std::unique_ptr<DiskFile> onVolume, Access access, Memory& memory,
                std::vector<std::string>& steps)
        : file_(std::move(onVolume)),
          access_(access),
          memory_(memory),
          steps_(steps),
          isFresh_(!memory.contains(file_->path())) {}
    MachineFile(const MachineFile&) = delete;
    MachineFile& operator=(const MachineFile&) = delete;
    ~MachineFile() override {
        if (isFresh_) {
            memory_[file_->path()] = contentOf(*file_);
        }
    }

    const std::filesystem::path& path() const override { return file_->path(); }

    std::size_t read(std::uint64_t offset, std::span<std::byte> into) override {
        if (isFresh_) {
            return file_->read(offset, into);
        }
        const std::vector<std::byte>& remembered = memory_[path()];
        const std::size_t from = std::min<std::size_t>(offset, remembered.size());
        const std::size_t length = std::min(into.size(), remembered.size() - from);
        std::copy_n(remembered.begin() + static_cast<std::ptrdiff_t>(from), length, into.begin());
        return length;
    }

    std::uint64_t size() override { return isFresh_ ? file_->size() : memory_[path()].size(); }

    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        EXPECT_TRUE(isFresh_) << "written over what was not looked at";
        file_->write(offset, bytes);
    }
    void truncate(std::uint64_t size) override {
        EXPECT_TRUE(isFresh_) << "cut without a look";
        file_->truncate(size);
    }
    void syncName() override { file_->syncName(); }
    void sync() override { file_->sync(); }
    bool lock(std::chrono::milliseconds wait) override {
        const bool isLocked = file_->lock(wait);
        isFresh_ = isFresh_ || isLocked;
        return isLocked;
    }
    bool isStillAtPath() override { return !isReplaced && (!isFresh_ || file_->isStillAtPath()); }
    void retire() noexcept override {
        if (access_ == Access::ReadWrite) {
            steps_.push_back("retire " + path().filename().string());
        }
    }

    bool isReplaced = false; // between opening and locking

  private:
    std::unique_ptr<DiskFile> file_;
    Access access_;
    Memory& memory_;
    std::vector<std::string>& steps_;
    bool isFresh_;
};

// The volume as one machine sees it. Its listing is that of the last refresh().
class Machine final : public compound::Disk {
  public:
    explicit Machine(MemoryDisk& volume) : volume_(volume) { refresh(); }

    void refresh() { entries_ = volume_.list("/library"); }

    std::unique_ptr<DiskFile> open(const std::filesystem::path& path, Access access) override {
        if (replacements > 0) {
            --replacements;
            throw compound::Error(ErrorCode::Locked, path, "stale");
        }
        auto file =
            std::make_unique<MachineFile>(volume_.open(path, access), access, memory_, steps);
        file->isReplaced = replacedAfterOpening > 0;
        replacedAfterOpening = std::max(0, replacedAfterOpening - 1);
        return file;
    }
    std::unique_ptr<DiskFile> create(const std::filesystem::path& path) override {
        return std::make_unique<MachineFile>(volume_.create(path), Access::ReadWrite, memory_,
                                             steps);
    }
    void copyAttributes(DiskFile&, DiskFile&) override {}
    std::vector<compound::FolderEntry> list(const std::filesystem::path&) override {
        return entries_;
    }
    bool exists(const std::filesystem::path& path) override { return volume_.exists(path); }
    void renameWithoutReplacing(const std::filesystem::path& from,
                                const std::filesystem::path& to) override {
        volume_.renameWithoutReplacing(from, to);
    }
    void renameReplacing(const std::filesystem::path& from,
                         const std::filesystem::path& to) override {
        volume_.renameReplacing(from, to);
    }
    void syncFolder(const std::filesystem::path& folder) override {
        steps.push_back("sync");
        volume_.syncFolder(folder);
    }
    void trash(const std::filesystem::path& path) override { volume_.trash(path); }
    void removeTemporary(const std::filesystem::path& path) override {
        if (path.extension() == ".stg") {
            steps.push_back("remove");
        }
        volume_.removeTemporary(path);
    }

    std::vector<std::string> steps;
    // So many times a name stands for a file that is gone, or gone once it is open.
    int replacements = 0;
    int replacedAfterOpening = 0;

  private:
    MemoryDisk& volume_;
    Memory memory_;
    std::vector<compound::FolderEntry> entries_;
};

class SharedLibraryTest : public StoreTest {
  protected:
    static Library libraryOf(Machine& machine) {
        return {machine, "/library", measureText, u'.', std::chrono::milliseconds{0}};
    }

    GroupAddress plant_ = topGroup(u"Plant");
    Machine firstMachine_{disk};
    Machine secondMachine_{disk};
    Library first_ = libraryOf(firstMachine_);
    Library second_ = libraryOf(secondMachine_);
};

TEST_F(SharedLibraryTest, MachinesThatTakeTurnsLoseNothing) {
    const auto picture = source("any.bmp", 480, 480, std::string(3000, 'x'));
    std::vector<std::string> names;
    for (int i = 0; i < 12; ++i) {
        const Library& turn = i % 2 == 0 ? first_ : second_;
        const std::string name = "picture " + std::to_string(i);
        addPicture(turn, plant_, {base::fromUtf8(name)}, picture);
        if (i % 4 == 3) {
            renamePicture(turn, plant_, {base::fromUtf8(names.front())},
                          {base::fromUtf8("R" + name)});
            names.front() = "R" + name;
        }
        if (i % 5 == 4) {
            deletePicture(turn, plant_, {base::fromUtf8(names.back())});
            names.pop_back();
        }
        names.push_back(name);
        if (i == 6) {
            compactGroupFile(turn, "/library/Plant.stg");
        }
    }
    for (const Library& each : {first_, second_}) {
        std::vector<std::string> seen;
        for (const PictureEntry& entry : listPictures(each, plant_)) {
            seen.push_back(base::toUtf8(entry.name.text));
        }
        EXPECT_THAT(seen, ::testing::UnorderedElementsAreArray(names));
    }
    expectSound(u"Plant");
}

// Both read again and again what the other has changed in between.
TEST_F(SharedLibraryTest, ReadingShowsTheOthersLastChange) {
    for (const char* content : {"one", "two", "three"}) {
        const auto picture = source(std::string(content) + ".bmp", 15, 15, content);
        addPicture(first_, plant_, {u"logo"}, picture, IfPictureExists::Replace);
        const StoredPicture seen = readPicture(second_, plant_, {u"logo"});
        EXPECT_EQ(seen.bytes.size(), ("PIC15 15 " + std::string(content)).size());
    }
}

// The folder's listing comes late: a group that it does not show yet is there all the same.
TEST_F(SharedLibraryTest, AGroupThatTheListingDoesNotShowYetIsNotOverwritten) {
    const GroupAddress made = createGroup(first_, std::nullopt, {u"Made"});
    addPicture(first_, made, {u"kept"}, source("any.bmp", 15, 15));
    EXPECT_THAT(groupFiles(second_), ElementsAre(FileName{u"Plant"}));
    EXPECT_EQ(listPictures(second_, made).size(), 1U);
    EXPECT_EQ(errorOf([&] { createGroup(second_, std::nullopt, {u"Made"}); }), ErrorCode::Exists);
    EXPECT_EQ(errorOf([&] { renameGroup(second_, plant_, {u"Made"}); }), ErrorCode::Exists);
    EXPECT_EQ(listPictures(first_, made).size(), 1U);
    EXPECT_EQ(listPictures(first_, plant_).size(), 0U) << "the group is there under its old name";
    EXPECT_THAT(disk.list("/library"), ::testing::SizeIs(2)) << "something is left behind";
}

// A group that went away elsewhere is still listed; what is done to it fails, and says so.
TEST_F(SharedLibraryTest, AGroupThatIsGoneElsewhereIsNotFound) {
    renameGroup(first_, plant_, {u"Works"});
    EXPECT_THAT(groupFiles(second_), ElementsAre(FileName{u"Plant"}));
    EXPECT_EQ(errorOf([&] { listPictures(second_, plant_); }), ErrorCode::NotFound);
    secondMachine_.refresh();
    EXPECT_THAT(groupFiles(second_), ElementsAre(FileName{u"Works"}));
}

// Others may remember the name of a file that is gone. It is told them by the file itself, but only
// when no power cut can bring it back.
TEST_F(SharedLibraryTest, AFileThatLosesItsPathIsRetiredLast) {
    compactGroupFile(first_, "/library/Plant.stg");
    EXPECT_THAT(firstMachine_.steps, ElementsAre("sync", "retire Plant.stg"));
    firstMachine_.steps.clear();
    renameGroup(first_, plant_, {u"Works"});
    EXPECT_THAT(firstMachine_.steps, // the first makes known what is going to be
                ElementsAre("sync", "sync", "remove", "sync", "retire Plant.stg"));
    firstMachine_.steps.clear();
    topGroup(u"Taken");
    EXPECT_EQ(errorOf([&] { renameGroup(first_, topLevelAddress(u"Works"), {u"Taken"}); }),
              ErrorCode::Exists);
    EXPECT_THAT(firstMachine_.steps, ElementsAre("sync"));
    firstMachine_.steps.clear();
    exportGroup(first_, topLevelAddress(u"Works"), "/library/Taken.stg", IfTaken::Replace);
    EXPECT_THAT(firstMachine_.steps, ElementsAre("sync", "retire Taken.stg"));
}

TEST_F(SharedLibraryTest, AFileThatIsBeingReplacedIsWaitedFor) {
    firstMachine_.replacements = 2;
    EXPECT_EQ(errorOf([&] { listPictures(first_, plant_); }), ErrorCode::Locked);
    first_.lockWait = std::chrono::minutes{10};
    firstMachine_.replacements = 3;
    EXPECT_TRUE(listPictures(first_, plant_).empty());
    EXPECT_EQ(firstMachine_.replacements, 0);
    firstMachine_.replacedAfterOpening = 3;
    EXPECT_TRUE(listPictures(first_, plant_).empty());
    EXPECT_EQ(firstMachine_.replacedAfterOpening, 0) << "a file was read that is not there";
    first_.lockWait = std::chrono::milliseconds{0};
    firstMachine_.replacedAfterOpening = 3;
    EXPECT_EQ(errorOf([&] { listPictures(first_, plant_); }), ErrorCode::Locked);
}

} // namespace
} // namespace store::testing
