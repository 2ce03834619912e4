#include "base/utf8.h"
#include "compound/error.h"
#include "store/store_fixture.h"

#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <utility>

namespace store::testing {
namespace {

using compound::ErrorCode;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class GroupTest : public StoreTest {
  protected:
    // The file that the action's error names.
    template <typename Action>
    std::filesystem::path blamedBy(Action action) {
        try {
            action();
        } catch (const compound::Error& error) {
            return error.file();
        }
        return {};
    }
};

TEST_F(GroupTest, EveryGroupIsAPairAtTheRoot) {
    const GroupAddress plant = topGroup(u"Plant");
    const GroupAddress pumps = subGroup(plant, u"Pumps");
    const GroupAddress steel = subGroup(pumps, u"Steel");

    EXPECT_EQ(base::toUtf8(keyOf(steel)), "Sub2/Plant");
    EXPECT_THAT(rootOf(u"Plant"),
                ElementsAre(u"Plant", u"PlantInfo", u"Sub1", u"Sub1Info", u"Sub2", u"Sub2Info"));
    EXPECT_EQ(readGroupParent(library, plant).text, u"None");
    EXPECT_EQ(readGroupParent(library, pumps).text, u"Plant");
    EXPECT_EQ(readGroupParent(library, steel).text, u"Sub1");
    EXPECT_EQ(readGroupName(library, steel).text, u"Steel");
    EXPECT_THAT(treeOf(u"Plant"), ElementsAre("Plant>Sub1:Pumps", "Sub1>Sub2:Steel"));
    expectSound(u"Plant");
}

// An address may come from somebody who typed it.
TEST_F(GroupTest, AParentIsWrittenAsItsStorageIsSpelled) {
    topGroup(u"Plant");
    const GroupAddress pumps = subGroup({{u"Plant"}, {u"PLANT"}}, u"Pumps");
    EXPECT_EQ(readGroupParent(library, pumps).text, u"Plant");
}

TEST_F(GroupTest, RefusalsNameTheFile) {
    topGroup(u"Plant");
    const GroupAddress info = addressOf(u"PlantInfo/Plant");
    EXPECT_EQ(blamedBy([&] { listPictures(library, info); }), "/library/Plant.stg");
    // The text code page cannot say whose children its children would be.
    disk.renameWithoutReplacing("/library/Plant.stg", "/library/\u041D.stg");
    {
        compound::CompoundFile raw = openRaw(u"\u041D");
        raw.root().rename(u"Plant", u"\u041D");
        raw.root().rename(u"PlantInfo", u"\u041DInfo");
        raw.commit();
    }
    const auto before = disk.content("/library/\u041D.stg");
    EXPECT_EQ(blamedBy([&] { subGroup(topLevelAddress(u"\u041D"), u"Below"); }),
              "/library/\u041D.stg");
    EXPECT_EQ(disk.content("/library/\u041D.stg"), before);
}

TEST_F(GroupTest, SubGroupNumbersGoUpFromTheGreatest) {
    const GroupAddress plant = topGroup(u"Plant");
    makeForeignGroup(u"Plant", u"Sub3", u"three", u"Plant");
    EXPECT_EQ(subGroup(plant, u"four").storage.text, u"Sub4");
    deleteGroup(library, addressOf(u"Sub4/Plant"));
    EXPECT_EQ(subGroup(plant, u"again").storage.text, u"Sub4");
    // Neither a word nor a number that no counter holds counts.
    makeForeignGroup(u"Plant", u"Substation", u"word", u"Plant");
    makeForeignGroup(u"Plant", u"Sub99999999999", u"large", u"Plant");
    EXPECT_EQ(subGroup(plant, u"five").storage.text, u"Sub5");
}

TEST_F(GroupTest, ANewSubGroupNeverTakesAnotherGroupsPlace) {
    const GroupAddress lower = topGroup(u"sub1");
    add(lower, u"kept");
    EXPECT_EQ(subGroup(lower, u"first").storage.text, u"Sub2");
    EXPECT_THAT(pictureNames(lower), ElementsAre("kept"));

    const GroupAddress info = topGroup(u"Sub1Info");
    add(info, u"kept");
    subGroup(info, u"first");
    EXPECT_THAT(pictureNames(info), ElementsAre("kept"));

    EXPECT_EQ(subGroup(topGroup(u"Sub7"), u"next").storage.text, u"Sub8");
}

TEST_F(GroupTest, OddParentsNeverHideAGroup) {
    topGroup(u"Plant");
    makeForeignGroup(u"Plant", u"Sub1", u"lost", u"Sub77");
    makeForeignGroup(u"Plant", u"Sub2", u"below lost", u"SUB1");
    makeForeignGroup(u"Plant", u"Sub3", u"own parent", u"Sub3");
    makeForeignGroup(u"Plant", u"Sub4", u"ring", u"Sub5");
    makeForeignGroup(u"Plant", u"Sub5", u"ring too", u"Sub4");
    makeForeignGroup(u"Plant", u"Sub6", u"below ring", u"Sub4");
    makeForeignGroup(u"Plant", u"Sub7", u"second top", u"None");
    EXPECT_THAT(treeOf(u"Plant"),
                UnorderedElementsAre("Plant>Sub1:lost", "Sub1>Sub2:below lost",
                                     "Plant>Sub3:own parent", "Plant>Sub4:ring",
                                     "Plant>Sub5:ring too", "Sub4>Sub6:below ring",
                                     "Plant>Sub7:second top"));
    // What stands beside a group in the tree does not go with it.
    deleteGroup(library, addressOf(u"Sub4/Plant"));
    EXPECT_THAT(rootOf(u"Plant"), ::testing::IsSupersetOf({u"Sub5", u"Sub5Info", u"Plant"}));
    EXPECT_THAT(rootOf(u"Plant"), ::testing::Not(::testing::Contains(u"Sub6")));
}

TEST_F(GroupTest, AChildMayStandBeforeItsParentAndChainsMayBeLong) {
    topGroup(u"T");
    compound::CompoundFile raw = openRaw(u"T");
    constexpr int kDepth = 3000;
    for (int i = 1; i <= kDepth; ++i) {
        compound::Storage group =
            raw.root().createStorage(u"Sub" + base::fromUtf8(std::to_string(i)));
        const std::string parent = i == kDepth ? "T" : "Sub" + std::to_string(i + 1);
        group.createStream(u"Parent").assign(std::as_bytes(std::span(parent)));
    }
    raw.commit();
    { const auto done = std::move(raw); }
    const auto tree = treeOf(u"T");
    ASSERT_EQ(tree.size(), std::size_t{kDepth});
    EXPECT_EQ(tree.front(), "T>Sub3000:Sub3000");
    EXPECT_EQ(tree.back(), "Sub2>Sub1:Sub1");
}

TEST_F(GroupTest, GroupsWithInfoInTheirNamesStayGroups) {
    const GroupAddress information = topGroup(u"Information");
    const GroupAddress infos = topGroup(u"Infos");
    const GroupAddress info = topGroup(u"PlantInfo");
    for (const GroupAddress& group : {information, infos, info}) {
        subGroup(group, u"Info");
        EXPECT_EQ(treeOf(group.file.text).size(), 1U);
    }
    EXPECT_EQ(base::toUtf8(renameGroup(library, info, {u"MyInfo"}).text), "MyInfo");
    EXPECT_THAT(treeOf(u"MyInfo"), ElementsAre("MyInfo>Sub1:Info"));
}

TEST_F(GroupTest, ForeignElementsAreCarriedAlong) {
    topGroup(u"Plant");
    {
        compound::CompoundFile raw = openRaw(u"Plant");
        raw.root().createStorage(u"Vendor").createStream(u"Private");
        raw.root().createStream(u"Loose");
        raw.commit();
    }
    EXPECT_THAT(treeOf(u"Plant"), IsEmpty());
    // Neither they nor the info storages are groups that a command could act on.
    for (const char16_t* key : {u"Vendor/Plant", u"PlantInfo/Plant"}) {
        EXPECT_EQ(errorOf([&] { deleteGroup(library, addressOf(key)); }), ErrorCode::NotFound);
        EXPECT_EQ(errorOf([&] { add(addressOf(key), u"x"); }), ErrorCode::NotFound);
    }
    renameGroup(library, topLevelAddress(u"Plant"), {u"Works"});
    EXPECT_THAT(rootOf(u"Works"), ElementsAre(u"Loose", u"Vendor", u"Works", u"WorksInfo"));
}

TEST_F(GroupTest, RenamingATopLevelGroupTakesAllWithIt) {
    const GroupAddress alpha = topGroup(u"Alpha");
    const GroupAddress first = subGroup(alpha, u"First");
    subGroup(first, u"Second");
    add(alpha, u"logo", "logo bytes");

    EXPECT_EQ(renameGroup(library, alpha, {u"Beta"}).text, u"Beta");
    EXPECT_FALSE(disk.exists("/library/Alpha.stg"));
    const GroupAddress beta = topLevelAddress(u"Beta");
    EXPECT_THAT(rootOf(u"Beta"),
                ElementsAre(u"Beta", u"BetaInfo", u"Sub1", u"Sub1Info", u"Sub2", u"Sub2Info"));
    EXPECT_EQ(readGroupName(library, beta).text, u"Beta");
    EXPECT_EQ(readGroupParent(library, beta).text, u"None");
    EXPECT_EQ(readGroupParent(library, addressOf(u"Sub1/Beta")).text, u"Beta");
    EXPECT_EQ(readGroupParent(library, addressOf(u"Sub2/Beta")).text, u"Sub1");
    EXPECT_EQ(bytesOf(beta, u"logo"), "PIC480 480 logo bytes");
    expectSound(u"Beta");

    // A change of case alone is a new name too.
    renameGroup(library, beta, {u"BETA"});
    EXPECT_THAT(treeOf(u"BETA"), ElementsAre("BETA>Sub1:First", "Sub1>Sub2:Second"));
}

TEST_F(GroupTest, RenamingNeverTakesAnotherGroupsName) {
    const GroupAddress alpha = topGroup(u"Alpha");
    add(topGroup(u"Beta"), u"kept");
    EXPECT_EQ(errorOf([&] { renameGroup(library, alpha, {u"Beta"}); }), ErrorCode::Exists);
    EXPECT_EQ(errorOf([&] { renameGroup(library, alpha, {u"BETA"}); }), ErrorCode::Exists);
    EXPECT_EQ(errorOf([&] { renameGroup(library, topLevelAddress(u"Gone"), {u"Beta"}); }),
              ErrorCode::NotFound); // which comes first
    EXPECT_EQ(errorOf([&] { renameGroup(library, alpha, {u"a/b"}); }), ErrorCode::InvalidName);
    EXPECT_EQ(errorOf([&] { createGroup(library, std::nullopt, {u"Beta"}); }), ErrorCode::Exists);
    EXPECT_THAT(pictureNames(topLevelAddress(u"Beta")), ElementsAre("kept"));
    EXPECT_TRUE(groupExists(library, {u"Alpha"}));
    EXPECT_FALSE(groupExists(library, {u"ALPHA"}));
    EXPECT_TRUE(groupExistsIgnoringCase(library, {u"ALPHA"}));
}

// The new name may be that of a storage in the group's own file.
TEST_F(GroupTest, RenamingMovesTheOwnStoragesAndNoOthers) {
    const GroupAddress pumps = topGroup(u"Pumps");
    subGroup(pumps, u"Below");
    add(pumps, u"logo", "logo bytes");
    renameGroup(library, pumps, {u"PUMPSInfo"}); // stood in the way of itself
    EXPECT_THAT(rootOf(u"PUMPSInfo"),
                ElementsAre(u"PUMPSInfo", u"PUMPSInfoInfo", u"Sub1", u"Sub1Info"));
    EXPECT_THAT(treeOf(u"PUMPSInfo"), ElementsAre("PUMPSInfo>Sub1:Below"));
    EXPECT_EQ(bytesOf(topLevelAddress(u"PUMPSInfo"), u"logo"), "PIC480 480 logo bytes");
    renameGroup(library, topLevelAddress(u"PUMPSInfo"), {u"Pumps"});
    EXPECT_THAT(rootOf(u"Pumps"), ElementsAre(u"Pumps", u"PumpsInfo", u"Sub1", u"Sub1Info"));
    expectSound(u"Pumps");

    for (const std::u16string name : {u"sub1", u"Sub1Info"}) {
        try {
            renameGroup(library, pumps, {name});
            ADD_FAILURE();
        } catch (const compound::Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::Exists);
            EXPECT_EQ(error.file(), "/library/Pumps.stg"); // no file that the user never saw
        }
    }
    EXPECT_THAT(treeOf(u"Pumps"), ElementsAre("Pumps>Sub1:Below"));
}

TEST_F(GroupTest, ReplacingAGroupKeepsTheOldFileInTheTrash) {
    add(topGroup(u"Plant"), u"old");
    createGroup(library, std::nullopt, {u"Plant"}, IfTaken::Replace);
    EXPECT_THAT(pictureNames(topLevelAddress(u"Plant")), IsEmpty());
    EXPECT_EQ(disk.trashed().size(), 1U);
}

// What was done is there; whether a power cut leaves it, nobody can tell.
TEST_F(GroupTest, AMoveWhoseFolderCannotBeSyncedHasAnUnknownOutcome) {
    const GroupAddress plant = topGroup(u"Plant");
    add(plant, u"logo", "logo bytes");
    int syncsThatSucceed = 0;
    disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::SyncFolder && syncsThatSucceed-- <= 0) {
            throw compound::Error(ErrorCode::Failed, "/library", "told to fail");
        }
    });
    EXPECT_EQ(errorOf([&] { createGroup(library, std::nullopt, {u"New"}); }),
              ErrorCode::OutcomeUnknown);
    EXPECT_TRUE(groupExists(library, {u"New"}));

    for (const ErrorCode error : {ErrorCode::Failed, ErrorCode::OutcomeUnknown}) {
        syncsThatSucceed = error == ErrorCode::Failed ? 0 : 1; // of the record; of the new name
        EXPECT_EQ(errorOf([&] { renameGroup(library, plant, {u"Works"}); }), error);
        EXPECT_TRUE(groupExists(library, {u"Plant"}));
        EXPECT_FALSE(groupExists(library, {u"Works"})); // the group is there once
        EXPECT_EQ(disk.list("/library").size(), 2U);    // "Plant" and "New"
    }
    syncsThatSucceed = 2;
    EXPECT_EQ(errorOf([&] { renameGroup(library, plant, {u"Works"}); }), ErrorCode::OutcomeUnknown);
    EXPECT_FALSE(groupExists(library, {u"Plant"}));
    EXPECT_EQ(bytesOf(topLevelAddress(u"Works"), u"logo"), "PIC480 480 logo bytes");

    EXPECT_EQ(errorOf([&] { removeGroupFile(library, {u"Works"}); }), ErrorCode::OutcomeUnknown);
    EXPECT_FALSE(groupExists(library, {u"Works"}));
    EXPECT_EQ(disk.trashed().size(), 1U);
    disk.setInterceptor({});
}

