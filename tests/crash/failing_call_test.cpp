// Every call to the disk of every operation fails once, or all from it on, or the disk is full from
// then on: the library is as it was (as it shall be, where the operation tells that nobody knows),
// nothing is left behind, and the same operation succeeds afterwards in the same process.
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "crash/library_dump.h"
#include "crash/scenarios.h"
#include "crash/states.h"
#include "store/leftovers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace crash {
namespace {

using compound::Error;
using compound::ErrorCode;
using Call = MemoryDisk::Call;

enum class Trouble : std::uint8_t { OneError, ShortWrite, AllErrors, FullDisk };

constexpr Trouble kTroubles[] = {Trouble::OneError, Trouble::ShortWrite, Trouble::AllErrors,
                                 Trouble::FullDisk};
constexpr const char* kNames[] = {"one error", "a short write", "errors from then on",
                                  "a full disk from then on"};

// Breaks the disk at the n-th call that the trouble can meet, until it goes.
class BrokenDisk {
  public:
    BrokenDisk(MemoryDisk& disk, Trouble trouble, std::size_t call)
        : disk_(disk), trouble_(trouble), call_(call) {
        disk_.setTearsWrites(trouble != Trouble::OneError);
        disk_.setInterceptor([this](Call kind) { meet(kind); });
    }
    ~BrokenDisk() {
        disk_.setInterceptor({});
        disk_.setTearsWrites(false);
        disk_.setCapacity(std::nullopt);
    }
    BrokenDisk(const BrokenDisk&) = delete;
    BrokenDisk& operator=(const BrokenDisk&) = delete;

    bool isMet() const { return met_ > call_; }

  private:
    void meet(Call kind) {
        const bool isOfWrites = trouble_ == Trouble::ShortWrite || trouble_ == Trouble::FullDisk;
        if (isOfWrites && kind != Call::Write) {
            return;
        }
        const std::size_t now = met_++;
        if (now < call_ || (now > call_ && trouble_ != Trouble::AllErrors)) {
            return;
        }
        if (trouble_ == Trouble::FullDisk) {
            disk_.setCapacity(disk_.placed());
            return;
        }
        throw Error(isOfWrites ? ErrorCode::NoSpace : ErrorCode::Failed, {}, "told to fail");
    }

    MemoryDisk& disk_;
    Trouble trouble_;
    std::size_t call_;
    std::size_t met_ = 0;
};

// A library: what it holds, and what files there are, of which size.
struct View {
    LibraryDump dump;
    std::map<std::filesystem::path, std::size_t> files;
    std::vector<std::filesystem::path> trashed;
};

View viewOf(MemoryDisk& disk) {
    const Medium medium = mediumOf(disk);
    View view{dumpOf(medium), {}, disk.trashed()};
    for (const auto& [path, bytes] : medium.files) {
        view.files.emplace(path, bytes.size());
    }
    return view;
}

class FailingCall : public ::testing::TestWithParam<ScenarioOnSectors> {
  protected:
    void SetUp() override {
        const auto [index, sectorSize] = GetParam();
        prepareLibrary(before_, sectorSize);
        if (scenarios()[index].prepare) {
            scenarios()[index].prepare(libraryOn(before_));
        }
    }

    // Tries every call of the step, then does it.
    void tryAndDo(const Step& step) {
        old_ = viewOf(before_);
        MemoryDisk done;
        done.copyFilesOf(before_);
        step.run(libraryOn(done));
        new_ = viewOf(done);
        // A sample starts with another call for every step.
        const std::size_t stride = std::max<std::size_t>(1, 64 / statesOfAGap());
        for (const Trouble trouble : kTroubles) {
            std::size_t call = started_++ % stride;
            while (tryCall(step, trouble, call) && !HasFailure()) {
                call += stride;
            }
        }
        before_.copyFilesOf(done);
    }

    // False when the step has fewer calls.
    bool tryCall(const Step& step, Trouble trouble, std::size_t call) {
        SCOPED_TRACE(step.name + ", " + kNames[static_cast<std::size_t>(trouble)] + " at call " +
                     std::to_string(call));
        MemoryDisk disk;
        disk.copyFilesOf(before_);
        const store::Library library = libraryOn(disk);
        std::optional<Error> failure;
        bool isMet = false;
        {
            const BrokenDisk broken(disk, trouble, call);
            try {
                step.run(library);
            } catch (const Error& error) {
                failure = error;
            }
            isMet = broken.isMet();
        }
        countStates(Kind::FailingCall, step.name);
        expectOldOrNew(step, trouble, failure, viewOf(disk));
        expectDoneAgain(step, library, disk);
        return isMet;
    }

