// A disk that fails or fills up in the middle of a change: the old state stands, and the file can
// be worked with.
#include "compound/allocation_meter.h"
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/raw_file.h"
#include "compound/read_cache.h"

#include <gtest/gtest.h>
#include <optional>
#include <random>

namespace compound_tests {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::Error;
using compound::ErrorCode;
using compound::SectorSize;
using Call = MemoryDisk::Call;

const std::filesystem::path kPath = "group.stg";

// A file with streams of both kinds in two storages.
std::vector<std::byte> makeBase(SectorSize sectorSize, int streams) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize);
    auto pumps = file.root().createStorage(u"Pumps");
    auto info = file.root().createStorage(u"PumpsInfo");
    for (int i = 0; i < streams; ++i) {
        const std::u16string name = u"picture" + std::u16string(1, static_cast<char16_t>(u'a' + i));
        pumps.createStream(name).assign(patterned(9000 + static_cast<std::size_t>(i) * 700, 1));
        info.createStream(name).assign(patterned(100 + static_cast<std::size_t>(i), 2));
    }
    file.commit();
    return disk.content(kPath);
}

// Makes the n-th call on a file from now on fail.
struct FailingDisk {
    FailingDisk(MemoryDisk& which, int call) : disk(which) {
        disk.setInterceptor([this, call](Call kind) {
            if (kind != Call::Folder && calls++ == call) {
                throw Error(ErrorCode::Failed, kPath, "the disk has failed");
            }
        });
    }
    ~FailingDisk() { disk.setInterceptor({}); }
    FailingDisk(const FailingDisk&) = delete;
    FailingDisk& operator=(const FailingDisk&) = delete;

    MemoryDisk& disk;
    int calls = 0;
};

class FailureTest : public testing::TestWithParam<SectorSize> {};

INSTANTIATE_TEST_SUITE_P(Sectors, FailureTest, testing::ValuesIn(kBothSectorSizes));

// The header in force may name what the old one does not: nothing may be written over.
TEST_P(FailureTest, UnknownOutcomeAllowsNoFurtherChange) {
    MemoryDisk disk;
    disk.setContent(kPath, makeBase(GetParam(), 5));
    CompoundFile file = openFile(disk, kPath);
    file.root().createStorage(u"New");
    const std::uint32_t signature = file.transactionSignature();
    int writes = 0;
    disk.setInterceptor([&](Call kind) {
        if (kind == Call::Write) {
            ++writes;
        }
        if (kind == Call::Sync && writes > 0) {
            throw Error(ErrorCode::Failed, kPath, "the disk has failed");
        }
    });
    EXPECT_THROW(file.commit(), Error);
    disk.setInterceptor({});
    file.dropChanges();
    EXPECT_EQ(file.transactionSignature(), signature);
    file.root().createStorage(u"Other");
    int syncs = 0;
    disk.setInterceptor([&](Call kind) {
        syncs += kind == Call::Sync ? 1 : 0;
        if (syncs > 1) {
            throw Error(ErrorCode::Failed, kPath, "the disk has failed");
        }
    });
    EXPECT_THROW(file.commit(), Error); // the header's sync, and the one after putting it back
    disk.setInterceptor({});
    file.dropChanges();
    EXPECT_THROW(file.root().createStorage(u"Third"), Error);
    EXPECT_NO_THROW(openFile(disk, kPath).root().createStorage(u"Third"));
}

TEST_P(FailureTest, FailedNewFileIsNoCompoundFile) {
    MemoryDisk disk;
    for (int call = 0; call < 1000; ++call) {
        std::optional<ErrorCode> error;
        int calls = 0;
        {
            FailingDisk failure(disk, call);
            try {
                auto file = CompoundFile::create(disk.create(kPath), GetParam());
                file.root().createStream(u"one").assign(patterned(10, 1));
                file.commit();
            } catch (const Error& caught) {
                error = caught.code();
            }
            calls = failure.calls;
        }
        if (error) {
            EXPECT_TRUE(disk.content(kPath).empty()) << "call " << call;
        } else {
            EXPECT_EQ(contentOf(disk, kPath).size(), 1U) << "call " << call;
        }
        disk.removeTemporary(kPath);
        if (calls <= call) {
            return;
        }
    }
    FAIL() << "the calls have no end";
}

