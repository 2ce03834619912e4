// Files as other programs leave them, made by them or edited in place with our signature kept: read
// as they are, and sound after the first change.
#include "compound/error.h"
#include "compound/file_helpers.h"
#include "compound/raw_file.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <random>
#include <tuple>
#include <utility>

namespace compound_tests {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::Error;
using compound::SectorSize;
using namespace compound::format;

const std::filesystem::path kPath = "foreign.stg";
constexpr std::u16string_view kLetters = u"abcdefghijklmnop";

// A storage "S" with sixteen streams "a" to "p", short, long and empty ones by turns.
RawFile makeRaw(SectorSize sectorSize) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize);
    auto storage = file.root().createStorage(u"S");
    for (std::size_t i = 0; i < kLetters.size(); ++i) {
        constexpr std::size_t kSizes[] = {100, 5000, 0};
        storage.createStream(kLetters.substr(i, 1))
            .assign(patterned(kSizes[i % 3], static_cast<std::uint32_t>(i)));
    }
    file.commit();
    return RawFile(disk.content(kPath));
}

// Elements that another program has chained as a list, which no tree of any colours is.
void makeList(RawFile& raw, const std::vector<std::u16string>& names, Colour colour) {
    raw.put(raw.entry(u"S") + entry::kChildAt, raw.idOf(names.front()));
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::size_t at = raw.entry(names[i]);
        const bool last = i + 1 == names.size();
        raw.put(at + entry::kLeftAt, kNoEntry);
        raw.put(at + entry::kRightAt, last ? kNoEntry : raw.idOf(names[i + 1]));
        raw.bytes().at(at + entry::kColourAt) = static_cast<std::byte>(colour);
    }
}

// Reading gives what was there before the patches; a change keeps it and makes the file sound.
void expectReadAndMended(RawFile& raw, const Content& expected) {
    MemoryDisk disk;
    disk.setContent(kPath, raw.bytes());
    ASSERT_TRUE(contentOf(disk, kPath) == expected);
    {
        CompoundFile file = openFile(disk, kPath, Access::Read);
        for (std::size_t i = 0; i < kLetters.size(); ++i) {
            ASSERT_TRUE(file.root().openStorage(u"S").find(kLetters.substr(i, 1))) << i;
        }
    }
    CompoundFile file = openFile(disk, kPath);
    auto storage = file.root().openStorage(u"S");
    EXPECT_THROW(storage.createStream(u"B"), Error);
    storage.createStream(u"added").assign(patterned(3000, 99));
    storage.createStream(u"large").assign(patterned(30000, 98));
    storage.destroy(u"a");
    file.commit();
    Content changed = expected;
    changed[u"S/added"] = patterned(3000, 99);
    changed[u"S/large"] = patterned(30000, 98);
    changed.erase(u"S/a");
    EXPECT_EQ(findingsOf(disk, kPath), "");
    EXPECT_TRUE(contentOf(disk, kPath) == changed);
}

Content contentOf(RawFile& raw) {
    MemoryDisk disk;
    disk.setContent(kPath, raw.bytes());
    return compound_tests::contentOf(disk, kPath);
}

enum class Signature { Ours, Theirs };

class ForeignTest : public testing::TestWithParam<std::tuple<SectorSize, Signature>> {
  protected:
    ForeignTest() {
        if (std::get<Signature>(GetParam()) == Signature::Theirs) {
            raw_.makeForeign();
        }
    }

    static SectorSize sectorSize() { return std::get<SectorSize>(GetParam()); }

    RawFile raw_ = makeRaw(sectorSize());
    Content content_ = contentOf(raw_);

    void putColour(std::u16string_view name, Colour colour) {
        raw_.bytes().at(raw_.entry(name) + entry::kColourAt) = static_cast<std::byte>(colour);
    }

    void expectReadAndMended() { compound_tests::expectReadAndMended(raw_, content_); }
};

