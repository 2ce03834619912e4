// What crashed programs leave beside the group files, and what moves do on the way.
#include "base/utf8.h"
#include "compound/error.h"
#include "store/library_count.h"
#include "store/same_pictures.h"
#include "store/store_fixture.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <map>
#include <string_view>
#include <utility>

namespace store::testing {
namespace {

using compound::ErrorCode;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Files = std::map<std::filesystem::path, std::vector<std::byte>>;

class LeftoversTest : public StoreTest {
  protected:
    Files filesNow() {
        Files files;
        for (const compound::FolderEntry& entry : disk.list("/library")) {
            files["/library" / entry.name] = disk.content("/library" / entry.name);
        }
        return files;
    }

    // The library after each call to the disk in `action`, as a program would leave it that is
    // killed then.
    template <typename Action>
    std::vector<Files> momentsOf(Action action) {
        std::vector<Files> moments;
        bool isLooking = false; // which calls the disk, too
        disk.setInterceptor([&](MemoryDisk::Call call) {
            if (isLooking || call == MemoryDisk::Call::Read || call == MemoryDisk::Call::Size) {
                return;
            }
            isLooking = true;
            moments.push_back(filesNow());
            isLooking = false;
        });
        action();
        disk.setInterceptor({});
        moments.push_back(filesNow());
        return moments;
    }

    static std::vector<std::string> listingOf(MemoryDisk& other) {
        std::vector<std::string> names;
        const Library library{other, "/library", measureText, u'.', std::chrono::milliseconds{0}};
        for (const FileName& file : groupFiles(library)) {
            names.push_back(base::toUtf8(file.text));
        }
        return names;
    }

    static std::vector<std::string> entriesOf(MemoryDisk& other) {
        std::vector<std::string> names;
        for (const compound::FolderEntry& entry : other.list("/library")) {
            names.push_back(entry.name.string());
        }
        return names;
    }

    static bool isRecord(const std::filesystem::path& path) { return path.extension() == ".was"; }

    static std::filesystem::path recordIn(const Files& files) {
        const auto found =
            std::ranges::find_if(files, [](const auto& file) { return isRecord(file.first); });
        return found == files.end() ? std::filesystem::path() : found->first;
    }

    static void fill(MemoryDisk& other, const Files& files) {
        other.makeFolder("/library");
        for (const auto& [path, content] : files) {
            other.setContent(path, content);
        }
        const auto now = other.glance("/library/New.stg");
        const std::filesystem::path record = recordIn(files);
        if (now && !record.empty() && !files.at(record).empty()) { // every copy has its own number
            const std::string text = "Old/New/" + std::to_string(now->number);
            other.setContent(record, std::as_bytes(std::span(text)));
        }
    }

    // A move from "Old" to "New".
    std::vector<Files> momentsOfAMove() {
        const GroupAddress old = topGroup(u"Old");
        add(old, u"logo", "logo bytes");
        return momentsOf([&] { renameGroup(library, old, {u"New"}); });
    }

    // The first moment of it that is like that.
    template <typename Condition>
    Files momentOfMove(Condition condition) {
        for (const Files& files : momentsOfAMove()) {
            if (condition(files)) {
                return files;
            }
        }
        ADD_FAILURE() << "there is no such moment";
        return {};
    }

    Files betweenTheNames() {
        return momentOfMove([](const Files& files) {
            return files.contains("/library/Old.stg") && files.contains("/library/New.stg");
        });
    }

