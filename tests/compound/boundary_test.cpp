// The places where the format changes its ways: the cutoff of the mini stream, the 110th FAT
// sector, the ends at 2 GiB.
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/raw_file.h"

#include <gtest/gtest.h>
#include <optional>

namespace compound_tests {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::Error;
using compound::ErrorCode;
using compound::SectorSize;
using compound::Stream;
using namespace compound::format;

const std::filesystem::path kPath = "boundary.stg";

std::u16string numbered(char16_t kind, std::size_t number) {
    std::u16string name(1, kind);
    for (const char digit : std::to_string(number)) {
        name += static_cast<char16_t>(digit);
    }
    return name;
}

std::uint32_t headerField(MemoryDisk& disk, std::size_t at) {
    std::vector<std::byte> field(4);
    disk.open(kPath, Access::Read)->read(at, field);
    return read32(field.data());
}

class BoundaryTest : public testing::TestWithParam<SectorSize> {};

INSTANTIATE_TEST_SUITE_P(Sectors, BoundaryTest, testing::ValuesIn(kBothSectorSizes));

TEST_P(BoundaryTest, StreamsAroundTheCutoff) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), GetParam());
    Content expected;
    for (const std::size_t size : {4095U, 4096U, 4097U}) {
        const std::vector<std::byte> bytes = patterned(size, 1);
        const auto add = [&](char16_t kind) {
            expected[numbered(kind, size)] = bytes;
            return file.root().createStream(numbered(kind, size));
        };
        add(u'w').assign(bytes);
        Stream grown = add(u'g'); // in steps that end right before and on the cutoff
        std::size_t done = 0;
        for (const std::size_t end : {64UL, 4095UL, 4096UL, size}) {
            if (end <= done || end > size) {
                continue;
            }
            grown.append(std::span(bytes).subspan(done, end - done));
            done = end;
        }
        Stream shrunk = add(u's');
        shrunk.assign(patterned(9000, 2));
        shrunk.assign(bytes);
    }
    file.commit();
    EXPECT_EQ(findingsOf(disk, kPath), "");
    EXPECT_TRUE(contentOf(disk, kPath) == expected);
}

// With 512-byte sectors 109 FAT sectors, all that the header lists, describe 7 MB.
TEST(FatTest, GrowsPastTheHeadersListAndBack) {
    constexpr std::size_t kPart = 60000;
    MemoryDisk disk;
    CompoundFile::create(disk.create(kPath), SectorSize::Bytes512).commit();
    Content expected;
    std::size_t parts = 0;
    const auto add = [&](std::size_t count) {
        CompoundFile file = openFile(disk, kPath);
        for (; count > 0; --count, ++parts) {
            expected[numbered(u'p', parts)] = patterned(kPart, static_cast<std::uint32_t>(parts));
            file.root().createStream(numbered(u'p', parts)).assign(expected[numbered(u'p', parts)]);
        }
        file.commit();
        ASSERT_EQ(findingsOf(disk, kPath), "");
    };
    while (headerField(disk, header::kFatSectorsAt) < 106) {
        add(5);
    }
    EXPECT_EQ(headerField(disk, header::kDifatSectorsAt), 0U);
    std::uint32_t before = headerField(disk, header::kFatSectorsAt);
    for (std::uint32_t fat = before; fat < 113; before = fat) {
        add(1);
        fat = headerField(disk, header::kFatSectorsAt);
        EXPECT_EQ(headerField(disk, header::kDifatSectorsAt), fat > 109 ? 1U : 0U);
        EXPECT_LE(fat, before + 2);
    }
    add(140); // a second DIFAT sector, at 237 FAT sectors
    EXPECT_EQ(headerField(disk, header::kDifatSectorsAt), 2U);
    EXPECT_TRUE(contentOf(disk, kPath) == expected);
    while (parts > 30) {
        CompoundFile file = openFile(disk, kPath);
        for (const std::size_t end = parts - std::min<std::size_t>(parts - 30, 37); parts > end;) {
            file.root().destroy(numbered(u'p', --parts));
            expected.erase(numbered(u'p', parts));
        }
        file.commit();
        ASSERT_EQ(findingsOf(disk, kPath), "");
    }
    EXPECT_LE(headerField(disk, header::kDifatSectorsAt), 1U);
    EXPECT_TRUE(contentOf(disk, kPath) == expected);
}

constexpr std::uint64_t kTwoGiB = std::uint64_t{1} << 31U;

// Zeros, which the disk of the tests does not store.
void appendZeros(Stream stream, std::uint64_t upTo) {
    const std::vector<std::byte> zeros(std::size_t{16} << 20U);
    while (stream.size() < upTo) {
        stream.append(
            std::span(zeros).first(std::min<std::uint64_t>(zeros.size(), upTo - stream.size())));
    }
}