INSTANTIATE_TEST_SUITE_P(Sectors, ForeignTest,
                         testing::Combine(testing::ValuesIn(kBothSectorSizes),
                                          testing::Values(Signature::Ours, Signature::Theirs)));

TEST_P(ForeignTest, ListInsteadOfATree) {
    std::vector<std::u16string> names;
    for (const char16_t letter : kLetters) {
        names.emplace_back(1, letter);
    }
    makeList(raw_, names, Colour::Black);
    expectReadAndMended();
}

TEST_P(ForeignTest, AllRedAndAllBlack) {
    for (const Colour colour : {Colour::Red, Colour::Black}) {
        for (std::size_t i = 0; i < kLetters.size(); ++i) {
            putColour(kLetters.substr(i, 1), colour);
        }
        expectReadAndMended();
    }
}

TEST_P(ForeignTest, NamesThatTheOrderHides) {
    for (const auto& [one, other] : {std::pair(u"a", u"p"), std::pair(u"c", u"h")}) {
        std::swap(raw_.bytes()[raw_.entry(one)], raw_.bytes()[raw_.entry(other)]);
        std::swap(content_[std::u16string(u"S/") + one], content_[std::u16string(u"S/") + other]);
    }
    expectReadAndMended();
}

TEST_P(ForeignTest, TablesNotMarkedInTheFat) {
    raw_.put(raw_.fatEntry(raw_.get(header::kDifatAt)), kFreeSector);
    expectReadAndMended();
}

TEST_P(ForeignTest, WrongCountsInTheHeader) {
    raw_.put(header::kFatSectorsAt, 0);
    raw_.put(header::kMiniFatSectorsAt, 0);
    raw_.put(header::kDirectorySectorsAt, 77);
    raw_.put(header::kFirstDifatAt, kFreeSector);
    expectReadAndMended();
    raw_.put(header::kMiniFatSectorsAt, 5);
    expectReadAndMended();
}

TEST_P(ForeignTest, JunkWhereNothingCounts) {
    raw_.put(raw_.entry(u"c") + entry::kStartAt, 12345); // an empty stream's first sector
    for (std::uint32_t id = 0;; ++id) {
        const std::size_t at = raw_.entry(id);
        if (raw_.bytes()[at + entry::kTypeAt] != std::byte{0}) {
            continue;
        }
        for (std::size_t i = 0; i < kEntrySize; ++i) { // an entry that is free
            raw_.bytes()[at + i] = i == entry::kTypeAt ? std::byte{0} : std::byte{0x5A};
        }
        break;
    }
    raw_.put(raw_.entry(u"S") + entry::kStartAt, 7);
    expectReadAndMended();
}

TEST_P(ForeignTest, LastSectorCutShort) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize());
    file.root().createStream(u"x").assign(patterned(5000, 1));
    file.commit();
    RawFile raw(disk.content(kPath));
    raw.makeForeign();
    std::uint32_t used = raw.sectors();
    while (raw.get(raw.fatEntry(used - 1)) == kFreeSector) {
        --used;
    }
    const std::size_t end = raw.sector(used);
    raw.bytes().resize(end - 50);
    disk.setContent(kPath, raw.bytes());
    EXPECT_EQ(compound_tests::contentOf(disk, kPath).size(), 1U);
    CompoundFile cut = openFile(disk, kPath);
    cut.root().createStream(u"y").assign(patterned(9000, 2));
    cut.commit();
    EXPECT_EQ(findingsOf(disk, kPath), "");
}

