// Pictures that go to the trash while a transaction makes ready to do without them.
#pragma once

#include "store/picture_trash.h"
#include "store/storage_access.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace store {

class Trashing {
  public:
    // nullptr: nothing is kept.
    Trashing(compound::Disk& disk, compound::Trash* trash) : disk_(disk), trash_(trash) {}
    Trashing(const Trashing&) = delete;
    Trashing& operator=(const Trashing&) = delete;
    ~Trashing(); // takes the files out again, unless the transaction was committed

    bool isThere() const { return trash_ != nullptr; }

    // Puts a file of the picture there, which stays in the group. What is damaged or too large for
    // a picture goes without a file. TrashFailure.
    TrashedPicture add(const StorageHandle& group, const std::optional<StorageHandle>& info,
                       const compound::Element& picture);

    // Commits. The files stay where they are unless it is certain that nothing has changed.
    void commit(StorageAccess& access);

  private:
    std::filesystem::path put(const std::string& fileName, std::span<const std::byte> bytes);
    std::filesystem::path move(const std::string& fileName, std::span<const std::byte> bytes);

    compound::Disk& disk_;
    compound::Trash* trash_;
    std::vector<std::filesystem::path> files_;
};

} // namespace store
