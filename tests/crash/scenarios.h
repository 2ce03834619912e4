// The store operations: all of them, for every kind of trouble.
#pragma once

#include "compound/compound_file.h"
#include "crash/library_dump.h"
#include "store/library.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

namespace crash {

// What a cut inside a step may leave: the library before or after it, or (for a file that moves to
// another name) both files, each whole.
enum class Outcome { OldOrNew, OldNewOrBoth };

struct Step {
    std::string name;
    std::function<void(const store::Library&)> run;
    Outcome outcome = Outcome::OldOrNew;
    std::vector<std::string> order =
        {};              // the files (as in the dump) of a step that changes several
    bool isTold = false; // what fails may be told in the result, and the rest done
};

struct Scenario {
    std::string name; // letters only, part of the test's name
    std::vector<Step> steps;
    std::function<void(const store::Library&)> prepare = nullptr; // not recorded
};

const std::vector<Scenario>& scenarios();

// The one of them whose operations change so much that another transaction follows each.
const Scenario& changesOfMany();

// For parametrised tests: a scenario's index, and the sectors of its file.
using ScenarioOnSectors = std::tuple<std::size_t, compound::SectorSize>;

inline auto everyScenario() {
    return ::testing::Combine(
        ::testing::Range(std::size_t{0}, scenarios().size()),
        ::testing::Values(compound::SectorSize::Bytes4096, compound::SectorSize::Bytes512));
}

std::string nameOf(const ::testing::TestParamInfo<ScenarioOnSectors>& info);

// Whether a library is as before the step, or on the way to what is after it, as the step allows.
bool isOnTheWay(const Step& step, const LibraryDump& before, const LibraryDump& after,
                const LibraryDump& dump);

// The steps of the other scenarios, each to be run on whatever others have left.
const std::vector<Step>& commands();

// The library that every scenario begins with: the groups Pumps (with sub-groups two deep) and
// Valves, pictures from a few bytes to some sectors, and a damaged file Broken.stg. `sectorSize` is
// that of Pumps.stg. The sources to be added lie in kSourceFolder.
void prepareLibrary(compound::Disk& disk, compound::SectorSize sectorSize);

} // namespace crash
