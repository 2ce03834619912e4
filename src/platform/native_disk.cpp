#include "platform/native_disk.h"

#include "compound/error.h"
#include "platform/file_attributes.h"
#include "platform/file_descriptor.h"
#include "platform/file_identity.h"
#include "platform/folder_entries.h"
#include "platform/shared_volume.h"
#include "platform/trash.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
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

constexpr std::chrono::milliseconds kLockPollInterval{10};

// What the disk takes as given, and a test may give otherwise.
struct Surroundings {
    Volumes volumes;
    TimeOfDay timeOfDay;
};

std::chrono::nanoseconds systemTime() {
    return std::chrono::system_clock::now().time_since_epoch();
}

// The file that a link leads to in the end; any other file is its own.
path targetOf(const path& filePath) {
    std::error_code failure;
    if (!std::filesystem::is_symlink(filePath, failure)) {
        return filePath;
    }
    path target = std::filesystem::canonical(filePath, failure);
    if (failure) {
        throw systemError(failure.value(), filePath, "follow link");
    }
    return target;
}

class NativeFile final : public DiskFile {
  public:
    NativeFile(FileDescriptor descriptor, const struct stat& opened, std::filesystem::path filePath,
               const Surroundings& surroundings)
        : descriptor_(std::move(descriptor)),
          path_(std::move(filePath)),
          opened_(opened),
          timeOfDay_(surroundings.timeOfDay),
          isShared_(surroundings.volumes == Volumes::AllShared ||
                    isSharedVolume(descriptor_.get(), opened.st_dev)) {}
    NativeFile(const NativeFile&) = delete;
    NativeFile& operator=(const NativeFile&) = delete;
    ~NativeFile() override { giveLockBack(); }

