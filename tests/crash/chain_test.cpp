// Commands that end badly one after the other (killed, or refused by the disk), and a power cut in
// the last one: the library is as some command of the chain has left it, and never less than what a
// finished command has promised.
//
// A killed process leaves its changes in the page cache, where the next one finds them; what of
// them was not synced may still be lost. So a header that a program reads is not always the one
// that a power cut brings back.
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
#include <vector>

namespace crash {
namespace {

constexpr std::size_t kCutsOfAChain = 40;

// One chain: a library of its own, the commands that were run on it, and what it held after each.
class Chain {
  public:
    Chain(compound::SectorSize sectorSize, std::uint32_t seed) : random_(seed) {
        prepareLibrary(memory_, sectorSize);
        recording_ = std::make_unique<RecordingDisk>(memory_, recordedFolders());
        for (std::size_t i = 0; i < 2; ++i) {
            processes_.push_back(libraryOn(*recording_));
        }
        views_.push_back(dumpOf(mediumOf(memory_)));
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
        const bool isDone = run();
        recording_->mend();
        if (breakage == Breakage::Killed) {
            startAgain();
        }
        views_.push_back(dumpOf(mediumOf(memory_)));
        if (isDone) {
            promised_ = views_.size() - 1;
        }
    }

    void runToItsEnd() {
        firstEvent_ = recording_->events().size();
        isLastDone_ = run();
        views_.push_back(dumpOf(mediumOf(memory_)));
    }

    // Cuts the power somewhere in the last command and compares.
    void cut() {
        const std::size_t end = recording_->events().size();
        const std::size_t count = firstEvent_ + below(end - firstEvent_ + 1);
        const std::size_t lost = below(101); // percent
        const std::size_t torn = below(101); // percent of the rest
        const auto fateOf = [&](std::size_t) {
            if (below(100) < lost) {
                return Fate::Lost;
            }
            return below(100) < torn ? Fate::Torn : Fate::Reached;
        };
        const LibraryDump dump =
            dumpOf(cutPower(*recording_, count, fateOf, [this] { return below(2) == 0; }));
        // A last command that could not be done promises nothing of what came before it.
        const bool isLastPromised = isLastDone_ && count == end;
        const std::size_t oldest = isLastPromised ? views_.size() - 1 : promised_;
        for (std::size_t view = oldest; view < views_.size(); ++view) {
            if (views_[view] == dump) {
                return;
            }
        }
        ADD_FAILURE() << story_ << "cut after event " << count - firstEvent_ << " of "
                      << end - firstEvent_ << "\nagainst the promised state:\n"
                      << difference(views_[promised_], dump) << "\nagainst the last one:\n"
                      << difference(views_.back(), dump);
    }

  private:
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(random_() % bound); }

    // A new process in the place of the one that was killed.
    void startAgain() { processes_[process_].cache = std::make_shared<compound::ReadCache>(); }

    // Whether the command has told that it is done. One that cannot be done on what the one before
    // has left (a picture that is not there) changes nothing.
    bool run() {
        const Step& command = commands()[below(commands().size())];
        process_ = below(processes_.size());
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

    std::mt19937 random_;
    MemoryDisk memory_;
    std::unique_ptr<RecordingDisk> recording_;
    std::vector<store::Library> processes_; // what each remembers
    std::size_t process_ = 0;               // that runs the command
    std::vector<LibraryDump> views_;        // at the beginning and after each command
    std::size_t promised_ = 0;              // the last view that a command has told to be durable
    std::size_t firstEvent_ = 0;            // of the last command
    bool isLastDone_ = false;
    std::string story_;
};

class ChainTest : public ::testing::TestWithParam<compound::SectorSize> {};

TEST_P(ChainTest, BrokenCommandsAndAPowerCutLeaveWhatACommandHasLeft) {
    const std::size_t chains = randomStates() / 5 / kCutsOfAChain;
    for (std::uint32_t seed = 1; seed <= chains; ++seed) {
        SCOPED_TRACE("chain " + std::to_string(seed));
        Chain chain(GetParam(), seed);
        for (std::uint32_t i = 0; i <= seed % 2; ++i) {
            chain.runBadly();
        }
        chain.runToItsEnd();
        for (std::size_t i = 0; i < kCutsOfAChain && !HasFailure(); ++i) {
            chain.cut();
        }
        if (HasFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Sectors, ChainTest,
                         ::testing::Values(compound::SectorSize::Bytes4096,
                                           compound::SectorSize::Bytes512));

} // namespace
} // namespace crash
