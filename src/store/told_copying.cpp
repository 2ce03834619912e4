#include "store/told_copying.h"

#include "compound/error.h"

#include <algorithm>

namespace store {

ToldCopying::ToldCopying(compound::CompoundFile& from, Progress& progress)
    : path_(from.disk().path()), progress_(progress), total_(from.disk().size()) {}

compound::CopiedBytes ToldCopying::copied() {
    return [this](std::uint64_t bytes) {
        // The last step is the caller's, who makes durable what was copied.
        done_ = std::min(done_ + bytes, total_ - 1);
        progress_.report(done_, total_);
        if (progress_.isStopWanted()) {
            throw compound::Error(compound::ErrorCode::Cancelled, path_, "stopped");
        }
    };
}

void ToldCopying::end() {
    progress_.report(total_, total_);
}

} // namespace store
