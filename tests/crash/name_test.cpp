// A command that gives a file its name, killed somewhere; another program that changes what it
// finds; and a power cut that takes all that nobody has synced. What the second one has done must
// not go with the name that the first one did not make durable.
#include "base/utf8.h"
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "crash/library_dump.h"
#include "crash/power_cut.h"
#include "crash/scenarios.h"
#include "store/group_layout.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace crash {
namespace {

using store::Library;

// Adds a picture to every top-level group that there is.
std::vector<std::string> addEverywhere(const Library& library) {
    std::vector<std::string> files;
    for (const store::FileName& file : store::groupFiles(library)) {
        const std::string name = base::toUtf8(file.text);
        if (name != "Broken") {
            store::addPicture(library, store::topLevelAddress(file.text), {u"added"},
                              std::filesystem::path(kSourceFolder) / "700.bmp");
            files.push_back(name + ".stg");
        }
    }
    return files;
}

// Whether the command came to its end before `changes` changes.
bool isDoneBefore(std::size_t changes, const std::function<void(const Library&)>& command) {
    MemoryDisk memory;
    prepareLibrary(memory, compound::SectorSize::Bytes4096);
    RecordingDisk recording(memory, recordedFolders());
    recording.breakAfter(Breakage::Killed, changes);
    bool isDone = true;
    try {
        command(libraryOn(recording));
    } catch (const compound::Error&) {
        isDone = false;
    }
    recording.mend();
    const std::vector<std::string> files = addEverywhere(libraryOn(recording));
    const auto lost = [](std::size_t) { return Fate::Lost; };
    LibraryDump left = dumpOf(cutPower(recording, recording.events().size(), lost, {}));
    for (const std::string& file : files) {
        EXPECT_NE(left[file].find("  added 700 bytes"), std::string::npos)
            << file << ", killed after change " << changes << "\n"
            << left[file];
    }
    return isDone;
}

TEST(NameTest, WhatIsAddedToAFileStaysThere) {
    const std::vector<std::function<void(const Library&)>> commands{
        [](const Library& library) { store::createGroup(library, std::nullopt, {u"Tanks"}); },
        [](const Library& library) {
            store::createGroup(library, std::nullopt, {u"Valves"}, store::IfTaken::Replace);
        },
        [](const Library& library) {
            store::renameGroup(library, store::topLevelAddress(u"Pumps"), {u"Machines"});
        },
        [](const Library& library) {
            store::renameGroup(library, store::topLevelAddress(u"Pumps"), {u"PUMPS"});
        },
        [](const Library& library) {
            store::compactGroupFile(library, store::pathOf(library, {u"Pumps"}));
        }};
    for (const auto& command : commands) {
        for (std::size_t changes = 0; !isDoneBefore(changes, command); ++changes) {
            ASSERT_LT(changes, 200U);
        }
    }
}

// The listing of the library that finishes a move has no word from who began it that the new name
// is durable.
TEST(NameTest, AMoveThatAnotherProgramFinishesLosesNothing) {
    bool isDone = false;
    for (std::size_t changes = 0; !isDone; ++changes) {
        MemoryDisk memory;
        prepareLibrary(memory, compound::SectorSize::Bytes4096);
        RecordingDisk recording(memory, recordedFolders());
        recording.breakAfter(Breakage::Killed, changes);
        isDone = true;
        try {
            store::renameGroup(libraryOn(recording), store::topLevelAddress(u"Pumps"),
                               {u"Machines"});
        } catch (const compound::Error&) {
            isDone = false;
        }
        recording.mend();
        store::groupFiles(libraryOn(recording));
        for (std::size_t lost = 0; lost < recording.events().size(); ++lost) {
            for (std::size_t count = lost + 1; count <= recording.events().size(); ++count) {
                const auto fate = [&](std::size_t at) {
                    return at == lost ? Fate::Lost : Fate::Reached;
                };
                LibraryDump left = dumpOf(cutPower(recording, count, fate, {}));
                EXPECT_NE((left["Pumps.stg"] + left["Machines.stg"]).find("  impeller 9000 bytes"),
                          std::string::npos)
                    << "killed after change " << changes << ", cut after " << count << " without "
                    << lost;
            }
        }
    }
}

} // namespace
} // namespace crash