    const std::filesystem::path& path() const override { return path_; }
    std::size_t read(std::uint64_t offset, std::span<std::byte> into) override;
    void write(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void writeParts(std::uint64_t offset,
                    std::span<const std::span<const std::byte>> parts) override;
    void sync() override;
    void syncName() override;
    void truncate(std::uint64_t size) override;
    std::uint64_t size() override;
    void extend(std::uint64_t size) override;
    bool lock(std::chrono::milliseconds wait) override;
    bool isStillAtPath() override;
    std::optional<compound::FileIdentity> identity() override;
    std::optional<compound::FileIdentity> stamp() override;
    void retire() noexcept override;

    int descriptor() const { return descriptor_.get(); }

    // Takes over the attributes of `from`; the next sync() makes them durable.
    void takeAttributes(const NativeFile& from);

  private:
    void find();
    bool reserve(std::uint64_t from, std::uint64_t to);
    void startSending(std::uint64_t offset, std::size_t length) noexcept;
    bool tryLock();
    bool waitForLock(std::chrono::milliseconds wait);
    void giveLockBack() noexcept;

    FileDescriptor descriptor_;
    std::filesystem::path path_;
    struct stat opened_ {}; // as it was when it was opened
    struct stat found_ {};  // as isStillAtPath() or stamp() has last found it
    TimeOfDay timeOfDay_;
    bool isShared_;
    bool isGone_ = false; // found out in locking
    bool isLocked_ = false;
    bool isUnsynced_ = false; // something was written since the last sync
    bool hasNewAttributes_ = false;
    struct Unsent { // see startSending()
        std::uint64_t from = UINT64_MAX;
        std::uint64_t to = 0;
        std::uint64_t bytes = 0; // of those between: some may not have been written
    } unsent_;
};

std::size_t NativeFile::read(std::uint64_t offset, std::span<std::byte> into) {
    std::size_t done = 0;
    while (done < into.size()) {
        const ssize_t count = ::pread(descriptor(), into.data() + done, into.size() - done,
                                      static_cast<off_t>(offset + done));
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            throw systemError(errno, path_, "read");
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    return done;
}

void NativeFile::write(std::uint64_t offset, std::span<const std::byte> bytes) {
    isUnsynced_ = true;
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::pwrite(descriptor(), bytes.data() + done, bytes.size() - done,
                                       static_cast<off_t>(offset + done));
        if (count < 0 && errno != EINTR) {
            throw systemError(errno, path_, "write");
        }
        done += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    startSending(offset, bytes.size());
}

// The medium is given what was written as soon as that is a good deal, and works while the next
// pictures are read: the system would have it idle until the sync. What was passed over, to be
// written with the commit, is not sent and costs nothing. A hint, no more; the sync tells whether
// everything has arrived.
void NativeFile::startSending(std::uint64_t offset, std::size_t length) noexcept {
    constexpr std::uint64_t kGoodDeal = std::uint64_t{1} << 18U;
    unsent_.from = std::min(unsent_.from, offset);
    unsent_.to = std::max(unsent_.to, offset + length);
    unsent_.bytes += length;
    if (unsent_.bytes >= kGoodDeal && !isShared_) {
        (void)::sync_file_range(descriptor(), static_cast<off_t>(unsent_.from),
                                static_cast<off_t>(unsent_.to - unsent_.from),
                                SYNC_FILE_RANGE_WRITE);
        unsent_ = {};
    }
}

void NativeFile::sync() {
    if ((hasNewAttributes_ ? ::fsync(descriptor()) : ::fdatasync(descriptor())) != 0) {
        throw systemError(errno, path_, "sync");
    }
    hasNewAttributes_ = false;
    unsent_ = {};
    isUnsynced_ = false;
}

void NativeFile::syncName() {
    syncFolderEntries(folderOf(path_));
    const std::filesystem::path target = targetOf(path_);
    if (target != path_) {
        syncFolderEntries(folderOf(target));
    }
}

void NativeFile::writeParts(std::uint64_t offset,
                            std::span<const std::span<const std::byte>> parts) {
    constexpr std::size_t kMostParts = 64;
    isUnsynced_ = true;
    while (!parts.empty()) {
        std::array<struct iovec, kMostParts> vectors{};
        const std::size_t count = std::min(parts.size(), vectors.size());
        std::size_t wanted = 0;
        for (std::size_t i = 0; i < count; ++i) {
            vectors[i].iov_base = const_cast<std::byte*>(parts[i].data());
            vectors[i].iov_len = parts[i].size();
            wanted += parts[i].size();
        }
        const ssize_t written = ::pwritev(descriptor(), vectors.data(), static_cast<int>(count),
                                          static_cast<off_t>(offset));
        if (written < 0 || static_cast<std::size_t>(written) != wanted) {
            return DiskFile::writeParts(offset, parts); // one by one, with its errors
        }
        startSending(offset, wanted);
        offset += wanted;
        parts = parts.subspan(count);
    }
}

void NativeFile::truncate(std::uint64_t size) {
    while (::ftruncate(descriptor(), static_cast<off_t>(size)) != 0) {
        if (errno != EINTR) {
            throw systemError(errno, path_, "change size");
        }
    }
}

std::uint64_t NativeFile::size() {
    struct stat status {};
    const bool isTold =
        isShared_ ? askStatus(descriptor(), status) : ::fstat(descriptor(), &status) == 0;
    if (!isTold) {
        throw systemError(errno, path_, "get size");
    }
    return static_cast<std::uint64_t>(status.st_size);
}

// A little is written as zeros: what is put there soon lies in one piece with what stands before it
// then, while the system keeps a place that was only reserved as a piece of its own.
void NativeFile::extend(std::uint64_t to) {
    constexpr std::uint64_t kLittle = std::uint64_t{64} << 10U;
    const std::uint64_t from = size();
    if (to <= from) {
        return;
    }
    try {
        if (to - from <= kLittle || !reserve(from, to)) {
            DiskFile::extend(to);
        }
    } catch (...) {
        if (size() > from) { // a part of it was given
            truncate(from);
        }
        throw;
    }
}

// False where the file system cannot.
bool NativeFile::reserve(std::uint64_t from, std::uint64_t to) {
    while (::fallocate(descriptor(), 0, static_cast<off_t>(from), static_cast<off_t>(to - from)) !=
           0) {
        if (errno == EOPNOTSUPP) {
            return false;
        }
        if (errno != EINTR) {
            throw systemError(errno, path_, "write");
        }
    }
    return true;
}

bool NativeFile::tryLock() {
    if (::flock(descriptor(), LOCK_EX | LOCK_NB) == 0) {
        return true;
    }
    // Network file systems refuse the exclusive lock to a handle that only reads; the shared one
    // still keeps every writer out.
    if (errno == EBADF && ::flock(descriptor(), LOCK_SH | LOCK_NB) == 0) {
        return true;
    }
    // The name was remembered of a file that another machine has removed or replaced meanwhile.
    // There is nobody to keep out of it; isStillAtPath() tells.
    isGone_ = isShared_ && (errno == ESTALE || errno == ENOENT);
    if (!isGone_ && errno != EWOULDBLOCK && errno != EINTR) {
        throw lockFailure(errno, path_);
    }
    return isGone_;
}

bool NativeFile::waitForLock(std::chrono::milliseconds wait) {
    if (tryLock()) {
        return true;
    }
    const auto end = std::chrono::steady_clock::now() + wait;
    while (!tryLock()) {
        const auto left = end - std::chrono::steady_clock::now();
        if (left <= std::chrono::nanoseconds::zero()) {
            return false;
        }
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(left, kLockPollInterval));
    }
    return true;
}

bool NativeFile::lock(std::chrono::milliseconds wait) {
    if (!waitForLock(wait)) {
        return false;
    }
    isLocked_ = !isGone_;
    if (isShared_ && isLocked_) {
        forgetContent(descriptor());
    }
    return true;
}

// The lock goes with the handle, but file systems in user space are told of a closed handle some
// time after the closing, and whoever does not wait would meet the lock of who is done. What was
// written and not synced, by a change that was given up, goes to the volume first, as it would in
// closing: arriving late, it would overwrite what the next holder writes.
void NativeFile::giveLockBack() noexcept {
    if (isLocked_ && isShared_) {
        if (isUnsynced_) {
            (void)::fdatasync(descriptor());
        }
        (void)::flock(descriptor(), LOCK_UN);
    }
}

bool NativeFile::isStillAtPath() {
    if (isShared_) {
        forgetName(path_);
    }
    if (isGone_ || (isShared_ && isRetired(descriptor()))) {
        return false;
    }
    const bool isThere = isShared_ ? askStatus(path_, found_) : ::stat(path_.c_str(), &found_) == 0;
    if (!isThere) {
        // A handle of a file that another machine has removed is stale on some systems.
        if (errno == ENOENT || errno == ENOTDIR || errno == ESTALE) {
            return false;
        }
        throw systemError(errno, path_, "get identity");
    }
    return found_.st_dev == opened_.st_dev && found_.st_ino == opened_.st_ino;
}

// What isStillAtPath() has found under the lock; every call to the system counts in short readings.
// Clocks of other machines go differently, so the time stamps of a shared volume prove nothing.
std::optional<compound::FileIdentity> NativeFile::identity() {
    if (isShared_ || found_.st_ino == 0) {
        return std::nullopt;
    }
    return identityOf(found_, timeOfDay_());
}

void NativeFile::find() {
    if (::fstat(descriptor(), &found_) != 0) {
        throw systemError(errno, path_, "get identity");
    }
}

// Where the file system's own stamp does not do, the file is given the exact time, which lies
// between two ticks and is no later change's. One that keeps coarser stamps gives back another one.
std::optional<compound::FileIdentity> NativeFile::stamp() {
    if (isShared_) {
        return std::nullopt;
    }
    find();
    bool settled = isStampedBeforeNow(found_);
    if (!settled) {
        const std::chrono::nanoseconds now = timeOfDay_();
        const bool isSet = giveTime(descriptor(), now);
        find();
        settled = isSet && sinceEpoch(found_.st_mtim) == now;
    }
    std::optional<compound::FileIdentity> told = identity();
    if (told) {
        told->settled = told->settled || settled;
    }
    return told;
}

// A file that had other names is the user's under those.
void NativeFile::retire() noexcept {
    if (isShared_ && opened_.st_nlink <= 1) {
        markRetired(descriptor());
    }
}

void NativeFile::takeAttributes(const NativeFile& from) {
    hasNewAttributes_ = true;
    copyFileAttributes(from.descriptor(), from.path_, descriptor(), path_);
}

NativeFile& nativeFile(DiskFile& file) {
    auto* native = dynamic_cast<NativeFile*>(&file);
    if (native == nullptr) {
        throw Error(ErrorCode::Failed, file.path(), "not a file of this disk");
    }
    return *native;
}

class NativeDisk final : public compound::Disk {
  public:
    explicit NativeDisk(const Surroundings& surroundings) : surroundings_(surroundings) {}