    // Renames "Old" while another program looks at the library before every call to the disk, and
    // clears up from when there is a record.
    static void expectOneNameThroughout(MemoryDisk& other) {
        const Library library{other, "/library", measureText, u'.', std::chrono::milliseconds{0}};
        bool isLooking = false;
        std::size_t looks = 0;
        other.setInterceptor([&](MemoryDisk::Call) {
            if (!std::exchange(isLooking, true)) {
                EXPECT_EQ(groupFilesAsTheyAre(library).size(), 1U) << "look " << looks;
                if (std::ranges::any_of(entriesOf(other), isRecord)) {
                    EXPECT_EQ(groupFiles(library).size(), 1U) << "look " << looks;
                    ++looks;
                }
                isLooking = false;
            }
        });
        renameGroup(library, topLevelAddress(u"Old"), {u"New"});
        other.setInterceptor({});
        EXPECT_GT(looks, 5U);
        EXPECT_THAT(entriesOf(other), ElementsAre("New.stg"));
    }
};

TEST_F(LeftoversTest, AGroupThatIsGettingAnotherNameIsListedOnce) {
    add(topGroup(u"Old"), u"logo", "logo bytes");
    expectOneNameThroughout(disk);
}

// Before any call of the program that lists, the other one is done, or has given up.
TEST_F(LeftoversTest, AGroupWhoseMoveEndsMeanwhileIsListedOnce) {
    const Files files = betweenTheNames();
    for (const char* gone : {"/library/Old.stg", "/library/New.stg"}) {
        std::size_t calls = 0;
        for (std::size_t end = 0; end <= calls; ++end) {
            MemoryDisk other;
            fill(other, files);
            auto maker = other.open("/library/Old.stg", compound::Access::Read);
            ASSERT_TRUE(maker->lock(std::chrono::milliseconds{0}));
            calls = 0;
            other.setInterceptor([&](MemoryDisk::Call) {
                if (calls++ == end) {
                    other.removeTemporary(gone);
                    other.removeTemporary(recordIn(files));
                    maker.reset();
                }
            });
            EXPECT_THAT(listingOf(other), ::testing::SizeIs(1)) << gone << " goes at " << end;
        }
    }
}

// So does the next move of the same file.
TEST_F(LeftoversTest, ARecordThatACrashHasLeftEmptyServesANewMove) {
    Files files = momentOfMove([](const Files& now) { return !recordIn(now).empty(); });
    ASSERT_FALSE(files.contains("/library/New.stg"));
    files[recordIn(files)].clear();
    std::erase_if(files, [](const auto& file) { return file.first.extension() == ".new"; });
    MemoryDisk other;
    fill(other, files);
    other.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Lock) { // the first listing is kept from clearing it away
            throw compound::Error(ErrorCode::Failed, recordIn(files), "told to fail");
        }
    });
    EXPECT_THAT(listingOf(other), ElementsAre("Old"));
    other.setInterceptor({});
    expectOneNameThroughout(other);
}

TEST_F(LeftoversTest, AMoveIsFinishedWithoutTheNamesThatAPowerCutHasTaken) {
    Files files = betweenTheNames();
    files[recordIn(files)].clear();
    MemoryDisk other;
    fill(other, files);
    EXPECT_THAT(listingOf(other), ElementsAre("New"));
    EXPECT_THAT(entriesOf(other), ElementsAre("New.stg"));
}

// A program gives the new name and is killed, while another one that has listed the folder before
// looks at the record.
TEST_F(LeftoversTest, AMoveThatGoesOnAfterTheListingIsFinishedAsWell) {
    const Files files = betweenTheNames();
    MemoryDisk other;
    fill(other, files);
    other.removeTemporary("/library/New.stg");
    other.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Lock && !other.exists("/library/New.stg")) {
            other.setContent("/library/New.stg", files.at("/library/New.stg"));
        }
    });
    EXPECT_THAT(listingOf(other), ElementsAre("New"));
    other.setInterceptor({});
    EXPECT_THAT(listingOf(other), ElementsAre("New"));
    EXPECT_THAT(entriesOf(other), ElementsAre("New.stg"));
}

// Somebody who saw both groups has gone on working in the old one.
TEST_F(LeftoversTest, AMoveWhoseOldFileHasChangedSinceIsNotFinished) {
    MemoryDisk other;
    fill(other, betweenTheNames());
    {
        compound::CompoundFile changed = compound::CompoundFile::open(
            other.open("/library/Old.stg", compound::Access::ReadWrite),
            compound::Access::ReadWrite);
        changed.root().openStorage(u"Old").createStream(u"later");
        changed.commit();
    }
    EXPECT_THAT(listingOf(other), ElementsAre("New", "Old"));
    EXPECT_THAT(entriesOf(other), ::testing::SizeIs(2)) << "the record is still there";
}

// The record stands before the file has its new name, which another program may take meanwhile.
TEST_F(LeftoversTest, AGroupOfTheNewNameThatAnotherProgramHasMadeIsNoMove) {
    std::size_t moments = 0;
    for (const Files& files : momentsOfAMove()) {
        const bool isMoving = std::any_of(files.begin(), files.end(), [](const auto& file) {
            return file.first.extension() == ".was";
        });
        if (!isMoving || files.contains("/library/New.stg")) {
            continue;
        }
        MemoryDisk other;
        fill(other, files);
        other.setContent("/bolt.bmp", std::as_bytes(std::span(std::string_view("PIC15 15"))));
        const Library others{other, "/library", measureText, u'.', std::chrono::milliseconds{0}};
        addPicture(others, createGroup(others, std::nullopt, {u"New"}), {u"logo"}, "/bolt.bmp");
        EXPECT_THAT(groupFilesAsTheyAre(others), ::testing::SizeIs(2));
        EXPECT_THAT(listingOf(other), ElementsAre("New", "Old"));
        EXPECT_THAT(entriesOf(other), ::testing::SizeIs(2)) << "the record is still there";
        ++moments;
    }
    EXPECT_GT(moments, 0U);
}

