#include "platform/native_disk.h"

#include "compound/error.h"
#include "platform/file_descriptor.h"
#include "platform/trash.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

using compound::Access;
using compound::DiskFile;
using compound::Error;
using compound::ErrorCode;
using compound::systemError;
using std::filesystem::path;

constexpr mode_t kPermissionBits = 07777;
constexpr std::chrono::milliseconds kLockPollInterval{10};

class NativeFile final : public DiskFile {
  public:
    NativeFile(FileDescriptor descriptor, const struct stat& opened, std::filesystem::path filePath)
        : descriptor_(std::move(descriptor)), path_(std::move(filePath)), opened_(opened) {}

    const std::filesystem::path& path() const override { return path_; }
    std::size_t read(std::uint64_t offset, std::span<std::byte> into) override;
    void write(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void sync() override;
    void truncate(std::uint64_t size) override;
    std::uint64_t size() override;
    bool lock(std::chrono::milliseconds wait) override;
    bool isStillAtPath() override;
    std::optional<compound::FileIdentity> identity() override;

    int descriptor() const { return descriptor_.get(); }

  private:
    bool tryLock();

    FileDescriptor descriptor_;
    std::filesystem::path path_;
    struct stat opened_ {}; // as it was when it was opened
    struct stat named_ {};  // as isStillAtPath() has last found it
};

std::size_t NativeFile::read(std::uint64_t offset, std::span<std::byte> into) {
    std::size_t done = 0;
    while (done < into.size()) {
        const ssize_t count = ::pread(descriptor(), into.data() + done, into.size() - done,
                                      static_cast<off_t>(offset + done));
        if (count == 0)
            break;
        if (count < 0 && errno != EINTR)
            throw systemError(errno, path_, "read");
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return done;
}

void NativeFile::write(std::uint64_t offset, std::span<const std::byte> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::pwrite(descriptor(), bytes.data() + done, bytes.size() - done,
                                       static_cast<off_t>(offset + done));
        if (count < 0 && errno != EINTR)
            throw systemError(errno, path_, "write");
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
}

void NativeFile::sync() {
    if (::fdatasync(descriptor()) != 0)
        throw systemError(errno, path_, "sync");
}

void NativeFile::truncate(std::uint64_t size) {
    while (::ftruncate(descriptor(), static_cast<off_t>(size)) != 0)
        if (errno != EINTR)
            throw systemError(errno, path_, "change size");
}

std::uint64_t NativeFile::size() {
    struct stat status {};
    if (::fstat(descriptor(), &status) != 0)
        throw systemError(errno, path_, "get size");
    return static_cast<std::uint64_t>(status.st_size);
}

bool NativeFile::tryLock() {
    if (::flock(descriptor(), LOCK_EX | LOCK_NB) == 0)
        return true;
    // Network file systems refuse the exclusive lock to a handle that only reads; the shared one
    // still keeps every writer out.
    if (errno == EBADF && ::flock(descriptor(), LOCK_SH | LOCK_NB) == 0)
        return true;
    if (errno != EWOULDBLOCK && errno != EINTR)
        throw systemError(errno, path_, "lock");
    return false;
}

bool NativeFile::lock(std::chrono::milliseconds wait) {
    if (tryLock())
        return true;
    const auto end = std::chrono::steady_clock::now() + wait;
    while (!tryLock()) {
        const auto left = end - std::chrono::steady_clock::now();
        if (left <= std::chrono::nanoseconds::zero())
            return false;
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(left, kLockPollInterval));
    }
    return true;
}

bool NativeFile::isStillAtPath() {
    if (::stat(path_.c_str(), &named_) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return false;
        throw systemError(errno, path_, "get identity");
    }
    return named_.st_dev == opened_.st_dev && named_.st_ino == opened_.st_ino;
}

// What isStillAtPath() has found under the lock; every call to the system counts in short readings.
std::optional<compound::FileIdentity> NativeFile::identity() {
    constexpr std::int64_t kNanoseconds = 1'000'000'000;
    struct timespec now {};
    if (named_.st_ino == 0 || ::clock_gettime(CLOCK_REALTIME, &now) != 0)
        return std::nullopt;
    const auto nanoseconds = [](const struct timespec& time) {
        return std::int64_t{time.tv_sec} * kNanoseconds + std::int64_t{time.tv_nsec};
    };
    const std::int64_t changed = nanoseconds(named_.st_ctim);
    // Time stamps go on in ticks of some milliseconds, on some file systems of a second or two.
    const bool settled = nanoseconds(now) - changed > 3 * kNanoseconds;
    return compound::FileIdentity{named_.st_dev,
                                  named_.st_ino,
                                  static_cast<std::uint64_t>(named_.st_size),
                                  nanoseconds(named_.st_mtim),
                                  changed,
                                  settled};
}

int descriptorOf(DiskFile& file) {
    const auto* native = dynamic_cast<NativeFile*>(&file);
    if (native == nullptr)
        throw Error(ErrorCode::Failed, file.path(), "not a file of this disk");
    return native->descriptor();
}

class NativeDisk final : public compound::Disk {
  public:
    std::unique_ptr<DiskFile> open(const path& filePath, Access access) override;
    std::unique_ptr<DiskFile> create(const path& filePath) override;
    void copyAttributes(DiskFile& from, DiskFile& to) override;
    std::vector<compound::FolderEntry> list(const path& folder) override;
    bool exists(const path& filePath) override;
    void renameWithoutReplacing(const path& from, const path& to) override;
    void renameReplacing(const path& from, const path& to) override;
    void syncFolder(const path& folder) override;
    void trash(const path& filePath) override;
    void removeTemporary(const path& filePath) override;
};

std::unique_ptr<DiskFile> NativeDisk::open(const path& filePath, Access access) {
    struct stat status {};
    FileDescriptor descriptor =
        openRegularFile(filePath, access == Access::Read ? O_RDONLY : O_RDWR, &status);
    return std::make_unique<NativeFile>(std::move(descriptor), status, filePath);
}

std::unique_ptr<DiskFile> NativeDisk::create(const path& filePath) {
    FileDescriptor descriptor = createFile(filePath);
    struct stat status {};
    if (::fstat(descriptor.get(), &status) != 0)
        throw systemError(errno, filePath, "create");
    return std::make_unique<NativeFile>(std::move(descriptor), status, filePath);
}

void NativeDisk::copyAttributes(DiskFile& from, DiskFile& to) {
    struct stat status {};
    if (::fstat(descriptorOf(from), &status) != 0)
        throw systemError(errno, from.path(), "get attributes");
    const int target = descriptorOf(to);
    // Only an administrator may give files away; everybody else keeps what the system lets them
    // keep, the group at best. The mode comes last because a change of owner resets parts of it.
    if (::fchown(target, status.st_uid, status.st_gid) != 0)
        (void)::fchown(target, static_cast<uid_t>(-1), status.st_gid);
    if (::fchmod(target, status.st_mode & kPermissionBits) != 0 && errno != EPERM)
        throw systemError(errno, to.path(), "set permissions");
    if (::fsync(target) != 0)
        throw systemError(errno, to.path(), "sync");
}

bool isRegularEntry(int folder, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return entry.d_type == DT_REG;
    struct stat status {};
    return ::fstatat(folder, entry.d_name, &status, 0) == 0 && S_ISREG(status.st_mode);
}

std::vector<compound::FolderEntry> NativeDisk::list(const path& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), &::closedir);
    if (!stream)
        throw systemError(errno, folder, "list");
    std::vector<compound::FolderEntry> entries;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(stream.get());
        if (entry == nullptr)
            break;
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            entries.push_back({path(name), isRegularEntry(::dirfd(stream.get()), *entry)});
    }
    if (errno != 0)
        throw systemError(errno, folder, "list");
    return entries;
}

