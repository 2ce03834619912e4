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
    // be told by one call. A folder that cannot be watched is no error: see tellsAll().
    FolderWatch(std::filesystem::path folder, std::function<void()> changed);
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // Whether no change goes by untold. Nobody tells what another machine does to a volume that is
    // shared, nor of a folder that is not there. One that could not be watched is tried again.
    bool tellsAll();

  private:
    struct Queue;
    std::unique_ptr<Queue> queue_;
};

} // namespace platform