// Nobody knows the temporary file in which the new one grows.
TEST_F(GroupTest, WhatFailsInANewFileIsToldOfTheGroupsFile) {
    const GroupAddress plant = topGroup(u"Plant");
    for (const MemoryDisk::Call failing : {MemoryDisk::Call::Write, MemoryDisk::Call::Sync}) {
        disk.setInterceptor([&](MemoryDisk::Call call) {
            if (call != failing) {
                return;
            }
            for (const compound::FolderEntry& entry : disk.list("/library")) {
                if (entry.name.string().ends_with(".new")) {
                    throw compound::Error(ErrorCode::NoSpace, "/library" / entry.name, "full");
                }
            }
        });
        EXPECT_EQ(blamedBy([&] { topGroup(u"New"); }), "/library/New.stg");
        EXPECT_EQ(blamedBy([&] { renameGroup(library, plant, {u"Works"}); }), "/library/Works.stg");
        EXPECT_EQ(blamedBy([&] { compactGroupFile(library, "/library/Plant.stg"); }),
                  "/library/Plant.stg");
        disk.setInterceptor({});
        EXPECT_EQ(disk.list("/library").size(), 1U) << "a temporary file is left";
    }
}

TEST_F(GroupTest, RenamingASubGroupChangesItsNameAlone) {
    const GroupAddress plant = topGroup(u"Plant");
    const GroupAddress twin = subGroup(plant, u"Twin");
    const GroupAddress other = subGroup(plant, u"Twin");
    subGroup(other, u"Below");
    renameGroup(library, other, {u"Renamed"});
    EXPECT_THAT(treeOf(u"Plant"),
                UnorderedElementsAre("Plant>Sub1:Twin", "Plant>Sub2:Renamed", "Sub2>Sub3:Below"));
    EXPECT_TRUE(subGroupExists(library, plant, {u"Twin"}));
    EXPECT_FALSE(subGroupExists(library, plant, {u"twin"}));
    EXPECT_FALSE(subGroupExists(library, twin, {u"Below"}));
    EXPECT_TRUE(subGroupExists(library, other, {u"Below"}));
}