TEST_F(LeftoversTest, AMoveIsNotFinishedWithoutASoundNewFile) {
    const Files files = betweenTheNames();
    MemoryDisk other;
    fill(other, files);
    std::vector<std::byte> cut = files.at("/library/New.stg");
    cut.resize(700);
    other.setContent("/library/New.stg", cut);
    EXPECT_THAT(listingOf(other), ElementsAre("New", "Old"));
    // One that is in use is no reason to give up.
    MemoryDisk busy;
    fill(busy, files);
    auto holder = busy.open("/library/New.stg", compound::Access::Read);
    ASSERT_TRUE(holder->lock(std::chrono::milliseconds{0}));
    EXPECT_THAT(listingOf(busy), ElementsAre("New"));
    EXPECT_TRUE(busy.exists("/library/Old.stg"));
    holder.reset();
    EXPECT_THAT(listingOf(busy), ElementsAre("New"));
    EXPECT_FALSE(busy.exists("/library/Old.stg"));
}

TEST_F(LeftoversTest, GoWithTheNextListingUnlessTheirMakerLives) {
    topGroup(u"Plant");
    for (const char* name : {"/library/.txs-0123456789abcdef.new",
                             "/library/.txs-0123456789abcdef.was", "/library/.txs-short.new"}) {
        disk.create(name);
    }
    const auto alive = disk.create("/library/.txs-fedcba9876543210.new");
    ASSERT_TRUE(alive->lock(std::chrono::milliseconds{0}));
    const std::string moving =
        "Plant/New/" + std::to_string(disk.glance("/library/.txs-fedcba9876543210.new")->number);
    disk.setContent("/library/.txs-fedcba9876543210.was", std::as_bytes(std::span(moving)));
    EXPECT_THAT(groupFiles(library), ElementsAre(FileName{u"Plant"}));
    EXPECT_FALSE(disk.exists("/library/.txs-0123456789abcdef.new"));
    EXPECT_FALSE(disk.exists("/library/.txs-0123456789abcdef.was"));
    EXPECT_TRUE(disk.exists("/library/.txs-fedcba9876543210.was")) << "the move goes on";
    EXPECT_TRUE(disk.exists("/library/.txs-fedcba9876543210.new"));
    EXPECT_TRUE(disk.exists("/library/.txs-short.new")) << "not one of ours";
}

TEST_F(LeftoversTest, DoNotTakeALivingFileOfTheirNameAlong) {
    topGroup(u"Plant");
    const std::filesystem::path name = "/library/.txs-0123456789abcdef.new";
    disk.create(name);
    std::unique_ptr<compound::DiskFile> alive;
    disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Lock && !alive) {
            disk.removeTemporary(name); // by another program, just now
            alive = disk.create(name);
            ASSERT_TRUE(alive->lock(std::chrono::milliseconds{0}));
        }
    });
    EXPECT_THAT(groupFiles(library), ElementsAre(FileName{u"Plant"}));
    disk.setInterceptor({});
    ASSERT_TRUE(alive);
    EXPECT_TRUE(alive->isStillAtPath());
}

TEST_F(LeftoversTest, ThatCannotBeRemovedHideNothing) {
    topGroup(u"Plant");
    disk.create("/library/.txs-0123456789abcdef.new");
    disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Lock) {
            throw compound::Error(ErrorCode::Denied, "/library", "told to fail");
        }
    });
    EXPECT_THAT(groupFiles(library), ElementsAre(FileName{u"Plant"}));
    disk.setInterceptor({});
}

// Notes who may read a new file, and how much of it there was when its readers were set.
class WatchingDisk : public MemoryDisk {
  public:
    std::unique_ptr<compound::DiskFile> create(const std::filesystem::path& path) override {
        if (path.extension() == ".new") {
            steps.push_back("open to all");
        }
        return MemoryDisk::create(path);
    }
    std::unique_ptr<compound::DiskFile> createPrivate(const std::filesystem::path& path) override {
        steps.push_back("private");
        return MemoryDisk::create(path);
    }
    void copyAttributes(compound::DiskFile& from, compound::DiskFile& to) override {
        steps.push_back(from.path().filename().string() +
                        (to.size() > 50000 ? " to the whole" : " to a part"));
        MemoryDisk::copyAttributes(from, to);
    }

    std::vector<std::string> steps;
};

