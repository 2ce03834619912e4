#include "store/progress.h"

namespace store {
namespace {

class NoProgress final : public Progress {
  public:
    void report(std::uint64_t, std::uint64_t) override {}
    bool isStopWanted() override { return false; }
};

} // namespace

Progress& noProgress() {
    static NoProgress none;
    return none;
}

} // namespace store
