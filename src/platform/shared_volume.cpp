#include "platform/shared_volume.h"

#include "platform/file_descriptor.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <linux/magic.h>
#include <string_view>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace platform {

namespace {

// What <linux/magic.h> leaves out: the folders that a virtual machine shares with its host.
constexpr std::uint64_t kVirtualBoxFolder = 0x786F4256;
constexpr std::uint64_t kVmwareFolder = 0xBACBACBC;

// File systems that keep pages, sizes or names of files which other machines may change. The ones
// of clusters whose kernels keep each other's memory true (GFS2, OCFS2, Lustre) are not among them.
// FUSE stands for many: GlusterFS, sshfs, cloud drives, virtiofs.
constexpr std::array<std::uint64_t, 13> kSharedKinds{
    FUSE_SUPER_MAGIC, NFS_SUPER_MAGIC,   SMB_SUPER_MAGIC, SMB2_SUPER_MAGIC, CIFS_SUPER_MAGIC,
    V9FS_MAGIC,       CEPH_SUPER_MAGIC,  AFS_SUPER_MAGIC, AFS_FS_MAGIC,     CODA_SUPER_MAGIC,
    NCP_SUPER_MAGIC,  kVirtualBoxFolder, kVmwareFolder};

// Stands in the place of a group file's signature.
constexpr std::string_view kRetired = "TXS: this file has been replaced";

struct timespec timeOf(const struct statx_timestamp& time) {
    struct timespec result {};
    result.tv_sec = time.tv_sec;
    result.tv_nsec = static_cast<long>(time.tv_nsec);
    return result;
}

bool ask(int folder, const char* path, int flags, struct stat& status) {
    struct statx told {};
    if (::statx(folder, path, flags | AT_STATX_FORCE_SYNC, STATX_BASIC_STATS, &told) != 0) {
        return false;
    }
    status = {};
    status.st_dev = ::makedev(told.stx_dev_major, told.stx_dev_minor);
    status.st_ino = told.stx_ino;
    status.st_mode = told.stx_mode;
    status.st_nlink = told.stx_nlink;
    status.st_uid = told.stx_uid;
    status.st_gid = told.stx_gid;
    status.st_size = static_cast<off_t>(told.stx_size);
    status.st_mtim = timeOf(told.stx_mtime);
    status.st_ctim = timeOf(told.stx_ctime);
    return true;
}

} // namespace

bool isSharedKind(std::uint64_t kind) {
    return std::find(kSharedKinds.begin(), kSharedKinds.end(), kind) != kSharedKinds.end();
}

bool isSharedVolume(int descriptor) {
    struct statfs volume {};
    // The kind is a signed number on some systems; the upper half is of no kind's.
    constexpr std::uint64_t kKindBits = 0xFFFFFFFF;
    return ::fstatfs(descriptor, &volume) != 0 ||
           isSharedKind(static_cast<std::uint64_t>(volume.f_type) & kKindBits);
}

// Short readings notice every call to the system. What has no block device of its own (its major
// number is 0: all that comes by the network, too) is asked each time, since the number may be
// another volume's tomorrow; what lies on a block device is this machine's whatever its kind.
bool isSharedVolume(int descriptor, dev_t device) {
    static std::atomic<dev_t> knownLocal{0};
    if (major(device) != 0 && knownLocal.load(std::memory_order_relaxed) == device) {
        return false;
    }
    const bool isShared = isSharedVolume(descriptor);
    if (!isShared && major(device) != 0) {
        knownLocal.store(device, std::memory_order_relaxed);
    }
    return isShared;
}

bool isSharedVolume(const std::filesystem::path& folder) {
    const FileDescriptor descriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    return descriptor.isOpen() && isSharedVolume(descriptor.get());
}

void forgetContent(int descriptor) {
    // Behind the kernel a client of the volume may keep small files whole for a while (GlusterFS
    // does for a second); a change through the same handle makes it forget them. This one changes
    // nothing, and fails where nobody listens to it or where the file is open for reading only:
    // then the state before is read, which no writer builds on.
    (void)::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, 1);
    // Pages that are yet to be written are never dropped. Should sending them fail, they are an
    // earlier program's, which has been told, and the system keeps them no longer.
    (void)::fdatasync(descriptor);
    (void)::posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
}

bool askStatus(const std::filesystem::path& path, struct stat& status) {
    return ask(AT_FDCWD, path.c_str(), 0, status);
}

bool askStatus(int descriptor, struct stat& status) {
    return ask(descriptor, "", AT_EMPTY_PATH, status);
}

void markRetired(int descriptor) noexcept {
    // Through the open handle, since a file without a path cannot be opened everywhere.
    if (::pwrite(descriptor, kRetired.data(), kRetired.size(), 0) > 0) {
        (void)::fdatasync(descriptor);
    }
}

bool isRetired(int descriptor) {
    std::array<char, kRetired.size()> start{};
    return ::pread(descriptor, start.data(), start.size(), 0) ==
               static_cast<ssize_t>(start.size()) &&
           std::string_view(start.data(), start.size()) == kRetired;
}

compound::Error lockFailure(int cause, const std::filesystem::path& path) {
    compound::Error error = compound::systemError(cause, path, "lock");
    const bool hasNoLocks = cause == ENOLCK || cause == EOPNOTSUPP || cause == ENOSYS ||
                            cause == EINVAL || cause == EBADF;
    if (!hasNoLocks) {
        return error;
    }
    return {compound::ErrorCode::Failed, path,
            error.cause() + "; the file system offers no file locks, and without them two programs "
                            "would destroy each other's changes"};
}

void forgetName(const std::filesystem::path& path) {
    // Network file systems believe a name for as long as its folder seems unchanged; those in user
    // space believe it for a time, but look anew before something is renamed to it. Renaming a file
    // to its own name without replacing anything changes nothing: it is there, or it is not.
    struct stat folder {};
    (void)askStatus(folderOf(path), folder);
    (void)::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE);
}

} // namespace platform
