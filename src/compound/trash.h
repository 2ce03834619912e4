// The trash as store/ sees it; platform/ implements it with the desktop's.
#pragma once

#include "compound/error.h"

#include <filesystem>

namespace compound {

// Why a file does not come to the trash. What it was to be kept of is still where it was, and can
// go without.
class TrashFailure : public Error {
  public:
    explicit TrashFailure(const Error& cause) : Error(cause) {}
};

class Trash {
  public:
    virtual ~Trash() = default;
    Trash(const Trash&) = delete;
    Trash& operator=(const Trash&) = delete;

    // An existing folder of the program's own in which files for the trash are written.
    virtual std::filesystem::path stagingFolder() const = 0;

    // Moves a file there, durably; never unlinks it. Returns where it lies now; empty when the
    // trash does not tell.
    virtual std::filesystem::path moveThere(const std::filesystem::path& file) = 0;

    // Takes a file out of it again and gives it the name `to`, durably. NotFound when the trash was
    // emptied, Exists when `to` is taken; then nothing has changed.
    virtual void takeBack(const std::filesystem::path& trashed,
                          const std::filesystem::path& to) = 0;

  protected:
    Trash() = default;
};

} // namespace compound