TEST_P(ForeignTest, AttributesAreCarriedAlong) {
    std::vector<std::byte> attributes = patterned(entry::kStartAt - entry::kClassIdAt, 5);
    const auto at = [&](RawFile& raw, std::u16string_view name) {
        return raw.bytes().begin() +
               static_cast<std::ptrdiff_t>(raw.entry(name) + entry::kClassIdAt);
    };
    for (const std::u16string_view name : {u"S", u"Root Entry", u"b"}) {
        std::copy(attributes.begin(), attributes.end(), at(raw_, name));
    }
    MemoryDisk disk;
    disk.setContent(kPath, raw_.bytes());
    CompoundFile file = openFile(disk, kPath);
    file.root().openStorage(u"S").rename(u"b", u"renamed");
    file.root().openStorage(u"S").openStream(u"renamed").assign(patterned(9, 1));
    file.root().rename(u"S", u"T");
    file.commit();
    CompoundFile copy = CompoundFile::create(disk.create("copy.stg"), sectorSize());
    copyAll(file, copy);
    copy.commit();
    CompoundFile other = CompoundFile::create(disk.create("other.stg"));
    copyElement(file.root(), *file.root().find(u"T"), other.root(), u"T");
    other.commit();
    for (const auto& path : {kPath, std::filesystem::path("copy.stg"), {"other.stg"}}) {
        RawFile raw(disk.content(path));
        for (const std::u16string_view name : {u"T", u"Root Entry", u"renamed"}) {
            EXPECT_EQ(std::equal(attributes.begin(), attributes.end(), at(raw, name)),
                      path != "other.stg" || name != u"Root Entry")
                << path;
        }
    }
}

TEST_P(ForeignTest, OneElementIsCopiedWithAllBelowIt) {
    MemoryDisk disk;
    disk.setContent(kPath, raw_.bytes());
    CompoundFile from = openFile(disk, kPath, Access::Read);
    CompoundFile to = CompoundFile::create(disk.create("to.stg"), SectorSize::Bytes512);
    to.root().createStream(u"kept").assign(patterned(5000, 9));
    to.commit();
    Content expected = compound_tests::contentOf(to);
    for (const auto& [path, bytes] : content_) {
        if (path.starts_with(u"S/")) {
            expected.emplace(u"Copy" + path.substr(1), bytes);
        }
    }
    const auto copyAs = [&](std::u16string_view name) {
        copyElement(from.root(), *from.root().find(u"S"), to.root(), name);
    };
    EXPECT_THROW(copyAs(u"KEPT"), Error);
    EXPECT_THROW(copyAs(u"a/b"), Error);
    EXPECT_FALSE(to.hasChanges());
    copyAs(u"Copy");
    to.commit();
    EXPECT_TRUE(compound_tests::contentOf(disk, "to.stg") == expected);
    EXPECT_EQ(findingsOf(disk, "to.stg"), "");
}

// Lists in place of trees: one in order, whose colours promise blacks that are not there beside the
// way down, and one out of order that is higher than any tree.
TEST_P(ForeignTest, EveryElementOfALooseTreeCanBeRemoved) {
    for (const auto& [count, colour] : {std::pair(40, Colour::Black), std::pair(40, Colour::Red),
                                        std::pair(100, Colour::Black)}) {
        MemoryDisk disk;
        std::vector<std::u16string> names;
        {
            CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize());
            auto storage = file.root().createStorage(u"S");
            for (int i = 0; i < count; ++i) {
                names.push_back({u'n', static_cast<char16_t>(u'0' + i / 10),
                                 static_cast<char16_t>(u'0' + i % 10)});
                storage.createStream(names.back()).assign(patterned(50, 1));
            }
            file.commit();
        }
        RawFile raw(disk.content(kPath));
        if (std::get<Signature>(GetParam()) == Signature::Theirs) {
            raw.makeForeign();
        }
        if (count == 100) {
            std::reverse(names.begin(), names.begin() + count / 2);
        }
        makeList(raw, names, colour);
        disk.setContent(kPath, raw.bytes());
        std::shuffle(names.begin(), names.end() - 1, std::mt19937(3));
        std::reverse(names.begin(), names.end()); // the list's last one is the first to go
        for (const std::u16string& name : names) {
            CompoundFile file = openFile(disk, kPath);
            ASSERT_NO_THROW(file.root().openStorage(u"S").destroy(name));
            file.commit();
        }
        EXPECT_EQ(compound_tests::contentOf(disk, kPath), (Content{{u"S/", {}}}));
        EXPECT_EQ(findingsOf(disk, kPath), "");
    }
}

