#include "base/utf8.h"
#include "store/group_import.h"
#include "store/leftovers.h"
#include "store/store_fixture.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <map>
#include <random>

namespace store::testing {
namespace {

using compound::ErrorCode;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::filesystem::path kSource = "/elsewhere/Pumps.stg";

std::string textOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

class GroupImport : public StoreTest {
  protected:
    GroupImport() { disk.makeFolder("/elsewhere"); }

    // Makes a group file outside of the library: whatever `fill` does to the group in a library of
    // its own.
    void makeSource(const std::filesystem::path& path,
                    const std::function<void(const GroupAddress&)>& fill = {}) {
        library.folder = path.parent_path();
        const GroupAddress top = topGroup(path.stem().u16string());
        if (fill) {
            fill(top);
        }
        library.folder = "/library";
    }

    // Rotary (with Steel below it) and Screw, a picture in each.
    void makePumps() {
        makeSource(kSource, [&](const GroupAddress& pumps) {
            add(pumps, u"logo", "of Pumps");
            const GroupAddress rotary = subGroup(pumps, u"Rotary");
            add(rotary, u"wheel", std::string(9000, 'w'));
            add(subGroup(rotary, u"Steel"), u"bolt", "of Steel");
            add(subGroup(pumps, u"Screw"), u"screw", "of Screw");
        });
    }

