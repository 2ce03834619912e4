// After a power cut at any moment every group opens as before or after the change.
#include "base/utf8.h"
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "crash/library_dump.h"
#include "crash/power_cut.h"
#include "crash/scenarios.h"
#include "crash/states.h"
#include "store/picture_operations.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace crash {
namespace {

constexpr std::size_t kAddEvery = 16; // every so many states a picture is added

// One step's share of the events, and the library before and after it.
struct StepRecord {
    const Step* step = nullptr;
    std::size_t firstEvent = 0;
    std::size_t endEvent = 0;
    LibraryDump before;
    LibraryDump after;
};

class PowerCut : public ::testing::TestWithParam<ScenarioOnSectors> {
  protected:
    void SetUp() override {
        const auto [index, sectorSize] = GetParam();
        const Scenario& scenario = scenarios()[index];
        prepareLibrary(memory_, sectorSize);
        if (scenario.prepare) {
            scenario.prepare(libraryOn(memory_));
        }
        recording_ = std::make_unique<RecordingDisk>(memory_, recordedFolders());
        const store::Library library = libraryOn(*recording_); // one process, which remembers
        for (const Step& step : scenario.steps) {
            runStep(step, library);
        }
    }

    void runStep(const Step& step, const store::Library& library) {
        StepRecord record{&step, recording_->events().size(), 0, dumpOf(mediumOf(memory_)), {}};
        step.run(library);
        record.endEvent = recording_->events().size();
        record.after = dumpOf(mediumOf(memory_));
        steps_.push_back(std::move(record));
    }

    // Cuts the power after `count` events, of which those of the last step begin inside `record`.
    void cutAfter(const StepRecord& record, std::size_t count, const ChooseFate& fateOf) {
        expectOldOrNew(record, count,
                       cutPower(*recording_, count, fateOf, [this] { return random_() % 2 == 0; }));
    }

    void expectOldOrNew(const StepRecord& record, std::size_t count, const Medium& medium) {
        const LibraryDump dump = dumpOf(medium);
        const LibraryDump old = withoutTrashed(record.before, medium);
        const bool isDone = count == record.endEvent;
        const bool isAllowed =
            dump == record.after || (!isDone && isOnTheWay(*record.step, old, record.after, dump));
        ASSERT_TRUE(isAllowed) << record.step->name << ", cut after event "
                               << count - record.firstEvent << " of "
                               << record.endEvent - record.firstEvent
                               << "\nagainst the new state:\n"
                               << difference(record.after, dump) << "\nagainst the old one:\n"
                               << difference(old, dump);
        countStates(Kind::PowerCut, record.step->name);
        if (record.step->outcome == Outcome::OldNewOrBoth) {
            MemoryDisk disk;
            fill(disk, medium);
            expectEachGroupOnce(record, count, medium, disk);
        }
        if (++states_ % kAddEvery == 0) {
            expectAddWorks(medium);
        }
    }

    // What a killed program leaves is cleared away by the next listing.
    void expectNothingLeft(const StepRecord& record, std::size_t count) {
        const Medium killed =
            cutPower(*recording_, count, [](std::size_t) { return Fate::Reached; }, {});
        MemoryDisk disk;
        fill(disk, killed);
        expectEachGroupOnce(record, count, killed, disk);
        for (const compound::FolderEntry& entry : disk.list(kLibraryFolder)) {
            EXPECT_NE(entry.name.string().front(), '.') << entry.name;
        }
    }

    // Nor does a listing leave a group on the disk, which holds that medium, under two names.
    static void expectEachGroupOnce(const StepRecord& record, std::size_t count,
                                    const Medium& medium, MemoryDisk& disk) {
        store::groupFiles(libraryOn(disk));
        const LibraryDump dump = dumpOf(mediumOf(disk));
        Step step = *record.step;
        step.outcome = Outcome::OldOrNew;
        EXPECT_TRUE(isOnTheWay(step, withoutTrashed(record.before, medium), record.after, dump))
            << step.name << ", ended after event " << count - record.firstEvent << '\n'
            << difference(record.after, dump);
    }

    // The counts of events between one sync and the next, both included.
    struct Gap {
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    std::vector<Gap> gapsOf(const StepRecord& record) const {
        std::vector<Gap> gaps;
        Gap gap{record.firstEvent, record.firstEvent};
        for (; gap.end < record.endEvent; ++gap.end) {
            const EventKind kind = recording_->events()[gap.end].kind;
            if (kind == EventKind::SyncFile || kind == EventKind::SyncFolder) {
                gaps.push_back(gap);
                gap.begin = gap.end + 1;
            }
        }
        gaps.push_back(gap);
        return gaps;
    }