TEST_P(FailureTest, FullDiskKeepsTheOldStateAndLetsDelete) {
    const std::vector<std::byte> base = makeBase(GetParam(), 12);
    for (std::uint64_t room = 0; room < 40000; room += 4096 + 512) {
        SCOPED_TRACE("room for " + std::to_string(room) + " bytes");
        MemoryDisk disk;
        disk.setContent(kPath, base);
        disk.setCapacity(base.size() + room);
        Content expected = contentOf(disk, kPath);
        {
            CompoundFile file = openFile(disk, kPath);
            try {
                auto stream = file.root().openStorage(u"Pumps").createStream(u"large");
                stream.assign(patterned(200000, 9));
                file.commit();
                ADD_FAILURE() << "there was no room";
            } catch (const Error& error) {
                EXPECT_EQ(error.code(), ErrorCode::NoSpace);
            }
        }
        EXPECT_EQ(disk.content(kPath).size(), base.size());
        ASSERT_TRUE(contentOf(disk, kPath) == expected);
        for (const auto& [path, bytes] : Content(expected)) {
            const std::size_t slash = path.find(u'/');
            if (slash + 1 == path.size()) {
                continue; // a storage
            }
            CompoundFile file = openFile(disk, kPath);
            file.root().openStorage(path.substr(0, slash)).destroy(path.substr(slash + 1));
            ASSERT_NO_THROW(file.commit());
            expected.erase(path);
            ASSERT_TRUE(contentOf(disk, kPath) == expected);
        }
        ASSERT_EQ(findingsOf(disk, kPath), "");
    }
}

// A small disk that was filled by single additions, of short and of long streams.
class FullDisk {
  public:
    explicit FullDisk(SectorSize sectorSize) {
        CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize);
        for (const std::u16string_view storage : {u"Pumps", u"PumpsInfo", u"Sub1", u"Sub1Info"}) {
            file.root().createStorage(storage);
        }
        file.root().openStorage(u"Sub1").createStream(u"Name").assign(patterned(4, 1));
        file.commit();
        disk.setCapacity(kCapacity);
        for (const std::size_t size : {12000U, 3000U, 200U, 0U}) {
            while (add(u"Pumps", size)) {
                add(u"Sub1", size);
            }
        }
    }

    bool add(const std::u16string& storage, std::size_t size) {
        const std::u16string name = nameOf(added_++);
        try {
            CompoundFile file = openFile(disk, kPath);
            if (added_ % 2 == 0) {
                file.makeRoom(size + 12);
            }
            file.root().openStorage(storage).createStream(name).assign(patterned(size, 1));
            file.root().openStorage(storage + u"Info").createStream(name).assign(patterned(12, 2));
            file.commit();
            return true;
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::NoSpace);
            return false;
        }
    }

    static std::u16string nameOf(std::size_t number) {
        std::u16string name = u"picture ";
        for (const char digit : std::to_string(1000 + number)) {
            name += static_cast<char16_t>(digit);
        }
        return name;
    }

    std::size_t added() const { return added_; }

    MemoryDisk disk;

  private:
    static constexpr std::uint64_t kCapacity = 1500000;
    std::size_t added_ = 0;
};

TEST_P(FailureTest, FullDiskLetsDeleteEverything) {
    FullDisk full(GetParam());
    ASSERT_GT(contentOf(full.disk, kPath).size(), 150U);
    std::size_t deleted = 0;
    for (std::size_t i = 0; i < full.added(); ++i) {
        const std::u16string name = FullDisk::nameOf(i * 37 % full.added());
        CompoundFile file = openFile(full.disk, kPath);
        for (const std::u16string_view storage : {u"Pumps", u"Sub1"}) {
            if (!file.root().openStorage(storage).find(name)) {
                continue;
            }
            file.root().openStorage(storage).destroy(name);
            file.root().openStorage(std::u16string(storage) + u"Info").destroy(name);
            ++deleted;
        }
        ASSERT_NO_THROW(file.commit()) << deleted;
    }
    EXPECT_GT(deleted, 70U);
    EXPECT_EQ(findingsOf(full.disk, kPath), "");
}

