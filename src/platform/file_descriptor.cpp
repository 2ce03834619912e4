#include "platform/file_descriptor.h"

#include "compound/error.h"
#include "platform/file_attributes.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

using compound::Error;
using compound::ErrorCode;
using compound::systemError;

constexpr mode_t kUsualMode = 0666;
constexpr mode_t kOwnersMode = 0600;

void requireRegular(const struct stat& status, const std::filesystem::path& path) {
    if (!S_ISREG(status.st_mode)) {
        throw Error(ErrorCode::Failed, path, "not a regular file");
    }
}

void copyBytes(const FileDescriptor& source, const std::filesystem::path& from,
               const FileDescriptor& target, const std::filesystem::path& to) {
    std::array<char, std::size_t{64} * 1024> buffer;
    for (;;) {
        const ssize_t count = ::read(source.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw systemError(errno, from, "read");
        }
        if (count == 0) {
            return;
        }
        for (ssize_t done = 0; done < count;) {
            const ssize_t written =
                ::write(target.get(), buffer.data() + done, static_cast<std::size_t>(count - done));
            if (written < 0 && errno != EINTR) {
                throw systemError(errno, to, "write");
            }
            done += written < 0 ? 0 : written;
        }
    }
}

// Leaves errno as it is.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other) {
    const int before = errno;
    struct stat first {};
    struct stat second {};
    const bool isSame = ::lstat(one.c_str(), &first) == 0 && ::lstat(other.c_str(), &second) == 0 &&
                        first.st_dev == second.st_dev && first.st_ino == second.st_ino;
    errno = before;
    return isSame;
}

// The file whose lock is the turn of its folder. What a crash leaves of it is cleared away like an
// unfinished group file.
constexpr std::string_view kTurnFile = ".txs-0000000000000000.new";

// Around sixteen digits: a file that no listing shows until it is whole and gets its name.
constexpr std::string_view kPrefix = ".txs-";
constexpr std::string_view kInTheMaking = ".new";
constexpr std::size_t kDigits = 16;

// Whether the path still names the open file.
bool isAt(const FileDescriptor& file, const std::filesystem::path& path) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(file.get(), &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

FileDescriptor takeTurn(const std::filesystem::path& path) {
    for (;;) {
        FileDescriptor file(
            ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kUsualMode));
        if (!file.isOpen()) {
            throw systemError(errno, path, "create");
        }
        if (::flock(file.get(), LOCK_EX) == 0) {
            if (isAt(file, path)) {
                return file;
            }
        } else if (errno != EINTR) {
            throw systemError(errno, path, "lock");
        }
    }
}

struct Unfinished {
    std::filesystem::path path;
    FileDescriptor file; // locked where there are locks, so that nobody takes it for a leftover
};

bool isUnfinished(const std::string& name) {
    return name.size() == kPrefix.size() + kDigits + kInTheMaking.size() &&
           name.starts_with(kPrefix) && name.ends_with(kInTheMaking);
}

Unfinished createUnfinished(const std::filesystem::path& folder) {
    constexpr int kTries = 10; // another program may clear it away before it is locked
    for (int i = 0; i < kTries; ++i) {
        std::filesystem::path path = folder / nameInTheMaking();
        FileDescriptor file = createFile(path, Readers::OwnerOnly);
        const bool isOurs = ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
        if (isOurs && isAt(file, path)) {
            return {std::move(path), std::move(file)};
        }
    }
    throw Error(ErrorCode::Locked, folder, "other programs clear it away");
}

} // namespace

FileDescriptor::~FileDescriptor() {
    if (number_ >= 0) {
        ::close(number_);
    }
}

FileDescriptor openRegularFile(const std::filesystem::path& path, int flags, struct stat* opened) {
    // Without O_NONBLOCK a pipe of that name would make the opening wait for a writer.
    struct stat status {};
    FileDescriptor descriptor(::open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0) {
        throw systemError(errno, path, "open");
    }
    requireRegular(status, path);
    if (opened != nullptr) {
        *opened = status;
    }
    return descriptor;
}

FileDescriptor createFile(const std::filesystem::path& path, Readers readers) {
    FileDescriptor descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC,
                                     readers == Readers::Usual ? kUsualMode : kOwnersMode));
    if (!descriptor.isOpen()) {
        throw systemError(errno, path, "create");
    }
    return descriptor;
}