    // A file that goes to the trash on the way is not lost, if it lies there whole.
    static LibraryDump withoutTrashed(LibraryDump dump, const Medium& medium) {
        const LibraryDump trashed = dumpOf({medium.trashed, {}});
        for (const auto& [file, content] : trashed) {
            const auto found = dump.find(file);
            if (found != dump.end() && found->second == content) {
                dump.erase(found);
            }
        }
        return dump;
    }

    // Whatever a crash leaves behind in unused sectors is in nobody's way.
    static void expectAddWorks(const Medium& medium) {
        MemoryDisk disk;
        fill(disk, medium);
        disk.makeFolder(kSourceFolder);
        const std::filesystem::path source = std::filesystem::path(kSourceFolder) / "next.bmp";
        const std::vector<std::byte> bytes(6000, std::byte{0x5A});
        disk.create(source)->write(0, bytes);
        const store::Library library = libraryOn(disk);
        for (const store::FileName& file : store::groupFiles(library)) {
            if (file.text == u"Broken") {
                continue;
            }
            const store::GroupAddress group = store::topLevelAddress(file.text);
            store::addPicture(library, group, {u"next"}, source);
            ASSERT_EQ(store::readPicture(library, group, {u"next"}).bytes, bytes);
            const std::string dump = dumpOf(mediumOf(disk)).at(base::toUtf8(file.text) + ".stg");
            ASSERT_EQ(dump.find("finding"), std::string::npos) << dump;
        }
    }

    MemoryDisk memory_;
    std::unique_ptr<RecordingDisk> recording_;
    std::vector<StepRecord> steps_;
    std::mt19937 random_{20260614};
    std::size_t states_ = 0;
};

TEST_P(PowerCut, AtEveryWriteLeavesTheOldOrTheNewState) {
    for (const StepRecord& record : steps_) {
        for (std::size_t count = record.firstEvent; count <= record.endEvent; ++count) {
            // All that was written so far; only what was synced; all, the last write torn; all but
            // the last but one.
            cutAfter(record, count, [](std::size_t) { return Fate::Reached; });
            cutAfter(record, count, [](std::size_t) { return Fate::Lost; });
            cutAfter(record, count, [&](std::size_t event) {
                return event + 1 == count ? Fate::Torn : Fate::Reached;
            });
            cutAfter(record, count, [&](std::size_t event) {
                return event + 2 == count ? Fate::Lost : Fate::Reached;
            });
            expectNothingLeft(record, count);
            if (HasFailure()) {
                return;
            }
        }
    }
}

TEST_P(PowerCut, WithAnyPartOfWhatWasNotSyncedLeavesTheOldOrTheNewState) {
    for (const StepRecord& record : steps_) {
        for (const Gap& gap : gapsOf(record)) {
            for (std::size_t state = 0; state < statesOfAGap(); ++state) {
                const std::size_t back = state % 2 * random_() % (gap.end - gap.begin + 1);
                const std::size_t count = gap.end - back;
                expectOldOrNew(record, count, cutPower(*recording_, count, random_));
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

// Guards the scenario, not the engine: it must go on crossing the limit that it is there for.
TEST(LargeFileScenario, NeedsTheFirstSectorOfTheAllocationSectorList) {
    MemoryDisk disk;
    prepareLibrary(disk, compound::SectorSize::Bytes512);
    const Scenario& scenario = scenarios().back();
    const store::Library library = libraryOn(disk);
    scenario.prepare(library);
    constexpr std::size_t kListSectors = 72; // offset of their number in the header, [MS-CFB] 2.2
    const auto listSectors = [&] { return disk.content("/library/Pumps.stg")[kListSectors]; };
    EXPECT_EQ(listSectors(), std::byte{0});
    scenario.steps.front().run(library);
    EXPECT_EQ(listSectors(), std::byte{1});
}

// So must this one: a second transaction follows each of its operations.
TEST(ChangeManyScenario, ClosesTheGapsBehindEachOperation) {
    constexpr std::size_t kSignature = 52; // offset of what counts transactions, [MS-CFB] 2.2
    for (const auto sectorSize :
         {compound::SectorSize::Bytes4096, compound::SectorSize::Bytes512}) {
        MemoryDisk disk;
        prepareLibrary(disk, sectorSize);
        const store::Library library = libraryOn(disk);
        changesOfMany().prepare(library);
        const auto signature = [&] {
            return std::to_integer<int>(disk.content("/library/Pumps.stg")[kSignature]);
        };
        for (const Step& step : changesOfMany().steps) {
            const int before = signature();
            step.run(library);
            EXPECT_GE(signature(), before + 2) << step.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Store, PowerCut, everyScenario(), nameOf);

} // namespace
} // namespace crash