// To another program "B" and "b" may be two names.
TEST_P(ForeignTest, TwoElementsOfOneNameAreBothKept) {
    raw_.put(raw_.entry(u"p"), u'B');
    MemoryDisk disk;
    disk.setContent(kPath, raw_.bytes());
    content_.extract(u"S/p");
    content_[u"S/B"] = patterned(100, 15);
    EXPECT_TRUE(compound_tests::contentOf(disk, kPath) == content_);
    EXPECT_NE(findingsOf(disk, kPath).find("it bears the same name as S/"), std::string::npos);
    CompoundFile file = openFile(disk, kPath);
    file.root().openStorage(u"S").createStream(u"b (2)");
    file.commit();
    content_[u"S/b (2)"] = {};
    EXPECT_TRUE(compound_tests::contentOf(disk, kPath) == content_);
    CompoundFile copy = CompoundFile::create(disk.create("copy.stg"), sectorSize());
    copyAll(file, copy);
    copy.commit();
    auto moved = content_.extract(u"S/b");
    moved.key() = u"S/b (3)";
    content_.insert(std::move(moved));
    EXPECT_TRUE(compound_tests::contentOf(disk, "copy.stg") == content_);
    EXPECT_EQ(findingsOf(disk, "copy.stg"), "");
}

TEST(Foreign512Test, UpperHalvesOfSizesDoNotCount) {
    RawFile raw = makeRaw(SectorSize::Bytes512);
    raw.makeForeign();
    const Content expected = contentOf(raw);
    for (const std::u16string_view name : {u"a", u"b", u"c", u"Root Entry"}) {
        raw.put(raw.entry(name) + entry::kSizeAt + 4, 0xCDCDCDCD);
    }
    expectReadAndMended(raw, expected);
}

// Nothing but the header tells that the file's last sector is in use.
TEST_P(ForeignTest, FatSectorAtTheEndThatIsMarkedFree) {
    MemoryDisk disk;
    Content expected;
    const auto perSector = static_cast<std::uint32_t>(sectorSize()) / 4;
    {
        CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize());
        expected[u"large"] = patterned(std::size_t{3} * perSector * perSector * 4, 1);
        expected[u"small"] = patterned(10, 2);
        for (const auto& [name, bytes] : expected) {
            file.root().createStream(name).assign(bytes);
        }
        file.commit();
    }
    RawFile raw(disk.content(kPath));
    const std::size_t second = header::kDifatAt + 4; // names the second FAT sector
    const std::uint32_t before = raw.get(second);
    const std::uint32_t last = raw.sectors();
    ASSERT_LT(last, raw.get(header::kFatSectorsAt) * perSector);
    const auto from = raw.bytes().begin() + static_cast<std::ptrdiff_t>(raw.sector(before));
    const std::vector<std::byte> moved(from, from + std::ptrdiff_t{4} * perSector);
    raw.bytes().insert(raw.bytes().end(), moved.begin(), moved.end());
    raw.put(second, last);
    raw.put(raw.fatEntry(before), kFreeSector);
    if (std::get<Signature>(GetParam()) == Signature::Theirs) {
        raw.makeForeign();
    }
    disk.setContent(kPath, raw.bytes());
    ASSERT_TRUE(compound_tests::contentOf(disk, kPath) == expected);
    CompoundFile file = openFile(disk, kPath);
    file.root().rename(u"small", u"tiny");
    file.commit();
    auto small = expected.extract(u"small");
    small.key() = u"tiny";
    expected.insert(std::move(small));
    EXPECT_TRUE(compound_tests::contentOf(disk, kPath) == expected);
}

