// Commands that end badly one after the other (killed, or refused by the disk), and a power cut in
// the last one: each file is as some command of the chain has left it, and never less than what a
// finished command has promised.
//
// A killed process leaves its changes in the page cache, where the next one finds them; what of
// them was not synced may still be lost. So a header that a program reads is not always the one
// that a power cut brings back.
#include "compound/error.h"
#include "compound/memory_disk.h"
#include "crash/library_dump.h"
#include "crash/power_cut.h"
#include "crash/scenarios.h"
#include "crash/states.h"
#include "store/picture_operations.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace crash {
namespace {

constexpr std::size_t kCutsOfAChain = 40;

// One chain: a library of its own, the commands that were run on it, and what it held after each.
class Chain {
  public:
    Chain(compound::SectorSize sectorSize, const Scenario& commands, std::uint32_t seed)
        : commands_(commands.steps), random_(seed) {
        prepareLibrary(memory_, sectorSize);
        if (commands.prepare) {
            commands.prepare(libraryOn(memory_));
        }
        recording_ = std::make_unique<RecordingDisk>(memory_, recordedFolders());
        for (std::size_t i = 0; i < 2; ++i) {
            processes_.push_back(libraryOn(*recording_));
        }
        look(true);
    }

    // Runs a command and ends it in some way.
    void runBadly() {
        constexpr Breakage kBreakages[] = {Breakage::Killed, Breakage::Killed, Breakage::OneError,
                                           Breakage::AllErrors};
        const Breakage breakage = kBreakages[below(std::size(kBreakages))];
        if (below(2) == 0) {
            recording_->breakAfterHeaders(breakage, 1 + below(2));
        } else {
            recording_->breakAfter(breakage, below(30));
        }
        firstEvent_ = recording_->events().size();
        const bool isDone = run();
        recording_->mend();
        if (breakage == Breakage::Killed) {
            startAgain();
        }
        if (outcome_ == Outcome::OldNewOrBoth && !isDone) {
            lookBack();
        }
        look(isDone && !isTold_); // it may have told in its result what it could not do
    }

    void runToItsEnd() {
        firstEvent_ = recording_->events().size();
        isLastDone_ = run();
        look(isLastDone_);
    }

    // Cuts the power somewhere in the last command and compares.
    void cut() {
        const std::size_t end = recording_->events().size();
        const std::size_t count = firstEvent_ + below(end - firstEvent_ + 1);
        const Medium medium = cutPower(*recording_, count, random_);
        const LibraryDump dump = dumpOf(medium);
        const bool isLastPromised = isLastDone_ && count == end;
        for (const std::string& file : filesIn(dump)) {
            const std::size_t oldest = promisedFor(file, views_.size() - (isLastPromised ? 1 : 2));
            EXPECT_TRUE(isAsInAView(file, oldest, dump, medium))
                << story_ << "cut after event " << count - firstEvent_ << " of "
                << end - firstEvent_ << ": " << file << "\nagainst the last state:\n"
                << difference(views_.back(), dump);
        }
        expectNothingLost(dump, medium);
        countStates(Kind::Chain, "chains of " + std::to_string(views_.size() - 1));
    }

  private:
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }

    void look(bool isPromised) {
        views_.push_back(dumpOf(mediumOf(memory_)));
        isPromised_.push_back(isPromised);
    }

    // A move that was given up may have undone what it began: the medium knows of that when it is
    // told to sync the next time.
    void lookBack() {
        const std::size_t end = recording_->events().size();
        for (std::size_t count = firstEvent_ + 1; count < end; ++count) {
            const auto inOrder = [](std::size_t) { return Fate::Reached; };
            onTheWay_.emplace(views_.size(),
                              dumpOf(cutPower(*recording_, count, inOrder, nullptr)));
        }
    }

    std::set<std::string> filesIn(const LibraryDump& dump) const {
        std::set<std::string> files;
        for (const LibraryDump& view : views_) {
            std::transform(view.begin(), view.end(), std::inserter(files, files.end()),
                           [](const auto& entry) { return entry.first; });
        }
        std::transform(dump.begin(), dump.end(), std::inserter(files, files.end()),
                       [](const auto& entry) { return entry.first; });
        return files;
    }

    static std::string contentOf(const LibraryDump& dump, const std::string& file) {
        const auto found = dump.find(file);
        return found == dump.end() ? "absent" : found->second;
    }

    // The last one, up to `view`, whose state of the file a command has told to be durable. The
    // command that changed another one promises nothing for this one.
    std::size_t promisedFor(const std::string& file, std::size_t view) const {
        while (view > 0 && (!isPromised_[view] ||
                            contentOf(views_[view], file) == contentOf(views_[view - 1], file))) {
            --view;
        }
        return view;
    }

    // A file on its way to the trash, or through it, is there as well.
    bool isAsInAView(const std::string& file, std::size_t oldest, const LibraryDump& dump,
                     const Medium& medium) const {
        const LibraryDump trashed = dumpOf({medium.trashed, {}});
        const bool isTrashed = !dump.contains(file) && trashed.contains(file);
        const std::string content = contentOf(isTrashed ? trashed : dump, file);
        const auto isOnTheWay = [&](const auto& state) {
            return contentOf(state.second, file) == content;
        };
        return std::any_of(views_.begin() + static_cast<std::ptrdiff_t>(oldest), views_.end(),
                           [&](const LibraryDump& view) {
                               return contentOf(view, file) == content ||
                                      (isTrashed && !view.contains(file));
                           }) ||
               std::any_of(onTheWay_.upper_bound(oldest), onTheWay_.end(), isOnTheWay);
    }

