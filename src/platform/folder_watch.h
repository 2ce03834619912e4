// Tells when something in a folder changes: a file is made, written, renamed or removed, by
// whatever program of this machine.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

namespace platform {

class FolderWatch {
  public:
    // `changed` is called from the event loop of the thread that makes the watch; many changes may
    // be told by one call. A folder that cannot be watched is no error: see isWatching().
    FolderWatch(std::filesystem::path folder, std::function<void()> changed);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // Whether this machine's changes are told. Nobody tells of a folder that is not there, nor what
    // another machine does to a volume that is shared (platform/shared_volume.h). A folder that
    // could not be watched is tried again.
    bool isWatching();

  private:
    struct Queue;
    std::unique_ptr<Queue> queue_;
};

} // namespace platform
