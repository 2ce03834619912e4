#include "compound/error.h"
#include "platform/file_descriptor.h"
#include "platform/native_disk.h"
#include "platform/output_file.h"
#include "platform/own_home.h"
#include "platform/shared_volume.h"
#include "platform/trash.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace {

using compound::Access;
using compound::ErrorCode;
using platform::nativeDisk;
using std::chrono::milliseconds;
namespace fs = std::filesystem;

class NativeDiskTest : public testing::Test {
  protected:
    fs::path at(const std::string& name) const { return home_.root().toStdString() + "/" + name; }

    void write(const std::string& name, const std::string& content) const {
        home_.write(QString::fromStdString(name), QByteArray::fromStdString(content));
    }

    std::string read(const std::string& name) const {
        return home_.read(QString::fromStdString(name)).toStdString();
    }

    OwnHome home_;
};

template <typename Action>
ErrorCode codeOf(Action action) {
    try {
        action();
    } catch (const compound::Error& error) {
        EXPECT_FALSE(error.file().empty());
        return error.code();
    }
    ADD_FAILURE() << "no error";
    return ErrorCode::Failed;
}

std::span<const std::byte> bytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

std::string textAt(compound::DiskFile& file, std::uint64_t offset, std::size_t length) {
    std::string text(length, '?');
    text.resize(file.read(offset, std::as_writable_bytes(std::span(text))));
    return text;
}

TEST_F(NativeDiskTest, readsAndWritesAnywhereInAFile) {
    const auto file = nativeDisk().create(at("a"));
    file->write(4, bytesOf("tail"));
    file->write(0, bytesOf("head"));
    EXPECT_EQ(textAt(*file, 2, 4), "adta");
    EXPECT_EQ(textAt(*file, 6, 100), "il");
    EXPECT_EQ(textAt(*file, 100, 4), "");
    file->truncate(2);
    file->sync();
    EXPECT_EQ(file->size(), 2U);
    EXPECT_EQ(read("a"), "he");
    EXPECT_EQ(codeOf([&] { nativeDisk().create(at("a")); }), ErrorCode::Exists);
}

// Opening a pipe for reading would wait for somebody who writes to it.
TEST_F(NativeDiskTest, refusesWhatIsNoRegularFileWithoutWaiting) {
    ASSERT_EQ(::mkfifo(at("pipe.bmp").c_str(), 0600), 0);
    fs::create_directory(at("folder.stg"));
    fs::create_symlink("pipe.bmp", at("link.bmp"));
    for (const char* name : {"pipe.bmp", "folder.stg", "link.bmp"}) {
        for (const Access access : {Access::Read, Access::ReadWrite}) {
            EXPECT_EQ(codeOf([&] { nativeDisk().open(at(name), access); }), ErrorCode::Failed)
                << name;
        }
    }
    EXPECT_EQ(codeOf([&] { nativeDisk().open(at("none"), Access::Read); }), ErrorCode::NotFound);
}

// What is told of a large folder in pieces may have the file by both names, or by none.
TEST_F(NativeDiskTest, listsALargeFolderAsItIsAtOneMoment) {
    if (platform::isSharedVolume(at(""))) {
        GTEST_SKIP() << "such a file system tells a folder in pieces";
    }
    constexpr int kFiles = 2500;
    constexpr int kListings = 300;
    for (int i = 0; i < kFiles; ++i) {
        write("file " + std::to_string(i), "");
    }
    std::atomic<bool> isEnough = false;
    std::thread other([&] {
        std::string name = "file 0";
        for (int i = kFiles; !isEnough; ++i) {
            const std::string next = "file " + std::to_string(i);
            EXPECT_EQ(::rename(at(name).c_str(), at(next).c_str()), 0);
            name = next;
        }
    });
    std::map<std::size_t, int> listings; // by how many files they tell
    for (int i = 0; i < kListings; ++i) {
        ++listings[nativeDisk().list(at("")).size()];
    }
    isEnough = true;
    other.join();
    EXPECT_EQ(listings, (std::map<std::size_t, int>{{kFiles, kListings}}));
}

TEST_F(NativeDiskTest, opensAReadOnlyFileForReadingOnly) {
    write("a", "text");
    const auto file = nativeDisk().open(at("a"), Access::Read);
    EXPECT_EQ(textAt(*file, 0, 4), "text");
    EXPECT_THROW(file->write(0, bytesOf("x")), compound::Error);
    EXPECT_EQ(read("a"), "text");
}