TEST(TwoGiBTest, LargeSectorsGoOnBehindTheRangeLock) {
    MemoryDisk disk;
    const std::vector<std::byte> mark = patterned(50000, 1);
    {
        CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes4096);
        file.root().createStream(u"small").assign(patterned(100, 2));
        Stream large = file.root().createStream(u"large");
        appendZeros(large, kTwoGiB - (std::uint64_t{1} << 20U));
        file.commit();
        large.append(mark);
        file.commit();
        for (int i = 0; i < 60; ++i) {
            large.append(mark); // over the lock, bit by bit
        }
        file.commit();
        EXPECT_EQ(findingsOf(file), "");
    }
    CompoundFile file = openFile(disk, kPath);
    ASSERT_GT(file.disk().size(), kTwoGiB);
    Stream large = file.root().openStream(u"large");
    std::vector<std::byte> last(mark.size());
    for (std::uint64_t back = 1; back <= 61; ++back) {
        large.read(large.size() - back * mark.size(), last);
        ASSERT_EQ(last, mark) << back;
    }
    EXPECT_EQ(findingsOf(file), ""); // which looks at the lock's mark
    file.root().createStream(u"behind").assign(mark);
    file.commit();
    EXPECT_EQ(file.root().openStream(u"behind").readAll(), mark);
    file.root().destroy(u"large");
    file.commit();
    EXPECT_EQ(findingsOf(file), "");
    EXPECT_EQ(file.root().openStream(u"behind").readAll(), mark);
}

// In steps of one sector, so that the file ends right before, on and right behind the lock.
TEST(TwoGiBTest, RangeLockIsMarkedBeforeTheFileReachesIt) {
    constexpr std::uint64_t kSector = 4096;
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes4096);
    Stream large = file.root().createStream(u"large");
    appendZeros(large, kTwoGiB / 8 * 7);
    while (file.disk().size() < kTwoGiB - 80 * kSector) {
        appendZeros(large, large.size() + 20 * kSector);
    }
    file.commit();
    ASSERT_LT(file.disk().size(), kTwoGiB - 20 * kSector);
    const std::vector<std::byte> sector = patterned(kSector, 1);
    int steps = 0;
    for (; file.disk().size() < kTwoGiB + 8 * kSector; ++steps) {
        large.append(sector);
        file.commit();
        const std::uint64_t size = file.disk().size();
        if (size > kTwoGiB - 3 * kSector && size < kTwoGiB + 3 * kSector) {
            ASSERT_EQ(findingsOf(file), "") << size;
        }
    }
    EXPECT_EQ(findingsOf(file), "");
    std::vector<std::byte> read(kSector);
    for (int i = 1; i <= steps; ++i) {
        large.read(large.size() - static_cast<std::uint64_t>(i) * kSector, read);
        ASSERT_EQ(read, sector);
    }
    // The marked sector keeps no file long.
    file.root().destroy(u"large");
    file.commit();
    EXPECT_LT(file.disk().size(), kTwoGiB);
    EXPECT_EQ(findingsOf(file), "");
}

// A field of the file, which is too large to be held in memory; changed when there is a value.
std::uint32_t field(MemoryDisk& disk, std::uint64_t at, std::optional<std::uint32_t> value = {}) {
    std::vector<std::byte> bytes(4);
    const auto file = disk.open(kPath, Access::ReadWrite);
    if (value) {
        write32(bytes.data(), *value);
        file->write(at, bytes);
    }
    file->read(at, bytes);
    return read32(bytes.data());
}

// Lengthens the stream "large" by the sector of the range lock and, perhaps, a free one.
void useRangeLock(MemoryDisk& disk, std::uint32_t id, std::span<const std::byte> bytes) {
    constexpr std::uint64_t kSector = 4096;
    constexpr std::uint32_t kLock = kTwoGiB / kSector - 2;
    constexpr std::uint32_t kPerSector = kSector / 4;
    const auto placeOf = [](std::uint32_t sector) { return (sector + 1) * kSector; };
    const std::uint32_t inDifat =
        kLock / kPerSector - static_cast<std::uint32_t>(kHeaderDifatEntries);
    const std::uint32_t fat =
        field(disk, placeOf(field(disk, header::kFirstDifatAt)) + std::uint64_t{4} * inDifat);
    const auto entryOf = [&](std::uint32_t sector) {
        return placeOf(fat) + std::uint64_t{4} * (sector % kPerSector);
    };
    std::uint32_t last = kLock - 1; // of the stream, in the same range
    while (field(disk, entryOf(last)) != last + 1) {
        --last;
    }
    while (field(disk, entryOf(last)) != kEndOfChain) {
        last = field(disk, entryOf(last));
    }
    std::uint32_t at = kLock;
    for (std::size_t done = 0; done < bytes.size(); done += kSector) {
        field(disk, entryOf(last), at);
        disk.open(kPath, Access::ReadWrite)->write(placeOf(at), bytes.subspan(done, kSector));
        last = at;
        while (field(disk, entryOf(--at)) != kFreeSector) {
        }
    }
    field(disk, entryOf(last), kEndOfChain);
    const std::uint64_t size =
        placeOf(field(disk, header::kFirstDirectoryAt)) + id * kEntrySize + entry::kSizeAt;
    field(disk, size, field(disk, size) + static_cast<std::uint32_t>(bytes.size()));
    field(disk, header::kTransactionAt, 0);
}