TEST_P(FailureTest, FullDiskLetsRenameAndDeleteAStorageAtOnce) {
    FullDisk full(GetParam());
    for (std::size_t i = 0; i < full.added(); ++i) {
        CompoundFile file = openFile(full.disk, kPath);
        const std::u16string name = FullDisk::nameOf(i);
        for (const std::u16string_view storage : {u"Pumps", u"PumpsInfo"}) {
            if (file.root().openStorage(storage).find(name)) {
                file.root().openStorage(storage).rename(name, name + u" of the other kind");
            }
        }
        file.root().openStorage(u"Sub1").openStream(u"Name").assign(patterned(1 + i % 27, 1));
        ASSERT_NO_THROW(file.commit()) << i;
    }
    EXPECT_EQ(findingsOf(full.disk, kPath), "");
    CompoundFile file = openFile(full.disk, kPath);
    file.root().destroy(u"Sub1");
    file.root().destroy(u"Sub1Info");
    ASSERT_NO_THROW(file.commit());
    EXPECT_EQ(findingsOf(full.disk, kPath), "");
}

TEST_P(FailureTest, WithoutRoomATransactionStaysAsItWas) {
    const std::vector<std::byte> base = makeBase(GetParam(), 5);
    MemoryDisk disk;
    disk.setContent(kPath, base);
    disk.setCapacity(base.size() + 300000);
    CompoundFile file = openFile(disk, kPath);
    auto pumps = file.root().openStorage(u"Pumps");
    Content expected = contentOf(file);
    for (std::uint32_t i = 0; i < 100; ++i) {
        const std::size_t size = 200 + std::size_t{i} * 500;
        const std::u16string name = FullDisk::nameOf(i);
        try {
            file.makeRoom(size);
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::NoSpace);
            continue;
        }
        ASSERT_NO_THROW(pumps.createStream(name).assign(patterned(size, i)));
        expected[u"Pumps/" + name] = patterned(size, i);
    }
    ASSERT_GT(expected.size(), 15U);
    ASSERT_LT(expected.size(), 70U);
    ASSERT_NO_THROW(file.commit());
    EXPECT_TRUE(contentOf(disk, kPath) == expected);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// Wherever in the file the freed sectors lie.
TEST_P(FailureTest, FullDiskTakesWhatWasDeleted) {
    const std::vector<std::byte> base = makeBase(GetParam(), 25);
    for (char16_t letter = u'a'; letter < u'a' + 25; letter += 4) {
        MemoryDisk disk;
        disk.setContent(kPath, base);
        disk.setCapacity(base.size());
        CompoundFile file = openFile(disk, kPath);
        auto pumps = file.root().openStorage(u"Pumps");
        const std::u16string name = u"picture" + std::u16string(1, letter);
        const auto size = static_cast<std::size_t>(pumps.openStream(name).size());
        pumps.destroy(name);
        file.commit();
        EXPECT_NO_THROW({
            pumps.createStream(u"instead").assign(patterned(size, 8));
            file.commit();
        }) << size;
        EXPECT_EQ(findingsOf(disk, kPath), "");
        EXPECT_LE(disk.content(kPath).size(), base.size());
    }
}

// Ranges of the file whose sectors are all in use, so that a FAT sector finds no place there.
std::uint32_t rangesWithoutRoom(const std::vector<std::byte>& bytes) {
    const RawFile raw(bytes);
    const std::uint32_t perSector = raw.sectorSize() / 4;
    std::uint32_t full = 0;
    for (std::uint32_t first = 0; first + perSector <= raw.sectors(); first += perSector) {
        std::uint32_t free = 0;
        for (std::uint32_t sector = first; sector < first + perSector; ++sector) {
            free += raw.get(raw.fatEntry(sector)) == compound::format::kFreeSector ? 1U : 0U;
        }
        full += free == 0 ? 1U : 0U;
    }
    return full;
}