    static std::set<std::string> picturesIn(const LibraryDump& dump) {
        std::set<std::string> pictures;
        for (const auto& [file, content] : dump) {
            std::istringstream lines(content);
            for (std::string line; std::getline(lines, line);) {
                if (line.starts_with("  ")) {
                    pictures.insert(line);
                }
            }
        }
        return pictures;
    }

    static std::set<std::string> picturesOf(const LibraryDump& dump, const std::string& file) {
        return dump.contains(file) ? picturesIn({{file, dump.at(file)}}) : std::set<std::string>();
    }

    static std::set<std::string> inBoth(const std::set<std::string>& one,
                                        const std::set<std::string>& other) {
        std::set<std::string> both;
        std::ranges::set_intersection(one, other, std::inserter(both, both.end()));
        return both;
    }

    // The library's files and those that were beside it from the beginning. An exported copy, which
    // a command that failed may have left, keeps nothing.
    LibraryDump withoutCopies(LibraryDump view) const {
        std::erase_if(view, [&](const auto& entry) {
            return entry.first.starts_with('/') && !views_.front().contains(entry.first);
        });
        return view;
    }

    // What no command has touched, or only moved, is there, wherever.
    void expectNothingLost(const LibraryDump& dump, const Medium& medium) const {
        std::set<std::string> there = picturesIn(dump);
        there.merge(picturesIn(dumpOf({medium.trashed, {}})));
        for (const std::string& picture : picturesIn(views_.front())) {
            EXPECT_TRUE(there.contains(picture) || !isKept(picture))
                << story_ << picture << " is lost";
        }
    }

    // Whether every view holds the picture. A copy of which a command has said that it may not have
    // been stored does not count when the next command does away with the other one.
    bool isKept(const std::string& picture) const {
        // What files that stand as no command has promised hold in any case.
        std::map<std::string, std::set<std::string>> doubtful;
        bool wasSure = true;
        for (std::size_t i = 0; i < views_.size(); ++i) {
            const LibraryDump view = withoutCopies(views_[i]);
            const auto before = doubtful;
            const auto isChanged = [&](const std::string& file) {
                return i > 0 && contentOf(views_[i - 1], file) != contentOf(view, file);
            };
            const auto isSure = [&] {
                return std::any_of(view.begin(), view.end(), [&](const auto& entry) {
                    const auto found = doubtful.find(entry.first);
                    return (found == doubtful.end() ? picturesIn({entry}) : found->second)
                        .contains(picture);
                });
            };
            std::erase_if(doubtful, [&](const auto& entry) { return isChanged(entry.first); });
            if (!picturesIn(view).contains(picture) || (wasSure && !isSure())) {
                return false;
            }
            for (const auto& entry : view) {
                if (isChanged(entry.first) && !isPromised_[i]) {
                    const auto found = before.find(entry.first);
                    doubtful[entry.first] =
                        inBoth(found == before.end() ? picturesOf(views_[i - 1], entry.first)
                                                     : found->second,
                               picturesIn({entry}));
                }
            }
            wasSure = isSure();
        }
        return true;
    }

    // A new process in the place of the one that was killed.
    void startAgain() { processes_[process_].cache = std::make_shared<compound::ReadCache>(); }

    // Whether the command has told that it is done. One that cannot be done on what the one before
    // has left (a picture that is not there) changes nothing.
    bool run() {
        const Step& command = commands_[below(commands_.size())];
        process_ = below(processes_.size());
        isTold_ = command.isTold;
        outcome_ = command.outcome;
        story_ += command.name;
        try {
            command.run(processes_[process_]);
            story_ += ", done\n";
            return true;
        } catch (const compound::Error& error) {
            story_ += std::string(", ") + error.what() + "\n";
            return false;
        }
    }

    const std::vector<Step>& commands_;
    std::mt19937 random_;
    MemoryDisk memory_;
    std::unique_ptr<RecordingDisk> recording_;
    std::vector<store::Library> processes_; // what each remembers
    std::size_t process_ = 0;               // that runs the command
    std::vector<LibraryDump> views_;        // at the beginning and after each command
    std::vector<bool> isPromised_;          // for each view: whether a command has told it
    std::size_t firstEvent_ = 0;            // of the last command
    bool isLastDone_ = false;
    bool isTold_ = false; // of the command that has run last
    Outcome outcome_ = Outcome::OldOrNew;
    std::multimap<std::size_t, LibraryDump> onTheWay_; // to a view, by a move that was given up
    std::string story_;
};

class ChainTest : public ::testing::TestWithParam<compound::SectorSize> {};

void runChains(compound::SectorSize sectorSize, const Scenario& commands) {
    const std::size_t chains = shareOf(60);
    for (std::uint32_t seed = firstChain(); seed < firstChain() + chains; ++seed) {
        SCOPED_TRACE("chain " + std::to_string(seed));
        Chain chain(sectorSize, commands, seed);
        for (std::uint32_t i = 0; i <= seed % 2; ++i) {
            chain.runBadly();
        }
        chain.runToItsEnd();
        for (std::size_t i = 0; i < kCutsOfAChain && !::testing::Test::HasFailure(); ++i) {
            chain.cut();
        }
        if (::testing::Test::HasFailure()) {
            return;
        }
    }
}

TEST_P(ChainTest, BrokenCommandsAndAPowerCutLeaveWhatACommandHasLeft) {
    runChains(GetParam(), {"Commands", commands()});
}

TEST_P(ChainTest, SoDoThoseThatAnotherTransactionFollows) {
    runChains(GetParam(), changesOfMany());
}

INSTANTIATE_TEST_SUITE_P(Sectors, ChainTest,
                         ::testing::Values(compound::SectorSize::Bytes4096,
                                           compound::SectorSize::Bytes512));

} // namespace
} // namespace crash