TEST_F(NativeDiskTest, locksEveryOtherHandleOutUntilTheHolderGoes) {
    write("a", "");
    auto holder = nativeDisk().open(at("a"), Access::Read);
    const auto other = nativeDisk().open(at("a"), Access::ReadWrite);
    EXPECT_TRUE(holder->lock(milliseconds(0)));
    EXPECT_FALSE(other->lock(milliseconds(30)));
    std::thread release([&] {
        std::this_thread::sleep_for(milliseconds(20));
        holder.reset();
    });
    EXPECT_TRUE(other->lock(milliseconds(20000)));
    release.join();
}

TEST_F(NativeDiskTest, noticesThatThePathNamesAnotherFile) {
    write("a", "old");
    write("b", "new");
    const auto file = nativeDisk().open(at("a"), Access::Read);
    EXPECT_TRUE(file->isStillAtPath());
    nativeDisk().renameReplacing(at("b"), at("a"));
    EXPECT_FALSE(file->isStillAtPath());
    fs::remove(at("a"));
    EXPECT_FALSE(file->isStillAtPath());
}

TEST_F(NativeDiskTest, renamesWithoutReplacing) {
    write("a", "one");
    write("b", "two");
    EXPECT_EQ(codeOf([&] { nativeDisk().renameWithoutReplacing(at("a"), at("b")); }),
              ErrorCode::Exists);
    EXPECT_EQ(read("a"), "one");
    EXPECT_EQ(read("b"), "two");
    nativeDisk().renameWithoutReplacing(at("a"), at("c"));
    EXPECT_FALSE(nativeDisk().exists(at("a")));
    EXPECT_EQ(read("c"), "one");
    EXPECT_EQ(codeOf([&] { nativeDisk().renameWithoutReplacing(at("a"), at("d")); }),
              ErrorCode::NotFound);
}

TEST_F(NativeDiskTest, followsAndMakesLinks) {
    fs::create_directories(at("library"));
    write("elsewhere/real.stg", "content");
    fs::create_symlink("../elsewhere/real.stg", at("library/a.stg"));
    fs::create_symlink("a.stg", at("library/second.stg"));
    fs::create_symlink(at("elsewhere/real.stg"), at("library/absolute.stg"));
    fs::create_symlink("gone", at("library/dangling.stg"));
    const fs::path real = fs::canonical(at("elsewhere/real.stg"));
    EXPECT_EQ(nativeDisk().resolved(at("library/second.stg")), real);
    EXPECT_EQ(nativeDisk().resolved(at("elsewhere/real.stg")), at("elsewhere/real.stg"));
    EXPECT_EQ(codeOf([&] { nativeDisk().resolved(at("library/dangling.stg")); }),
              ErrorCode::NotFound);
    nativeDisk().linkAs(at("library/a.stg"), real, at("library/b.stg"));
    nativeDisk().linkAs(at("library/absolute.stg"), real, at("library/c.stg"));
    EXPECT_EQ(fs::read_symlink(at("library/b.stg")), "../elsewhere/real.stg");
    EXPECT_EQ(fs::read_symlink(at("library/c.stg")), real);
    EXPECT_EQ(read("library/b.stg"), "content");
    EXPECT_EQ(
        codeOf([&] { nativeDisk().linkAs(at("library/a.stg"), real, at("library/dangling.stg")); }),
        ErrorCode::Exists);
}

// The way round for file systems that cannot rename without replacing.
TEST_F(NativeDiskTest, renamesByLinkingWithoutReplacing) {
    write("a", "one");
    write("b", "two");
    EXPECT_EQ(codeOf([&] { platform::renameByLinking(at("a"), at("b")); }), ErrorCode::Exists);
    EXPECT_EQ(read("b"), "two");
    platform::renameByLinking(at("a"), at("c"));
    EXPECT_FALSE(fs::exists(at("a")));
    EXPECT_EQ(read("c"), "one");
    // The answer to an earlier call was lost on the way.
    fs::create_hard_link(at("c"), at("d"));
    platform::renameByLinking(at("c"), at("d"));
    EXPECT_FALSE(fs::exists(at("c")));
    EXPECT_EQ(read("d"), "one");
}

