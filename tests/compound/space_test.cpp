// Where bytes go: space is used again and given back, no sector in force is written over, and one
// change costs about the same in a small file and in a large one.
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/format.h"
#include "compound/raw_file.h"
#include "compound/read_cache.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace compound_tests {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::DiskFile;
using compound::Element;
using compound::ReadCache;
using compound::SectorSize;
using namespace compound::format;

const std::filesystem::path kPath = "group.stg";

std::u16string nameOf(char16_t kind, std::size_t number) {
    std::u16string name(1, kind);
    for (const char digit : std::to_string(100000 + number)) {
        name += static_cast<char16_t>(digit);
    }
    return name;
}

// What passed through a WatchedFile.
struct Traffic {
    int reads = 0;
    int writes = 0;
    int syncs = 0;
    int cuts = 0;
    std::uint64_t bytesRead = 0;
    std::uint64_t bytesWritten = 0;
    std::set<std::uint32_t> overwritten; // sectors in force that were written to
};

// Passes all calls on, counts them, and looks up in the FAT of the header in force whether a
// written sector is in use. Understands what the header alone locates: 109 FAT sectors.
class WatchedFile : public DiskFile {
  public:
    WatchedFile(std::unique_ptr<DiskFile> inner, std::uint32_t sectorSize, Traffic& traffic)
        : inner_(std::move(inner)), sectorSize_(sectorSize), traffic_(traffic) {
        learn();
    }

    const std::filesystem::path& path() const override { return inner_->path(); }
    std::uint64_t size() override { return inner_->size(); }
    bool lock(std::chrono::milliseconds wait) override { return inner_->lock(wait); }
    bool isStillAtPath() override { return inner_->isStillAtPath(); }
    std::optional<compound::FileIdentity> identity() override { return inner_->identity(); }
    void truncate(std::uint64_t size) override {
        ++traffic_.cuts;
        inner_->truncate(size);
    }
    void extend(std::uint64_t size) override { inner_->extend(size); }

    std::size_t read(std::uint64_t offset, std::span<std::byte> into) override {
        ++traffic_.reads;
        traffic_.bytesRead += into.size();
        return inner_->read(offset, into);
    }

    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        ++traffic_.writes;
        traffic_.bytesWritten += bytes.size();
        inner_->write(offset, bytes);
        if (offset == 0) {
            return learn();
        }
        const std::uint64_t end = offset + bytes.size();
        for (std::uint64_t at = offset / sectorSize_ - 1; (at + 1) * sectorSize_ < end; ++at) {
            if (inForce_.contains(static_cast<std::uint32_t>(at))) {
                traffic_.overwritten.insert(static_cast<std::uint32_t>(at));
            }
        }
    }

    void writeParts(std::uint64_t offset,
                    std::span<const std::span<const std::byte>> parts) override {
        const int before = traffic_.writes;
        DiskFile::writeParts(offset, parts);
        traffic_.writes = before + 1;
    }

    void sync() override {
        ++traffic_.syncs;
        inner_->sync();
    }

  private:
    void learn() {
        inForce_.clear();
        std::vector<std::byte> header(kHeaderSize);
        if (inner_->read(0, header) < kHeaderSize) {
            return;
        }
        std::vector<std::byte> fat(sectorSize_);
        for (std::uint32_t i = 0; i < kHeaderDifatEntries; ++i) {
            const std::uint32_t sector =
                read32(header.data() + header::kDifatAt + std::size_t{4} * i);
            if (sector == kFreeSector) {
                return;
            }
            inner_->read((std::uint64_t{sector} + 1) * sectorSize_, fat);
            for (std::uint32_t at = 0; at < sectorSize_ / 4; ++at) {
                if (read32(fat.data() + std::size_t{4} * at) != kFreeSector) {
                    inForce_.insert(i * sectorSize_ / 4 + at);
                }
            }
        }
    }

    std::unique_ptr<DiskFile> inner_;
    std::uint32_t sectorSize_;
    Traffic& traffic_;
    std::set<std::uint32_t> inForce_;
};

CompoundFile openWatched(MemoryDisk& disk, SectorSize sectorSize, Traffic& traffic,
                         Access access = Access::ReadWrite, ReadCache* cache = nullptr) {
    return CompoundFile::open(std::make_unique<WatchedFile>(disk.open(kPath, access),
                                                            static_cast<std::uint32_t>(sectorSize),
                                                            traffic),
                              access, cache);
}

// A file of pairs of streams, as pictures and their records are stored.
void makePictures(MemoryDisk& disk, SectorSize sectorSize, std::size_t count, std::size_t bytes) {
    CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize);
    auto pictures = file.root().createStorage(u"Pumps");
    auto records = file.root().createStorage(u"PumpsInfo");
    for (std::size_t i = 0; i < count; ++i) {
        pictures.createStream(nameOf(u'p', i)).assign(patterned(bytes, 1));
        records.createStream(nameOf(u'p', i)).assign(patterned(12, 2));
    }
    file.commit();
}

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
