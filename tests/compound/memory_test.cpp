// What the process remembers of a file from one opening to the next, and when it must not.
#include "compound/allocation_meter.h"
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/raw_file.h"
#include "compound/read_cache.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

namespace compound_tests {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::Error;
using compound::ErrorCode;
using compound::ReadCache;
using Call = MemoryDisk::Call;

const std::filesystem::path kPath = "group.stg";

class MemoryTest : public testing::Test {
  protected:
    MemoryTest() {
        CompoundFile file = CompoundFile::create(disk_.create(kPath));
        auto storage = file.root().createStorage(u"S");
        for (const char16_t letter : std::u16string_view(u"abcdefg")) {
            storage.createStream(std::u16string(1, letter)).assign(patterned(9000, letter));
        }
        file.commit();
    }

    CompoundFile open(Access access) {
        return CompoundFile::open(disk_.open(kPath, access), access, &cache_);
    }

    // Calls of one kind while `use` runs.
    template <typename Use>
    int count(Call which, Use use) {
        int calls = 0;
        disk_.setInterceptor([&](Call kind) { calls += kind == which ? 1 : 0; });
        use();
        disk_.setInterceptor({});
        return calls;
    }

    int readsOfOneReading() {
        return count(Call::Read,
                     [&] { EXPECT_TRUE(open(Access::Read).root().openStorage(u"S").find(u"c")); });
    }

    // Exchanges two names as another program might that edits in place: the header stays.
    void exchange(std::u16string_view one, std::u16string_view other) {
        RawFile raw(disk_.content(kPath));
        const std::size_t first = raw.entry(one);
        const std::size_t second = raw.entry(other);
        const auto file = disk_.open(kPath, Access::ReadWrite);
        file->write(first, std::as_bytes(std::span(other)));
        file->write(second, std::as_bytes(std::span(one)));
    }

    MemoryDisk disk_;
    ReadCache cache_;
};

TEST_F(MemoryTest, ASecondReadingReadsTheHeaderOnly) {
    EXPECT_GT(readsOfOneReading(), 1);
    EXPECT_EQ(readsOfOneReading(), 1);
}

// What a commit has written is known; so are the pages that it has read.
TEST_F(MemoryTest, AChangeAfterAChangeReadsTheHeaderOnly) {
    const auto change = [&](std::u16string_view from, std::u16string_view to) {
        return count(Call::Read, [&] {
            CompoundFile file = open(Access::ReadWrite);
            file.root().openStorage(u"S").rename(from, to);
            file.commit();
        });
    };
    EXPECT_GT(change(u"c", u"C1"), 1);
    EXPECT_EQ(change(u"C1", u"c"), 1);
    EXPECT_EQ(readsOfOneReading(), 1);
    EXPECT_EQ(change(u"c", u"C2"), 1);
    EXPECT_EQ(findingsOf(disk_, kPath), "");
}

// Or reading one picture would begin anew each time, as long as the file's last change is recent.
TEST_F(MemoryTest, MorePagesThanAreKeptDoNotEndTheMemory) {
    constexpr std::size_t kStreams = 1000;
    ReadCache small(std::size_t{64} << 10U);
    disk_.setIsBusy(true);
    const auto use = [&](Access access) {
        return CompoundFile::open(disk_.open(kPath, access), access, &small);
    };
    {
        CompoundFile file = use(Access::ReadWrite);
        auto storage = file.root().openStorage(u"S");
        for (std::size_t i = 0; i < kStreams; ++i) {
            const std::string digits = std::to_string(i);
            storage.createStream(std::u16string(digits.begin(), digits.end()));
        }
        file.commit();
    }
    const auto reads = [&] {
        return count(Call::Read,
                     [&] { EXPECT_TRUE(use(Access::Read).root().openStorage(u"S").find(u"77")); });
    };
    EXPECT_EQ(use(Access::Read).root().openStorage(u"S").elements().skip(2 * kStreams),
              kStreams + 7);
    EXPECT_GT(reads(), 1);
    EXPECT_EQ(reads(), 1);
}

TEST_F(MemoryTest, WhatAnExceptionHasLeftIsNotKept) {
    try {
        CompoundFile file = open(Access::Read);
        EXPECT_TRUE(file.root().openStorage(u"S").find(u"c"));
        throw std::runtime_error("something went wrong");
    } catch (const std::runtime_error&) {
        EXPECT_GT(readsOfOneReading(), 1);
    }
}

TEST_F(MemoryTest, AWalkThatFailsIsTakenUpAgain) {
    exchange(u"a", u"f");
    CompoundFile file = open(Access::Read);
    const auto storage = file.root().openStorage(u"S");
    int calls = 0;
    int failing = 0;
    disk_.setInterceptor([&](Call) {
        if (calls++ == failing) {
            throw Error(ErrorCode::Failed, kPath, "the disk has failed");
        }
    });
    for (; failing < 20; ++failing) {
        calls = 0;
        try {
            EXPECT_TRUE(storage.find(u"a")) << failing;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::Failed);
        }
    }
    disk_.setInterceptor({});
    EXPECT_TRUE(storage.find(u"a"));
}

