// Volumes that other machines write to: what the system remembers of a file is not to be believed.
#include "compound/error.h"
#include "platform/native_disk.h"
#include "platform/own_home.h"
#include "platform/shared_volume.h"

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <span>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

using compound::Access;
using compound::ErrorCode;
namespace fs = std::filesystem;

constexpr std::size_t kLength = std::size_t{1} << 20U;

class SharedVolumeTest : public testing::Test {
  protected:
    fs::path at(const std::string& name) const { return home_.root().toStdString() + "/" + name; }

    // How much of the file's content lies in memory.
    static std::size_t pagesInMemory(const fs::path& path) {
        const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        void* mapped = ::mmap(nullptr, kLength, PROT_READ, MAP_SHARED, file, 0);
        std::vector<unsigned char> resident(kLength / static_cast<std::size_t>(::getpagesize()));
        EXPECT_EQ(::mincore(mapped, kLength, resident.data()), 0);
        ::munmap(mapped, kLength);
        ::close(file);
        std::size_t pages = 0;
        for (const unsigned char page : resident) {
            pages += page & 1U;
        }
        return pages;
    }

    // This process's descriptor of the file.
    static int descriptorOf(const fs::path& path) {
        for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd")) {
            std::error_code isGone; // the one of this listing
            if (fs::read_symlink(entry.path(), isGone) == path) {
                return std::stoi(entry.path().filename().string());
            }
        }
        return -1;
    }

    OwnHome home_;
    std::unique_ptr<compound::Disk> disk_ =
        platform::makeNativeDisk(platform::Volumes::AllShared, [] {
            return std::chrono::nanoseconds(std::chrono::hours(1'000'000));
        });
};

TEST_F(SharedVolumeTest, isToldByTheFileSystemsKind) {
    for (const std::uint64_t kind : {0x65735546, 0x6969, 0x517B, 0x01021997, 0x00C36400}) {
        EXPECT_TRUE(platform::isSharedKind(kind)) << std::hex << kind; // FUSE NFS SMB 9P Ceph
    }
    for (const std::uint64_t kind :
         {0xFF534D42U, 0xFE534D42U}) { // the numbers with the highest bit
        EXPECT_TRUE(platform::isSharedKind(kind)) << std::hex << kind;
    }
    for (const std::uint64_t kind : {0xEF53, 0x58465342, 0x01021994, 0x4D44}) {
        EXPECT_FALSE(platform::isSharedKind(kind)) << std::hex << kind; // ext4 XFS tmpfs FAT
    }
}

TEST_F(SharedVolumeTest, aLockDropsWhatTheSystemRemembersOfTheContent) {
    home_.write("trial", QByteArray(kLength, 'x'));
    const int trial = ::open(at("trial").c_str(), O_RDWR | O_CLOEXEC);
    ::fsync(trial);
    ::posix_fadvise(trial, 0, 0, POSIX_FADV_DONTNEED);
    ::close(trial);
    if (pagesInMemory(at("trial")) > 0) {
        GTEST_SKIP() << "the file system lies in memory itself";
    }
    home_.write("a", QByteArray(kLength, 'x'));
    platform::nativeDisk().open(at("a"), Access::ReadWrite)->sync();
    auto local = platform::nativeDisk().open(at("a"), Access::Read);
    ASSERT_TRUE(local->lock(std::chrono::milliseconds(0)));
    const std::size_t before = pagesInMemory(at("a"));
    EXPECT_GT(before, 0U) << "a local file's memory is worth keeping";
    const auto waiting = disk_->open(at("a"), Access::Read);
    ASSERT_FALSE(waiting->lock(std::chrono::milliseconds(0)));
    EXPECT_EQ(pagesInMemory(at("a")), before) << "the lock was not even taken";
    local.reset();
    ASSERT_TRUE(waiting->lock(std::chrono::milliseconds(0)));
    EXPECT_EQ(pagesInMemory(at("a")), 0U);
}

// File systems in user space are told of a closed handle some time after the closing. A second
// descriptor keeps the handle open here as the kernel does there.
TEST_F(SharedVolumeTest, aLockIsGivenBackBeforeTheHandle) {
    home_.write("a", "text");
    auto file = disk_->open(at("a"), Access::ReadWrite);
    ASSERT_TRUE(file->lock(std::chrono::milliseconds(0)));
    file->write(0, std::as_bytes(std::span("TEXT", 4)));
    const int kept = ::dup(descriptorOf(at("a")));
    ASSERT_GE(kept, 0);
    const auto other = disk_->open(at("a"), Access::ReadWrite);
    EXPECT_FALSE(other->lock(std::chrono::milliseconds(0)));
    file.reset();
    EXPECT_TRUE(other->lock(std::chrono::milliseconds(0)));
    EXPECT_EQ(home_.read("a"), "TEXT");
    ::close(kept);
}

