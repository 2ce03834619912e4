// After a power cut at any moment every group opens as before or after the change.
#include "base/utf8.h"
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "crash/library_dump.h"
#include "crash/power_cut.h"
#include "crash/random_states.h"
#include "crash/scenarios.h"
#include "store/picture_operations.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <tuple>
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

class PowerCut : public ::testing::TestWithParam<std::tuple<std::size_t, compound::SectorSize>> {
  protected:
    void SetUp() override {
        const auto [index, sectorSize] = GetParam();
        const Scenario& scenario = scenarios()[index];
        prepareLibrary(memory_, sectorSize);
        if (scenario.prepare) {
            scenario.prepare(libraryOn(memory_));
        }
        recording_ = std::make_unique<RecordingDisk>(memory_, recordedFolders());
        for (const Step& step : scenario.steps) {
            runStep(step);
        }
    }

    void runStep(const Step& step) {
        StepRecord record{&step, recording_->events().size(), 0, dumpOf(mediumOf(memory_)), {}};
        step.run(libraryOn(*recording_));
        record.endEvent = recording_->events().size();
        record.after = dumpOf(mediumOf(memory_));
        steps_.push_back(std::move(record));
    }

    // Cuts the power after `count` events, of which those of the last step begin inside `record`.
    void expectOldOrNew(const StepRecord& record, std::size_t count, const ChooseFate& fateOf) {
        const Medium medium =
            cutPower(*recording_, count, fateOf, [this] { return random_() % 2 == 0; });
        const LibraryDump dump = dumpOf(medium);
        const LibraryDump old = withoutTrashed(record.before, medium);
        const bool isDone = count == record.endEvent;
        const bool isAllowed =
            dump == record.after || (!isDone && dump == old) ||
            (!isDone && record.step->outcome == Outcome::OldNewOrBoth && dump == bothOf(record)) ||
            (!isDone && isOneAfterTheOther(record, dump));
        ASSERT_TRUE(isAllowed) << record.step->name << ", cut after event "
                               << count - record.firstEvent << " of "
                               << record.endEvent - record.firstEvent
                               << "\nagainst the new state:\n"
                               << difference(record.after, dump) << "\nagainst the old one:\n"
                               << difference(old, dump);
        if (++states_ % kAddEvery == 0) {
            expectAddWorks(medium);
        }
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

    // Whether some of the step's files are new already, in the order in which they become it.
    static bool isOneAfterTheOther(const StepRecord& record, const LibraryDump& dump) {
        LibraryDump reached = record.before;
        for (const std::string& file : record.step->order) {
            reached[file] = record.after.at(file);
            if (dump == reached) {
                return true;
            }
        }
        return false;
    }

    static LibraryDump bothOf(const StepRecord& record) {
        LibraryDump both = record.before;
        both.insert(record.after.begin(), record.after.end());
        return both;
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
            expectOldOrNew(record, count, [](std::size_t) { return Fate::Reached; });
            expectOldOrNew(record, count, [](std::size_t) { return Fate::Lost; });
            expectOldOrNew(record, count, [&](std::size_t event) {
                return event + 1 == count ? Fate::Torn : Fate::Reached;
            });
            expectOldOrNew(record, count, [&](std::size_t event) {
                return event + 2 == count ? Fate::Lost : Fate::Reached;
            });
        }
    }
}

TEST_P(PowerCut, WithAnyPartOfWhatWasNotSyncedLeavesTheOldOrTheNewState) {
    const std::size_t weight = scenarios()[std::get<0>(GetParam())].weight;
    const std::size_t share = randomStates() / (scenarios().size() * 2 * weight);
    for (std::size_t state = 0; state < share; ++state) {
        const StepRecord& record = steps_[random_() % steps_.size()];
        const std::size_t events = record.endEvent - record.firstEvent;
        const std::size_t count = record.firstEvent + random_() % (events + 1);
        const std::size_t lost = random_() % 101; // percent
        const std::size_t torn = random_() % 101; // percent of the rest
        expectOldOrNew(record, count, [&](std::size_t) {
            if (random_() % 100 < lost) {
                return Fate::Lost;
            }
            return random_() % 100 < torn ? Fate::Torn : Fate::Reached;
        });
        if (HasFatalFailure()) {
            return;
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

std::string nameOf(const ::testing::TestParamInfo<PowerCut::ParamType>& info) {
    const auto [scenario, sectorSize] = info.param;
    return scenarios()[scenario].name +
           (sectorSize == compound::SectorSize::Bytes512 ? "512" : "4096");
}

INSTANTIATE_TEST_SUITE_P(Store, PowerCut,
                         ::testing::Combine(::testing::Range(std::size_t{0}, scenarios().size()),
                                            ::testing::Values(compound::SectorSize::Bytes4096,
                                                              compound::SectorSize::Bytes512)),
                         nameOf);

} // namespace
} // namespace crash