    std::vector<std::string> filesIn(const std::filesystem::path& folder) {
        std::vector<std::string> names;
        for (const compound::FolderEntry& entry : disk.list(folder)) {
            names.push_back(entry.name.string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    std::vector<std::u16string> rootOfSource(const std::filesystem::path& path) {
        library.folder = path.parent_path();
        std::vector<std::u16string> names = rootOf(path.stem().u16string());
        library.folder = "/library";
        return names;
    }
};

TEST_F(GroupImport, CopiesAFileAsATopLevelGroup) {
    makePumps();
    const auto original = disk.content(kSource);
    EXPECT_EQ(importGroupFile(library, kSource), topLevelAddress(u"Pumps"));
    EXPECT_THAT(treeOf(u"Pumps"),
                ElementsAre("Pumps>Sub1:Rotary", "Pumps>Sub3:Screw", "Sub1>Sub2:Steel"));
    EXPECT_THAT(bytesOf(addressOf(u"Sub1/Pumps"), u"wheel"), ::testing::EndsWith("www"));
    EXPECT_THAT(filesIn("/library"), ElementsAre("Pumps.stg"));
    EXPECT_EQ(disk.content(kSource), original);
    expectSound(u"Pumps");
    EXPECT_EQ(errorOf([&] { importGroupFile(library, kSource); }), ErrorCode::Exists);
}

TEST_F(GroupImport, CallsTheCopyAsTheStorageInTheFile) {
    makePumps();
    disk.setContent("/elsewhere/pumps.v2.stg", disk.content(kSource));
    EXPECT_EQ(importGroupFile(library, "/elsewhere/pumps.v2.stg"), topLevelAddress(u"Pumps"));
    EXPECT_THAT(filesIn("/library"), ElementsAre("Pumps.stg"));
    disk.setContent("/elsewhere/PUMPS.stg", disk.content(kSource));
    EXPECT_EQ(errorOf([&] { importGroupFile(library, "/elsewhere/PUMPS.stg"); }),
              ErrorCode::Exists);
}

TEST_F(GroupImport, MergesWithTheNumbersOfTheTarget) {
    const GroupAddress plant = topGroup(u"Plant");
    for (const auto* name : {u"A", u"B", u"C", u"D"}) {
        subGroup(plant, name);
    }
    makeSource(kSource, [&](const GroupAddress& pumps) {
        subGroup(pumps, u"Rotary");
        subGroup(pumps, u"Screw");
    });
    const auto original = disk.content(kSource);
    const MergedGroup merged = mergeGroupFile(library, plant, kSource);
    EXPECT_EQ(merged.group, addressOf(u"Sub5/Plant"));
    EXPECT_EQ(merged.source, SourceAfterMerge::Renumbered);
    EXPECT_FALSE(merged.sourceFailure);
    EXPECT_THAT(treeOf(u"Plant"),
                ElementsAre("Plant>Sub1:A", "Plant>Sub2:B", "Plant>Sub3:C", "Plant>Sub4:D",
                            "Plant>Sub5:Pumps", "Sub5>Sub6:Rotary", "Sub5>Sub7:Screw"));
    expectSound(u"Plant");

    EXPECT_THAT(rootOfSource(kSource),
                ElementsAre(u"Sib5", u"Sib5Info", u"Sib6", u"Sib6Info", u"Sib7", u"Sib7Info"));
    compound::CompoundFile source = compound::CompoundFile::open(
        disk.open(kSource, compound::Access::Read), compound::Access::Read);
    const auto parentOf = [&](std::u16string_view storage) {
        return textOf(source.root().openStorage(storage).openStream(u"Parent").readAll());
    };
    EXPECT_EQ(parentOf(u"Sib5"), "None");
    EXPECT_EQ(parentOf(u"Sib6"), "Sub5");
    EXPECT_EQ(parentOf(u"Sib7"), "Sub5");
    EXPECT_THAT(source.check(), IsEmpty());
    EXPECT_EQ(disk.content("/elsewhere/Pumps.stg.bak"), original);
}

TEST_F(GroupImport, TakesARenumberedFileForWhatItWas) {
    makePumps();
    const GroupAddress plant = topGroup(u"Plant");
    const GroupAddress deep = subGroup(subGroup(plant, u"A"), u"B");
    mergeGroupFile(library, deep, kSource);
    EXPECT_EQ(errorOf([&] { mergeGroupFile(library, deep, kSource); }), ErrorCode::Exists);
    const auto renumbered = disk.content(kSource);

    const MergedGroup again = mergeGroupFile(library, plant, kSource);
    EXPECT_EQ(again.source, SourceAfterMerge::AsItWas);
    EXPECT_THAT(treeOf(u"Plant"),
                ElementsAre("Plant>Sub1:A", "Plant>Sub7:Pumps", "Sub7>Sub8:Rotary",
                            "Sub7>Sub10:Screw", "Sub8>Sub9:Steel", "Sub1>Sub2:B", "Sub2>Sub3:Pumps",
                            "Sub3>Sub4:Rotary", "Sub3>Sub6:Screw", "Sub4>Sub5:Steel"));
    EXPECT_EQ(bytesOf(addressOf(u"Sub9/Plant"), u"bolt"), "PIC480 480 of Steel");

    importGroupFile(library, kSource);
    EXPECT_THAT(treeOf(u"Pumps"),
                ElementsAre("Pumps>Sub1:Rotary", "Pumps>Sub3:Screw", "Sub1>Sub2:Steel"));
    EXPECT_EQ(disk.content(kSource), renumbered);
    EXPECT_THAT(filesIn("/elsewhere"), ElementsAre("Pumps.stg", "Pumps.stg.bak"));
    expectSound(u"Plant");
    expectSound(u"Pumps");
}

TEST_F(GroupImport, KeepsEveryOriginal) {
    const GroupAddress plant = topGroup(u"Plant");
    makePumps();
    disk.setContent("/elsewhere/Pumps.stg.bak", std::as_bytes(std::span("mine", 4)));
    const auto original = disk.content(kSource);
    mergeGroupFile(library, plant, kSource);
    EXPECT_EQ(textOf(disk.content("/elsewhere/Pumps.stg.bak")), "mine");
    EXPECT_EQ(disk.content("/elsewhere/Pumps.stg.bak2"), original);
}

// On a full disk a copy of a source that stays as it is only takes room, one more with every try.
TEST_F(GroupImport, KeepsNoCopyOfASourceThatStaysAsItIs) {
    const GroupAddress plant = topGroup(u"Plant");
    makePumps();
    const auto original = disk.content(kSource);
    int failed = 0;
    bool isMet = true;
    for (int failing = 0; isMet; ++failing) {
        int call = 0;
        disk.setInterceptor([&](MemoryDisk::Call) {
            if (call++ == failing) {
                throw compound::Error(ErrorCode::Failed, {}, "told to fail");
            }
        });
        bool isAsItWas = true;
        try {
            const MergedGroup merged = mergeGroupFile(library, plant, kSource);
            isAsItWas = merged.source == SourceAfterMerge::AsItWas;
            failed += merged.sourceFailure ? 1 : 0;
            if (merged.sourceFailure) {
                isAsItWas = merged.sourceFailure->code() != ErrorCode::OutcomeUnknown;
            }
        } catch (const compound::Error&) {
            isAsItWas = true;
        }
        disk.setInterceptor({});
        isMet = call > failing;
        for (const std::string& file : filesIn("/elsewhere")) {
            EXPECT_TRUE(!isAsItWas || !file.ends_with(".bak")) << failing;
            disk.removeTemporary(std::filesystem::path("/elsewhere") / file);
        }
        disk.setContent(kSource, original);
        const LockBudget noWait(std::chrono::milliseconds{0});
        for (const GroupEntry& group : readGroupFile(library, plant.file, noWait).groups) {
            if (group.parent == plant.storage) {
                deleteGroup(library, group.address);
            }
        }
    }
    EXPECT_GT(failed, 5);
}

// Between its making and its locking another program may take the copy for a leftover.
TEST_F(GroupImport, KeepsACopyThatIsClearedAwayAtFirst) {
    const GroupAddress plant = topGroup(u"Plant");
    makePumps();
    const auto original = disk.content(kSource);
    bool isCleared = false;
    disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call != MemoryDisk::Call::Lock || isCleared) {
            return;
        }
        for (const std::string& file : filesIn("/elsewhere")) {
            isCleared = isCleared || file.ends_with(".new");
        }
        if (isCleared) {
            removeUnfinishedFiles(library, "/elsewhere");
        }
    });
    const MergedGroup merged = mergeGroupFile(library, plant, kSource);
    disk.setInterceptor({});
    EXPECT_TRUE(isCleared);
    EXPECT_EQ(merged.source, SourceAfterMerge::Renumbered);
    EXPECT_EQ(disk.content("/elsewhere/Pumps.stg.bak"), original);
}

TEST_F(GroupImport, RefusesTakenNamesDamagedFilesAndTheTargetItself) {
    makePumps();
    const GroupAddress plant = topGroup(u"Plant");
    subGroup(plant, u"pUMPS");
    EXPECT_EQ(errorOf([&] { mergeGroupFile(library, plant, kSource); }), ErrorCode::Exists);
    EXPECT_EQ(errorOf([&] { mergeGroupFile(library, plant, "/library/Plant.stg"); }),
              ErrorCode::SameFile);
    const GroupAddress free = subGroup(plant, u"Free");
    const auto before = disk.content("/library/Plant.stg");

    fileOf("Broken.stg", "no group file");
    std::vector<std::byte> cut = disk.content(kSource);
    cut.resize(cut.size() / 2);
    disk.setContent("/sources/Pumps.stg", cut);
    disk.setContent("/sources/Renamed.stg", disk.content(kSource));
    const std::map<std::string, ErrorCode> refused{{"Broken.stg", ErrorCode::NotCompoundFile},
                                                   {"Pumps.stg", ErrorCode::Damaged},
                                                   {"Renamed.stg", ErrorCode::Damaged},
                                                   {"Gone.stg", ErrorCode::NotFound}};
    for (const auto& [name, code] : refused) {
        const std::filesystem::path path = std::filesystem::path("/sources") / name;
        EXPECT_EQ(errorOf([&] { mergeGroupFile(library, free, path); }), code) << name;
        EXPECT_EQ(errorOf([&] { importGroupFile(library, path); }), code) << name;
    }
    {
        const auto held = disk.open(kSource, compound::Access::Read);
        ASSERT_TRUE(held->lock(std::chrono::milliseconds{0}));
        EXPECT_EQ(errorOf([&] { mergeGroupFile(library, free, kSource); }), ErrorCode::Locked);
        EXPECT_EQ(errorOf([&] { importGroupFile(library, kSource); }), ErrorCode::Locked);
    }
    EXPECT_EQ(disk.content("/library/Plant.stg").size(), before.size());
    EXPECT_THAT(filesIn("/library"), ElementsAre("Plant.stg"));
    EXPECT_THAT(filesIn("/elsewhere"), ElementsAre("Pumps.stg"));
    expectSound(u"Plant");
    mergeGroupFile(library, free, kSource); // nothing of all that is in the way
}

TEST_F(GroupImport, LeavesASourceAsItIsThatIsNotToBeChanged) {
    const GroupAddress plant = topGroup(u"Plant");
    const GroupAddress valves = topGroup(u"Valves");
    add(valves, u"ball", "of Valves");
    const auto file = disk.content("/library/Valves.stg");
    const MergedGroup merged = mergeGroupFile(library, plant, "/library/Valves.stg");
    EXPECT_EQ(merged.source, SourceAfterMerge::AsItWas);
    EXPECT_EQ(disk.content("/library/Valves.stg"), file);

    // The disk is full once the target is committed.
    makePumps();
    const auto pumps = disk.content(kSource);
    bool isCommitted = false;
    disk.setInterceptor([&](MemoryDisk::Call call) {
        if (call == MemoryDisk::Call::Folder && isCommitted) {
            throw compound::Error(ErrorCode::NoSpace, {}, "the disk is full");
        }
        isCommitted = isCommitted || call == MemoryDisk::Call::Sync;
    });
    const MergedGroup told = mergeGroupFile(library, plant, kSource);
    disk.setInterceptor({});
    EXPECT_EQ(told.source, SourceAfterMerge::AsItWas);
    ASSERT_TRUE(told.sourceFailure);
    EXPECT_EQ(told.sourceFailure->code(), ErrorCode::NoSpace);
    EXPECT_EQ(disk.content(kSource), pumps);
    EXPECT_THAT(treeOf(u"Plant"), Contains("Plant>Sub2:Pumps"));
}

TEST_F(GroupImport, LeavesNoTraceWhenStopped) {
    makePumps();
    const GroupAddress plant = topGroup(u"Plant");
    const auto file = disk.content("/library/Plant.stg");
    const auto source = disk.content(kSource);
    class Stop final : public Progress {
      public:
        void report(std::uint64_t, std::uint64_t) override {}
        bool isStopWanted() override { return ++asked_ > 5; }

      private:
        int asked_ = 0;
    };
    Stop stop;
    EXPECT_EQ(errorOf([&] { mergeGroupFile(library, plant, kSource, stop); }),
              ErrorCode::Cancelled);
    EXPECT_EQ(errorOf([&] { importGroupFile(library, kSource, stop); }), ErrorCode::Cancelled);
    EXPECT_THAT(filesIn("/library"), ElementsAre("Plant.stg"));
    EXPECT_THAT(filesIn("/elsewhere"), ElementsAre("Pumps.stg"));
    EXPECT_EQ(disk.content("/library/Plant.stg").size(), file.size());
    EXPECT_EQ(disk.content(kSource), source);
    EXPECT_THAT(treeOf(u"Plant"), IsEmpty());
    expectSound(u"Plant");
}

TEST_F(GroupImport, ExportsWhatImportsAgain) {
    makePumps();
    const GroupAddress plant = topGroup(u"Plant");
    mergeGroupFile(library, plant, kSource);
    const GroupAddress rotary = addressOf(u"Sub2/Plant");
    exportGroup(library, rotary, "/elsewhere/Rotary.stg");
    EXPECT_THAT(rootOfSource("/elsewhere/Rotary.stg"),
                ElementsAre(u"Rotary", u"RotaryInfo", u"Sub3", u"Sub3Info"));
    importGroupFile(library, "/elsewhere/Rotary.stg");
    EXPECT_THAT(treeOf(u"Rotary"), ElementsAre("Rotary>Sub3:Steel"));
    EXPECT_EQ(bytesOf(addressOf(u"Sub3/Rotary"), u"bolt"), "PIC480 480 of Steel");
    EXPECT_EQ(readPictureType(library, topLevelAddress(u"Rotary"), {u"wheel"}), "BMP");

    // Named like a group below it.
    exportGroup(library, rotary, "/elsewhere/Sub3.stg");
    importGroupFile(library, "/elsewhere/Sub3.stg");
    EXPECT_THAT(treeOf(u"Sub3"), ElementsAre("Sub3>Sub4:Steel"));
    expectSound(u"Sub3");

    const auto refuse = [&](const char* path, IfTaken ifTaken = IfTaken::Replace) {
        return errorOf([&] { exportGroup(library, rotary, path, ifTaken); });
    };
    EXPECT_EQ(refuse("/elsewhere/Rotary.stg", IfTaken::Refuse), ErrorCode::Exists);
    EXPECT_EQ(refuse("/library/Plant.stg"), ErrorCode::SameFile);
    EXPECT_EQ(refuse("/elsewhere/None.stg"), ErrorCode::InvalidName);
    EXPECT_EQ(refuse("/elsewhere/Rotary.txt"), ErrorCode::InvalidName);
    exportGroup(library, plant, "/elsewhere/Rotary.stg", IfTaken::Replace);
    EXPECT_EQ(rootOfSource("/elsewhere/Rotary.stg").size(), 10U);
}

// A group as the model has it; `text` tells all of it, for comparing.
struct ModelGroup {
    std::string name;
    std::map<std::string, std::string> pictures; // bytes
    std::vector<ModelGroup> groups;

