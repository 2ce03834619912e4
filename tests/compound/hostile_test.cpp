// Files that lie: rings, crossings, wild numbers, cut ends. Opening, walking, reading, checking and
// changing them ends in an error or in a sound result, soon and in little memory.
#include "compound/allocation_meter.h"
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/raw_file.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace compound_tests {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::Error;
using compound::ErrorCode;
using compound::IfExists;
using compound::SectorSize;
using namespace compound::format;

const std::filesystem::path kPath = "hostile.stg";

// Storage "S" with two long and two short streams and a storage "Sub" of its own, and a storage
// "T".
RawFile makeRaw(SectorSize sectorSize) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize);
    auto storage = file.root().createStorage(u"S");
    for (const auto& [name, size] : {std::pair(u"long1", 20000), std::pair(u"long2", 30000),
                                     std::pair(u"mini1", 700), std::pair(u"mini2", 800)}) {
        storage.createStream(name).assign(patterned(static_cast<std::size_t>(size), 1));
    }
    storage.createStorage(u"Sub").createStream(u"deep").assign(patterned(300, 2));
    file.root().createStorage(u"T").createStream(u"other").assign(patterned(90, 3));
    file.commit();
    return RawFile(disk.content(kPath));
}

// The error's code, or nothing when `use` went through.
std::optional<ErrorCode> codeOf(const std::function<void()>& use) {
    try {
        use();
    } catch (const Error& error) {
        return error.code();
    }
    return std::nullopt;
}

void change(MemoryDisk& disk) {
    CompoundFile file = openFile(disk, kPath);
    file.root().createStream(u"added").assign(patterned(5000, 7));
    for (const std::u16string_view name : {u"S", u"T"}) {
        if (!file.root().find(name)) {
            continue;
        }
        auto storage = file.root().openStorage(name);
        storage.createStream(u"mini1", IfExists::Replace).assign(patterned(900, 7));
        storage.createStream(u"long2", IfExists::Replace).append(patterned(9000, 7));
    }
    file.commit();
    if (file.root().find(u"S")) {
        file.root().destroy(u"S");
    }
    file.commit();
}

struct Verdict {
    bool readable = false; // opening and reading everything went through
    bool sound = false;    // check() found nothing
};

// Uses the file in every way.
Verdict exercise(const std::vector<std::byte>& bytes) {
    MemoryDisk disk;
    disk.setContent(kPath, bytes);
    startAllocationMeter();
    Verdict verdict;
    std::size_t findings = 0;
    verdict.readable = !codeOf([&] { contentOf(disk, kPath); });
    const auto failure = codeOf([&] {
        CompoundFile file = openFile(disk, kPath, Access::Read);
        findings = file.check().size();
    });
    verdict.sound = !failure && findings == 0;
    EXPECT_TRUE(!failure || failure == ErrorCode::Damaged || failure == ErrorCode::NotCompoundFile);
    EXPECT_TRUE(verdict.readable || !verdict.sound) << "unreadable, but without a finding";
    codeOf([&] { change(disk); });
    codeOf([&] { contentOf(disk, kPath); });
    EXPECT_LT(mostAllocated(), 16U << 20U);
    return verdict;
}

struct Damage {
    const char* name;
    std::function<void(RawFile&)> make;
};

void putEntry(RawFile& raw, std::u16string_view name, std::size_t field, std::uint32_t value) {
    raw.put(raw.entry(name) + field, value);
}

std::uint32_t startOf(const RawFile& raw, std::u16string_view name) {
    return raw.get(raw.entry(name) + entry::kStartAt);
}

void putByte(RawFile& raw, std::size_t at, unsigned value) {
    raw.bytes().at(at) = static_cast<std::byte>(value);
}