TEST_F(MemoryTest, AnEditInPlaceEndsTheTrustInATree) {
    {
        CompoundFile file = open(Access::ReadWrite);
        file.root().openStorage(u"S").createStream(u"added");
        file.commit();
    }
    exchange(u"a", u"f");
    for (const std::u16string_view name : {u"a", u"f"}) {
        CompoundFile file = open(Access::ReadWrite);
        EXPECT_THROW(file.root().openStorage(u"S").createStream(name), Error);
    }
}

// Pages of a directory that another program has changed must not come back with our next change.
TEST_F(MemoryTest, AnEditInPlaceIsNotUndoneByTheNextChange) {
    const auto appendTo = [&](std::u16string_view name) {
        CompoundFile file = open(Access::ReadWrite);
        file.root().openStorage(u"S").openStream(name).append(patterned(10, 1));
        file.commit();
    };
    appendTo(u"c");
    exchange(u"a", u"f");
    const Content before = contentOf(disk_, kPath);
    appendTo(u"d");
    Content expected = before;
    const auto added = patterned(10, 1);
    expected[u"S/d"].insert(expected[u"S/d"].end(), added.begin(), added.end());
    EXPECT_EQ(contentOf(disk_, kPath), expected);
}

// Whatever call fails, and whether the change is dropped or falls: the next operation of the same
// process sees what is in the file.
TEST_F(MemoryTest, NothingIsRememberedOfWhatHasFailed) {
    int calls = 0;
    bool hasFailed = true;
    for (int failing = 0; hasFailed; ++failing) {
        hasFailed = false;
        calls = 0;
        disk_.setInterceptor([&](Call) {
            if (calls++ == failing) {
                hasFailed = true;
                throw Error(ErrorCode::Failed, kPath, "the disk has failed");
            }
        });
        try {
            CompoundFile file = open(Access::ReadWrite);
            file.root().openStorage(u"S").createStream(u"new").assign(patterned(9000, 1));
            file.root().openStorage(u"S").destroy(u"a");
            file.commit();
        } catch (const Error&) {
            EXPECT_TRUE(hasFailed);
        }
        disk_.setInterceptor({});
        const Content content = contentOf(disk_, kPath);
        CompoundFile file = open(Access::ReadWrite);
        ASSERT_EQ(contentOf(file), content) << "call " << failing;
        if (content.contains(u"S/new")) { // the call that failed was one after the commit
            file.root().openStorage(u"S").destroy(u"new");
            file.root().openStorage(u"S").createStream(u"a").assign(patterned(9000, u'a'));
            file.commit();
        }
        ASSERT_EQ(damageOf(disk_, kPath), "") << "call " << failing;
    }
    EXPECT_GT(calls, 10);
}

TEST_F(MemoryTest, AChangeThatIsNotCommittedIsForgotten) {
    const Content before = contentOf(disk_, kPath);
    for (const bool isDropped : {false, true}) {
        {
            CompoundFile file = open(Access::ReadWrite);
            file.root().openStorage(u"S").destroy(u"b");
            file.commit();
            file.root().openStorage(u"S").createStream(u"b").assign(patterned(9000, u'b'));
            file.commit();
            file.root().openStorage(u"S").openStream(u"c").assign(patterned(20000, 1));
            file.root().openStorage(u"S").destroy(u"d");
            if (isDropped) {
                file.dropChanges();
            }
        }
        CompoundFile file = open(Access::Read);
        EXPECT_EQ(contentOf(file), before) << isDropped;
    }
}

// What one change has freed the next one takes, though nothing is counted anew in between.
TEST_F(MemoryTest, FreedSectorsAreKnownToBeFree) {
    std::uint64_t early = 0;
    for (int round = 0; round < 300; ++round) {
        CompoundFile file = open(Access::ReadWrite);
        file.root().openStorage(u"S").openStream(u"a").assign(patterned(90000, u'a'));
        file.commit();
        early = round == 5 ? file.disk().size() : early;
        ASSERT_LE(round > 5 ? file.disk().size() : 0, early + 90000) << round;
    }
    EXPECT_EQ(findingsOf(disk_, kPath), "");
}

