// How far a command is, on one line of a terminal that is overwritten; nothing anywhere else.
#pragma once

#include "store/progress.h"
#include "tool/command.h"

#include <string>

namespace tool {

class TerminalProgress final : public store::Progress {
  public:
    enum class Counts { Items, Bytes }; // bytes are shown as a percentage

    // `doing` as in "adding".
    TerminalProgress(Console& console, std::string doing, Counts counts = Counts::Items)
        : console_(console), doing_(std::move(doing)), counts_(counts) {}
    ~TerminalProgress() override; // clears the line
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;

    void report(std::uint64_t done, std::uint64_t total) override;
    bool isStopWanted() override { return false; }

  private:
    Console& console_;
    std::string doing_;
    Counts counts_;
    std::string shown_;
};

} // namespace tool
