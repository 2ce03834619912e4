// Whether other processes' writes to a file are noticed, and nothing else is taken for one.
#include "compound/compound_file.h"
#include "compound/read_cache.h"
#include "platform/file_watch.h"
#include "platform/native_disk.h"
#include "platform/own_home.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <sched.h>
#include <string>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/sendfile.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using compound::Access;
using compound::CompoundFile;
using compound::DiskFile;
using compound::FileWatch;
using platform::nativeDisk;
namespace fs = std::filesystem;

constexpr std::size_t kBytes = 20000;
constexpr int kCannot = 77;

// What `act` returns when another process runs it.
int elsewhere(const std::function<int()>& act) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(act());
    }
    int status = -1;
    (void)::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int storeThroughMapping(const char* path) {
    const int file = ::open(path, O_RDWR);
    void* mapped = ::mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::close(file);
    if (mapped == MAP_FAILED) {
        return 1;
    }
    static_cast<char*>(mapped)[9000] = 'm';
    return ::munmap(mapped, kBytes);
}

int replaceFile(const char* path) {
    const std::string other = std::string(path) + ".new";
    return ::close(::open(other.c_str(), O_WRONLY | O_CREAT, 0600)) + ::rename(other.c_str(), path);
}

int writeByLink(const char* path) {
    const std::string link = std::string(path) + ".link";
    return ::link(path, link.c_str()) + (::truncate(link.c_str(), kBytes) == 0 ? 0 : 1);
}

class FileWatchTest : public testing::Test {
  protected:
    fs::path at(const std::string& name) const { return home_.root().toStdString() + "/" + name; }

    std::unique_ptr<DiskFile> openLooked(const std::string& name,
                                         compound::Disk& disk = nativeDisk()) const {
        auto file = disk.open(at(name), Access::ReadWrite);
        EXPECT_TRUE(file->lock(std::chrono::milliseconds(1000)) && file->isStillAtPath());
        return file;
    }

    std::unique_ptr<FileWatch> watch(const std::string& name) const {
        home_.write(QString::fromStdString(name), QByteArray(kBytes, 'a'));
        return openLooked(name)->watch();
    }

    void SetUp() override {
        if (!watch("first")) {
            GTEST_SKIP() << "the system, or this file system, has no such watch";
        }
    }

    OwnHome home_;
};

int writeTo(const fs::path& path) {
    return ::truncate(path.c_str(), kBytes - 1);
}

TEST_F(FileWatchTest, tellsOfWhateverAnotherProcessWrites) {
    struct Way {
        const char* what;
        int (*act)(const char* path);
    };
    const std::array ways{
        Way{"write",
            [](const char* p) { return ::pwrite(::open(p, O_RDWR), "x", 1, 600) == 1 ? 0 : 1; }},
        Way{"truncate", [](const char* p) { return ::truncate(p, kBytes); }},
        Way{"emptied", [](const char* p) { return ::open(p, O_RDONLY | O_TRUNC) < 0 ? 1 : 0; }},
        Way{"fallocate", [](const char* p) { return ::posix_fallocate(::open(p, O_RDWR), 0, 9); }},
        Way{"sendfile",
            [](const char* p) {
                const int from = ::open(p, O_RDONLY);
                return ::sendfile(::open(p, O_WRONLY), from, nullptr, 900) == 900 ? 0 : 1;
            }},
        Way{"mapping", storeThroughMapping},
        Way{"another name", writeByLink},
        Way{"replaced", replaceFile},
        Way{"removed", [](const char* p) { return ::unlink(p); }}};
    for (const Way& way : ways) {
        const auto watched = watch("a");
        ASSERT_TRUE(watched) << way.what;
        EXPECT_EQ(elsewhere([&] { return way.act(at("a").c_str()); }), 0) << way.what;
        EXPECT_FALSE(watched->isUntouched()) << way.what;
        EXPECT_FALSE(watched->isUntouched()) << way.what << " is forgotten";
        fs::remove(at("a.link"));
    }
}

TEST_F(FileWatchTest, tellsOfAWriterThatHadTheFileOpenBefore) {
    home_.write("a", QByteArray(kBytes, 'a'));
    const int early = ::open(at("a").c_str(), O_RDWR | O_CLOEXEC);
    const auto watched = openLooked("a")->watch();
    EXPECT_TRUE(watched->isUntouched());
    EXPECT_EQ(elsewhere([&] { return ::pwrite(early, "x", 1, 600) == 1 ? 0 : 1; }), 0);
    EXPECT_FALSE(watched->isUntouched());
    ::close(early);
}

TEST_F(FileWatchTest, takesNeitherOwnWritesNorOthersReadingForAWrite) {
    const auto watched = watch("a");
    for (int round = 0; round < 3; ++round) {
        const auto file = openLooked("a");
        const std::array<std::byte, 700> bytes{};
        file->write(600, bytes);
        file->extend(file->size() + 5000);
        file->truncate(kBytes);
        file->sync();
        EXPECT_TRUE(watched->isUntouched());
    }
    EXPECT_EQ(elsewhere([&] {
                  char read = 0;
                  return ::read(::open(at("a").c_str(), O_RDONLY), &read, 1) == 1 ? 0 : 1;
              }),
              0);
    EXPECT_TRUE(watched->isUntouched());
    EXPECT_EQ(elsewhere([&] { return writeTo(at("a")); }), 0);
    openLooked("a")->truncate(kBytes); // ours after theirs does not cover it up
    EXPECT_FALSE(watched->isUntouched());
}