    std::string text() const {
        std::vector<std::string> below;
        for (const ModelGroup& group : groups) {
            below.push_back(group.text());
        }
        std::sort(below.begin(), below.end());
        std::string all = name + "{";
        for (const auto& [picture, bytes] : pictures) {
            all += picture + "=" + std::to_string(std::hash<std::string>{}(bytes)) + " ";
        }
        for (const std::string& group : below) {
            all += group;
        }
        return all + "}";
    }
};

class RandomImport : public GroupImport {
  protected:
    int pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

    std::string bytes() {
        static const std::vector<int> kSizes{0, 40, 63, 4080, 4096, 9000, 20000};
        std::string rest(static_cast<std::size_t>(kSizes[static_cast<std::size_t>(pick(7))]), ' ');
        std::generate(rest.begin(), rest.end(), [&] { return static_cast<char>('a' + pick(26)); });
        return rest;
    }

    void fill(const GroupAddress& group, ModelGroup& model, int depth) {
        for (int i = pick(4); i > 0; --i) {
            const std::string name = "p" + std::to_string(pick(1000));
            const std::string rest = bytes();
            add(group, base::fromUtf8(name), rest);
            model.pictures[name] = "PIC480 480 " + rest;
        }
        for (int i = depth > 0 ? pick(4) : 0; i > 0; --i) {
            const std::string name = "g" + std::to_string(++groups_);
            model.groups.push_back({name, {}, {}});
            fill(subGroup(group, base::fromUtf8(name)), model.groups.back(), depth - 1);
        }
    }