// Where files have one name only, the programs take turns.
TEST_F(NativeDiskTest, renamesInTurnWithoutReplacing) {
    write("a", "one");
    write("b", "two");
    write(".txs-0000000000000000.new", ""); // left by a crash
    EXPECT_EQ(codeOf([&] { platform::renameInTurn(at("a"), at("b")); }), ErrorCode::Exists);
    EXPECT_EQ(read("b"), "two");
    EXPECT_EQ(codeOf([&] { platform::renameInTurn(at("none"), at("c")); }), ErrorCode::NotFound);
    platform::renameInTurn(at("a"), at("c"));
    EXPECT_EQ(read("c"), "one");
    EXPECT_EQ(nativeDisk().list(at(".")).size(), 2U) << "something is left behind";
    for (int round = 0; round < 200; ++round) {
        write("a", "a");
        write("b", "b");
        const auto refusals = [&](const char* from) {
            try {
                platform::renameInTurn(at(from), at("d"));
                return 0;
            } catch (const compound::Error& error) {
                return error.code() == ErrorCode::Exists ? 1 : 2;
            }
        };
        int others = 0;
        std::thread other([&] { others = refusals("a"); });
        const int own = refusals("b");
        other.join();
        ASSERT_EQ(own + others, 1) << "both have got the name, or neither";
        fs::remove(at("d"));
    }
}

TEST_F(NativeDiskTest, tellsRegularFilesFromTheRestInAFolder) {
    write("library/a.stg", "");
    fs::create_directory(at("library/sub.stg"));
    ASSERT_EQ(::mkfifo(at("library/pipe.stg").c_str(), 0600), 0);
    fs::create_symlink("a.stg", at("library/link.stg"));
    fs::create_symlink("gone", at("library/dangling.stg"));
    std::set<std::string> regular;
    const auto entries = nativeDisk().list(at("library"));
    for (const auto& entry : entries) {
        if (entry.isRegularFile) {
            regular.insert(entry.name.string());
        }
    }
    EXPECT_EQ(entries.size(), 5U);
    EXPECT_EQ(regular, (std::set<std::string>{"a.stg", "link.stg"}));
    EXPECT_EQ(codeOf([&] { nativeDisk().list(at("none")); }), ErrorCode::NotFound);
}

TEST_F(NativeDiskTest, copiesWhatAFileHasBesideItsContent) {
    constexpr std::string_view kNote = "drawn by hand";
    write("a", "");
    fs::permissions(at("a"), fs::perms(0640));
    const bool hasNotes =
        ::setxattr(at("a").c_str(), "user.note", kNote.data(), kNote.size(), 0) == 0;
    const auto from = nativeDisk().open(at("a"), Access::Read);
    const mode_t mask = ::umask(0);
    const auto to = nativeDisk().createPrivate(at("b"));
    ::umask(mask);
    EXPECT_EQ(fs::status(at("b")).permissions(), fs::perms(0600));
    nativeDisk().copyAttributes(*from, *to);
    to->sync();
    EXPECT_EQ(fs::status(at("b")).permissions(), fs::perms(0640));
    std::string note(100, '?');
    const ssize_t length = ::getxattr(at("b").c_str(), "user.note", note.data(), note.size());
    note.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    EXPECT_EQ(note, hasNotes ? kNote : "");
}