// However a process that makes many changes has scattered the FAT sectors: deletions live on it.
TEST(FullDisk512Test, EachRangeKeepsASectorForItsFatSector) {
    constexpr std::size_t kSizes[] = {0, 300, 2500, 5000, 9000, 40000};
    MemoryDisk disk;
    compound::ReadCache cache;
    CompoundFile::create(disk.create(kPath), SectorSize::Bytes512).commit();
    disk.setCapacity(4000000);
    std::mt19937 random(1);
    std::vector<std::u16string> names;
    std::size_t refused = 0;
    for (std::size_t i = 0; i < 1500; ++i) {
        CompoundFile file =
            CompoundFile::open(disk.open(kPath, Access::ReadWrite), Access::ReadWrite, &cache);
        const std::u16string name = FullDisk::nameOf(i * 37);
        const std::size_t which = names.empty() ? 0 : random() % names.size();
        if (!names.empty() && random() % 2 == 0) {
            file.root().rename(names[which], name);
            ASSERT_NO_THROW(file.commit()) << i;
            names[which] = name;
            continue;
        }
        try {
            file.root().createStream(name).assign(patterned(kSizes[random() % 6], 1));
            file.commit();
            names.push_back(name);
        } catch (const Error&) {
            ++refused;
        }
        if (i % 8 == 0) {
            ASSERT_EQ(rangesWithoutRoom(disk.content(kPath)), 0U) << i;
        }
    }
    EXPECT_GT(refused, 100U);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

TEST_P(FailureTest, DroppedChangesLeaveNoTrace) {
    MemoryDisk disk;
    disk.setContent(kPath, makeBase(GetParam(), 5));
    CompoundFile file = openFile(disk, kPath);
    const Content before = contentOf(file);
    auto root = file.root();
    root.createStorage(u"Trial").createStream(u"x").assign(patterned(100000, 1));
    root.openStorage(u"Pumps").destroy(u"picturea");
    root.destroy(u"PumpsInfo");
    file.dropChanges();
    EXPECT_FALSE(file.hasChanges());
    EXPECT_TRUE(contentOf(file) == before);
    file.root().createStorage(u"Kept");
    file.commit();
    Content after = before;
    after[u"Kept/"] = {};
    EXPECT_TRUE(contentOf(disk, kPath) == after);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// One picture on a bad place of the medium keeps no other from being changed, though the room that
// others have left cannot be filled with it.
TEST_P(FailureTest, WhatCannotBeReadStaysWhereItIs) {
    MemoryDisk disk;
    disk.setContent(kPath, makeBase(GetParam(), 20));
    CompoundFile file = openFile(disk, kPath);
    auto pumps = file.root().openStorage(u"Pumps");
    for (char16_t letter = u'a'; letter < u'i'; ++letter) {
        pumps.destroy(u"picture" + std::u16string(1, letter));
    }
    file.commit();
    EXPECT_TRUE(file.check().empty()); // and all but the pictures is in memory
    const std::size_t size = disk.content(kPath).size();
    disk.setInterceptor([](Call kind) {
        if (kind == Call::Read) {
            throw Error(ErrorCode::Failed, kPath, "a bad sector");
        }
    });
    pumps.rename(u"picturek", u"other");
    file.commit();
    disk.setInterceptor({});
    EXPECT_GT(disk.content(kPath).size() + 20000, size);
    const Content before = contentOf(file);
    pumps.rename(u"other", u"picturek");
    file.commit();
    EXPECT_LT(disk.content(kPath).size(), size - 20000);
    Content after = contentOf(disk, kPath);
    EXPECT_TRUE(after.at(u"Pumps/picturek") == before.at(u"Pumps/other"));
    after[u"Pumps/other"] = after.extract(u"Pumps/picturek").mapped();
    EXPECT_TRUE(after == before);
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

// Nobody has asked for it, so nobody is told: whatever fails, once or from then on, what was
// committed is there, and neither the open file nor what the process remembers says otherwise.
TEST_P(FailureTest, WhatFailsWhileGapsAreClosedCostsSpaceAlone) {
    constexpr int kPictures = 24;
    const std::vector<std::byte> base = makeBase(GetParam(), kPictures);
    const int stride = GetParam() == SectorSize::Bytes512 ? 7 : 1; // of very many calls
    bool isMet = true;
    std::size_t longest = 0;
    std::size_t shortest = base.size() * 2;
    for (int failing = 0; isMet; failing += stride) {
        for (const bool forGood : {false, true}) {
            MemoryDisk disk;
            disk.setContent(kPath, base);
            compound::ReadCache cache;
            Content committed;
            {
                CompoundFile file = CompoundFile::open(disk.open(kPath, Access::ReadWrite),
                                                       Access::ReadWrite, &cache);
                auto pumps = file.root().openStorage(u"Pumps");
                for (int i = 0; i < kPictures; ++i) {
                    pumps
                        .openStream(u"picture" + std::u16string(1, static_cast<char16_t>(u'a' + i)))
                        .assign(patterned(12000 + static_cast<std::size_t>(i) * 600, 7));
                }
                file.commit();
                committed = contentOf(disk, kPath);
                int calls = 0;
                disk.setInterceptor([&](Call) {
                    const int call = calls++;
                    if (call == failing || (forGood && call > failing)) {
                        throw Error(ErrorCode::Failed, kPath, "the disk has failed");
                    }
                });
                file.closeGaps();
                disk.setInterceptor({});
                isMet = calls > failing;
                ASSERT_FALSE(file.hasChanges());
                ASSERT_TRUE(contentOf(file) == committed) << "call " << failing;
            }
            ASSERT_TRUE(contentOf(disk, kPath) == committed) << "call " << failing;
            longest = std::max(longest, disk.content(kPath).size());
            shortest = std::min(shortest, disk.content(kPath).size());
            CompoundFile next =
                CompoundFile::open(disk.open(kPath, Access::ReadWrite), Access::ReadWrite, &cache);
            ASSERT_TRUE(contentOf(next) == committed) << "call " << failing;
            next.root().openStorage(u"Pumps").destroy(u"picturea");
            next.commit();
            committed.erase(u"Pumps/picturea");
            ASSERT_TRUE(contentOf(disk, kPath) == committed) << "call " << failing;
            ASSERT_EQ(damageOf(disk, kPath), "") << "call " << failing;
        }
    }
    EXPECT_GT(longest, shortest + base.size() / 2); // it has been in the way
}

TEST_P(FailureTest, MemoryThatRunsOutWhileGapsAreClosedCostsOnlyTheSpace) {
    constexpr int kPictures = 24;
    const std::vector<std::byte> base = makeBase(GetParam(), kPictures);
    std::uint64_t before = 0;
    std::uint64_t after = UINT64_MAX;
    for (std::size_t allocations = 0; after >= before; allocations += 1 + allocations / 8) {
        MemoryDisk disk;
        disk.setContent(kPath, base);
        CompoundFile file = openFile(disk, kPath);
        const compound::Storage pumps = file.root().openStorage(u"Pumps");
        for (int i = 0; i < kPictures; ++i) {
            pumps.openStream(u"picture" + std::u16string(1, static_cast<char16_t>(u'a' + i)))
                .assign(patterned(12000 + static_cast<std::size_t>(i) * 600, 7));
        }
        file.commit();
        const Content committed = contentOf(disk, kPath);
        before = file.disk().size();
        failAllocationsAfter(allocations);
        file.closeGaps();
        allowAllocations();
        after = file.disk().size();
        ASSERT_FALSE(file.hasChanges());
        ASSERT_TRUE(contentOf(file) == committed) << "allocation " << allocations;
        file.root().openStorage(u"Pumps").destroy(u"picturea");
        file.commit();
        ASSERT_EQ(damageOf(disk, kPath), "") << "allocation " << allocations;
    }
}

// The least capacity, in sectors, of a disk that a batch fits on which replaces all but ten of
// `names` and adds those.
std::uint64_t roomForBatch(SectorSize sectorSize, const std::vector<std::byte>& base, int names) {
    for (std::uint64_t capacity = base.size();;
         capacity += static_cast<std::uint64_t>(sectorSize)) {
        MemoryDisk disk;
        disk.setContent(kPath, base);
        disk.setCapacity(capacity);
        try {
            CompoundFile file = openFile(disk, kPath);
            auto pictures = file.root().openStorage(u"Pumps");
            for (int i = names; i-- > 0;) {
                const auto number = static_cast<std::size_t>(i < 10 ? 500 + i : 50 + i);
                pictures.createStream(FullDisk::nameOf(number), compound::IfExists::Replace)
                    .assign(patterned(300, 2));
            }
            file.commit();
        } catch (const Error& error) {
            EXPECT_EQ(error.code(), ErrorCode::NoSpace) << error.what();
            continue;
        }
        EXPECT_EQ(findingsOf(disk, kPath), "");
        return capacity / static_cast<std::uint64_t>(sectorSize);
    }
}

// From 64 names on the trees of so small a directory get a new shape, for which every page of it
// may be written: only where there is room.
TEST_P(FailureTest, OneNameMoreNeedsLittleMoreRoom) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), GetParam());
    auto pictures = file.root().createStorage(u"Pumps");
    for (std::size_t i = 0; i < 180; ++i) {
        pictures.createStream(FullDisk::nameOf(i)).assign(patterned(300, 1));
    }
    file.commit();
    const std::vector<std::byte> base = disk.content(kPath);
    EXPECT_LE(roomForBatch(GetParam(), base, 64), roomForBatch(GetParam(), base, 63) + 4);
}