    void expectOldOrNew(const Step& step, Trouble trouble, const std::optional<Error>& failure,
                        const View& now) const {
        const bool isSpace = trouble == Trouble::ShortWrite || trouble == Trouble::FullDisk;
        const LibraryDump old = oldWithout(now.trashed);
        if (!failure) {
            EXPECT_TRUE(now.dump == new_.dump || (step.isTold && isAtMostNew(step, now.dump)))
                << difference(new_.dump, now.dump);
            return;
        }
        SCOPED_TRACE(failure->what());
        // A move cannot be taken back on a disk that stays away.
        const bool isUnderWay =
            trouble == Trouble::AllErrors && step.outcome == Outcome::OldNewOrBoth;
        if (failure->code() == ErrorCode::OutcomeUnknown || isUnderWay || step.isTold) {
            EXPECT_TRUE(isOnTheWay(step, old, new_.dump, now.dump)) << difference(old, now.dump);
        } else {
            EXPECT_EQ(failure->code(), isSpace ? ErrorCode::NoSpace : ErrorCode::Failed);
            EXPECT_TRUE(now.dump == old) << difference(old, now.dump);
            EXPECT_TRUE(trouble == Trouble::AllErrors || old != old_.dump ||
                        sizesOf(now) == sizesOf(old_))
                << "a file has grown";
            EXPECT_TRUE(trouble == Trouble::AllErrors || now.files.size() <= old_.files.size())
                << "a file is left";
        }
        expectToldOfTrash(failure->cause(), now);
    }

    // Who misses a group that was to be replaced learns where it is.
    void expectToldOfTrash(const std::string& cause, const View& now) const {
        for (const std::filesystem::path& path : now.trashed) {
            const std::string name = path.filename().string();
            const bool isMissed = path.extension() == ".stg" && new_.dump.contains(name);
            EXPECT_TRUE(!isMissed || now.dump.contains(name) || cause.ends_with("is in the trash"))
                << cause;
        }
    }

    // The library as it was, but for what went to the trash.
    LibraryDump oldWithout(const std::vector<std::filesystem::path>& trashed) const {
        LibraryDump old = old_.dump;
        for (const std::filesystem::path& path : trashed) {
            old.erase(path.filename().string());
        }
        return old;
    }

    // Of what the operation has finished with, a file that could not be removed apart.
    static std::vector<std::size_t> sizesOf(const View& view) {
        std::vector<std::size_t> sizes;
        for (const auto& [path, size] : view.files) {
            if (!store::isFileOfPassage(path.filename())) {
                sizes.push_back(size);
            }
        }
        return sizes;
    }

    // Nothing but what the step had to leave out is missing.
    bool isAtMostNew(const Step& step, const LibraryDump& now) const {
        if (isOnTheWay(step, old_.dump, new_.dump, now)) {
            return true;
        }
        const auto linesOf = [](const LibraryDump& dump) {
            std::set<std::string> lines;
            for (const auto& [file, content] : dump) {
                std::istringstream text(content);
                for (std::string line; std::getline(text, line);) {
                    lines.insert(file + line);
                }
            }
            return lines;
        };
        const std::set<std::string> lines = linesOf(now);
        return std::ranges::includes(linesOf(new_.dump), lines) &&
               std::ranges::includes(lines, linesOf(old_.dump));
    }

    // In the same process, and whatever the trouble has left behind goes with it.
    void expectDoneAgain(const Step& step, const store::Library& library, MemoryDisk& disk) const {
        const LibraryDump left = viewOf(disk).dump;
        if (left != new_.dump && left == oldWithout(disk.trashed())) {
            ASSERT_NO_THROW(step.run(library));
            EXPECT_TRUE(viewOf(disk).dump == new_.dump);
        }
        store::groupFiles(library);
        const View now = viewOf(disk);
        for (const auto& [path, size] : now.files) {
            // The next one that is made in a folder clears it; the library's listing this one.
            EXPECT_TRUE(new_.files.contains(path) || path.parent_path() == kElsewhereFolder)
                << path << " is left behind";
        }
    }

    MemoryDisk before_;
    View old_;
    View new_;
    std::size_t started_ = 0;
};

TEST_P(FailingCall, LeavesTheLibraryAsItWasAndTheOperationPossible) {
    for (const Step& step : scenarios()[std::get<0>(GetParam())].steps) {
        tryAndDo(step);
        if (HasFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Store, FailingCall, everyScenario(), nameOf);

} // namespace
} // namespace crash
