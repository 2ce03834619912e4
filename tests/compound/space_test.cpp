// Where bytes go: space is used again and given back, and no sector in force is written over.
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/format.h"
#include "compound/raw_file.h"
#include "compound/watched_file.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace compound_tests {
namespace {

using compound::CompoundFile;
using compound::SectorSize;
using namespace compound::format;

const std::filesystem::path& kPath = kWatchedPath;

class SpaceTest : public testing::TestWithParam<SectorSize> {};

INSTANTIATE_TEST_SUITE_P(Sectors, SpaceTest, testing::ValuesIn(kBothSectorSizes));

TEST_P(SpaceTest, NoSectorInForceIsWrittenOver) {
    MemoryDisk disk;
    makePictures(disk, GetParam(), 30, 6000);
    Traffic traffic;
    std::mt19937 random(11);
    for (std::size_t round = 0; round < 120; ++round) {
        CompoundFile file = openWatched(disk, GetParam(), traffic);
        auto pictures = file.root().openStorage(u"Pumps");
        auto records = file.root().openStorage(u"PumpsInfo");
        for (int change = 0; change < 3; ++change) {
            const std::u16string name = nameOf(u'p', random() % 60);
            if (pictures.find(name) && random() % 2 == 0) {
                pictures.destroy(name);
                records.destroy(name);
                continue;
            }
            using compound::IfExists;
            const auto bytes = patterned(random() % 20000, static_cast<std::uint32_t>(round));
            pictures.createStream(name, IfExists::Replace).assign(bytes);
            records.createStream(name, IfExists::Replace).assign(patterned(random() % 200, 3));
            pictures.openStream(name).append(patterned(random() % 5000, 4));
        }
        if (round % 5 != 0) {
            file.commit();
        }
        ASSERT_TRUE(traffic.overwritten.empty()) << "sector " << *traffic.overwritten.begin();
    }
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// Pages that lie side by side go to the file in one call, whatever they belong to.
TEST_P(SpaceTest, ASmallChangeIsWrittenInFewCalls) {
    constexpr int kHeaders = 2; // the one in force, which is made durable, and the new one
    // Pages move to where there is room for them; in small sectors they leave more ranges behind.
    const int runs = GetParam() == SectorSize::Bytes512 ? 5 : 3;
    MemoryDisk disk;
    makePictures(disk, GetParam(), 300, 5000);
    Traffic traffic;
    CompoundFile file = openWatched(disk, GetParam(), traffic);
    file.root().openStorage(u"PumpsInfo").createStream(u"new").assign(patterned(100, 1));
    file.commit();
    EXPECT_LE(traffic.writes, kHeaders + runs);
}

TEST_P(SpaceTest, AddingAndDeletingTheSameAmountDoesNotGrowTheFile) {
    MemoryDisk disk;
    makePictures(disk, GetParam(), 300, 5000);
    std::uint64_t early = 0;
    std::mt19937 random(5);
    std::vector<std::size_t> present(300);
    for (std::size_t i = 0; i < present.size(); ++i) {
        present[i] = i;
    }
    for (std::size_t round = 0; round < 300; ++round) {
        CompoundFile file = openFile(disk, kPath);
        auto pictures = file.root().openStorage(u"Pumps");
        auto records = file.root().openStorage(u"PumpsInfo");
        std::size_t& old = present[random() % present.size()];
        pictures.destroy(nameOf(u'p', old));
        records.destroy(nameOf(u'p', old));
        old = 300 + round;
        pictures.createStream(nameOf(u'p', old)).assign(patterned(5000, 1));
        records.createStream(nameOf(u'p', old)).assign(patterned(12, 2));
        file.commit();
        if (round == 20) {
            early = disk.content(kPath).size();
        }
    }
    EXPECT_LT(disk.content(kPath).size(), early + early / 5);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

TEST_P(SpaceTest, LargeDeletionCutsTheFile) {
    MemoryDisk disk;
    makePictures(disk, GetParam(), 3, 5000);
    {
        CompoundFile file = openFile(disk, kPath);
        file.root().createStream(u"large").assign(
            patterned(1000 * static_cast<std::size_t>(GetParam()), 1));
        file.commit();
    }
    const std::size_t grown = disk.content(kPath).size();
    CompoundFile file = openFile(disk, kPath);
    file.root().destroy(u"large");
    file.commit();
    EXPECT_LT(disk.content(kPath).size(), grown - 900 * static_cast<std::size_t>(GetParam()));
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// What a crash has left behind the last sector, whole or in part.
TEST_P(SpaceTest, UnusedTailIsRemarkedAndGoesWithTheNextChange) {
    MemoryDisk disk;
    makePictures(disk, GetParam(), 30, 5000);
    const std::vector<std::byte> sound = disk.content(kPath);
    const auto sector = static_cast<std::size_t>(GetParam());
    constexpr std::size_t kFew = 16; // whole sectors, of which nothing is said
    for (const std::size_t tail : {std::size_t{1}, 5 * sector, 17 * sector, 300 * sector - 1}) {
        std::vector<std::byte> bytes = sound;
        bytes.resize(sound.size() + tail, std::byte{7});
        disk.setContent(kPath, bytes);
        CompoundFile file = openFile(disk, kPath);
        const std::size_t sectors = (tail + sector - 1) / sector;
        const auto findings = file.check();
        const bool isTold = sectors > kFew || tail % sector != 0;
        ASSERT_EQ(findings.size(), isTold ? 1U : 0U);
        if (isTold) {
            EXPECT_EQ(findings.front().severity, compound::Severity::Remark);
            EXPECT_EQ(findings.front().what, "its last " + std::to_string(sectors) +
                                                 " sectors are unused and go with the next change");
        }
        file.root().openStorage(u"Pumps").rename(nameOf(u'p', 3), u"other");
        file.commit();
        EXPECT_LE(disk.content(kPath).size(), sound.size());
        EXPECT_EQ(findingsOf(disk, kPath), "");
    }
}

// Free sectors that the FAT of the file's bytes describes.
std::uint32_t freeSectors(const RawFile& raw) {
    const std::uint32_t described =
        raw.get(header::kFatSectorsAt) * static_cast<std::uint32_t>(raw.sectorSize() / 4);
    std::uint32_t free = 0;
    for (std::uint32_t sector = 0; sector < std::min(described, raw.sectors()); ++sector) {
        free += raw.get(raw.fatEntry(sector)) == kFreeSector ? 1U : 0U;
    }
    return free;
}

// In the small sectors it takes a good part of a range, of which now and then all else goes.
TEST_P(SpaceTest, ReserveStaysWhereverItLies) {
    constexpr std::uint32_t kElements = 420;
    constexpr std::uint32_t kFew = 8;
    const std::uint32_t pages = (kElements + 1) * 128 / static_cast<std::uint32_t>(GetParam());
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), GetParam());
    for (std::uint32_t i = 0; i < kElements; ++i) {
        file.root().createStream(nameOf(u'p', i));
    }
    file.commit();
    for (std::uint32_t i = 0; i < 40; ++i) {
        file.root().rename(nameOf(u'p', std::size_t{7} * i), nameOf(u'q', i));
        file.commit();
        ASSERT_GE(freeSectors(RawFile(disk.content(kPath))), kFew + pages) << i;
        ASSERT_EQ(findingsOf(disk, kPath), "") << i;
    }
}

// As in a group of some hundred thousand pictures, in sectors of 4096 bytes.
TEST(ReserveTest, MayBeLargerThanAFewRanges) {
    constexpr std::size_t kElements = 6000;
    constexpr std::size_t kSector = 512;
    constexpr std::size_t kPages = kElements * 128 / kSector;
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes512);
    for (std::size_t i = 0; i < kElements; ++i) {
        file.root().createStream(nameOf(u'p', i));
    }
    file.commit();
    file.makeRoom(100);
    file.root().createStream(u"added").assign(patterned(100, 1));
    file.commit();
    EXPECT_GE(freeSectors(RawFile(disk.content(kPath))), kPages);
    EXPECT_LT(disk.content(kPath).size(), 3 * kPages * kSector);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// Free sectors that a file may have: the reserve, one for each FAT sector, and `more`.
std::uint32_t allowedFree(const RawFile& raw, std::uint32_t more) {
    constexpr std::uint32_t kFew = 8;
    std::uint32_t directoryPages = 0;
    for (std::uint32_t at = raw.get(header::kFirstDirectoryAt); at != kEndOfChain;
         at = raw.get(raw.fatEntry(at))) {
        ++directoryPages;
    }
    return kFew + directoryPages + raw.get(header::kMiniFatSectorsAt) +
           raw.get(header::kFatSectorsAt) + more;
}

// Pictures of all sizes come, are replaced and go; their number stays about the same. A change can
// fill what the ones before it have left, and not what it frees itself.
TEST_P(SpaceTest, LittleStandsFreeAfterABatchAndAfterALongHistory) {
    constexpr std::size_t kPictures = 180;
    constexpr std::uint32_t kLargest = 64; // sectors of a picture
    MemoryDisk disk;
    CompoundFile::create(disk.create(kPath), GetParam()).commit();
    std::mt19937 random(3);
    std::vector<std::size_t> present;
    std::size_t added = 0;
    const auto sizeOfNext = [&] {
        const double sectors = std::exp2(std::uniform_real_distribution<>(-3, 6)(random));
        return static_cast<std::size_t>(sectors * static_cast<double>(GetParam()));
    };
    const auto change = [&](std::size_t adds, std::size_t replaces, std::size_t deletes) {
        CompoundFile file = openFile(disk, kPath);
        auto root = file.root();
        for (; adds > 0; --adds, ++added) {
            root.createStream(nameOf(u'p', added)).assign(patterned(sizeOfNext(), 1));
            root.createStream(nameOf(u'r', added)).assign(patterned(12, 2));
            present.push_back(added);
        }
        for (; replaces > 0; --replaces) {
            const std::size_t number = present[random() % present.size()];
            root.openStream(nameOf(u'p', number)).assign(patterned(sizeOfNext(), 3));
        }
        for (; deletes > 0; --deletes) {
            std::swap(present[random() % present.size()], present.back());
            root.destroy(nameOf(u'p', present.back()));
            root.destroy(nameOf(u'r', present.back()));
            present.pop_back();
        }
        file.commit();
    };
    const auto expectDense = [&](std::uint32_t more) {
        const RawFile raw(disk.content(kPath));
        EXPECT_LE(freeSectors(raw), allowedFree(raw, more)) << "of " << raw.sectors();
        EXPECT_EQ(findingsOf(disk, kPath), "");
    };
    const auto afterHistory = [&] {
        const RawFile raw(disk.content(kPath));
        return std::max(16U, raw.sectors() / 128) + kLargest;
    };
    change(kPictures, 0, 0);
    expectDense(8);
    for (int round = 0; round < 400; ++round) {
        change(random() % 3, 1, present.size() > kPictures ? 2 : 0);
    }
    expectDense(afterHistory());
    change(0, 0, present.size() - present.size() / 3); // in one go, and then one by one
    for (int round = 0; round < 10; ++round) {
        change(0, 0, 1);
    }
    expectDense(afterHistory());
}

// None of the old places can be used before the commit, so a transaction that replaces all doubles
// the file.
TEST_P(SpaceTest, GapsThatAReplacementLeavesAreClosedBehindIt) {
    constexpr std::size_t kPictures = 120;
    MemoryDisk disk;
    makePictures(disk, GetParam(), kPictures, 9000);
    const std::uint32_t before = RawFile(disk.content(kPath)).sectors();
    Traffic traffic;
    CompoundFile file = openWatched(disk, GetParam(), traffic);
    auto pictures = file.root().openStorage(u"Pumps");
    const auto kept = pictures.openStream(nameOf(u'p', 7));
    for (std::size_t i = 0; i < kPictures; ++i) {
        pictures.openStream(nameOf(u'p', i)).assign(patterned(8000 + i * 10, 2));
    }
    file.commit();
    const Content committed = contentOf(disk, kPath);
    EXPECT_GT(RawFile(disk.content(kPath)).sectors(), before + before / 2);
    file.closeGaps();
    const RawFile raw(disk.content(kPath));
    EXPECT_LE(freeSectors(raw), allowedFree(raw, 2 * std::max(16U, raw.sectors() / 128)));
    EXPECT_TRUE(traffic.overwritten.empty()) << "sector " << *traffic.overwritten.begin();
    EXPECT_TRUE(contentOf(disk, kPath) == committed);
    EXPECT_EQ(kept.readAll(), patterned(8070, 2));
    pictures.rename(nameOf(u'p', 7), u"other");
    file.commit();
    EXPECT_EQ(contentOf(disk, kPath).at(u"Pumps/other"), patterned(8070, 2));
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// Two syncs more would make it twice as dear.
TEST_P(SpaceTest, NothingFollowsASmallChange) {
    MemoryDisk disk;
    makePictures(disk, GetParam(), 120, 9000);
    Traffic traffic;
    CompoundFile file = openWatched(disk, GetParam(), traffic);
    auto pictures = file.root().openStorage(u"Pumps");
    pictures.openStream(nameOf(u'p', 7)).assign(patterned(20000, 2));
    pictures.destroy(nameOf(u'p', 8));
    file.commit();
    const int writes = traffic.writes;
    file.closeGaps();
    EXPECT_EQ(traffic.writes, writes);
}

std::uint64_t miniStreamSize(MemoryDisk& disk) {
    const RawFile raw(disk.content(kPath));
    return raw.get(raw.entry(0U) + entry::kSizeAt);
}

// What was deleted does not live on behind the end of a stream that took its place.
TEST_P(SpaceTest, RestOfAMiniSectorIsZeros) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), GetParam());
    auto stream = file.root().createStream(u"a");
    stream.assign(std::vector<std::byte>(128, std::byte{0x5A}));
    file.commit();
    stream.assign(std::vector<std::byte>(70, std::byte{0x5A}));
    file.commit();
    const RawFile raw(disk.content(kPath));
    const std::uint32_t last =
        raw.get(raw.miniFatEntry(raw.get(raw.entry(u"a") + entry::kStartAt)));
    const std::size_t at =
        raw.sector(raw.get(raw.entry(0U) + entry::kStartAt)) + std::size_t{64} * last;
    EXPECT_EQ(raw.get(at), 0x5A5A5A5AU);
    for (std::size_t i = 8; i < 64; i += 4) {
        EXPECT_EQ(raw.get(at + i), 0U) << i;
    }
}

