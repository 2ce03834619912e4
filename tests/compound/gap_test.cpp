// What a batch leaves in a large file: gaps are found wherever they are, and no transaction is made
// that cannot gain by it.
#include "compound/file_helpers.h"
#include "compound/format.h"
#include "compound/raw_file.h"
#include "compound/watched_file.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <string>

namespace compound_tests {
namespace {

using compound::CompoundFile;
using compound::SectorSize;
using namespace compound::format;

const std::filesystem::path& kPath = kWatchedPath;

// Pictures of one file, the bytes of those that are to go, and of the others.
struct Pictures {
    std::uint64_t going = 0;
    std::uint64_t staying = 0;
};

Pictures makeLargeFile(MemoryDisk& disk, SectorSize sectorSize, std::uint32_t seed,
                       std::size_t count, const std::function<bool(std::size_t)>& goes) {
    constexpr std::uint32_t kLeast = 2U << 20U;
    const auto bytes = patterned(std::size_t{kLeast} * 3 / 2, 1);
    std::mt19937 random(seed);
    Pictures made;
    CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize);
    auto pictures = file.root().createStorage(u"Pumps");
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t size = kLeast + random() % (kLeast / 2);
        pictures.createStream(nameOf(u'p', i)).assign(std::span(bytes).first(size));
        (goes(i) ? made.going : made.staying) += size;
    }
    file.commit();
    return made;
}

// 64 MiB move at the most. In one of these files all of it has moved and nothing more can be
// gained; in one the first step cannot cut the file, since its own pages find no place further to
// the front; and in one the reserve has no room in what the FAT describes.
TEST(GapTest, FewStepsCloseWhatMayBeClosedAndCutTheFile) {
    constexpr std::uint64_t kMost = std::uint64_t{64} << 20U;
    constexpr std::size_t kCount = 60;
    constexpr int kSyncsOfTwoSteps = 4;
    struct Case {
        const char* what;
        SectorSize sectorSize;
        std::uint32_t seed;
        std::function<bool(std::size_t)> goes;
    };
    const auto isInFront = [](std::size_t number) { return number + 1 < kCount / 2; };
    const auto isEven = [](std::size_t number) { return number % 2 == 0; };
    const Case cases[] = {{"all has moved", SectorSize::Bytes4096, 1, isInFront},
                          {"cut by the second step", SectorSize::Bytes512, 2, isInFront},
                          {"no range for the reserve", SectorSize::Bytes512, 4, isEven}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        MemoryDisk disk;
        const Pictures made = makeLargeFile(disk, each.sectorSize, each.seed, kCount, each.goes);
        Traffic traffic;
        CompoundFile file = openWatched(disk, each.sectorSize, traffic);
        auto pictures = file.root().openStorage(u"Pumps");
        for (std::size_t i = 0; i < kCount; ++i) {
            if (each.goes(i)) {
                pictures.destroy(nameOf(u'p', i));
            }
        }
        file.commit();
        traffic = {};
        file.closeGaps();
        EXPECT_LE(traffic.syncs, kSyncsOfTwoSteps);
        EXPECT_TRUE(traffic.overwritten.empty());
        // Where every other one goes, the gaps are a half of what moves away.
        const std::uint64_t rest = each.goes(1) ? made.going - kMost : 0;
        EXPECT_LE(file.disk().size(), made.staying + rest + made.staying / 32);
        EXPECT_EQ(findingsOf(file), "");
    }
}