const std::vector<Damage>& chainDamages() {
    using Raw = RawFile&;
    static const std::vector<Damage> damages = {
        {"directory in a ring",
         [](Raw raw) {
             const std::uint32_t first = raw.get(header::kFirstDirectoryAt);
             raw.put(raw.fatEntry(first), first);
         }},
        {"stream in a ring",
         [](Raw raw) { raw.put(raw.fatEntry(startOf(raw, u"long1")), startOf(raw, u"long1")); }},
        {"streams that cross",
         [](Raw raw) {
             raw.put(raw.fatEntry(startOf(raw, u"long2")),
                     raw.get(raw.fatEntry(startOf(raw, u"long1"))));
         }},
        {"stream that begins in another",
         [](Raw raw) { putEntry(raw, u"long1", entry::kStartAt, startOf(raw, u"long2")); }},
        {"chain through a free sector",
         [](Raw raw) { raw.put(raw.fatEntry(startOf(raw, u"long1")), kFreeSector); }},
        {"chain through a FAT sector",
         [](Raw raw) { raw.put(raw.fatEntry(startOf(raw, u"long1")), kFatSector); }},
        {"chain out of the file",
         [](Raw raw) { raw.put(raw.fatEntry(startOf(raw, u"long1")), 0x00FFFFFF); }},
        {"chain that is too short",
         [](Raw raw) { raw.put(raw.fatEntry(startOf(raw, u"long1")), kEndOfChain); }},
        {"stream that begins nowhere",
         [](Raw raw) { putEntry(raw, u"long1", entry::kStartAt, 0x00FFFFFF); }},
        {"stream that begins at the end",
         [](Raw raw) { putEntry(raw, u"long1", entry::kStartAt, kEndOfChain); }},
        {"stream larger than the file",
         [](Raw raw) { putEntry(raw, u"long1", entry::kSizeAt, 0x7FFFFFF0); }},
        {"stream larger than its chain",
         [](Raw raw) { putEntry(raw, u"long1", entry::kSizeAt, 29000); }},
        {"stream smaller than its chain",
         [](Raw raw) { putEntry(raw, u"long1", entry::kSizeAt, 4097); }},
        {"short stream said to be long",
         [](Raw raw) { putEntry(raw, u"mini1", entry::kSizeAt, 60000); }},
        {"long stream said to be short",
         [](Raw raw) { putEntry(raw, u"long1", entry::kSizeAt, 4000); }},
        {"short stream in a ring",
         [](Raw raw) {
             raw.put(raw.miniFatEntry(startOf(raw, u"mini1")), startOf(raw, u"mini1"));
         }},
        {"short streams that cross",
         [](Raw raw) { putEntry(raw, u"mini1", entry::kStartAt, startOf(raw, u"mini2")); }},
        {"short stream out of the mini stream",
         [](Raw raw) { raw.put(raw.miniFatEntry(startOf(raw, u"mini1")), 0x00FFFFFF); }},
        {"short stream larger than its chain",
         [](Raw raw) { putEntry(raw, u"mini1", entry::kSizeAt, 4000); }},
        {"mini stream cut short",
         [](Raw raw) { putEntry(raw, u"Root Entry", entry::kSizeAt, 64); }},
        {"mini stream said to be huge",
         [](Raw raw) { putEntry(raw, u"Root Entry", entry::kSizeAt, 0x7FFFFFC0); }},
        {"mini stream that begins nowhere",
         [](Raw raw) { putEntry(raw, u"Root Entry", entry::kStartAt, 0x00FFFFFF); }},
        {"mini FAT in a ring",
         [](Raw raw) {
             const std::uint32_t first = raw.get(header::kFirstMiniFatAt);
             raw.put(raw.fatEntry(first), first);
         }},
        {"mini FAT that begins nowhere",
         [](Raw raw) { raw.put(header::kFirstMiniFatAt, 0x00FFFFFF); }},
        {"mini FAT that is a FAT sector",
         [](Raw raw) { raw.put(header::kFirstMiniFatAt, raw.get(header::kDifatAt)); }},
    };
    return damages;
}

