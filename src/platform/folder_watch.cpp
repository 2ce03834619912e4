#include "platform/folder_watch.h"

#include "platform/file_descriptor.h"

#include <QSocketNotifier>

#include <array>
#include <cstdint>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>
#include <utility>

namespace platform {
namespace {

constexpr std::uint32_t kChanges =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;
constexpr std::uint32_t kEnds = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t kLost = kEnds | IN_IGNORED | IN_UNMOUNT;

} // namespace

// The system's queue of what has happened. Without one, or without a watch in it, nothing is told.
struct FolderWatch::Queue {
    Queue(std::filesystem::path watched, std::function<void()> tell)
        : folder(std::move(watched)),
          changed(std::move(tell)),
          descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        if (descriptor.isOpen()) {
            notifier = std::make_unique<QSocketNotifier>(descriptor.get(), QSocketNotifier::Read);
            QObject::connect(notifier.get(), &QSocketNotifier::activated, [this] { take(); });
        }
    }

    bool watch() {
        if (number < 0 && descriptor.isOpen()) {
            number = ::inotify_add_watch(descriptor.get(), folder.c_str(),
                                         kChanges | kEnds | IN_ONLYDIR);
        }
        return number >= 0;
    }

    // Takes all that is waiting; what it is in detail, the folder shows itself.
    void take() {
        bool any = false;
        alignas(inotify_event) std::array<char, 16384> buffer{};
        for (;;) {
            const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
            if (count <= 0) {
                break;
            }
            any = true;
            see(buffer.data(), static_cast<std::size_t>(count));
        }
        if (any) {
            changed();
        }
    }

    void see(const char* events, std::size_t length) {
        inotify_event event{};
        for (std::size_t at = 0; at + sizeof event <= length; at += sizeof event + event.len) {
            std::memcpy(&event, events + at, sizeof event);
            if (event.wd == number && (event.mask & kLost) != 0) {
                // The folder may have gone elsewhere with its watch.
                (void)::inotify_rm_watch(descriptor.get(), number);
                number = -1;
            }
        }
    }

    std::filesystem::path folder;
    std::function<void()> changed;
    FileDescriptor descriptor;
    std::unique_ptr<QSocketNotifier> notifier;
    int number = -1; // of the watch
};

FolderWatch::FolderWatch(std::filesystem::path folder, std::function<void()> changed)
    : queue_(std::make_unique<Queue>(std::move(folder), std::move(changed))) {
    (void)queue_->watch();
}

FolderWatch::~FolderWatch() = default;

bool FolderWatch::isWatching() {
    return queue_->watch();
}

} // namespace platform