TEST_F(GroupTest, DeletingAGroupTakesItsWholeSubtree) {
    const GroupAddress plant = topGroup(u"Plant");
    const GroupAddress pumps = subGroup(plant, u"Pumps");
    subGroup(subGroup(pumps, u"Steel"), u"Small");
    const GroupAddress kept = subGroup(plant, u"Kept");
    add(kept, u"picture");
    {
        compound::CompoundFile raw = openRaw(u"Plant");
        raw.root().destroy(u"Sub2Info"); // a group may have lost its records
        raw.commit();
    }
    const std::vector<GroupAddress> removed = deleteGroup(library, addressOf(u"sub1/Plant"));
    EXPECT_EQ(removed.size(), 3U);
    EXPECT_EQ(removed.back(), pumps);
    EXPECT_THAT(rootOf(u"Plant"), ElementsAre(u"Plant", u"PlantInfo", u"Sub4", u"Sub4Info"));
    EXPECT_THAT(pictureNames(kept), ElementsAre("picture"));
    EXPECT_EQ(errorOf([&] { deleteGroup(library, plant); }), ErrorCode::InvalidName);

    removeGroupFile(library, plant.file);
    EXPECT_THAT(groupFiles(library), IsEmpty());
    EXPECT_EQ(disk.trashed().size(), 1U);
}