bool NativeDisk::exists(const path& filePath) {
    struct stat status {};
    if (::lstat(filePath.c_str(), &status) == 0)
        return true;
    if (errno == ENOENT || errno == ENOTDIR)
        return false;
    throw systemError(errno, filePath, "look up");
}

void NativeDisk::renameWithoutReplacing(const path& from, const path& to) {
    renameFileWithoutReplacing(from, to);
}

void NativeDisk::renameReplacing(const path& from, const path& to) {
    std::error_code failure;
    path target = std::filesystem::weakly_canonical(to, failure);
    if (failure)
        target = to;
    if (::rename(from.c_str(), target.c_str()) == 0)
        return;
    if (errno != EXDEV)
        throw systemError(errno, from, "rename");
    // The link leads to another volume: bring the new content there first.
    path copy = target;
    copy += ".new";
    copyDurably(from, copy);
    if (::rename(copy.c_str(), target.c_str()) != 0) {
        const int cause = errno;
        ::unlink(copy.c_str());
        throw systemError(cause, target, "rename");
    }
    syncFolderEntries(folderOf(target));
    removeTemporary(from);
}

void NativeDisk::syncFolder(const path& folder) {
    syncFolderEntries(folder);
}

void NativeDisk::trash(const path& filePath) {
    moveToTrash(filePath);
}

void NativeDisk::removeTemporary(const path& filePath) {
    if (::unlink(filePath.c_str()) != 0 && errno != ENOENT)
        throw systemError(errno, filePath, "remove");
}

} // namespace

compound::Disk& nativeDisk() {
    static NativeDisk disk;
    return disk;
}

} // namespace platform
