#include "crash/scenarios.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "crash/library_dump.h"
#include "store/damaged_groups.h"
#include "store/group_import.h"
#include "store/group_in_the_making.h"
#include "store/group_layout.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"
#include "store/picture_passage.h"
#include "store/pictures_from_files.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>

namespace crash {
namespace {

using store::GroupAddress;
using store::IfPictureExists;
using store::Library;

const GroupAddress kPumps = store::topLevelAddress(u"Pumps");
const GroupAddress kRotary = store::addressOf(u"Sub1/Pumps");
const GroupAddress kSteel = store::addressOf(u"Sub2/Pumps");

// Sources are named after their size; their bytes tell one from another.
std::filesystem::path sourceOf(std::size_t size) {
    return std::filesystem::path(kSourceFolder) / (std::to_string(size) + ".bmp");
}

constexpr std::size_t kSourceSizes[] = {7, 63, 64, 65, 700, 4095, 4096, 4097, 9000, 30000};
constexpr std::size_t kPanelSizes[] = {29000, 28000}; // many of which make a large change

void writeFile(compound::Disk& disk, const std::filesystem::path& path, std::string_view bytes) {
    disk.create(path)->write(0, std::as_bytes(std::span(bytes)));
}

void writeSource(compound::Disk& disk, std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; bytes.size() < size; ++i) {
        bytes += "picture of " + std::to_string(size) + ", part " + std::to_string(i) + "; ";
    }
    bytes.resize(size);
    writeFile(disk, sourceOf(size), bytes);
}

void writeSources(compound::Disk& disk) {
    for (const std::size_t size : kSourceSizes) {
        writeSource(disk, size);
    }
    for (const std::size_t size : kPanelSizes) {
        writeSource(disk, size);
    }
    writeFile(disk, std::filesystem::path(kSourceFolder) / "broken.bmp", "broken");
}

void add(const Library& library, const GroupAddress& group, std::u16string_view name,
         std::size_t size) {
    store::addPicture(library, group, {std::u16string(name)}, sourceOf(size));
}

std::u16string numbered(std::u16string_view name, std::size_t number) {
    return std::u16string(name) + base::fromUtf8(std::to_string(number));
}

void addBatch(const Library& library, const GroupAddress& group, std::size_t count) {
    store::PictureBatch batch(library, group);
    for (std::size_t i = 0; i < count; ++i) {
        batch.add({numbered(u"part ", i)}, sourceOf(kSourceSizes[i % std::size(kSourceSizes)]),
                  IfPictureExists::Refuse);
    }
    batch.commit();
}

// A batch whose last file is no picture: nothing of it may be seen, ever.
void addFailingBatch(const Library& library, const GroupAddress& group) {
    store::PictureBatch batch(library, group);
    for (std::size_t i = 0; i < 5; ++i) {
        batch.add({numbered(u"lost ", i)}, sourceOf(9000), IfPictureExists::Refuse);
    }
    try {
        batch.add({u"broken"}, std::filesystem::path(kSourceFolder) / "broken.bmp",
                  IfPictureExists::Refuse);
    } catch (const compound::Error&) {
        return;
    }
    throw std::logic_error("a broken picture was taken");
}

Step told(Step step) {
    step.isTold = true;
    return step;
}

std::vector<Scenario> groupScenarios() {
    return {
        {"CreateGroups",
         {{"create a top-level group",
           [](const Library& library) { store::createGroup(library, std::nullopt, {u"Tanks"}); }},
          {"create a sub-group",
           [](const Library& library) { store::createGroup(library, kPumps, {u"Screw"}); }},
          {"create one two deep",
           [](const Library& library) { store::createGroup(library, kRotary, {u"Bronze"}); }},
          {"create one in place of another",
           [](const Library& library) {
               store::createGroup(library, std::nullopt, {u"Valves"}, store::IfTaken::Replace);
           }}}},
        {"RenameSubGroup",
         {{"rename a sub-group",
           [](const Library& library) { store::renameGroup(library, kRotary, {u"Vane"}); }},
          {"rename it to a longer name",
           [](const Library& library) {
               store::renameGroup(library, kRotary, {u"Centrifugal, single stage"});
           }}}},
        {"RenameTopLevelGroup",
         {{"rename",
           [](const Library& library) { store::renameGroup(library, kPumps, {u"Machines"}); },
           Outcome::OldNewOrBoth},
          {"add to the new file",
           [](const Library& library) {
               add(library, store::topLevelAddress(u"Machines"), u"after", 4097);
           }},
          {"change the case of its name only",
           [](const Library& library) {
               store::renameGroup(library, store::topLevelAddress(u"Machines"), {u"MACHINES"});
           },
           Outcome::OldNewOrBoth}}},
        {"DeleteGroupTree",
         {{"delete a group and the one below it",
           [](const Library& library) { store::deleteGroup(library, kRotary); }},
          {"reuse the space",
           [](const Library& library) { add(library, kPumps, u"new", 30000); }}}},
        {"RemoveGroupFile",
         {{"move a file to the trash",
           [](const Library& library) { store::removeGroupFile(library, {u"Pumps"}); }},
          {"make a group of the same name",
           [](const Library& library) { store::createGroup(library, std::nullopt, {u"Pumps"}); }}}},
        {"Compact",
         {{"make gaps",
           [](const Library& library) { store::deletePicture(library, kSteel, {u"sheet"}); }},
          {"compact",
           [](const Library& library) {
               store::compactGroupFile(library, store::pathOf(library, {u"Pumps"}));
           }},
          {"add", [](const Library& library) { add(library, kSteel, u"sheet", 700); }}}},
        {"SetAside",
         {{"set a damaged file aside, an older one being there",
           [](const Library& library) { store::setAside(library, {u"Broken"}); }},
          told({"clear away what is set aside",
                [](const Library& library) { store::removeDamagedFiles(library); }})}},
    };
}

std::vector<std::filesystem::path> sources() {
    std::vector<std::filesystem::path> paths{std::filesystem::path(kSourceFolder) / "broken.bmp"};
    for (const std::size_t size : kSourceSizes) {
        paths.push_back(sourceOf(size));
    }
    return paths;
}

// A group file in no library, with a group two deep.
void makeImported(const Library& library) {
    Library elsewhere = library;
    elsewhere.folder = kElsewhereFolder;
    const GroupAddress tanks = store::createGroup(elsewhere, std::nullopt, {u"Tanks"});
    const GroupAddress steel = store::createGroup(elsewhere, tanks, {u"Stainless"});
    add(elsewhere, tanks, u"tank", 4097);
    add(elsewhere, steel, u"weld", 65);
    add(elsewhere, store::createGroup(elsewhere, steel, {u"Bolted"}), u"bolts", 9000);
}

Scenario importScenario() {
    const std::filesystem::path elsewhere = kElsewhereFolder;
    const std::filesystem::path tanks = elsewhere / "Tanks.stg";
    const auto merge = [tanks](const Library& library) {
        store::mergeGroupFile(library, kRotary, tanks);
    };
    return {
        "ImportAndExport",
        {{"import as a top-level group",
          [tanks](const Library& library) { store::importGroupFile(library, tanks); }},
         told({"merge two deep",
               merge,
               Outcome::OldOrNew,
               {"Pumps.stg", "/elsewhere/Tanks.stg.bak", "/elsewhere/Tanks.stg"}}),
         told({"merge it again, renumbered",
               [tanks](const Library& library) { store::mergeGroupFile(library, kPumps, tanks); }}),
         {"merge a file of the library",
          [](const Library& library) {
              store::mergeGroupFile(library, kSteel, store::pathOf(library, {u"Valves"}));
          }},
         {"export a group",
          [elsewhere](const Library& library) {
              store::exportGroup(library, kRotary, elsewhere / "Rotary.stg");
          }},
         {"export a whole file in its place", [elsewhere](const Library& library) {
              store::exportGroup(library, kPumps, elsewhere / "Rotary.stg",
                                 store::IfTaken::Replace);
          }}}};
}

Scenario fillScenario() {
    return {"GroupsFromFiles",
            {told({"a sub-group of files",
                   [](const Library& library) {
                       store::createGroupFromFiles(library, kRotary, {u"Many"}, sources());
                   }}),
             told({"a top-level group of files",
                   [](const Library& library) {
                       store::createGroupFromFiles(library, std::nullopt, {u"Many"}, sources());
                   }}),
             told({"add files to a group",
                   [](const Library& library) {
                       store::addFiles(library, kSteel, sources(), IfPictureExists::Replace);
                   }}),
             {"a top-level group in place of another", [](const Library& library) {
                  store::GroupInTheMaking group(library, std::nullopt, {u"Valves"},
                                                store::IfTaken::Replace);
                  group.add({u"gate"}, store::readPictureSource(library, sourceOf(9000)));
                  group.commit();
              }}}};
}

// Killed in the middle of a move, and with an unfinished file.
void leaveThingsBehind(const Library& library) {
    auto& disk = dynamic_cast<MemoryDisk&>(library.disk);
    bool isKilled = false;
    disk.setInterceptor([&](MemoryDisk::Call call) {
        isKilled = isKilled || call == MemoryDisk::Call::SyncFolder;
        if (isKilled) {
            throw compound::Error(compound::ErrorCode::Failed, {}, "killed");
        }
    });
    try {
        store::renameGroup(library, store::topLevelAddress(u"Valves"), {u"Fittings"});
    } catch (const compound::Error&) {
        disk.setInterceptor({});
    }
    writeFile(disk, std::filesystem::path(kLibraryFolder) / ".txs-0123456789abcdef.new", "");
}

void readEverything(const Library& library) {
    for (const GroupAddress& group : {kPumps, kRotary, kSteel}) {
        for (const store::PictureEntry& picture : store::listPictures(library, group)) {
            store::readPicture(library, group, picture.name);
        }
        store::readGroupSize(library, group);
        store::listPictureNames(library, group);
    }
}

std::vector<Scenario> otherScenarios() {
    Scenario leftovers{"Leftovers",
                       {told({"clear what a killed program has left",
                              [](const Library& library) { store::groupFiles(library); },
                              Outcome::OldNewOrBoth})}};
    leftovers.prepare = leaveThingsBehind;
    return {std::move(leftovers),
            {"Reading",
             {{"read everything", readEverything},
              {"write a picture to a file", [](const Library& library) {
                   store::exportPicture(library, kSteel, {u"sheet"}, kElsewhereFolder, "copy");
               }}}}};
}

// Gives nothing back.
class TrashOfDisk final : public compound::Trash {
  public:
    explicit TrashOfDisk(compound::Disk& disk) : disk_(disk) {}
    std::filesystem::path stagingFolder() const override { return kSourceFolder; }
    std::filesystem::path moveThere(const std::filesystem::path& file) override {
        disk_.trash(file);
        return {};
    }
    void takeBack(const std::filesystem::path& trashed, const std::filesystem::path&) override {
        throw compound::Error(compound::ErrorCode::NotFound, trashed, "nobody knows where it is");
    }