// 110 FAT sectors and more need a DIFAT sector, which other programs chain and mark in their ways.
class ForeignDifatTest : public testing::TestWithParam<Signature> {
  protected:
    ForeignDifatTest() {
        CompoundFile file = CompoundFile::create(disk_.create(kPath), SectorSize::Bytes512);
        file.root().createStream(u"gap").assign(patterned(700000, 1));
        file.root().createStream(u"large").assign(patterned(7300000, 1));
        file.commit();
        file.root().destroy(u"gap");
        file.commit();
        raw_.emplace(disk_.content(kPath));
        if (GetParam() == Signature::Theirs) {
            raw_->makeForeign();
        }
        difat_ = raw_->get(header::kFirstDifatAt);
    }

    void expectMended() {
        disk_.setContent(kPath, raw_->bytes());
        Content expected = compound_tests::contentOf(disk_, kPath);
        ASSERT_EQ(expected.size(), 1U);
        CompoundFile again = openFile(disk_, kPath);
        again.root().createStream(u"small").assign(patterned(10, 2));
        again.commit();
        const RawFile mended(disk_.content(kPath));
        EXPECT_EQ(mended.get(header::kDifatSectorsAt), 1U);
        if (GetParam() == Signature::Theirs) {
            EXPECT_EQ(mended.get(mended.sector(mended.get(header::kFirstDifatAt)) + 508),
                      kEndOfChain);
        }
        again.root().createStream(u"long").assign(patterned(60000, 2));
        again.commit();
        expected[u"small"] = patterned(10, 2);
        expected[u"long"] = patterned(60000, 2);
        EXPECT_EQ(findingsOf(disk_, kPath), "");
        EXPECT_TRUE(compound_tests::contentOf(disk_, kPath) == expected);
    }

    MemoryDisk disk_;
    std::optional<RawFile> raw_;
    std::uint32_t difat_ = 0; // the DIFAT sector
};

INSTANTIATE_TEST_SUITE_P(Signatures, ForeignDifatTest,
                         testing::Values(Signature::Ours, Signature::Theirs));

TEST_P(ForeignDifatTest, EndsWithFree) {
    ASSERT_EQ(raw_->get(raw_->sector(difat_) + 508), kEndOfChain);
    raw_->put(raw_->sector(difat_) + 508, kFreeSector);
    expectMended();
}

TEST_P(ForeignDifatTest, IsLongerThanItNeedsToBe) {
    std::uint32_t extra = 0;
    while (raw_->get(raw_->fatEntry(extra)) != kFreeSector) {
        ++extra;
    }
    raw_->put(raw_->fatEntry(extra), kDifatSector);
    for (std::size_t at = 0; at < 512; at += 4) {
        raw_->put(raw_->sector(extra) + at, kFreeSector);
    }
    raw_->put(raw_->sector(extra) + 508, kEndOfChain);
    raw_->put(raw_->sector(difat_) + 508, extra);
    raw_->put(header::kDifatSectorsAt, 2);
    expectMended();
}

// Neither a DIFAT sector nor a FAT sector is ever taken for free.
TEST_P(ForeignDifatTest, TablesThatAreMarkedFree) {
    ASSERT_LT(difat_ / 128, 109U);
    raw_->put(raw_->fatEntry(difat_), kFreeSector);
    for (const std::uint32_t index : {0U, 7U, 108U}) {
        raw_->put(raw_->fatEntry(raw_->get(header::kDifatAt + std::size_t{4} * index)),
                  kFreeSector);
    }
    disk_.setContent(kPath, raw_->bytes());
    Content expected = compound_tests::contentOf(disk_, kPath);
    disk_.setCapacity(disk_.placed()); // so that every free sector is taken
    CompoundFile file = openFile(disk_, kPath);
    for (const std::u16string_view name : {u"one", u"two", u"three"}) {
        expected[std::u16string(name)] = patterned(220000, 3);
        file.root().createStream(name).assign(expected[std::u16string(name)]);
        file.commit();
    }
    EXPECT_TRUE(compound_tests::contentOf(disk_, kPath) == expected);
}

} // namespace
} // namespace compound_tests
