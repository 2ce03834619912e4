#include "platform/file_watch.h"

#include "platform/file_descriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <linux/magic.h>
#include <mutex>
#include <pthread.h>
#include <span>
#include <sys/fanotify.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace platform {
namespace {

// The file systems on which a question for time stamps makes the next change dear. An overlay is
// none of them, and could not be: what is written to its layers is not told.
constexpr std::array<std::uint64_t, 4> kWatchedKinds{EXT4_SUPER_MAGIC, XFS_SUPER_MAGIC,
                                                     BTRFS_SUPER_MAGIC, TMPFS_MAGIC};

// Stores through a mapping, and writes that are left to the system to do (aio), are told of when
// that program closes the file.
constexpr std::uint64_t kWritten = FAN_MODIFY | FAN_CLOSE_WRITE;
constexpr std::uint64_t kEnded = FAN_DELETE_SELF;

constexpr std::size_t kMostQueues = 8; // a user of the system may have 128
using Events = std::array<std::byte, 4096>;

// getpid() is a call to the system, and short readings notice each.
std::atomic<pid_t> knownProcess{0};

pid_t thisProcess() {
    static const bool isToldOfForks =
        ::pthread_atfork(nullptr, nullptr, [] { knownProcess = 0; }) == 0;
    pid_t process = knownProcess;
    if (process == 0 || !isToldOfForks) {
        knownProcess = process = ::getpid();
    }
    return process;
}

// The system's queues of events: one for each watch, so that it knows whom they are about. To close
// one takes some milliseconds, so they are used again.
class Queues {
  public:
    Queues() { idle_.reserve(kMostQueues); }

    // An empty queue; a closed descriptor where none is to be had.
    FileDescriptor take();

    void giveBack(FileDescriptor queue) noexcept;

  private:
    void leaveToParent();

    std::mutex mutex_;
    std::vector<FileDescriptor> idle_;
    std::size_t made_ = 0;
    pid_t process_ = thisProcess();
};

bool isEmptied(const FileDescriptor& queue) {
    Events events;
    ssize_t length = 0;
    do {
        length = ::read(queue.get(), events.data(), events.size());
    } while (length > 0 || (length < 0 && errno == EINTR));
    return length < 0 && errno == EAGAIN;
}

FileDescriptor Queues::take() {
    const std::lock_guard lock(mutex_);
    leaveToParent();
    while (!idle_.empty()) {
        FileDescriptor queue = std::move(idle_.back());
        idle_.pop_back();
        if (isEmptied(queue)) {
            return queue;
        }
        --made_;
    }
    if (made_ == kMostQueues) {
        return FileDescriptor();
    }
    // With file identifiers instead of handles, which needs no privilege.
    FileDescriptor queue(
        ::fanotify_init(FAN_CLASS_NOTIF | FAN_REPORT_FID | FAN_CLOEXEC | FAN_NONBLOCK, O_RDONLY));
    made_ += queue.isOpen() ? 1U : 0U;
    return queue;
}

void Queues::giveBack(FileDescriptor queue) noexcept {
    const std::lock_guard lock(mutex_);
    leaveToParent();
    if (::fanotify_mark(queue.get(), FAN_MARK_FLUSH, 0, AT_FDCWD, nullptr) == 0) {
        idle_.push_back(std::move(queue));
    } else {
        --made_;
    }
}

// In a child that this process has forked the queues are still the parent's, who reads them.
void Queues::leaveToParent() {
    if (process_ != thisProcess()) {
        idle_.clear();
        made_ = 0;
        process_ = thisProcess();
    }
}

// Lives as long as the process: watches may be gone after all that ends with it.
Queues& queues() {
    static Queues& all = *new Queues;
    return all;
}

// Whether some event is not just a write of this very process. The system keeps the events of
// processes apart; those of processes that we may not know of bear the number 0.
bool tellsOfOthers(std::span<const std::byte> events) {
    fanotify_event_metadata event{};
    while (events.size() >= sizeof event) {
        std::memcpy(&event, events.data(), sizeof event);
        const bool isWhole = event.vers == FANOTIFY_METADATA_VERSION &&
                             event.event_len >= sizeof event && event.event_len <= events.size();
        if (!isWhole || event.pid != thisProcess() || (event.mask & ~kWritten) != 0) {
            return true;
        }
        events = events.subspan(event.event_len);
    }
    return !events.empty();
}

class EventWatch final : public compound::FileWatch {
  public:
    explicit EventWatch(FileDescriptor queue) : queue_(std::move(queue)) {}
    EventWatch(const EventWatch&) = delete;
    EventWatch& operator=(const EventWatch&) = delete;
    ~EventWatch() override {
        if (process_ == thisProcess()) {
            queues().giveBack(std::move(queue_));
        }
    }

    // False where the file cannot be watched.
    bool begin(int descriptor) {
        return ::fanotify_mark(queue_.get(), FAN_MARK_ADD, kWritten | kEnded, descriptor,
                               nullptr) == 0;
    }

    bool isUntouched() override;

  private:
    FileDescriptor queue_;
    pid_t process_ = thisProcess();
    bool isTouched_ = false;
};

bool EventWatch::isUntouched() {
    if (process_ != thisProcess()) {
        return false; // what a forked child reads is lost to its parent
    }
    Events events;
    while (!isTouched_) {
        const ssize_t length = ::read(queue_.get(), events.data(), events.size());
        if (length < 0 && errno == EAGAIN) {
            return true;
        }
        if (length >= 0 || errno != EINTR) {
            isTouched_ = length <= 0 || tellsOfOthers(std::span<const std::byte>(events).first(
                                            static_cast<std::size_t>(length)));
        }
    }
    return false;
}

bool isWatchedKind(int descriptor) {
    struct statfs volume {};
    return ::fstatfs(descriptor, &volume) == 0 &&
           std::find(kWatchedKinds.begin(), kWatchedKinds.end(),
                     static_cast<std::uint64_t>(volume.f_type)) != kWatchedKinds.end();
}

} // namespace

std::unique_ptr<compound::FileWatch> watchFile(int descriptor) {
    if (!isWatchedKind(descriptor)) {
        return nullptr;
    }
    FileDescriptor queue = queues().take();
    if (!queue.isOpen()) {
        return nullptr;
    }
    auto watch = std::make_unique<EventWatch>(std::move(queue));
    return watch->begin(descriptor) ? std::move(watch) : nullptr;
}

} // namespace platform