// As 66 pictures of 30 MB in sectors of 4096 bytes, of which every other one goes: few of the FAT's
// sectors are looked at, and in some transactions only those of what has stayed.
TEST(GapTest, EvenlySpacedGapsAreFoundInEveryTransaction) {
    constexpr std::size_t kPictures = 66;
    constexpr std::size_t kRanges = 7; // of a picture, about
    constexpr std::size_t kBytes = kRanges * 127 * 512 - 2000;
    MemoryDisk disk;
    CompoundFile whole = CompoundFile::create(disk.create(kPath), SectorSize::Bytes512);
    for (std::size_t i = 0; i < kPictures; ++i) {
        whole.root().createStream(nameOf(u'p', i)).assign(patterned(kBytes, 1));
    }
    whole.commit();
    RawFile raw(disk.content(kPath));
    for (std::uint32_t transaction = 0; transaction < 2 * kRanges; ++transaction) {
        raw.bytes().at(header::kTransactionAt) = static_cast<std::byte>(transaction);
        disk.setContent(kPath, raw.bytes());
        CompoundFile file = openFile(disk, kPath);
        for (std::size_t i = 0; i < kPictures; i += 2) {
            file.root().destroy(nameOf(u'p', i));
        }
        file.commit();
        file.closeGaps();
        EXPECT_LT(file.disk().size(), raw.bytes().size() * 5 / 8) << transaction;
        EXPECT_EQ(findingsOf(file), "");
    }
}

// Pages and FAT sectors keep a few of the gaps to themselves, so that the last sectors of the
// picture at the file's end find none.
TEST(GapTest, WhatFindsNoGapDoesNotKeepTheFileFromBeingCut) {
    constexpr std::size_t kPictures = 30;
    for (const std::size_t kibibytes : {276U, 348U}) {
        MemoryDisk disk;
        CompoundFile file = CompoundFile::create(disk.create(kPath));
        for (std::size_t i = 0; i < kPictures; ++i) {
            file.root().createStream(nameOf(u'p', i)).assign(patterned(kibibytes << 10U, 1));
        }
        file.commit();
        file = openFile(disk, kPath);
        for (std::size_t i = 0; i < kPictures / 2; ++i) {
            file.root().destroy(nameOf(u'p', i));
        }
        file.commit();
        const Content content = contentOf(file);
        const std::uint64_t before = file.disk().size();
        file.closeGaps();
        EXPECT_LT(file.disk().size(), before * 9 / 16);
        EXPECT_EQ(contentOf(disk, kPath), content);
        EXPECT_EQ(findingsOf(file), "");
    }
}

// Of a file with hundreds of FAT sectors little is left, and these find no places before the end
// that is to be: they keep the file from being cut at first, however little has moved.
TEST(GapTest, AStepThatCutsLittleIsNotTheLast) {
    struct Case {
        std::size_t pictures, kibibytes, staying;
    };
    for (const Case& each : {Case{59, 134, 18}, Case{109, 91, 8}}) {
        MemoryDisk disk;
        CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes512);
        file.root().createStorage(u"Few");
        for (std::size_t i = 0; i < each.pictures; ++i) {
            file.root().createStream(nameOf(u'p', i)).assign(patterned(each.kibibytes << 10U, 1));
        }
        file.commit();
        file = openFile(disk, kPath);
        for (std::size_t i = each.staying; i < each.pictures; ++i) {
            file.root().destroy(nameOf(u'p', i));
        }
        file.commit();
        const std::uint32_t transaction = file.transactionSignature();
        file.closeGaps();
        EXPECT_LT(file.disk().size(), (each.staying * each.kibibytes << 10U) * 5 / 4);
        EXPECT_LE(file.transactionSignature(), transaction + 2);
        EXPECT_EQ(findingsOf(file), "");
    }
}

// What moves away leaves ranges of which each sector is in force until the commit: once they have
// gone, they cannot come back for a FAT sector that finds no other place.
TEST(GapTest, AFileThatHasGivenRangesBackCanBeChanged) {
    constexpr std::size_t kPictures = 20;
    for (const std::size_t kibibytes : {343U, 406U}) {
        MemoryDisk disk;
        CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes512);
        for (std::size_t i = 0; i < kPictures; ++i) {
            file.root().createStream(nameOf(u'p', i)).assign(patterned(kibibytes << 10U, 1));
        }
        file.commit();
        file = openFile(disk, kPath);
        for (std::size_t i = 0; i + 1 < kPictures / 2; ++i) {
            file.root().destroy(nameOf(u'p', i));
        }
        file.commit();
        file.closeGaps();
        disk.setCapacity(disk.placed());
        file = openFile(disk, kPath);
        file.root().rename(nameOf(u'p', kPictures - 1), u"renamed");
        EXPECT_NO_THROW(file.commit());
        EXPECT_EQ(findingsOf(disk, kPath), "");
    }
}