// Every header is written once only, so that it can be known by its bytes: the one that is put back
// after a failure as well.
TEST_F(MemoryTest, OnlyTheHeaderOfTheLastCommitIsKnownToBeDurable) {
    const auto syncs = [&](ReadCache* cache) {
        return count(Call::Sync, [&] {
            CompoundFile file =
                CompoundFile::open(disk_.open(kPath, Access::ReadWrite), Access::ReadWrite, cache);
            file.root().openStorage(u"S").openStream(u"a").append(patterned(10, 1));
            file.commit();
        });
    };
    EXPECT_EQ(syncs(&cache_), 3);
    EXPECT_EQ(syncs(&cache_), 2);
    ReadCache other; // another process
    EXPECT_EQ(syncs(&other), 3);
    EXPECT_EQ(syncs(&cache_), 3);
    int calls = 0;
    disk_.setInterceptor([&](Call kind) {
        if (kind == Call::Sync && ++calls == 3) {
            throw Error(ErrorCode::Failed, kPath, "the disk has failed");
        }
    });
    {
        CompoundFile file =
            CompoundFile::open(disk_.open(kPath, Access::ReadWrite), Access::ReadWrite, &other);
        file.root().createStorage(u"T");
        EXPECT_THROW(file.commit(), Error); // and the old header is put back
    }
    disk_.setInterceptor({});
    EXPECT_EQ(syncs(&cache_), 3);
    EXPECT_EQ(findingsOf(disk_, kPath), "");
}

// Another file may get the number of one that has gone, and come to a header of the same bytes:
// who has made that one may have been killed before it was durable.
TEST_F(MemoryTest, AHeaderThatHasComeBackIsNotKnownToBeDurable) {
    const auto change = [&](ReadCache& process, std::u16string_view name) {
        CompoundFile file =
            CompoundFile::open(disk_.open(kPath, Access::ReadWrite), Access::ReadWrite, &process);
        file.root().openStorage(u"S").rename(u"c", name);
        file.commit();
    };
    ReadCache other;
    const auto compacted = disk_.content(kPath);
    const auto number = disk_.glance(kPath)->number;
    change(cache_, u"x");
    const auto header = disk_.content(kPath);
    disk_.removeTemporary(kPath);
    disk_.create(kPath)->write(0, compacted);
    ASSERT_EQ(disk_.glance(kPath)->number, number);
    change(other, u"y");
    ASSERT_TRUE(std::equal(header.begin(), header.begin() + 512, disk_.content(kPath).begin()));
    const int syncs = count(Call::Sync, [&] {
        CompoundFile file = open(Access::ReadWrite);
        file.root().openStorage(u"S").destroy(u"y");
        file.commit();
    });
    EXPECT_EQ(syncs, 3);
}

// More than lies in memory at once: pages of the mini stream go to the file before the commit, and
// are read again.
TEST(ManySmallStreamsTest, AreAddedChangedAndReadInLittleMemory) {
    constexpr std::size_t kStreams = 6000;
    constexpr std::size_t kBytes = 4000;
    constexpr std::size_t kMemory = std::size_t{12} << 20U; // 24 MB of streams
    const auto nameOf = [](std::size_t number) {
        const std::string digits = std::to_string(number);
        return std::u16string(digits.begin(), digits.end());
    };
    const auto expectAll = [&](CompoundFile& file, std::uint32_t changed) {
        for (std::size_t i = 0; i < kStreams; ++i) {
            const std::size_t at = i * 7919 % kStreams; // all over the file
            const std::uint32_t seed = at % 3 == 0 ? changed : 1;
            ASSERT_EQ(file.root().openStream(nameOf(at)).readAll(),
                      patterned(kBytes, seed + static_cast<std::uint32_t>(at)));
        }
    };
    MemoryDisk disk;
    {
        CompoundFile file = CompoundFile::create(disk.create(kPath));
        for (std::size_t i = 0; i < kStreams; ++i) {
            file.root().createStream(nameOf(i)).assign(
                patterned(kBytes, 1 + static_cast<std::uint32_t>(i)));
        }
        file.commit();
    }
    const std::vector<std::byte> before = disk.content(kPath);
    CompoundFile file = openFile(disk, kPath);
    const auto change = [&] {
        for (std::size_t i = 0; i < kStreams; i += 3) {
            file.root().openStream(nameOf(i)).assign(
                patterned(kBytes, 2 + static_cast<std::uint32_t>(i)));
        }
    };
    change();
    expectAll(file, 2);
    file.dropChanges();
    EXPECT_EQ(disk.content(kPath).size(), before.size());
    EXPECT_EQ(findingsOf(disk, kPath), "");
    change();
    file.commit();
    EXPECT_EQ(findingsOf(disk, kPath), "");

    CompoundFile again = openFile(disk, kPath, Access::Read);
    startAllocationMeter();
    expectAll(again, 2);
    EXPECT_LT(mostAllocated(), kMemory);
}

} // namespace
} // namespace compound_tests