    // What only another program does: groups called otherwise, elements of its own, numbers gone.
    void disturb(std::u16string_view file, ModelGroup& model, const std::string& mark) {
        if (pick(2) == 0) {
            makeForeignGroup(file, u"Sub007", u"Odd" + base::fromUtf8(mark), file);
            model.groups.push_back({"Odd" + mark, {}, {}});
            makeForeignGroup(file, u"Foreign", u"Below" + base::fromUtf8(mark), u"Sub007");
            model.groups.back().groups.push_back({"Below" + mark, {}, {}});
        }
        compound::CompoundFile raw = openRaw(file);
        raw.root().createStream(u"notes").assign(std::as_bytes(std::span(mark)));
        raw.root().createStorage(u"Sub99Info").createStream(u"orphan");
        raw.root().createStorage(u"extra").createStorage(u"deep").createStream(u"thing").assign(
            std::as_bytes(std::span(mark)));
        raw.commit();
    }

    ModelGroup read(const GroupEntry& group, const std::vector<GroupEntry>& all) {
        ModelGroup model{base::toUtf8(group.name.text), {}, {}};
        walkPictures(library, group.address, 0, [&](const StoredPicture& picture) {
            model.pictures[base::toUtf8(picture.name.text)] = textOf(picture.bytes);
            EXPECT_EQ(picture.record.type, "BMP");
            return TakePicture::Continue;
        });
        for (const GroupEntry& other : all) {
            if (other.parent == group.address.storage) {
                model.groups.push_back(read(other, all));
            }
        }
        return model;
    }

