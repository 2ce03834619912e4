// Lets the threads of one program take turns at a group file. The kernel's lock tells a second
// handle of the same program from the first one no better than another program's, and is waited for
// but a moment; whoever works on the file in this program is known to finish.
#pragma once

#include <condition_variable>
#include <filesystem>
#include <list>
#include <mutex>
#include <thread>

namespace store {

class FileTurns {
    struct Holder {
        std::filesystem::path::string_type file;
        std::thread::id thread;
    };
    using Place = std::list<Holder>::iterator;

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
        Turn(FileTurns* turns, Place place) : turns_(turns), place_(place) {}
        FileTurns* turns_ = nullptr;
        Place place_;
    };

    FileTurns() = default;
    FileTurns(const FileTurns&) = delete;
    FileTurns& operator=(const FileTurns&) = delete;

    // Waits, however long, until no other thread has its turn at that file. A thread that has it
    // already does not wait for itself: it gets an empty turn and meets its own lock.
    Turn take(const std::filesystem::path& file);

  private:
    Place find(const std::filesystem::path& file);
    void end(Place place);

    std::mutex mutex_;
    std::condition_variable ended_;
    std::list<Holder> holders_; // few: one for each thread
};

} // namespace store