// The queues of events go from one watch to the next.
TEST_F(FileWatchTest, keepsFilesApartAndLastsForManyInTurn) {
    std::vector<std::unique_ptr<FileWatch>> all;
    for (char name = 'a'; all.empty() || all.back(); ++name) {
        ASSERT_LT(name, 'z') << "as many as there are files";
        all.push_back(watch(std::string(1, name)));
    }
    all.pop_back();
    EXPECT_EQ(elsewhere([&] { return writeTo(at("b")); }), 0);
    const auto untouched =
        std::count_if(all.begin(), all.end(), [](const auto& each) { return each->isUntouched(); });
    EXPECT_EQ(static_cast<std::size_t>(untouched), all.size() - 1);
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(elsewhere([&] { return writeTo(at("a")); }), 0); // left unread
        all.front() = nullptr;
        all.front() = watch("c");
        ASSERT_TRUE(all.front()) << round;
        EXPECT_EQ(elsewhere([&] { return writeTo(at("a")); }), 0);
        EXPECT_TRUE(all.front()->isUntouched()) << round;
        EXPECT_EQ(elsewhere([&] { return writeTo(at("c")); }), 0);
        EXPECT_FALSE(all.front()->isUntouched()) << round;
    }
}

// What it reads would be lost to its parent, and so would a watch that it ends.
TEST_F(FileWatchTest, isNotTakenAwayByAForkedChild) {
    auto watched = watch("a");
    EXPECT_EQ(elsewhere([&] { return writeTo(at("a")); }), 0);
    EXPECT_EQ(elsewhere([&] { return watched->isUntouched() ? 1 : 0; }), 0);
    EXPECT_FALSE(watched->isUntouched());
    watched = watch("b");
    EXPECT_EQ(elsewhere([&] {
                  watched = nullptr;
                  return 0;
              }),
              0);
    EXPECT_EQ(elsewhere([&] { return writeTo(at("b")); }), 0);
    EXPECT_FALSE(watched->isUntouched());
}

// A volume that is taken away takes its watches along, and nobody tells.
TEST_F(FileWatchTest, knowsEachMountByANumberOfItsOwn) {
    home_.write("one/a", QByteArray(kBytes, 'a'));
    fs::create_directory(at("other"));
    const int result = elsewhere([&] {
        const auto one = openLooked("one/a")->place();
        if ((::geteuid() == 0 ? ::unshare(CLONE_NEWNS) : ::unshare(CLONE_NEWNS | CLONE_NEWUSER)) ||
            ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) ||
            ::mount(at("one").c_str(), at("other").c_str(), nullptr, MS_BIND, nullptr)) {
            return kCannot;
        }
        const auto other = openLooked("other/a")->place();
        const bool isOneFile = one->device == other->device && one->number == other->number;
        return isOneFile && one->mount != 0 && !one->isSamePlaceAs(*other) ? 0 : 1;
    });
    if (result == kCannot) {
        GTEST_SKIP() << "nothing can be mounted here";
    }
    EXPECT_EQ(result, 0);
}

TEST_F(FileWatchTest, isNotToBeHadOnASharedVolume) {
    const auto shared = platform::makeNativeDisk(platform::Volumes::AllShared,
                                                 [] { return std::chrono::nanoseconds(); });
    EXPECT_FALSE(openLooked("first", *shared)->watch());
}

// The whole of it: what a process goes on with is given up when another one edits the file in place
// and leaves the header alone.
TEST_F(FileWatchTest, endsWhatIsRememberedOfAFile) {
    constexpr std::u16string_view kNames[] = {u"first stream", u"other stream"};
    const auto create = [&] {
        CompoundFile file = CompoundFile::create(nativeDisk().create(at("group")));
        for (const std::u16string_view name : kNames) {
            file.root().createStream(name);
        }
        file.commit();
    };
    create();
    compound::ReadCache cache;
    const auto append = [&] {
        auto file = CompoundFile::open(openLooked("group"), Access::ReadWrite, &cache);
        file.root().openStream(kNames[0]).append(std::array<std::byte, 100>{});
        file.commit();
    };
    append();
    append(); // and is watched from here on
    append();
    const std::string content = home_.read("group").toStdString();
    const std::string name(reinterpret_cast<const char*>(kNames[1].data()), kNames[1].size() * 2);
    EXPECT_EQ(elsewhere([&] {
                  const int file = ::open(at("group").c_str(), O_RDWR);
                  bool isEdited = false;
                  for (std::size_t i = content.find(name); i != std::string::npos;
                       i = content.find(name, i + 1)) {
                      isEdited = ::pwrite(file, "O", 1, static_cast<off_t>(i)) == 1;
                  }
                  return isEdited ? 0 : 1;
              }),
              0);
    append();
    auto file = CompoundFile::open(openLooked("group"), Access::Read, &cache);
    EXPECT_EQ(file.root().find(kNames[1])->name, u"Other stream");
    EXPECT_EQ(file.root().openStream(kNames[0]).size(), 400U);
}

} // namespace