std::string nameInTheMaking() {
    thread_local std::random_device random;
    std::array<char, kDigits + 1> digits{};
    (void)std::snprintf(digits.data(), digits.size(), "%08x%08x", random(), random());
    return std::string(kPrefix) + digits.data() + std::string(kInTheMaking);
}

void removeLeftoversIn(const std::filesystem::path& folder) {
    std::error_code unreadable; // tells itself when the file is made
    for (std::filesystem::directory_iterator entry(folder, unreadable), end;
         !unreadable && entry != end; entry.increment(unreadable)) {
        const std::filesystem::path& path = entry->path();
        if (!isUnfinished(path.filename().string())) {
            continue;
        }
        const FileDescriptor file(
            ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)); // NFS wants that
        if (file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0 && isAt(file, path)) {
            ::unlink(path.c_str());
        }
    }
}

void copyDurably(const std::filesystem::path& from, const std::filesystem::path& to) {
    const FileDescriptor source = openRegularFile(from, O_RDONLY);
    removeLeftoversIn(folderOf(to));
    try {
        const Unfinished copy = createUnfinished(folderOf(to));
        try {
            copyBytes(source, from, copy.file, to);
            copyFileAttributes(source.get(), from, copy.file.get(), to);
            if (::fsync(copy.file.get()) != 0) {
                throw systemError(errno, to, "sync");
            }
            renameFileWithoutReplacing(copy.path, to);
        } catch (...) {
            ::unlink(copy.path.c_str());
            throw;
        }
    } catch (const Error& error) { // nobody knows of the file of passage
        throw error.file() == from ? error : Error(error.code(), to, error.cause());
    }
}

// A second link fails when the name is taken, and until the first one is gone the file merely has
// two names. False where files have one name only.
bool renameByLinking(const std::filesystem::path& from, const std::filesystem::path& to) {
    // A server whose answer got lost is asked again, and then finds the link that it has made.
    if (::link(from.c_str(), to.c_str()) != 0 && !(errno == EEXIST && isSameFile(from, to))) {
        if (errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS && errno != EMLINK) {
            throw systemError(errno, errno == EEXIST ? to : from, "rename");
        }
        return false;
    }
    try {
        // Nothing says which of two changes of a folder a power cut leaves.
        syncFolderEntries(folderOf(to));
        if (::unlink(from.c_str()) != 0) {
            throw systemError(errno, from, "rename");
        }
    } catch (const Error&) {
        ::unlink(to.c_str());
        throw;
    }
    return true;
}

void renameInTurn(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::filesystem::path path = folderOf(to) / kTurnFile;
    const FileDescriptor turn = takeTurn(path);
    struct stat taken {};
    int cause = EEXIST;
    if (::lstat(to.c_str(), &taken) != 0) {
        cause = errno == ENOENT && ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
    }
    ::unlink(path.c_str());
    if (cause != 0) {
        throw systemError(cause, cause == EEXIST ? to : from, "rename");
    }
}

void renameFileWithoutReplacing(const std::filesystem::path& from,
                                const std::filesystem::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return;
    }
    if (errno == EINVAL || errno == ENOSYS) {
        if (!renameByLinking(from, to)) {
            renameInTurn(from, to);
        }
        return;
    }
    throw systemError(errno, errno == EEXIST ? to : from, "rename");
}

void syncFolderEntries(const std::filesystem::path& folder) {
    const FileDescriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.isOpen()) {
        throw systemError(errno, folder, "open");
    }
    if (::fsync(descriptor.get()) != 0 && errno != EINVAL && errno != EROFS) {
        throw systemError(errno, folder, "sync");
    }
}

void syncWayTo(const std::filesystem::path& path) {
    std::filesystem::path folder = std::filesystem::absolute(folderOf(path));
    syncFolderEntries(folder);
    struct stat status {};
    if (::stat(folder.c_str(), &status) != 0) {
        throw systemError(errno, folder, "status");
    }
    const dev_t volume = status.st_dev;
    while (folder.has_relative_path()) {
        folder = folder.parent_path();
        if (::stat(folder.c_str(), &status) != 0 || status.st_dev != volume) {
            return;
        }
        try {
            syncFolderEntries(folder);
        } catch (const Error& error) {
            if (error.code() != ErrorCode::Denied) {
                throw;
            }
        }
    }
}

std::filesystem::path folderOf(const std::filesystem::path& path) {
    return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

} // namespace platform
