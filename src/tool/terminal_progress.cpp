#include "tool/terminal_progress.h"

#include <algorithm>
#include <ostream>

namespace tool {

TerminalProgress::~TerminalProgress() {
    if (!shown_.empty()) {
        console_.err << "\r\033[K" << std::flush;
    }
}

void TerminalProgress::report(std::uint64_t done, std::uint64_t total) {
    if (console_.errorStream != ErrorStream::Terminal || total < 2) {
        return;
    }
    constexpr std::uint64_t kWhole = 100;
    const std::uint64_t item = std::min(done + 1, total); // the one that is being worked on
    std::string line = counts_ == Counts::Bytes
                           ? doing_ + " " + std::to_string(done * kWhole / total) + " %"
                           : doing_ + " " + std::to_string(item) + " of " + std::to_string(total);
    if (line != shown_) {
        console_.err << '\r' << line << std::flush;
        shown_ = std::move(line);
    }
}

} // namespace tool