const std::vector<Damage>& treeDamages() {
    using Raw = RawFile&;
    static const std::vector<Damage> damages = {
        {"element that is its own sibling",
         [](Raw raw) { putEntry(raw, u"mini1", entry::kLeftAt, raw.idOf(u"mini1")); }},
        {"siblings in a ring",
         [](Raw raw) {
             putEntry(raw, u"mini1", entry::kRightAt, raw.idOf(u"long1"));
             putEntry(raw, u"long1", entry::kLeftAt, raw.idOf(u"mini1"));
         }},
        {"storage inside itself",
         [](Raw raw) { putEntry(raw, u"Sub", entry::kChildAt, raw.idOf(u"Sub")); }},
        {"storage inside what it holds",
         [](Raw raw) { putEntry(raw, u"Sub", entry::kChildAt, raw.idOf(u"S")); }},
        {"storage that holds the root", [](Raw raw) { putEntry(raw, u"Sub", entry::kChildAt, 0); }},
        {"two storages with one tree",
         [](Raw raw) {
             putEntry(raw, u"T", entry::kChildAt, raw.get(raw.entry(u"S") + entry::kChildAt));
         }},
        {"sibling of another storage",
         [](Raw raw) { putEntry(raw, u"mini2", entry::kRightAt, raw.idOf(u"other")); }},
        {"link out of the directory",
         [](Raw raw) { putEntry(raw, u"mini1", entry::kRightAt, 0x00FFFFFF); }},
        {"link to a free entry", [](Raw raw) { putEntry(raw, u"Sub", entry::kChildAt, 15); }},
        {"entry of an unknown type",
         [](Raw raw) { putByte(raw, raw.entry(u"mini1") + entry::kTypeAt, 3); }},
        {"second root", [](Raw raw) { putByte(raw, raw.entry(u"S") + entry::kTypeAt, 5); }},
        {"root that is a stream", [](Raw raw) { putByte(raw, raw.entry(0U) + entry::kTypeAt, 2); }},
        {"empty name", [](Raw raw) { putByte(raw, raw.entry(u"mini1") + entry::kNameBytesAt, 2); }},
        {"name without bytes",
         [](Raw raw) { putByte(raw, raw.entry(u"mini1") + entry::kNameBytesAt, 0); }},
        {"name of half a unit",
         [](Raw raw) { putByte(raw, raw.entry(u"mini1") + entry::kNameBytesAt, 11); }},
        {"name longer than its field",
         [](Raw raw) { putByte(raw, raw.entry(u"mini1") + entry::kNameBytesAt, 66); }},
        {"name with a slash", [](Raw raw) { putByte(raw, raw.entry(u"mini1"), '/'); }},
        {"two elements of one name", [](Raw raw) { putByte(raw, raw.entry(u"mini1") + 8, '2'); }},
        {"wrong order", [](Raw raw) { putByte(raw, raw.entry(u"mini1"), 'z'); }},
        {"wrong colour", [](Raw raw) { putByte(raw, raw.entry(u"T") + entry::kColourAt, 1); }},
        {"element in no storage", [](Raw raw) { putEntry(raw, u"S", entry::kChildAt, kNoEntry); }},
    };
    return damages;
}