TEST_F(GroupTest, CompactingKeepsEverythingAndGivesSpaceBack) {
    const GroupAddress plant = topGroup(u"Plant");
    for (const char16_t* name : {u"a", u"b", u"c"}) {
        add(plant, name, std::string(50000, 'x'));
    }
    deletePicture(library, plant, {u"a"});
    const std::uint64_t before = disk.open("/library/Plant.stg", compound::Access::Read)->size();
    compactGroupFile(library, "/library/Plant.stg");
    EXPECT_LT(disk.open("/library/Plant.stg", compound::Access::Read)->size(), before);
    EXPECT_THAT(pictureNames(plant), ElementsAre("b", "c"));
    EXPECT_EQ(bytesOf(plant, u"b"), "PIC480 480 " + std::string(50000, 'x'));
    EXPECT_EQ(disk.list("/library").size(), 1U);
    expectSound(u"Plant");
}

// Of another program, whose file has smaller sectors and nothing free.
TEST_F(GroupTest, CompactingKeepsTheSectorSizeAndNeverMakesAFileLarger) {
    const GroupAddress plant = topGroup(u"Plant");
    for (const char16_t* name : {u"a", u"b", u"c", u"d"}) {
        add(plant, name, std::string(20000, 'x'));
    }
    {
        compound::CompoundFile from = openRaw(u"Plant");
        compound::CompoundFile to = compound::CompoundFile::create(disk.create("/library/small"),
                                                                   compound::SectorSize::Bytes512);
        compound::copyAll(from, to);
        to.commit();
    }
    disk.renameReplacing("/library/small", "/library/Plant.stg");
    deletePicture(library, plant, {u"b"});
    const auto size = [&] { return disk.content("/library/Plant.stg").size(); };
    const std::size_t before = size();
    compactGroupFile(library, "/library/Plant.stg");
    EXPECT_EQ(openRaw(u"Plant").sectorSize(), compound::SectorSize::Bytes512);
    EXPECT_LT(size(), before - 15000);
    EXPECT_EQ(bytesOf(plant, u"d"), "PIC480 480 " + std::string(20000, 'x'));

    std::vector<std::byte> whole;
    std::vector<std::byte> dense = disk.content("/library/Plant.stg");
    do { // until a sector in use would go
        whole = dense;
        dense.resize(dense.size() - 512);
        disk.setContent("/library/Plant.stg", dense);
    } while (openRaw(u"Plant").check().empty());
    disk.setContent("/library/Plant.stg", whole);
    ASSERT_LT(whole.size() + std::size_t{8} * 512, before);
    compactGroupFile(library, "/library/Plant.stg");
    EXPECT_EQ(disk.content("/library/Plant.stg"), whole);
}

