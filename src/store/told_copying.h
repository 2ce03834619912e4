// Copying from a file that tells how far it is and can be stopped.
#pragma once

#include "compound/compound_file.h"
#include "store/progress.h"

#include <cstdint>
#include <filesystem>

namespace store {

class ToldCopying {
  public:
    ToldCopying(compound::CompoundFile& from, Progress& progress);

    // What the engine is to tell of the bytes. Throws Cancelled when the operation shall stop.
    compound::CopiedBytes copied();

    // All is copied, and cannot be stopped any more.
    void end();

  private:
    std::filesystem::path path_;
    Progress& progress_;
    std::uint64_t total_;
    std::uint64_t done_ = 0;
};

} // namespace store
