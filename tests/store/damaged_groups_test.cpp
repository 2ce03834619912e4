#include "compound/error.h"
#include "compound/raw_file.h"
#include "store/store_fixture.h"

#include <gmock/gmock.h>
#include <string_view>

namespace store::testing {
namespace {

using compound::Access;
using compound::ErrorCode;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class DamagedGroupTest : public StoreTest {
  protected:
    GroupFileState stateOf(const std::string& name) {
        return testGroupFile(library, "/library/" + name, LockBudget{std::chrono::milliseconds{0}});
    }

    GroupFileReading reading(std::u16string_view name) {
        return readGroupFile(library, {std::u16string(name)},
                             LockBudget{std::chrono::milliseconds{0}});
    }
};

TEST_F(DamagedGroupTest, OnlyBytesMakeAFileDamaged) {
    topGroup(u"Plant");
    EXPECT_EQ(stateOf("Plant.stg"), GroupFileState::Sound);
    EXPECT_EQ(stateOf("Missing.stg"), GroupFileState::Unreadable);
    {
        const auto file = disk.open("/library/Plant.stg", Access::Read);
        ASSERT_TRUE(file->lock(std::chrono::milliseconds{0}));
        EXPECT_EQ(stateOf("Plant.stg"), GroupFileState::Locked);
        EXPECT_EQ(reading(u"Plant").state, GroupFileState::Locked);
        EXPECT_THAT(reading(u"Plant").failure->what(), HasSubstr("Plant.stg"));
    }
    disk.create("/library/Text.stg")->write(0, std::as_bytes(std::span("no compound file")));
    disk.create("/library/Empty.stg");
    EXPECT_EQ(stateOf("Text.stg"), GroupFileState::Damaged);
    EXPECT_EQ(stateOf("Empty.stg"), GroupFileState::Damaged);
    disk.renameWithoutReplacing("/library/Plant.stg", "/library/Works.stg");
    EXPECT_EQ(stateOf("Works.stg"), GroupFileState::Damaged);
    EXPECT_EQ(reading(u"Works").state, GroupFileState::Damaged);
}

// As in a folder that may be listed but not entered: one such file ended the whole program.
TEST_F(DamagedGroupTest, AFileThatCannotBeLookedUpIsUnreadable) {
    topGroup(u"Plant");
    disk.setInterceptor([](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Folder) {
            throw compound::Error(ErrorCode::Denied, "/library/Plant.stg", "look up");
        }
    });
    EXPECT_EQ(reading(u"Plant").state, GroupFileState::Unreadable);
    EXPECT_THAT(reading(u"Plant").failure->what(), HasSubstr("Plant.stg"));
    disk.setInterceptor({});
    EXPECT_EQ(reading(u"Plant").state, GroupFileState::Sound);
}

TEST_F(DamagedGroupTest, CaseAndDotsOfTheFileNameDoNotMatter) {
    const GroupAddress plant = topGroup(u"Plant");
    subGroup(plant, u"Below");
    disk.renameWithoutReplacing("/library/Plant.stg", "/library/plant.v2.STG");
    ASSERT_EQ(stateOf("plant.v2.STG"), GroupFileState::Sound);
    const GroupFileReading found = reading(u"plant.v2");
    ASSERT_EQ(found.groups.size(), 2U);
    const GroupAddress top = found.groups.front().address;
    EXPECT_EQ(keyOf(top), u"Plant/plant.v2");
    EXPECT_EQ(found.groups.front().name.text, u"plant.v2");
    EXPECT_TRUE(isTopLevel(top));
    add(top, u"picture");
    EXPECT_EQ(renameGroup(library, top, {u"Works"}).text, u"Works");
    EXPECT_THAT(treeOf(u"Works"), ElementsAre("Works>Sub1:Below"));
    EXPECT_THAT(pictureNames(topLevelAddress(u"Works")), ElementsAre("picture"));
}

TEST_F(DamagedGroupTest, SettingAsideKeepsWhatWasSetAsideBefore) {
    disk.create("/library/Plant.err")->write(0, std::as_bytes(std::span("older")));
    disk.create("/library/Plant.stg")->write(0, std::as_bytes(std::span("newer")));
    setAside(library, {u"Plant"});
    EXPECT_FALSE(disk.exists("/library/Plant.stg"));
    EXPECT_EQ(disk.trashed().size(), 1U);
    ASSERT_THAT(damagedFiles(library), ElementsAre("/library/Plant.err"));
    disk.create("/library/other.ERR");
    EXPECT_EQ(removeDamagedFiles(library), 2U);
    EXPECT_THAT(damagedFiles(library), IsEmpty());
    EXPECT_EQ(disk.trashed().size(), 3U);
    EXPECT_EQ(removeDamagedFiles(library), 0U);
}

// The group itself is found, but whoever lists the groups meets a ring.
TEST_F(DamagedGroupTest, WhatIsFoundDamagedByItsGroupsIsSetAside) {
    topGroup(u"Plant");
    const std::u16string last = u"the last oneInfo";
    makeForeignGroup(u"Plant", u"the last one", u"Last", u"Plant");
    compound_tests::RawFile raw(disk.content("/library/Plant.stg"));
    raw.put(raw.entry(last) + compound::format::entry::kRightAt, raw.idOf(last));
    disk.setContent("/library/Plant.stg", raw.bytes());
    EXPECT_EQ(reading(u"Plant").state, GroupFileState::Damaged);
    setAside(library, {u"Plant"});
    EXPECT_THAT(groupFiles(library), IsEmpty());
    EXPECT_THAT(damagedFiles(library), ElementsAre("/library/Plant.err"));
}

TEST_F(DamagedGroupTest, WhatHasBecomeSoundIsNotSetAside) {
    topGroup(u"Plant");
    setAside(library, {u"Plant"}); // as after a test of the file that stood there before
    EXPECT_THAT(groupFiles(library), ElementsAre(FileName{u"Plant"}));
    EXPECT_THAT(damagedFiles(library), IsEmpty());
}

// Another program may put a sound one in its place before any call to the disk, once it has the
// lock.
TEST_F(DamagedGroupTest, WhatBecomesSoundJustNowIsNotSetAside) {
    topGroup(u"Plant");
    const auto sound = disk.content("/library/Plant.stg");
    int replacements = 0;
    constexpr int kMoreThanAllCalls = 60;
    for (int replaced = 0; replaced < kMoreThanAllCalls; ++replaced) {
        disk.setContent("/library/Plant.stg", std::as_bytes(std::span(std::string_view("bad"))));
        disk.removeTemporary("/library/Plant.err");
        bool isOther = false; // who calls
        bool isSound = false;
        int calls = 0;
        disk.setInterceptor([&](MemoryDisk::Call) {
            if (isOther || calls++ != replaced) {
                return;
            }
            isOther = true;
            if (disk.exists("/library/Plant.stg") &&
                disk.open("/library/Plant.stg", Access::Read)->lock(std::chrono::milliseconds{0})) {
                disk.setContent("/library/Plant.stg", sound);
                isSound = true;
            }
            isOther = false;
        });
        try {
            setAside(library, {u"Plant"});
        } catch (const compound::Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::Locked) << "it is being replaced";
        }
        disk.setInterceptor({});
        ASSERT_LT(calls, kMoreThanAllCalls);
        replacements += isSound ? 1 : 0;
        EXPECT_EQ(disk.content("/library/Plant.stg") == sound, isSound)
            << "replaced before call " << replaced;
    }
    EXPECT_GT(replacements, 0);
}