// Time stamps of other machines' clocks prove nothing, so nothing is to be remembered.
TEST_F(SharedVolumeTest, identifiesNoFile) {
    home_.write("a", "text");
    const auto file = disk_->open(at("a"), Access::Read);
    ASSERT_TRUE(file->lock(std::chrono::milliseconds(0)));
    EXPECT_TRUE(file->isStillAtPath());
    EXPECT_FALSE(file->identity());
    EXPECT_FALSE(disk_->open(at("a"), Access::ReadWrite)->stamp());
    const auto local = platform::nativeDisk().open(at("a"), Access::Read);
    EXPECT_TRUE(local->isStillAtPath());
    EXPECT_TRUE(local->identity());
}

// Asking the volume anew goes by way of a rename that must not do anything.
TEST_F(SharedVolumeTest, lookingUpANameChangesNothing) {
    home_.write("a", "text");
    const auto file = disk_->open(at("a"), Access::ReadWrite);
    EXPECT_TRUE(file->isStillAtPath());
    EXPECT_EQ(home_.read("a"), "text");
    EXPECT_EQ(file->size(), 4U);
    fs::rename(at("a"), at("b"));
    EXPECT_FALSE(file->isStillAtPath());
    EXPECT_FALSE(disk_->exists(at("a")));
    EXPECT_TRUE(disk_->exists(at("b")));
    EXPECT_THROW(disk_->open(at("a"), Access::Read), compound::Error);
    EXPECT_EQ(disk_->list(at(".")).size(), 1U);
    home_.write("a", "another");
    EXPECT_FALSE(file->isStillAtPath());
    EXPECT_EQ(home_.read("a"), "another");
    EXPECT_EQ(home_.read("b"), "text");
}

// Another machine may remember the name of a file that was replaced; its content tells.
TEST_F(SharedVolumeTest, aRetiredFileIsNoLongerAtItsPath) {
    home_.write("a", QByteArray(600, 'x'));
    const auto local = platform::nativeDisk().open(at("a"), Access::ReadWrite);
    local->retire();
    EXPECT_EQ(home_.read("a"), QByteArray(600, 'x')) << "no other machine can have opened it";
    const auto file = disk_->open(at("a"), Access::Read);
    EXPECT_TRUE(file->isStillAtPath());
    const auto replaced = disk_->open(at("a"), Access::ReadWrite);
    fs::rename(at("a"), at("c"));
    replaced->retire();
    fs::rename(at("c"), at("a")); // as a name that is remembered leads to it
    EXPECT_FALSE(file->isStillAtPath());
    EXPECT_TRUE(disk_->create(at("b"))->isStillAtPath()) << "an empty one is none";
    home_.write("snapshot", QByteArray(600, 'x'));
    fs::create_hard_link(at("snapshot"), at("d"));
    disk_->open(at("d"), Access::ReadWrite)->retire();
    EXPECT_EQ(home_.read("snapshot"), QByteArray(600, 'x')) << "its other name is still used";
}

TEST_F(SharedVolumeTest, asksForWhatStatTells) {
    home_.write("a", "text");
    struct stat told {};
    struct stat asked {};
    ASSERT_EQ(::stat(at("a").c_str(), &told), 0);
    ASSERT_TRUE(platform::askStatus(at("a"), asked));
    EXPECT_EQ(asked.st_dev, told.st_dev);
    EXPECT_EQ(asked.st_ino, told.st_ino);
    EXPECT_EQ(asked.st_size, told.st_size);
    EXPECT_EQ(asked.st_mtim.tv_nsec, told.st_mtim.tv_nsec);
    EXPECT_EQ(asked.st_ctim.tv_sec, told.st_ctim.tv_sec);
    EXPECT_FALSE(platform::askStatus(at("none"), asked));
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(SharedVolumeTest, withoutLocksIsRefusedWithTheReason) {
    for (const int cause : {ENOLCK, EOPNOTSUPP, ENOSYS}) {
        const compound::Error error = platform::lockFailure(cause, "/library/Pumps.stg");
        EXPECT_EQ(error.file(), "/library/Pumps.stg");
        EXPECT_EQ(error.code(), ErrorCode::Failed);
        EXPECT_NE(error.cause().find("offers no file locks"), std::string::npos);
    }
    EXPECT_EQ(platform::lockFailure(EIO, "/a").cause().find("offers"), std::string::npos);
}

} // namespace