const std::vector<Damage>& headerDamages() {
    using Raw = RawFile&;
    static const std::vector<Damage> damages = {
        {"unknown version", [](Raw raw) { putByte(raw, header::kMajorVersionAt, 5); }},
        {"other version", [](Raw raw) { putByte(raw, header::kMajorVersionAt, 3); }},
        {"unknown byte order", [](Raw raw) { putByte(raw, header::kByteOrderAt, 0xFF); }},
        {"mini sectors of another size",
         [](Raw raw) { putByte(raw, header::kMiniSectorShiftAt, 7); }},
        {"another cutoff", [](Raw raw) { raw.put(header::kMiniCutoffAt, 512); }},
        {"directory nowhere", [](Raw raw) { raw.put(header::kFirstDirectoryAt, 0x00FFFFFF); }},
        {"no directory", [](Raw raw) { raw.put(header::kFirstDirectoryAt, kEndOfChain); }},
        {"directory in the FAT",
         [](Raw raw) { raw.put(header::kFirstDirectoryAt, raw.get(header::kDifatAt)); }},
        {"FAT out of the file", [](Raw raw) { raw.put(header::kDifatAt, 0x00FFFFFF); }},
        {"no FAT", [](Raw raw) { raw.put(header::kDifatAt, kFreeSector); }},
        {"FAT in the directory",
         [](Raw raw) { raw.put(header::kDifatAt, raw.get(header::kFirstDirectoryAt)); }},
        {"the same FAT sector twice",
         [](Raw raw) {
             std::size_t next = header::kDifatAt;
             while (raw.get(next) != kFreeSector) {
                 next += 4;
             }
             raw.put(next, raw.get(header::kDifatAt));
         }},
        {"wild count of FAT sectors", [](Raw raw) { raw.put(header::kFatSectorsAt, 0xFFFFFFFF); }},
        {"wild count of mini FAT sectors",
         [](Raw raw) { raw.put(header::kMiniFatSectorsAt, 0xFFFFFFFF); }},
        {"DIFAT in a ring",
         [](Raw raw) {
             const std::uint32_t at = startOf(raw, u"long1");
             raw.put(header::kFirstDifatAt, at);
             raw.put(raw.sector(at + 1) - 4, at);
         }},
        {"DIFAT out of the file", [](Raw raw) { raw.put(header::kFirstDifatAt, 0x00FFFFFF); }},
    };
    return damages;
}

class HostileTest : public testing::TestWithParam<SectorSize> {
  protected:
    // Both as our own file and as another program's.
    void exerciseAll(const std::vector<Damage>& damages) {
        for (const Damage& damage : damages) {
            for (const bool foreign : {false, true}) {
                SCOPED_TRACE(std::string(damage.name) + (foreign ? ", another program's" : ""));
                RawFile raw = makeRaw(GetParam());
                const std::vector<std::byte> before = raw.bytes();
                damage.make(raw);
                if (raw.bytes() == before) {
                    continue; // the other version is this one
                }
                if (foreign) {
                    raw.makeForeign();
                }
                EXPECT_FALSE(exercise(raw.bytes()).sound);
            }
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Sectors, HostileTest, testing::ValuesIn(kBothSectorSizes));

TEST_P(HostileTest, ChainsThatLie) {
    exerciseAll(chainDamages());
}

TEST_P(HostileTest, TreesThatLie) {
    exerciseAll(treeDamages());
}

TEST_P(HostileTest, HeadersThatLie) {
    exerciseAll(headerDamages());
}

TEST_P(HostileTest, CutAnywhere) {
    RawFile raw = makeRaw(GetParam());
    ASSERT_TRUE(exercise(raw.bytes()).sound);
    std::uint32_t used = raw.sectors();
    while (raw.get(raw.fatEntry(used - 1)) == kFreeSector) {
        --used;
    }
    for (std::size_t length = 0; length + 512 <= raw.sector(used); length += 512) {
        SCOPED_TRACE("cut to " + std::to_string(length));
        const std::vector<std::byte> cut(raw.bytes().begin(),
                                         raw.bytes().begin() + static_cast<std::ptrdiff_t>(length));
        const Verdict verdict = exercise(cut);
        const bool sectorIsGone = length + raw.sectorSize() <= raw.sector(used);
        EXPECT_FALSE(verdict.sound && sectorIsGone);
    }
}

TEST_P(HostileTest, RandomChanges) {
    const RawFile sound = makeRaw(GetParam());
    std::mt19937 random(17);
    const auto below = [&](std::size_t bound) {
        return static_cast<std::size_t>(random() % bound);
    };
    for (int round = 0; round < 1000; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RawFile raw = sound;
        for (std::size_t i = 0; i <= below(4); ++i) {
            const std::size_t parts[] = {0, sound.sector(sound.get(header::kDifatAt)),
                                         sound.entry(0U), sound.miniFatEntry(0)};
            const std::size_t at = parts[below(4)] + below(512);
            constexpr unsigned kWild[] = {0, 1, 2, 0x7F, 0x80, 0xFC, 0xFE, 0xFF};
            putByte(raw, at, below(2) == 0 ? kWild[below(8)] : static_cast<unsigned>(below(256)));
        }
        exercise(raw.bytes());
        if (HasFailure()) {
            return;
        }
    }
}

std::u16string streamName(std::size_t number) {
    return u"stream" + std::u16string(1, static_cast<char16_t>(0x4E00 + number));
}

std::vector<std::uint32_t> chainFrom(RawFile& raw, std::uint32_t first) {
    std::vector<std::uint32_t> chain;
    for (std::uint32_t at = first; at != kEndOfChain; at = raw.get(raw.fatEntry(at))) {
        chain.push_back(at);
    }
    return chain;
}

// Streams of ten sectors, of which the last one's chain runs into the directory's last two pages
// after eight.
RawFile streamIntoDirectory(std::uint32_t streams) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), SectorSize::Bytes512);
    for (std::uint32_t i = 0; i < streams; ++i) {
        file.root().createStream(streamName(i)).assign(patterned(5000, i));
    }
    file.commit();
    RawFile raw(disk.content(kPath));
    const auto directory = chainFrom(raw, raw.get(header::kFirstDirectoryAt));
    const auto chain = chainFrom(raw, raw.get(raw.entry(streams) + entry::kStartAt));
    raw.put(raw.fatEntry(chain[7]), directory[directory.size() - 2]);
    raw.put(raw.fatEntry(chain[8]), kFreeSector);
    raw.put(raw.fatEntry(chain[9]), kFreeSector);
    return raw;
}