TEST_F(GroupTest, LeftoversOfACrashGoWithTheNextNewFile) {
    disk.create("/library/.txs-0123456789abcdef.new");
    const auto alive = disk.create("/library/.txs-fedcba9876543210.new");
    ASSERT_TRUE(alive->lock(std::chrono::milliseconds{0}));
    topGroup(u"Plant");
    EXPECT_FALSE(disk.exists("/library/.txs-0123456789abcdef.new"));
    EXPECT_TRUE(disk.exists("/library/.txs-fedcba9876543210.new"));
    EXPECT_THAT(groupFiles(library), ElementsAre(FileName{u"Plant"}));
}

TEST_F(GroupTest, ListingFindsSuffixesInAnyCaseAndSortsWithoutCase) {
    topGroup(u"beta");
    topGroup(u"Alpha");
    topGroup(u"CHARLIE");
    disk.renameWithoutReplacing("/library/beta.stg", "/library/beta.STG");
    disk.create("/library/a.stgold");
    disk.create("/library/.stg");
    EXPECT_THAT(groupFiles(library),
                ElementsAre(FileName{u"Alpha"}, FileName{u"beta"}, FileName{u"CHARLIE"}));
    EXPECT_EQ(readGroupName(library, topLevelAddress(u"beta")).text, u"beta");
    library.folder = "/missing";
    EXPECT_EQ(errorOf([&] { groupFiles(library); }), ErrorCode::NotFound);
}

