// How a long operation of the store tells how far it is, and learns that it shall stop.
#pragma once

#include <cstdint>

namespace store {

class Progress {
  public:
    virtual ~Progress() = default;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Of `total` bytes `done` are behind the operation. Called on its own thread, often; the last
    // call, with both the same, says that what is left cannot be stopped any more.
    virtual void report(std::uint64_t done, std::uint64_t total) = 0;

    // Whether to stop. Asked only as long as stopping leaves everything as it was; the operation
    // then throws Cancelled.
    virtual bool isStopWanted() = 0;

  protected:
    Progress() = default;
};

// Listens to nothing and never wants to stop.
Progress& noProgress();

} // namespace store