// The directory links the pages again that were given back with the stream.
TEST(CrossedChainsTest, WhatWasGivenBackAndLinkedAgainIsNotTaken) {
    for (std::uint32_t streams = 8; streams < 24; ++streams) {
        MemoryDisk disk;
        disk.setContent(kPath, streamIntoDirectory(streams).bytes());
        CompoundFile file = openFile(disk, kPath);
        file.makeRoom(1);
        file.root().destroy(streamName(streams - 1));
        file.commit();
        ASSERT_EQ(findingsOf(disk, kPath), "") << streams; // mended by the way
        Content expected = contentOf(disk, kPath);
        for (std::uint32_t i = 30; i < 60; ++i) {
            const auto bytes = patterned(5000, i);
            file.root().createStream(streamName(i)).assign(bytes);
            file.commit();
            expected[streamName(i)] = bytes;
        }
        ASSERT_EQ(findingsOf(disk, kPath), "") << streams;
        ASSERT_EQ(contentOf(disk, kPath), expected) << streams;
    }
}

TEST(NotCompoundTest, OtherFilesAreRefused) {
    for (const std::size_t size : {0U, 7U, 8U, 600U, 9000U}) {
        EXPECT_FALSE(exercise(patterned(size, 4)).sound);
    }
    MemoryDisk disk;
    disk.setContent(kPath, patterned(9000, 4));
    EXPECT_EQ(codeOf([&] { openFile(disk, kPath); }), ErrorCode::NotCompoundFile);
    EXPECT_FALSE(CompoundFile::hasSignature(*disk.open(kPath, Access::Read)));
    RawFile raw = makeRaw(SectorSize::Bytes4096);
    raw.bytes().resize(8);
    disk.setContent(kPath, raw.bytes());
    EXPECT_TRUE(CompoundFile::hasSignature(*disk.open(kPath, Access::Read)));
    EXPECT_EQ(codeOf([&] { openFile(disk, kPath); }), ErrorCode::Damaged);
}

} // namespace
} // namespace compound_tests