TEST_F(DamagedGroupTest, ALockedFileIsNeverWrittenOrRemoved) {
    const GroupAddress plant = topGroup(u"Plant");
    const GroupAddress below = subGroup(plant, u"Below");
    const auto bytes = disk.content("/library/Plant.stg");
    const auto file = disk.open("/library/Plant.stg", Access::Read);
    ASSERT_TRUE(file->lock(std::chrono::milliseconds{0}));
    const auto code = [&](auto action) { return errorOf(action); };
    EXPECT_EQ(code([&] { add(plant, u"a"); }), ErrorCode::Locked);
    EXPECT_EQ(code([&] { renameGroup(library, plant, {u"Works"}); }), ErrorCode::Locked);
    EXPECT_EQ(code([&] { renameGroup(library, below, {u"Else"}); }), ErrorCode::Locked);
    EXPECT_EQ(code([&] { deleteGroup(library, below); }), ErrorCode::Locked);
    EXPECT_EQ(code([&] { removeGroupFile(library, plant.file); }), ErrorCode::Locked);
    EXPECT_EQ(code([&] { compactGroupFile(library, "/library/Plant.stg"); }), ErrorCode::Locked);
    EXPECT_EQ(code([&] { setAside(library, plant.file); }), ErrorCode::Locked);
    EXPECT_EQ(code([&] { createGroup(library, std::nullopt, {u"Plant"}, IfTaken::Replace); }),
              ErrorCode::Locked);
    EXPECT_EQ(disk.content("/library/Plant.stg"), bytes);
    EXPECT_EQ(disk.list("/library").size(), 1U);
}

} // namespace
} // namespace store::testing
