// What a look at the library finds that others have changed, on a disk in memory.
#include "compound/memory_disk.h"
#include "groups/library_changes.h"
#include "store/group_operations.h"

#include <QString>

#include <gtest/gtest.h>

namespace {

using groups::LibraryChanges;
using Next = LibraryChanges::Next;

class LibraryChangesTest : public testing::Test {
  protected:
    LibraryChangesTest() { disk_.makeFolder("/library"); }

    store::GroupAddress makeGroup(const std::u16string& name) {
        return store::createGroup(library_, std::nullopt, {name});
    }

    // The names of the files that the next look reads.
    std::vector<std::u16string> look() {
        last_ = groups::lookForChanges(library_, {known_, std::nullopt, maySetAside_});
        known_ = last_.known;
        std::vector<std::u16string> names;
        for (const groups::GroupFile& file : last_.read) {
            names.push_back(file.file.text);
        }
        return names;
    }

    void write(const char* path, std::size_t bytes) {
        disk_.setContent(path, std::vector<std::byte>(bytes, std::byte{1}));
    }

    MemoryDisk disk_;
    store::Library library_{disk_, "/library",
                            [](std::span<const std::byte>) {
                                return store::TwipSize{15, 15};
                            },
                            u',', std::chrono::milliseconds(0)};
    groups::KnownFiles known_;
    LibraryChanges last_;
    bool maySetAside_ = true;
};

using Names = std::vector<std::u16string>;

TEST_F(LibraryChangesTest, OnlyWhatIsInAnotherStateIsRead) {
    const auto pumps = makeGroup(u"Pumpen");
    makeGroup(u"Armaturen");
    known_ = groups::knownFrom(
        groups::readLibrary(library_, store::LockBudget(std::chrono::milliseconds(0))).files);
    EXPECT_EQ(look(), Names{});
    EXPECT_EQ(last_.next, Next::Nothing);
    store::createGroup(library_, pumps, {u"Kreisel"});
    makeGroup(u"Ventile");
    EXPECT_EQ(look(), (Names{u"Pumpen", u"Ventile"}));
    EXPECT_EQ(look(), Names{});
    store::removeGroupFile(library_, {u"Pumpen"});
    EXPECT_EQ(look(), Names{});
    EXPECT_EQ(last_.files, (std::vector<store::FileName>{{u"Armaturen"}, {u"Ventile"}}));
}

// A change right after a look may leave the time stamps as they are.
TEST_F(LibraryChangesTest, AFileThatChangedAMomentAgoIsReadOnceMore) {
    disk_.setSettled(false);
    makeGroup(u"Pumpen");
    EXPECT_EQ(look(), Names{u"Pumpen"});
    EXPECT_EQ(last_.next, Next::Later);
    EXPECT_EQ(look(), Names{});
    EXPECT_EQ(last_.next, Next::Later);
    disk_.setSettled(true);
    EXPECT_EQ(look(), Names{u"Pumpen"});
    EXPECT_EQ(last_.next, Next::Nothing);
    EXPECT_EQ(look(), Names{});
}

TEST_F(LibraryChangesTest, AFileThatIsBeingWrittenIsNotSetAside) {
    write("/library/Neu.stg", 100);
    EXPECT_EQ(look(), Names{});
    write("/library/Neu.stg", 200);
    EXPECT_EQ(look(), Names{}) << "it grows";
    EXPECT_EQ(last_.next, Next::Later);
    maySetAside_ = false; // somebody works in a dialog
    EXPECT_EQ(look(), Names{});
    EXPECT_TRUE(disk_.exists("/library/Neu.stg"));
    maySetAside_ = true;
    EXPECT_EQ(look(), Names{});
    EXPECT_EQ(last_.setAside, 1U);
    EXPECT_TRUE(last_.files.empty());
    EXPECT_TRUE(disk_.exists("/library/Neu.err"));
    EXPECT_EQ(look(), Names{});
    EXPECT_EQ(last_.setAside, 0U) << "it is told once";
}

TEST_F(LibraryChangesTest, AFileThatIsMendedWhileItIsSetAsideStaysInTheList) {
    makeGroup(u"Neu");
    const auto sound = disk_.content("/library/Neu.stg");
    const auto expectItStays = [&](auto listsIt) {
        std::size_t calls = 0;
        std::size_t mended = 0;
        for (std::size_t end = 0; end <= calls; ++end) {
            disk_.removeTemporary("/library/Neu.err");
            write("/library/Neu.stg", 100);
            known_.clear();
            (void)look();
            calls = 0;
            disk_.setInterceptor([&](MemoryDisk::Call) { // another program, before this call
                if (calls++ == end && disk_.exists("/library/Neu.stg")) {
                    disk_.setContent("/library/Neu.stg", sound);
                }
            });
            const bool isListed = listsIt();
            disk_.setInterceptor({});
            const bool isThere = disk_.exists("/library/Neu.stg");
            EXPECT_EQ(isListed, isThere) << "mended before call " << end;
            mended += isThere ? 1U : 0U;
        }
        EXPECT_GT(mended, 0U);
    };
    expectItStays([&] {
        (void)look();
        EXPECT_EQ(last_.setAside + last_.files.size(), 1U);
        return !last_.files.empty();
    });
    expectItStays([&] {
        const store::LockBudget noWait(std::chrono::milliseconds(0));
        return groups::readGroupFileAgain(library_, {u"Neu"}, noWait).has_value();
    });
}

TEST_F(LibraryChangesTest, ALockedFileIsLeftAsItWasKnown) {
    makeGroup(u"Pumpen");
    auto held = disk_.open("/library/Pumpen.stg", compound::Access::Read);
    ASSERT_TRUE(held->lock(std::chrono::milliseconds(0)));
    EXPECT_EQ(look(), Names{});
    EXPECT_EQ(last_.next, Next::Later);
    EXPECT_EQ(last_.files.size(), 1U);
    held.reset();
    EXPECT_EQ(look(), Names{u"Pumpen"});
}

TEST_F(LibraryChangesTest, ManyChangesAreReadPieceByPiece) {
    for (int i = 0; i < 120; ++i) {
        makeGroup(QString::number(i).toStdU16String());
    }
    std::size_t read = 0;
    int looks = 0;
    do {
        read += look().size();
        ++looks;
    } while (last_.next == Next::AtOnce);
    EXPECT_EQ(read, 120U);
    EXPECT_GT(looks, 1);
}

TEST_F(LibraryChangesTest, AFolderOutOfReachSaysNothing) {
    makeGroup(u"Pumpen");
    (void)look();
    disk_.setInterceptor([](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Folder) {
            throw compound::Error(compound::ErrorCode::NotFound, "/library", "told to fail");
        }
    });
    EXPECT_EQ(look(), Names{});
    EXPECT_FALSE(last_.isReachable);
    EXPECT_EQ(last_.next, Next::Later);
    disk_.setInterceptor({});
    EXPECT_EQ(look(), Names{}) << "it is known still";
}

} // namespace