  private:
    compound::Disk& disk_;
};

const std::vector<store::PassingPicture> kPassing{{{u"pump"}}, {{u"drawing"}}, {{u"sheet"}}};

// A picture on its way to another file is in the first one, in the other one or in both.
Scenario passageScenario() {
    const GroupAddress valves = store::topLevelAddress(u"Valves");
    return {"PicturesBetweenGroups",
            {{"copy to another file",
              [valves](const Library& library) {
                  store::passPictures(library, kPumps, valves, kPassing, store::PassageKind::Copy);
              }},
             {"move within a file",
              [](const Library& library) {
                  store::passPictures(library, kSteel, kRotary, kPassing, store::PassageKind::Move);
              }},
             {"move to another file",
              [valves](const Library& library) {
                  store::passPictures(library, kPumps, valves, kPassing, store::PassageKind::Move);
              },
              Outcome::OldOrNew,
              {"Valves.stg", "Pumps.stg"},
              true},
             {"delete several", [valves](const Library& library) {
                  TrashOfDisk trash(library.disk);
                  const std::vector<store::PictureName> names{{u"pump"}, {u"ball valve"}};
                  store::deletePictures(library, valves, names, &trash);
              }}}};
}

std::vector<Scenario> pictureScenarios() {
    return {
        {"AddPictures",
         {{"add a small one", [](const Library& library) { add(library, kPumps, u"tiny", 7); }},
          {"add a large one", [](const Library& library) { add(library, kRotary, u"big", 30000); }},
          {"add one at the mini stream's limit",
           [](const Library& library) { add(library, kSteel, u"limit", 4096); }}}},
        {"ReplacePictures",
         {{"replace by a larger one",
           [](const Library& library) { add(library, kPumps, u"pump", 30000); }},
          {"replace by a smaller one",
           [](const Library& library) { add(library, kPumps, u"pump", 63); }},
          {"replace by one of the same size",
           [](const Library& library) { add(library, kPumps, u"drawing", 4095); }}}},
        {"Batches",
         {{"add many at once", [](const Library& library) { addBatch(library, kSteel, 40); }},
          {"fail at the last", [](const Library& library) { addFailingBatch(library, kPumps); }},
          {"add many more", [](const Library& library) { addBatch(library, kRotary, 12); }}}},
        {"RenamePictures",
         {{"rename",
           [](const Library& library) {
               store::renamePicture(library, kPumps, {u"pump"}, {u"a much longer name"});
           }},
          {"change the case only",
           [](const Library& library) {
               store::renamePicture(library, kPumps, {u"drawing"}, {u"DRAWING"});
           }}}},
        {"DeletePictures",
         {{"delete a large one, so that the file is cut",
           [](const Library& library) { store::deletePicture(library, kSteel, {u"sheet"}); }},
          {"delete a small one",
           [](const Library& library) { store::deletePicture(library, kPumps, {u"pump"}); }},
          {"add again", [](const Library& library) { add(library, kPumps, u"pump", 4097); }}}},
    };
}

// Deletions that leave room behind; once it is a good deal, what lies at the end moves there.
Scenario gapScenario() {
    const auto remove = [](std::size_t number) {
        return [number](const Library& library) {
            store::deletePicture(library, kSteel, {numbered(u"panel ", number)});
        };
    };
    Scenario scenario{"CloseGaps",
                      {{"leave a gap", remove(0)},
                       {"leave another one", remove(1)},
                       {"close them with what lies at the end", remove(2)},
                       {"close one of several with a part of a picture", remove(4)},
                       {"add in what is left",
                        [](const Library& library) { add(library, kSteel, u"after", 4097); }}}};
    scenario.prepare = [](const Library& library) {
        for (std::size_t i = 0; i < 8; ++i) {
            add(library, kSteel, numbered(u"panel ", i), 30000);
        }
    };
    return scenario;
}

constexpr char kChangesOfMany[] = "ChangeMany";

// Each is followed by a transaction that closes the gaps that it leaves.
Scenario manyScenario() {
    constexpr std::size_t kPanels = 12;
    const auto putAll = [](std::size_t size) {
        return [size](const Library& library) {
            store::PictureBatch batch(library, kSteel);
            for (std::size_t i = 0; i < kPanels; ++i) {
                batch.add({numbered(u"panel ", i)}, sourceOf(size), IfPictureExists::Replace);
            }
            batch.commit();
        };
    };
    const auto removeMost = [](const Library& library) {
        std::vector<store::PictureName> names;
        for (std::size_t i = 0; i + 2 < kPanels; ++i) {
            names.push_back({numbered(u"panel ", i)});
        }
        store::deletePictures(library, kSteel, names, nullptr);
    };
    Scenario scenario{kChangesOfMany,
                      {{"replace many", putAll(kPanelSizes[1])}, {"delete most", removeMost}}};
    scenario.prepare = putAll(kPanelSizes[0]);
    return scenario;
}

// Past 109 allocation sectors of a file with 512-byte sectors, and past the first one of a file
// with 4096-byte sectors.
Scenario largeFileScenario() {
    // Nearly fills the 109 allocation sectors that the header lists; the second needs more of them.
    static constexpr std::size_t kHuge = 6880000;
    static constexpr std::size_t kBeyond = 250000;
    Scenario scenario{"LargeFile",
                      {{"add beyond the header's list of allocation sectors",
                        [](const Library& library) { add(library, kSteel, u"beyond", kBeyond); }},
                       {"delete it", [](const Library& library) {
                            store::deletePicture(library, kSteel, {u"beyond"});
                        }}}};
    scenario.prepare = [](const Library& library) {
        writeSource(library.disk, kHuge);
        writeSource(library.disk, kBeyond);
        add(library, kSteel, u"huge", kHuge);
    };
    return scenario;
}

std::vector<Scenario> allScenarios() {
    std::vector<Scenario> all = groupScenarios();
    all.push_back(importScenario());
    all.push_back(fillScenario());
    for (Scenario& scenario : otherScenarios()) {
        all.push_back(std::move(scenario));
    }
    all.push_back(passageScenario());
    for (Scenario& scenario : pictureScenarios()) {
        all.push_back(std::move(scenario));
    }
    all.push_back(gapScenario());
    all.push_back(manyScenario());
    all.push_back(largeFileScenario());
    return all;
}

// All but those of the large file, whose sources are not there, and those that have chains of their
// own.
std::vector<Step> allCommands() {
    std::vector<Step> commands;
    for (const Scenario& scenario : scenarios()) {
        if (&scenario != &scenarios().back() && &scenario != &changesOfMany()) {
            commands.insert(commands.end(), scenario.steps.begin(), scenario.steps.end());
        }
    }
    return commands;
}

void makeEmptyGroupFile(const Library& library, const GroupAddress& group,
                        compound::SectorSize sectorSize) {
    auto file = compound::CompoundFile::create(
        library.disk.create(store::pathOf(library, group.file)), sectorSize);
    store::createGroupPair(store::StorageHandle(file.root()), group.storage, store::kNoParent,
                           group.storage.text);
    file.commit();
}

} // namespace

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all = allScenarios();
    return all;
}