// In one transaction and over many: short streams take the place of those that went.
TEST_P(SpaceTest, MiniStreamIsUsedAgain) {
    MemoryDisk disk;
    makePictures(disk, GetParam(), 700, 100);
    const std::uint64_t before = miniStreamSize(disk);
    CompoundFile file = openFile(disk, kPath);
    auto pictures = file.root().openStorage(u"Pumps");
    for (std::size_t i = 0; i < 300; ++i) {
        pictures.destroy(nameOf(u'p', i));
        pictures.createStream(nameOf(u'p', i)).assign(patterned(128, 1));
    }
    file.commit();
    EXPECT_EQ(miniStreamSize(disk), before);
    for (int round = 0; round < 12; ++round) {
        for (std::size_t i = 300; i < 500; ++i) {
            pictures.destroy(nameOf(u'p', i));
        }
        file.commit();
        for (std::size_t i = 300; i < 500; ++i) {
            pictures.createStream(nameOf(u'p', i)).assign(patterned(100, 1));
            if (i % 20 == 0) {
                file.commit();
            }
        }
        file.commit();
    }
    EXPECT_LE(miniStreamSize(disk), before + before / 2);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

TEST_P(SpaceTest, CopyIsDenseAndTheSame) {
    MemoryDisk disk;
    makePictures(disk, GetParam(), 200, 9000);
    CompoundFile file = openFile(disk, kPath);
    for (std::size_t i = 0; i < 200; i += 2) {
        file.root().openStorage(u"Pumps").destroy(nameOf(u'p', i));
    }
    file.root().createStorage(u"Empty");
    file.commit();
    CompoundFile copy = CompoundFile::create(disk.create("copy.stg"), GetParam());
    copyAll(file, copy);
    copy.commit();
    EXPECT_TRUE(contentOf(disk, "copy.stg") == contentOf(file));
    EXPECT_EQ(findingsOf(disk, "copy.stg"), "");
    const auto sector = static_cast<std::size_t>(GetParam());
    const std::size_t pictures = 100 * ((9000 + sector - 1) / sector) * sector;
    EXPECT_LT(disk.content("copy.stg").size(), pictures + pictures / 4 + 20 * sector);
}

} // namespace
} // namespace compound_tests