// What the deletion frees at the end cannot be used before it is committed, and the tables' sectors
// need a place until then. The next changes cut the file.
TEST(DeletionTest, TheLastTwoThirdsOfALargeFileGo) {
    constexpr std::size_t kPictures = 40;
    constexpr std::size_t kLeft = kPictures / 3 + 1;
    MemoryDisk disk;
    const std::vector<std::byte> bytes = patterned(std::size_t{449} << 10U, 1);
    CompoundFile made = CompoundFile::create(disk.create(kPath), SectorSize::Bytes512);
    auto filled = made.root().createStorage(u"Pumps");
    for (std::size_t i = 0; i < kPictures; ++i) {
        filled.createStream(FullDisk::nameOf(i)).assign(bytes);
    }
    made.commit();
    CompoundFile file = openFile(disk, kPath);
    auto pictures = file.root().openStorage(u"Pumps");
    for (std::size_t i = kLeft; i < kPictures; ++i) {
        pictures.destroy(FullDisk::nameOf(i));
    }
    ASSERT_NO_THROW(file.commit());
    file.closeGaps();
    pictures.rename(FullDisk::nameOf(0), u"first");
    file.commit();
    EXPECT_LT(disk.content(kPath).size(), bytes.size() * (kLeft + 1));
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

TEST(MessageTest, NamesAreShownAsTheyAreWritten) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath));
    const auto causeOf = [&](std::u16string_view name) -> std::string {
        try {
            file.root().openStream(name);
        } catch (const Error& error) {
            return error.cause();
        }
        return {};
    };
    EXPECT_EQ(causeOf(u"Gr\u00F6\u00DFe \u20AC"),
              "there is no \"Gr\u00F6\u00DFe \u20AC\" in the file");
    EXPECT_EQ(causeOf(u"\U0001F4A7"), "there is no \"\U0001F4A7\" in the file");
    const std::u16string halves{u'a', 0xDCA7, 0xD83D, u'\n'};
    EXPECT_EQ(causeOf(halves), "there is no \"a???\" in the file");
}

TEST(ReadOnlyTest, ChangesAreDenied) {
    MemoryDisk disk;
    const std::vector<std::byte> base = makeBase(SectorSize::Bytes4096, 2);
    disk.setContent(kPath, base);
    CompoundFile file = openFile(disk, kPath, Access::Read);
    auto root = file.root();
    const auto denied = [](auto change) {
        try {
            change();
        } catch (const Error& error) {
            return error.code() == ErrorCode::Denied;
        }
        return false;
    };
    EXPECT_TRUE(denied([&] { root.createStorage(u"New"); }));
    EXPECT_TRUE(denied([&] { root.destroy(u"Pumps"); }));
    EXPECT_TRUE(denied([&] { root.rename(u"Pumps", u"Valves"); }));
    EXPECT_TRUE(denied([&] { root.openStorage(u"Pumps").openStream(u"picturea").assign({}); }));
    EXPECT_FALSE(file.hasChanges());
    EXPECT_EQ(disk.content(kPath), base);
}

} // namespace
} // namespace compound_tests