// An access control list: one more user may read; the folder of the copy hands on another one.
TEST_F(NativeDiskTest, copiesTheAccessListAndNoneThatWasInherited) {
    const auto listWithUser = [](std::uint32_t user) {
        // Version 2; then tag, permissions, id: owner, that user, group, mask, others.
        struct Entry {
            std::uint16_t tag, permissions;
            std::uint32_t id;
        };
        const std::array<Entry, 5> entries{
            {{0x01, 6, ~0U}, {0x02, 4, user}, {0x04, 0, ~0U}, {0x10, 4, ~0U}, {0x20, 0, ~0U}}};
        std::string list("\x02\0\0\0", 4);
        return list.append(reinterpret_cast<const char*>(entries.data()), sizeof entries);
    };
    const auto listOf = [&](const char* name) {
        std::string list(200, '?');
        const ssize_t length =
            ::getxattr(at(name).c_str(), "system.posix_acl_access", list.data(), list.size());
        return list.substr(0, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    };
    write("listed", "");
    write("plain", "");
    fs::permissions(at("plain"), fs::perms(0644));
    fs::create_directory(at("folder"));
    const std::string list = listWithUser(4711);
    if (::setxattr(at("listed").c_str(), "system.posix_acl_access", list.data(), list.size(), 0) !=
        0) {
        GTEST_SKIP() << "the file system has no access lists";
    }
    const std::string inherited = listWithUser(4712);
    ASSERT_EQ(::setxattr(at("folder").c_str(), "system.posix_acl_default", inherited.data(),
                         inherited.size(), 0),
              0);
    for (const char* name : {"listed", "plain"}) {
        const auto from = nativeDisk().open(at(name), Access::Read);
        const auto to = nativeDisk().createPrivate(at(std::string("folder/") + name));
        nativeDisk().copyAttributes(*from, *to);
    }
    EXPECT_EQ(listOf("folder/listed"), list);
    EXPECT_EQ(listOf("folder/plain"), "");
    EXPECT_EQ(fs::status(at("folder/plain")).permissions(), fs::perms(0644));
}

// A file past the user's limit used to end the program.
TEST_F(NativeDiskTest, tellsOfAFileThatGrowsPastTheLimit) {
    const auto file = nativeDisk().create(at("a"));
    struct rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const struct rlimit small { 4096, before.rlim_max };
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const ErrorCode code = codeOf([&] { file->write(4096, bytesOf("more")); });
    ::setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(code, ErrorCode::TooLarge);
}

// Little and much go different ways.
TEST_F(NativeDiskTest, lengthensAFileByZerosThatHaveTheirPlace) {
    const auto file = nativeDisk().create(at("a"));
    file->write(0, bytesOf("head"));
    for (const std::uint64_t size :
         {4096ULL, 12288ULL, 77824ULL, 143361ULL, 5000000ULL, 5000001ULL}) {
        file->extend(size);
        ASSERT_EQ(file->size(), size);
        file->sync();
        struct stat status {};
        ASSERT_EQ(::stat(at("a").c_str(), &status), 0);
        EXPECT_GE(static_cast<std::uint64_t>(status.st_blocks) * 512, size);
    }
    file->extend(100);
    EXPECT_EQ(file->size(), 5000001U);
    EXPECT_EQ(read("a"), "head" + std::string(5000001 - 4, '\0'));
}

TEST_F(NativeDiskTest, leavesAFileThatCannotBeLengthenedAsItWas) {
    const auto file = nativeDisk().create(at("a"));
    file->write(0, bytesOf("head"));
    struct rlimit before {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const struct rlimit small { 4096, before.rlim_max };
    for (const std::uint64_t size : {8192ULL, 5000000ULL}) {
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
        const ErrorCode code = codeOf([&] { file->extend(size); });
        ::setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(code, ErrorCode::TooLarge);
        EXPECT_EQ(read("a"), "head");
    }
}

// As a batch writes them: enough in a row to be handed to the medium on the way, back and forth.
TEST_F(NativeDiskTest, keepsWhatIsWrittenInARow) {
    constexpr std::size_t kPart = 300000;
    constexpr std::size_t kParts = 12;
    const auto file = nativeDisk().create(at("a"));
    std::string expected(kParts * kPart, '-');
    file->write(0, bytesOf(expected));
    for (std::size_t i = 0; i < kParts; ++i) {
        const std::size_t part = i < kParts / 2 ? i : kParts + kParts / 2 - 1 - i;
        const std::string text(kPart, static_cast<char>('a' + i));
        file->write(part * kPart, bytesOf(text));
        expected.replace(part * kPart, kPart, text);
    }
    file->sync();
    EXPECT_EQ(read("a"), expected);
}

TEST_F(NativeDiskTest, writesPartsOneBehindTheOther) {
    const auto file = nativeDisk().create(at("a"));
    std::vector<std::string> texts;
    std::string whole = "..";
    for (int i = 0; i < 150; ++i) { // more than one call takes
        texts.push_back(
            std::string(static_cast<std::size_t>(i % 7), static_cast<char>('a' + i % 26)));
        whole += texts.back();
    }
    std::vector<std::span<const std::byte>> parts(texts.size());
    std::transform(texts.begin(), texts.end(), parts.begin(), bytesOf);
    file->write(0, bytesOf(".."));
    file->writeParts(2, parts);
    EXPECT_EQ(read("a"), whole);
    const auto readOnly = nativeDisk().open(at("a"), Access::Read);
    EXPECT_THROW(readOnly->writeParts(0, parts), compound::Error);
}

std::chrono::nanoseconds timeOfDay{};

// A change within the tick of the last time stamp leaves the stamp as it is.
TEST_F(NativeDiskTest, callsAFileSettledThreeSecondsAfterItsLastChange) {
    write("a", "text");
    struct stat status {};
    ASSERT_EQ(::stat(at("a").c_str(), &status), 0);
    const auto changed = std::chrono::seconds(status.st_ctim.tv_sec) +
                         std::chrono::nanoseconds(status.st_ctim.tv_nsec);
    const auto disk =
        platform::makeNativeDisk(platform::Volumes::AsTheyAre, [] { return timeOfDay; });
    const auto file = disk->open(at("a"), Access::Read);
    const auto isSettledAfter = [&](std::chrono::nanoseconds time) {
        timeOfDay = changed + time;
        EXPECT_TRUE(file->isStillAtPath());
        const auto identity = file->identity();
        return identity && identity->settled;
    };
    EXPECT_FALSE(isSettledAfter(-std::chrono::hours(1))); // the clock was put back
    EXPECT_FALSE(isSettledAfter(std::chrono::seconds(0)));
    EXPECT_FALSE(isSettledAfter(std::chrono::seconds(3)));
    EXPECT_TRUE(isSettledAfter(std::chrono::seconds(3) + std::chrono::nanoseconds(1)));
}

// Whatever comes after a stamp is told apart from it, within the same tick of the clock as well.
TEST_F(NativeDiskTest, stampsAFileSoThatNoChangeGoesUnnoticed) {
    write("a", "text");
    const auto file = nativeDisk().open(at("a"), Access::ReadWrite);
    const auto other = nativeDisk().open(at("a"), Access::ReadWrite);
    for (int round = 0; round < 20; ++round) {
        file->write(0, bytesOf("text"));
        const auto stamped = file->stamp();
        ASSERT_TRUE(stamped);
        EXPECT_TRUE(stamped->settled);
        EXPECT_TRUE(other->isStillAtPath());
        EXPECT_TRUE(other->identity()->isSameStateAs(*stamped));
        other->write(0, bytesOf("TEXT"));
        EXPECT_TRUE(other->isStillAtPath());
        EXPECT_FALSE(other->identity()->isSameStateAs(*stamped));
    }
}

// Two groups of one name that are removed one after the other must both be found in the trash.
TEST_F(NativeDiskTest, keepsEveryTrashedFile) {
    for (const char* content : {"first", "second", "third"}) {
        write("library/Pumps.stg", content);
        nativeDisk().trash(at("library/Pumps.stg"));
        EXPECT_FALSE(nativeDisk().exists(at("library/Pumps.stg")));
    }
    EXPECT_EQ(read("trash/Pumps.stg"), "first");
    EXPECT_EQ(read("trash/Pumps.stg.2"), "second");
    EXPECT_EQ(read("trash/Pumps.stg.3"), "third");
    EXPECT_EQ(codeOf([&] { nativeDisk().trash(at("library/Pumps.stg")); }), ErrorCode::NotFound);
}

TEST_F(NativeDiskTest, leavesAFileWhereItIsWhenTheTrashCannotTakeIt) {
    write("trash", "a file where the folder should be");
    write("a.stg", "kept");
    EXPECT_THROW(nativeDisk().trash(at("a.stg")), compound::Error);
    EXPECT_EQ(read("a.stg"), "kept");
}

// The desktop's trash is the home's, or one at the top of the volume where that is another one.
// Either keeps a note on each file, and knows files by text, so a name that is none goes elsewhere.
TEST_F(NativeDiskTest, usesTheDesktopsTrashAndKeepsWhatItCannotName) {
    qunsetenv(platform::kHomeVariable);
    qputenv("XDG_DATA_HOME", home_.at("share").toUtf8());
    fs::create_directory(at("share"));
    write("library/a.err", "plain");
    write("library/odd", "odd");
    fs::rename(at("library/odd"), at("library/odd\xff.err"));
    const fs::path trashed = platform::moveToTrash(at("library/a.err"));
    nativeDisk().trash(at("library/odd\xff.err"));
    qunsetenv("XDG_DATA_HOME");
    EXPECT_TRUE(fs::is_empty(at("library")));
    EXPECT_TRUE(fs::remove(at("share/TXSGraphicsLib/kept/odd\xff.err"))) << "not kept";
    fs::path note = trashed.parent_path().parent_path() / "info" / trashed.filename();
    note += ".trashinfo";
    EXPECT_EQ(trashed.parent_path().filename(), "files");
    EXPECT_TRUE(fs::exists(note)) << note;
    platform::restoreFromTrash(trashed, at("library/back.err"));
    EXPECT_EQ(read("library/back.err"), "plain");
    EXPECT_FALSE(fs::exists(trashed));
    EXPECT_FALSE(fs::exists(note)) << note;
    EXPECT_EQ(codeOf([&] { platform::restoreFromTrash(trashed, at("b")); }), ErrorCode::NotFound);
}

// Shared memory lies on another volume than the temporary folder, so a rename cannot do it.
class OtherVolume : public NativeDiskTest {
  protected:
    void SetUp() override {
        name_ = "/dev/shm/txs-XXXXXX";
        if (!fs::exists("/dev/shm") || ::mkdtemp(name_.data()) == nullptr) {
            name_.clear();
            GTEST_SKIP() << "no second volume";
        }
    }
    void TearDown() override {
        if (!name_.empty()) {
            fs::remove_all(name_);
        }
    }
    fs::path there(const std::string& name) const { return fs::path(name_) / name; }

    std::string name_;
};

TEST_F(OtherVolume, getsAFileFromTheTrashOrGivesItOne) {
    nativeDisk().create(there("a.err"))->write(0, bytesOf("content"));
    const fs::path trashed = platform::moveToTrash(there("a.err"));
    EXPECT_FALSE(fs::exists(there("a.err")));
    EXPECT_EQ(read("trash/a.err"), "content");
    nativeDisk().create(there("taken"))->write(0, bytesOf("mine"));
    EXPECT_EQ(codeOf([&] { platform::restoreFromTrash(trashed, there("taken")); }),
              ErrorCode::Exists);
    platform::restoreFromTrash(trashed, there("b.err"));
    EXPECT_FALSE(fs::exists(trashed));
    EXPECT_EQ(textAt(*nativeDisk().open(there("b.err"), Access::Read), 0, 99), "content");
}

// Whoever lists the library meanwhile would set half a group aside as damaged.
TEST_F(OtherVolume, hasAFileThatComesThereUnderItsNameOnceItIsWhole) {
    write("trash/Pumps.stg", std::string(std::size_t{1} << 20U, 'p'));
    const auto moveAndGetKilled = [&] {
        std::signal(SIGXFSZ, SIG_DFL);
        const struct rlimit half { std::size_t{1} << 19U, std::size_t{1} << 19U };
        ::setrlimit(RLIMIT_FSIZE, &half);
        platform::restoreFromTrash(at("trash/Pumps.stg"), there("Pumps.stg"));
    };
    EXPECT_EXIT(moveAndGetKilled(), testing::KilledBySignal(SIGXFSZ), "");
    EXPECT_FALSE(fs::exists(there("Pumps.stg")));
    EXPECT_EQ(std::distance(fs::directory_iterator(name_), {}), 1) << "none was begun";
    platform::restoreFromTrash(at("trash/Pumps.stg"), there("Pumps.stg"));
    EXPECT_EQ(fs::file_size(there("Pumps.stg")), std::size_t{1} << 20U);
    EXPECT_EQ(std::distance(fs::directory_iterator(name_), {}), 1) << "what was left stays";
}

// Of one that is being written nothing goes.
TEST_F(NativeDiskTest, whatAKilledProgramLeavesOfAnOutputGoesWithTheNext) {
    fs::create_directory(at("out"));
    const auto writeAndGetKilled = [&] {
        platform::writeOutputFile(at("out/a.pdf"), platform::IfFileExists::Refuse,
                                  [](compound::DiskFile& file) {
                                      file.write(0, bytesOf("a part"));
                                      ::_exit(0);
                                  });
    };
    EXPECT_EXIT(writeAndGetKilled(), testing::ExitedWithCode(0), "");
    EXPECT_FALSE(fs::is_empty(at("out"))) << "none was begun";
    platform::writeOutputFile(
        at("out/a.pdf"), platform::IfFileExists::Refuse, [&](compound::DiskFile& file) {
            file.write(0, bytesOf("all"));
            platform::writeOutputFile(at("out/b.pdf"), platform::IfFileExists::Refuse,
                                      bytesOf("beside"));
        });
    EXPECT_EQ(read("out/a.pdf"), "all");
    EXPECT_EQ(read("out/b.pdf"), "beside");
    EXPECT_EQ(std::distance(fs::directory_iterator(at("out")), {}), 2) << "what was left stays";
}

} // namespace
