// The store operations whose power is cut.
#pragma once

#include "compound/compound_file.h"
#include "store/library.h"

#include <functional>
#include <string>
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
        {}; // the files (as in the dump) of a step that changes several
};

struct Scenario {
    std::string name; // letters only, part of the test's name
    std::vector<Step> steps;
    std::function<void(const store::Library&)> prepare = nullptr; // not recorded
    std::size_t weight = 1; // how many times fewer states there is time for
};

const std::vector<Scenario>& scenarios();

// Commands that can be run in any order, each on whatever the others have left.
const std::vector<Step>& commands();

// The library that every scenario begins with: the groups Pumps (with sub-groups two deep) and
// Valves, pictures from a few bytes to some sectors, and a damaged file Broken.stg. `sectorSize` is
// that of Pumps.stg. The sources to be added lie in kSourceFolder.
void prepareLibrary(compound::Disk& disk, compound::SectorSize sectorSize);

} // namespace crash
