// One change costs about the same in a small file and in a large one, and as little as it can.
#include "compound/file_helpers.h"
#include "compound/read_cache.h"
#include "compound/watched_file.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <set>

namespace compound_tests {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::Element;
using compound::ReadCache;
using compound::SectorSize;

const std::filesystem::path& kPath = kWatchedPath;

// Ten thousand pairs, in a file that is made once for all tests that need it.
MemoryDisk& largeFile() {
    static MemoryDisk disk;
    if (!disk.exists(kPath)) {
        makePictures(disk, SectorSize::Bytes4096, 10000, 4096);
    }
    return disk;
}

Traffic addOne(MemoryDisk& disk, ReadCache& cache, std::u16string_view name) {
    Traffic traffic;
    CompoundFile file =
        openWatched(disk, SectorSize::Bytes4096, traffic, Access::ReadWrite, &cache);
    traffic = {};
    file.root().openStorage(u"Pumps").createStream(name).assign(patterned(12000, 1));
    file.root().openStorage(u"PumpsInfo").createStream(name).assign(patterned(12, 2));
    file.commit();
    return traffic;
}

// What is left of the chains' order after many small changes: pages that change often have moved
// together, the others have stayed.
TEST(CostTest, ManySmallChangesKeepTheWalksShort) {
    MemoryDisk disk;
    disk.setContent(kPath, largeFile().content(kPath));
    std::mt19937 random(9);
    ReadCache cache;
    Traffic traffic;
    std::uint64_t bytesWritten = 0;
    std::size_t writes = 0;
    constexpr std::size_t kRounds = 150;
    for (std::size_t round = 0; round < kRounds; ++round) {
        CompoundFile file =
            openWatched(disk, SectorSize::Bytes4096, traffic, Access::ReadWrite, &cache);
        traffic = {};
        const std::uint64_t before = disk.content(kPath).size();
        const std::u16string name = nameOf(u'p', random() % 10000);
        for (const char16_t* storage : {u"Pumps", u"PumpsInfo"}) {
            auto elements = file.root().openStorage(storage);
            if (round % 4 == 0) {
                elements.createStream(nameOf(u'q', round)).assign(patterned(9000, 1));
            } else if (elements.find(name)) {
                elements.rename(name, nameOf(u'r', round));
            }
        }
        file.commit();
        const std::uint64_t length = disk.content(kPath).size();
        ASSERT_LE(traffic.bytesWritten,
                  std::uint64_t{40} * 4096 + (length - std::min(length, before)))
            << round; // but for what it has lengthened the file by
        bytesWritten += traffic.bytesWritten;
        writes += static_cast<std::size_t>(traffic.writes);
    }
    EXPECT_LE(bytesWritten, kRounds * 25 * 4096);
    EXPECT_LE(writes, kRounds * 5); // one of them the header
    CompoundFile file = openWatched(disk, SectorSize::Bytes4096, traffic, Access::Read);
    traffic = {};
    auto cursor = file.root().openStorage(u"PumpsInfo").elements();
    while (cursor.skip(1000) > 0) {
    }
    EXPECT_LT(traffic.reads, 600);
}

// A tree that is filled in the order of its names would have each of the first changes colour its
// way up anew.
TEST(CostTest, ABatchLeavesTreesThatAreCheapToChange) {
    MemoryDisk disk;
    disk.setContent(kPath, largeFile().content(kPath));
    std::mt19937 random(4);
    ReadCache cache;
    Traffic traffic;
    std::uint64_t bytesWritten = 0;
    constexpr std::size_t kRounds = 60;
    for (std::size_t round = 0; round < kRounds; ++round) {
        CompoundFile file =
            openWatched(disk, SectorSize::Bytes4096, traffic, Access::ReadWrite, &cache);
        traffic = {};
        const std::u16string name = nameOf(u'p', random() % 100 + 100 * round);
        for (const char16_t* storage : {u"Pumps", u"PumpsInfo"}) {
            file.root().openStorage(storage).rename(name, nameOf(u'q', round));
        }
        file.commit();
        bytesWritten += traffic.bytesWritten;
    }
    EXPECT_LE(bytesWritten, kRounds * 12 * 4096);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// What one program frees in many changes it gives back in a few: cutting a file costs more than a
// small change does.
TEST(CostTest, TheFileIsCutNowAndThen) {
    constexpr std::uint64_t kSector = 4096;
    constexpr std::size_t kPictures = 600;
    MemoryDisk disk;
    makePictures(disk, SectorSize::Bytes4096, kPictures, 2 * kSector);
    const std::uint64_t filled = disk.content(kPath).size();
    ReadCache cache;
    Traffic traffic;
    const auto change = [&](const std::function<void(compound::Storage, std::u16string)>& make,
                            std::size_t number) {
        CompoundFile file =
            openWatched(disk, SectorSize::Bytes4096, traffic, Access::ReadWrite, &cache);
        for (const char16_t* storage : {u"Pumps", u"PumpsInfo"}) {
            make(file.root().openStorage(storage), nameOf(u'p', number));
        }
        file.commit();
    };
    for (std::size_t i = 0; i < 100; ++i) {
        change([&](compound::Storage storage,
                   const std::u16string& name) { storage.rename(name, nameOf(u'q', i)); },
               i);
    }
    EXPECT_LE(traffic.cuts, 1);
    EXPECT_LE(disk.content(kPath).size(), filled + 16 * kSector);
    constexpr std::size_t kDeleted = 240;
    for (std::size_t i = 0; i < kDeleted; ++i) {
        change([](compound::Storage storage, const std::u16string& name) { storage.destroy(name); },
               100 + 2 * i);
    }
    EXPECT_LE(traffic.cuts, static_cast<int>(kDeleted / 6));
    EXPECT_LE(disk.content(kPath).size(), filled - (2 * kDeleted - 40) * kSector);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// Nor is it lengthened for changes to come only to be cut by the next one.
TEST(CostTest, AddingAndDeletingByTurnsCutsTheFileNowAndThen) {
    constexpr std::size_t kPictures = 600;
    constexpr std::size_t kChanges = 300;
    MemoryDisk disk;
    makePictures(disk, SectorSize::Bytes512, kPictures, 3000);
    ReadCache cache;
    Traffic traffic;
    std::mt19937 random(5);
    std::vector<std::size_t> numbers(kPictures);
    std::iota(numbers.begin(), numbers.end(), 0U);
    for (std::size_t i = 0; i < kChanges; ++i) {
        CompoundFile file =
            openWatched(disk, SectorSize::Bytes512, traffic, Access::ReadWrite, &cache);
        const bool adds = i % 2 == 0;
        if (adds) {
            numbers.push_back(kPictures + i);
        } else {
            std::swap(numbers[random() % numbers.size()], numbers.back());
        }
        const std::u16string name = nameOf(u'p', numbers.back());
        const std::vector<std::byte> bytes = patterned(1000 + random() % 6000, 1);
        auto pictures = file.root().openStorage(u"Pumps");
        auto records = file.root().openStorage(u"PumpsInfo");
        if (adds) {
            pictures.createStream(name).assign(bytes);
            records.createStream(name).assign(patterned(12, 2));
        } else {
            pictures.destroy(name);
            records.destroy(name);
            numbers.pop_back();
        }
        file.commit();
    }
    EXPECT_LE(traffic.cuts, 60);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// However much a deletion has freed, the changes after it move a few MiB each.
TEST(CostTest, ALargeDeletionMakesNoChangeSlow) {
    constexpr std::uint64_t kMiB = std::uint64_t{1} << 20U;
    MemoryDisk disk;
    makePictures(disk, SectorSize::Bytes4096, 400, 120000);
    ReadCache cache;
    Traffic traffic;
    for (std::size_t round = 0; round < 6; ++round) {
        CompoundFile file =
            openWatched(disk, SectorSize::Bytes4096, traffic, Access::ReadWrite, &cache);
        traffic = {};
        auto pictures = file.root().openStorage(u"Pumps");
        for (std::size_t i = 0; i < 200; ++i) { // every other one
            if (round == 0) {
                pictures.destroy(nameOf(u'p', 2 * i));
            }
        }
        pictures.rename(nameOf(u'p', 2 * round + 1), nameOf(u'q', round));
        file.commit();
        EXPECT_LE(traffic.bytesWritten, 9 * kMiB) << round;
    }
    EXPECT_LE(disk.content(kPath).size(), 26 * kMiB);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// A process's first one makes durable what it builds on, and walks the trees that it adds to. The
// others lengthen the file now and then, for several of them.
Traffic addMore(MemoryDisk& disk) {
    constexpr std::size_t kMore = 10;
    ReadCache cache;
    EXPECT_EQ(addOne(disk, cache, u"added").syncs, 3);
    Traffic sum;
    std::set<std::size_t> lengths;
    for (std::size_t i = 0; i < kMore; ++i) {
        const Traffic one = addOne(disk, cache, nameOf(u's', i));
        EXPECT_EQ(one.syncs, 2) << i;
        sum.bytesWritten += one.bytesWritten / kMore;
        sum.bytesRead = std::max(sum.bytesRead, one.bytesRead);
        lengths.insert(disk.content(kPath).size());
    }
    EXPECT_LE(lengths.size(), kMore / 2);
    return sum;
}

TEST(CostTest, AddingWritesAsMuchToALargeFileAsToASmallOne) {
    MemoryDisk small;
    makePictures(small, SectorSize::Bytes4096, 100, 4096);
    const Traffic few = addMore(small);
    MemoryDisk large;
    large.setContent(kPath, largeFile().content(kPath));
    const Traffic many = addMore(large);
    EXPECT_LT(many.bytesWritten, few.bytesWritten + std::uint64_t{10} * 4096);
    EXPECT_LT(many.bytesRead, std::uint64_t{120} * 4096);
    EXPECT_EQ(findingsOf(large, kPath), "");
}

TEST(CostTest, OpeningReadsTheHeaderOnly) {
    Traffic traffic;
    CompoundFile file = openWatched(largeFile(), SectorSize::Bytes4096, traffic, Access::Read);
    EXPECT_EQ(traffic.reads, 1);
    EXPECT_LE(traffic.bytesRead, 4096U);
    EXPECT_FALSE(file.root().find(u"nowhere"));
    EXPECT_LE(traffic.reads, 4);
}

TEST(CostTest, FindingOneOfTenThousandReadsAFewSectors) {
    Traffic traffic;
    CompoundFile file = openWatched(largeFile(), SectorSize::Bytes4096, traffic, Access::Read);
    traffic = {};
    EXPECT_TRUE(file.root().openStorage(u"Pumps").find(nameOf(u'p', 7777)));
    EXPECT_LE(traffic.reads, 60);
}

TEST(CostTest, ATreeIsWalkedForAMissingNameOnce) {
    Traffic traffic;
    CompoundFile file = openWatched(largeFile(), SectorSize::Bytes4096, traffic, Access::Read);
    EXPECT_FALSE(file.root().openStorage(u"Pumps").find(u"p1077777"));
    traffic = {};
    EXPECT_FALSE(file.root().openStorage(u"Pumps").find(u"p1066666"));
    EXPECT_LE(traffic.reads, 60);
}

TEST(CostTest, WalkingTenThousandReadsInRuns) {
    Traffic traffic;
    CompoundFile file = openWatched(largeFile(), SectorSize::Bytes4096, traffic, Access::Read);
    traffic = {};
    const auto records = file.root().openStorage(u"PumpsInfo");
    auto cursor = records.elements();
    std::size_t count = 0;
    std::vector<std::byte> record(12);
    const std::vector<std::byte> expected = patterned(12, 2);
    for (Element element; cursor.next(element); ++count) {
        records.openStream(element).read(0, record);
        ASSERT_EQ(record, expected);
    }
    EXPECT_EQ(count, 10000U);
    EXPECT_LT(traffic.reads, 400);
}

} // namespace
} // namespace compound_tests