    std::string textOfFile(const std::u16string& file) {
        const auto reading =
            readGroupFile(library, {file}, LockBudget{std::chrono::milliseconds{0}});
        return reading.groups.empty() ? std::string("unreadable")
                                      : read(reading.groups.front(), reading.groups).text();
    }

    std::mt19937 random_{20270101};
    int groups_ = 0;
};

TEST_F(RandomImport, MergedLibrariesAreWhatTheModelSays) {
    for (int round = 0; round < 25; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const std::string number = std::to_string(round);
        const std::u16string target = u"Target" + base::fromUtf8(number);
        const std::u16string source = u"Source" + base::fromUtf8(number);
        const std::filesystem::path path = "/elsewhere/Source" + number + ".stg";
        ModelGroup model{base::toUtf8(target), {}, {}};
        fill(topGroup(target), model, 2);
        ModelGroup merged{base::toUtf8(source), {}, {}};
        makeSource(path, [&](const GroupAddress& top) {
            fill(top, merged, 3);
            disturb(source, merged, "s" + number);
        });
        if (pick(2) == 0) {
            disturb(target, model, "t" + number);
        }
        importGroupFile(library, path);
        EXPECT_EQ(textOfFile(source), merged.text());

        // Below the top group, then, renumbered by that, below another group.
        mergeGroupFile(library, topLevelAddress(target), path);
        model.groups.push_back(merged);
        ASSERT_EQ(textOfFile(target), model.text());
        const GroupAddress other = subGroup(topLevelAddress(target), u"other");
        const MergedGroup second = mergeGroupFile(library, other, path);
        model.groups.push_back({"other", {}, {merged}});
        ASSERT_EQ(textOfFile(target), model.text());
        expectSound(target);

        // Elements of other programs, from every merge.
        EXPECT_THAT(rootOf(target), Contains(u"notes (2)"));
        EXPECT_THAT(rootOf(target), Contains(u"extra (2)"));

        const std::filesystem::path out = "/elsewhere/Source" + number + "out.stg";
        exportGroup(library, second.group, out);
        importGroupFile(library, out);
        merged.name += "out";
        EXPECT_EQ(textOfFile(source + u"out"), merged.text());
        expectSound(source + u"out");
    }
}

} // namespace
} // namespace store::testing