TEST_F(LeftoversTest, ACopyGetsItsReadersLast) {
    WatchingDisk watching;
    watching.makeFolder("/library");
    const Library watched{watching, "/library", measureText, u'.', std::chrono::milliseconds{0}};
    const GroupAddress plant = createGroup(watched, std::nullopt, {u"Plant"});
    EXPECT_THAT(watching.steps, ElementsAre("open to all"));
    const std::string large = "PIC15 15" + std::string(60000, 'x');
    watching.setContent("/large.bmp", std::as_bytes(std::span(large)));
    addPicture(watched, plant, {u"large"}, "/large.bmp");
    watching.steps.clear();
    compactGroupFile(watched, "/library/Plant.stg");
    EXPECT_THAT(watching.steps, ElementsAre("private", "Plant.stg to the whole"));
    watching.steps.clear();
    renameGroup(watched, plant, {u"Works"});
    EXPECT_THAT(watching.steps, ElementsAre("private", "Plant.stg to the whole"));
}

// Replacing takes the old file away only when the new one is whole.
TEST_F(LeftoversTest, AGroupThatCannotBeReplacedStaysWhereItIs) {
    add(topGroup(u"Plant"), u"old");
    const auto before = disk.content("/library/Plant.stg");
    for (const MemoryDisk::Call failing : {MemoryDisk::Call::Write, MemoryDisk::Call::Sync}) {
        disk.setInterceptor([&](MemoryDisk::Call call) {
            if (call == failing) {
                throw compound::Error(ErrorCode::NoSpace, "/library/Plant.stg", "told to fail");
            }
        });
        EXPECT_EQ(
            errorOf([&] { createGroup(library, std::nullopt, {u"Plant"}, IfTaken::Replace); }),
            ErrorCode::NoSpace);
        disk.setInterceptor({});
        EXPECT_THAT(disk.trashed(), IsEmpty());
        EXPECT_EQ(disk.content("/library/Plant.stg"), before);
    }
}

// A system that tells the two names apart may hold both: the one that this program writes counts.
TEST_F(LeftoversTest, OfTwoFilesThatDifferInTheSuffixOneCounts) {
    const GroupAddress plant = topGroup(u"Plant");
    add(plant, u"ours");
    const auto others = disk.content("/library/Plant.stg");
    disk.setContent("/library/Plant.STG", others);
    add(plant, u"added");
    EXPECT_THAT(groupFiles(library), ElementsAre(FileName{u"Plant"}));
    EXPECT_THAT(pictureNames(plant), ElementsAre("ours", "added"));
    EXPECT_EQ(disk.content("/library/Plant.STG"), others);
    removeGroupFile(library, {u"Plant"});
    EXPECT_THAT(disk.trashed(), ElementsAre("/library/Plant.stg"));
    EXPECT_THAT(pictureNames(plant), ElementsAre("ours")) << "the other one is not reached";
}

// Another program does so before any call of the one that reads, unless that holds the file.
TEST_F(LeftoversTest, AGroupThatGetsAnotherNameIsFoundByWhoeverReadsTheWholeLibrary) {
    add(topGroup(u"Old"), u"logo", "logo bytes");
    add(topGroup(u"Other"), u"valve", "valve bytes");
    const auto old = disk.content("/library/Old.stg");
    renameGroup(library, topLevelAddress(u"Old"), {u"Again"}); // listed before the old name
    const auto renamed = disk.content("/library/Again.stg");
    disk.removeTemporary("/library/Again.stg");
    const auto readWhileMoving = [&](std::size_t move, auto read) {
        disk.setContent("/library/Old.stg", old);
        std::size_t calls = 0;
        disk.setInterceptor([&](MemoryDisk::Call) {
            if (calls++ == move) {
                const auto file = disk.open("/library/Old.stg", compound::Access::Read);
                if (file->lock(std::chrono::milliseconds{0})) {
                    disk.removeTemporary("/library/Old.stg");
                    disk.setContent("/library/Again.stg", renamed);
                }
            }
        });
        read();
        disk.setInterceptor({});
        disk.removeTemporary("/library/Again.stg");
        return calls > move;
    };
    for (std::size_t move = 0;
         readWhileMoving(move,
                         [&] {
                             const LibraryCount count =
                                 countLibrary(library, LockBudget(library.lockWait));
                             EXPECT_EQ(count.groupFiles, 2U) << "moved at " << move;
                             EXPECT_EQ(count.elements, 4U) << "moved at " << move;
                         });
         ++move) {
    }
    for (std::size_t move = 0;
         readWhileMoving(move,
                         [&] {
                             EXPECT_THAT(allPictures(library), ::testing::SizeIs(2))
                                 << "moved at " << move;
                         });
         ++move) {
    }
}

} // namespace
} // namespace store::testing