const Scenario& changesOfMany() {
    return *std::find_if(scenarios().begin(), scenarios().end(),
                         [](const Scenario& scenario) { return scenario.name == kChangesOfMany; });
}

bool isOnTheWay(const Step& step, const LibraryDump& before, const LibraryDump& after,
                const LibraryDump& dump) {
    if (dump == before || dump == after) {
        return true;
    }
    LibraryDump both = before;
    both.insert(after.begin(), after.end());
    if (step.outcome == Outcome::OldNewOrBoth && dump == both) {
        return true;
    }
    // Some of the step's files are new already, in the order in which they become it.
    LibraryDump reached = before;
    return std::any_of(step.order.begin(), step.order.end(), [&](const std::string& file) {
        reached[file] = after.at(file);
        return dump == reached;
    });
}

std::string nameOf(const ::testing::TestParamInfo<ScenarioOnSectors>& info) {
    const auto [scenario, sectorSize] = info.param;
    return scenarios()[scenario].name +
           (sectorSize == compound::SectorSize::Bytes512 ? "512" : "4096");
}

const std::vector<Step>& commands() {
    static const std::vector<Step> all = allCommands();
    return all;
}

void prepareLibrary(compound::Disk& disk, compound::SectorSize sectorSize) {
    for (const std::filesystem::path& folder : recordedFolders()) {
        dynamic_cast<MemoryDisk&>(disk).makeFolder(folder);
    }
    dynamic_cast<MemoryDisk&>(disk).makeFolder(kSourceFolder);
    writeSources(disk);
    const Library library = libraryOn(disk);
    makeEmptyGroupFile(library, kPumps, sectorSize);
    store::createGroup(library, kPumps, {u"Rotary"});
    store::createGroup(library, kRotary, {u"Steel"});
    store::createGroup(library, std::nullopt, {u"Valves"});
    add(library, kPumps, u"pump", 700);
    add(library, kPumps, u"drawing", 4095);
    add(library, kRotary, u"impeller", 9000);
    add(library, kSteel, u"bolt", 64);
    add(library, kSteel, u"sheet", 30000);
    add(library, store::topLevelAddress(u"Valves"), u"ball valve", 65);
    makeImported(library);
    const std::filesystem::path folder = kLibraryFolder;
    writeFile(disk, folder / "Broken.stg", "this is no group file");
    writeFile(disk, folder / "Broken.err", "an older one");
}

} // namespace crash
