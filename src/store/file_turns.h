// Lets the threads of one program take turns at a group file. The kernel's lock tells a second
// handle of the same program from the first one no better than another program's, and is waited for
// but a moment; whoever works on the file in this program is known to finish.
#pragma once

#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>

namespace store {

class FileTurns {
  public:
    // One thread's turn, which ends with it. It must not outlive its FileTurns.
    class Turn {
      public:
        Turn() = default;
        Turn(Turn&& other) noexcept;
        Turn& operator=(Turn&& other) noexcept;
        ~Turn();

      private:
        friend class FileTurns;
        Turn(FileTurns* turns, std::filesystem::path file);
        FileTurns* turns_ = nullptr;
        std::filesystem::path file_;
    };

    FileTurns() = default;
    FileTurns(const FileTurns&) = delete;
    FileTurns& operator=(const FileTurns&) = delete;

    // Waits, however long, until no other thread has its turn at that file. A thread that has it
    // already does not wait for itself: it gets an empty turn and meets its own lock.
    Turn take(const std::filesystem::path& file);

  private:
    void end(const std::filesystem::path& file);

    std::mutex mutex_;
    std::condition_variable ended_;
    std::map<std::filesystem::path, std::thread::id> holders_;
};

} // namespace store