TEST(TwoGiBTest, WhatAnotherProgramKeepsInTheRangeLockIsNotLost) {
    constexpr std::uint64_t kSector = 4096;
    MemoryDisk whole;
    CompoundFile made = CompoundFile::create(whole.create(kPath), SectorSize::Bytes4096);
    made.root().createStream(u"small").assign(patterned(5000, 2));
    Stream large = made.root().createStream(u"large");
    appendZeros(large, kTwoGiB - 1200 * kSector);
    while (made.disk().size() < kTwoGiB - 400 * kSector) {
        appendZeros(large, large.size() + 20 * kSector);
    }
    made.commit();
    for (const std::size_t sectors : {1U, 2U}) {
        MemoryDisk disk;
        disk.copyFilesOf(whole);
        const std::vector<std::byte> bytes = patterned(sectors * kSector, 1);
        useRangeLock(disk, made.root().find(u"large")->id, bytes);
        const auto lastOfLarge = [&] {
            std::vector<std::byte> last(bytes.size() + 1);
            CompoundFile file = openFile(disk, kPath);
            last.resize(file.root().openStream(u"large").read(large.size(), last));
            return last;
        };
        ASSERT_EQ(lastOfLarge(), bytes);
        EXPECT_NE(findingsOf(disk, kPath), "");
        for (const char16_t* name : {u"other", u"small"}) {
            CompoundFile file = openFile(disk, kPath);
            try {
                file.root()
                    .createStream(name, compound::IfExists::Replace)
                    .assign(patterned(9000, 3));
                file.commit();
                EXPECT_EQ(sectors, 2U) << "its end cannot be told from the mark";
            } catch (const Error& error) {
                EXPECT_EQ(error.code(), ErrorCode::Damaged);
                EXPECT_EQ(sectors, 1U) << error.what();
            }
        }
        EXPECT_EQ(lastOfLarge(), bytes) << sectors;
    }
}

TEST(TwoGiBTest, WhatACrashHasLeftBehindTheRangeLockIsNoDamage) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes4096);
    file.root().createStream(u"small").assign(patterned(5000, 2));
    file.commit();
    disk.open(kPath, Access::ReadWrite)->truncate(kTwoGiB + 65536);
    EXPECT_EQ(damageOf(disk, kPath), "");
}

TEST(TwoGiBTest, SmallSectorsEndThere) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes512);
    file.root().createStream(u"small").assign(patterned(100, 2));
    file.root().createStream(u"first").assign(patterned(90000, 3));
    file.commit();
    appendZeros(file.root().createStream(u"large"), kTwoGiB * 9 / 10);
    file.commit();
    try {
        appendZeros(file.root().createStream(u"larger"), kTwoGiB);
        FAIL() << "the format holds no more";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::TooLarge);
    }
    EXPECT_THROW(file.commit(), Error);
    file.dropChanges();
    EXPECT_EQ(file.root().openStream(u"first").readAll(), patterned(90000, 3));
    // Fills the file to its end, then deletes and adds.
    const std::vector<std::byte> zeros(std::size_t{64} << 20U);
    std::size_t fillers = 0;
    for (std::size_t step = zeros.size(); step >= 4096; step /= 8) {
        try {
            for (;; ++fillers) {
                file.root()
                    .createStream(numbered(u'f', fillers))
                    .assign(std::span(zeros).first(step));
                file.commit();
            }
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::TooLarge);
            file.dropChanges();
        }
    }
    EXPECT_GT(file.disk().size(), kTwoGiB - 65536);
    file.root().destroy(u"first");
    file.commit();
    file.root().createStream(u"again").assign(patterned(50000, 5));
    file.commit();
    EXPECT_EQ(file.root().openStream(u"small").readAll(), patterned(100, 2));
    EXPECT_EQ(file.root().openStream(u"again").readAll(), patterned(50000, 5));
    EXPECT_LT(file.disk().size(), kTwoGiB);
    EXPECT_EQ(findingsOf(file), "");
    file.root().destroy(u"large");
    file.commit();
    EXPECT_EQ(findingsOf(file), "");
}

} // namespace
} // namespace compound_tests