// Pictures of at least `bytes` bytes and up to `more` beyond, beside a storage of small streams;
// every other picture has gone.
struct FullCase {
    const char* what;
    std::size_t pictures, bytes, more, smalls;
};

void makeFileWithGaps(MemoryDisk& disk, const FullCase& each) {
    std::mt19937 random(23);
    const auto bytes = patterned(each.bytes + each.more, 1);
    CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes512);
    auto few = file.root().createStorage(u"Few");
    for (std::size_t i = 0; i < std::max(each.pictures, each.smalls); ++i) {
        if (i < each.pictures) {
            const std::size_t size = each.bytes + random() % each.more;
            file.root().createStream(nameOf(u'p', i)).assign(std::span(bytes).first(size));
        }
        if (i < each.smalls) {
            few.createStream(nameOf(u's', i)).assign(std::span(bytes).first(i % 200));
        }
    }
    file.commit();
    file = openFile(disk, kPath);
    for (std::size_t i = 0; i < each.pictures; i += 2) {
        file.root().destroy(nameOf(u'p', i));
    }
    file.commit();
    file.closeGaps();
}

// A home at the file's end is filled by FAT sectors of other ranges, which keep theirs: the home's
// own one, and the DIFAT's sectors, live on those. So does a file whose end is left for gaps that
// FAT sectors far from their ranges need as well.
TEST(GapTest, OnAFullDiskTheTablesLiveOnWhatRangesKeep) {
    const FullCase cases[] = {{"the home's FAT sector", 20, 55 << 10, 1, 600},
                              {"the DIFAT", 40, 349 << 10, 1, 100},
                              {"the end is left", 90, 270 << 10, 270 << 7, 10}};
    const std::function<void(CompoundFile&)> changes[] = {
        [](CompoundFile& file) { file.root().destroy(u"Few"); },
        [](CompoundFile& file) { file.root().rename(u"Few", u"Others"); }};
    for (const FullCase& each : cases) {
        MemoryDisk made;
        makeFileWithGaps(made, each);
        for (std::size_t i = 0; i < std::size(changes); ++i) {
            SCOPED_TRACE(std::string(each.what) + ", change " + std::to_string(i));
            MemoryDisk disk;
            disk.setContent(kPath, made.content(kPath));
            disk.setCapacity(disk.placed());
            CompoundFile file = openFile(disk, kPath);
            changes[i](file);
            EXPECT_NO_THROW(file.commit());
            EXPECT_EQ(damageOf(disk, kPath), "");
        }
    }
}

// Gaps that are closed on a full disk fill all ranges but for one sector each. FAT sectors that lie
// in another range than their own need places beside those: without them ranges were left with
// none, and the file cut as if they had one.
TEST(GapTest, OnAFullDiskOneDeletionAfterAnotherFindsPlaces) {
    const FullCase cases[] = {{"few lie elsewhere", 54, 245 << 10, 83626, 29},
                              {"many do", 51, 267 << 10, 267 << 10, 14}};
    for (const FullCase& each : cases) {
        SCOPED_TRACE(each.what);
        MemoryDisk disk;
        makeFileWithGaps(disk, each);
        const auto change = [&](const std::function<void(compound::Storage)>& changes) {
            disk.setCapacity(disk.placed());
            CompoundFile file = openFile(disk, kPath);
            changes(file.root());
            EXPECT_NO_THROW(file.commit());
            file.closeGaps();
        };
        change([](compound::Storage root) { root.rename(u"Few", u"Others"); });
        change([&](compound::Storage root) {
            root.destroy(nameOf(u'p', each.pictures - 1 - each.pictures % 2));
        });
        change([&](compound::Storage root) {
            for (std::size_t i = 3; i + 2 < each.pictures; i += 4) {
                root.destroy(nameOf(u'p', i));
            }
        });
        EXPECT_EQ(findingsOf(disk, kPath), "");
    }
}

} // namespace
} // namespace compound_tests