    std::unique_ptr<DiskFile> open(const path& filePath, Access access) override;
    std::unique_ptr<DiskFile> create(const path& filePath) override;
    std::unique_ptr<DiskFile> createPrivate(const path& filePath) override;
    path resolved(const path& filePath) override;
    bool isSameFile(const path& one, const path& other) override;
    void linkAs(const path& pattern, const path& target, const path& filePath) override;
    void copyAttributes(DiskFile& from, DiskFile& to) override;
    std::vector<compound::FolderEntry> list(const path& folder) override;
    bool exists(const path& filePath) override;
    std::optional<compound::FileIdentity> glance(const path& filePath) override;
    void renameWithoutReplacing(const path& from, const path& to) override;
    void renameReplacing(const path& from, const path& to) override;
    void syncFolder(const path& folder) override;
    void trash(const path& filePath) override;
    void removeTemporary(const path& filePath) override;

  private:
    std::unique_ptr<DiskFile> create(const path& filePath, Readers readers) const;
    bool isShared(const path& folder) const {
        return surroundings_.volumes == Volumes::AllShared || isSharedVolume(folder);
    }

    Surroundings surroundings_;
};

// A name that still stands for a file that is gone is one of a file that is just being replaced.
FileDescriptor openAgain(const path& filePath, int flags, struct stat& status) {
    errno = 0;
    try {
        return openRegularFile(filePath, flags, &status);
    } catch (const Error& error) {
        if (errno == ESTALE) {
            throw Error(ErrorCode::Locked, filePath, error.cause());
        }
        throw;
    }
}

std::unique_ptr<DiskFile> NativeDisk::open(const path& filePath, Access access) {
    const int flags = access == Access::Read ? O_RDONLY : O_RDWR;
    struct stat status {};
    FileDescriptor descriptor;
    try {
        descriptor = openRegularFile(filePath, flags, &status);
    } catch (const Error&) {
        // Another machine may have made or replaced the file since its name was remembered here.
        if (!isShared(folderOf(filePath))) {
            throw;
        }
        forgetName(filePath);
        descriptor = openAgain(filePath, flags, status);
    }
    return std::make_unique<NativeFile>(std::move(descriptor), status, filePath, surroundings_);
}

std::unique_ptr<DiskFile> NativeDisk::create(const path& filePath) {
    return create(filePath, Readers::Usual);
}

std::unique_ptr<DiskFile> NativeDisk::createPrivate(const path& filePath) {
    return create(filePath, Readers::OwnerOnly);
}

std::unique_ptr<DiskFile> NativeDisk::create(const path& filePath, Readers readers) const {
    FileDescriptor descriptor = createFile(filePath, readers);
    struct stat status {};
    if (::fstat(descriptor.get(), &status) != 0) {
        const int cause = errno;
        ::unlink(filePath.c_str());
        throw systemError(cause, filePath, "create");
    }
    return std::make_unique<NativeFile>(std::move(descriptor), status, filePath, surroundings_);
}

void NativeDisk::copyAttributes(DiskFile& from, DiskFile& to) {
    nativeFile(to).takeAttributes(nativeFile(from));
}

std::vector<compound::FolderEntry> NativeDisk::list(const path& folder) {
    const FileDescriptor descriptor(
        ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor.isOpen()) {
        throw systemError(errno, folder, "list");
    }
    const bool isSharedFolder =
        surroundings_.volumes == Volumes::AllShared || isSharedVolume(descriptor.get());
    return readFolder(descriptor.get(), isSharedFolder ? FolderIs::Shared : FolderIs::Local,
                      folder);
}

bool NativeDisk::exists(const path& filePath) {
    if (isShared(folderOf(filePath))) {
        forgetName(filePath); // another machine may have made it, or removed it
    }
    struct stat status {};
    if (::lstat(filePath.c_str(), &status) == 0) {
        return true;
    }
    if (errno != ENOENT && errno != ENOTDIR) {
        throw systemError(errno, filePath, "look up");
    }
    return false;
}

std::optional<compound::FileIdentity> NativeDisk::glance(const path& filePath) {
    struct stat status {};
    if (::stat(filePath.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return identityOf(status, surroundings_.timeOfDay());
}

void NativeDisk::renameWithoutReplacing(const path& from, const path& to) {
    renameFileWithoutReplacing(from, to);
}

void NativeDisk::renameReplacing(const path& from, const path& to) {
    if (::rename(from.c_str(), to.c_str()) != 0) {
        throw systemError(errno, from, "rename");
    }
}

path NativeDisk::resolved(const path& filePath) {
    return targetOf(filePath);
}

bool NativeDisk::isSameFile(const path& one, const path& other) {
    struct stat first {};
    struct stat second {};
    return ::stat(one.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

void NativeDisk::linkAs(const path& pattern, const path& target, const path& filePath) {
    std::error_code failure;
    path content = target;
    if (std::filesystem::read_symlink(pattern, failure).is_relative() && !failure) {
        const path folder = std::filesystem::canonical(folderOf(filePath), failure);
        content = failure ? target : target.lexically_relative(folder);
    }
    if (::symlink(content.c_str(), filePath.c_str()) != 0) {
        throw systemError(errno, filePath, "link");
    }
}

void NativeDisk::syncFolder(const path& folder) {
    syncFolderEntries(folder);
}

void NativeDisk::trash(const path& filePath) {
    moveToTrash(filePath);
}

void NativeDisk::removeTemporary(const path& filePath) {
    if (::unlink(filePath.c_str()) != 0 && errno != ENOENT) {
        throw systemError(errno, filePath, "remove");
    }
}

} // namespace

compound::Disk& nativeDisk() {
    static NativeDisk disk({Volumes::AsTheyAre, systemTime});
    // A file past the user's limit is an error of the write, not the end of the program.
    static const auto ignored = std::signal(SIGXFSZ, SIG_IGN);
    (void)ignored;
    return disk;
}

std::unique_ptr<compound::Disk> makeNativeDisk(Volumes volumes, TimeOfDay timeOfDay) {
    return std::make_unique<NativeDisk>(Surroundings{volumes, timeOfDay});
}

} // namespace platform