// Keeps what it is told, and wants to stop once that many reports have come.
class RecordedProgress : public Progress {
  public:
    explicit RecordedProgress(std::size_t stopAfter = SIZE_MAX) : stopAfter_(stopAfter) {}

    void report(std::uint64_t done, std::uint64_t total) override {
        reports.emplace_back(done, total);
    }
    bool isStopWanted() override { return reports.size() >= stopAfter_; }

    std::vector<std::pair<std::uint64_t, std::uint64_t>> reports;

  private:
    std::size_t stopAfter_;
};

TEST_F(GroupTest, RenamingAndCompactingTellHowFarTheyAre) {
    const GroupAddress plant = topGroup(u"Plant");
    for (const char16_t* name : {u"a", u"b", u"c"}) {
        add(plant, name, std::string(3'000'000, 'x'));
    }
    const auto expectCompleteReport = [](const RecordedProgress& progress) {
        ASSERT_GE(progress.reports.size(), 9U);
        EXPECT_TRUE(std::is_sorted(progress.reports.begin(), progress.reports.end()));
        EXPECT_LT(progress.reports.front().first * 5, progress.reports.front().second);
        const auto [done, total] = progress.reports.back();
        EXPECT_EQ(done, total);
        EXPECT_GE(total, 9'000'000U);
        const auto [before, same] = progress.reports[progress.reports.size() - 2];
        EXPECT_LT(before, same) << "only the last one says that it is done";
    };
    RecordedProgress compacting;
    compactGroupFile(library, "/library/Plant.stg", compacting);
    expectCompleteReport(compacting);
    RecordedProgress renaming;
    renameGroup(library, plant, {u"Works"}, renaming);
    expectCompleteReport(renaming);
}

TEST_F(GroupTest, StoppingLeavesEverythingAsItWas) {
    const GroupAddress plant = topGroup(u"Plant");
    add(plant, u"a", std::string(3'000'000, 'x'));
    const auto before = disk.content("/library/Plant.stg");
    for (const std::size_t reports : {1U, 3U}) {
        RecordedProgress renaming(reports);
        EXPECT_EQ(errorOf([&] { renameGroup(library, plant, {u"Works"}, renaming); }),
                  ErrorCode::Cancelled);
        RecordedProgress compacting(reports);
        EXPECT_EQ(errorOf([&] { compactGroupFile(library, "/library/Plant.stg", compacting); }),
                  ErrorCode::Cancelled);
        EXPECT_EQ(disk.list("/library").size(), 1U);
        EXPECT_EQ(disk.content("/library/Plant.stg"), before);
    }
}

} // namespace
} // namespace store::testing
