// check() names what is wrong, and where.
#include "compound/file_helpers.h"
#include "compound/raw_file.h"

#include <functional>
#include <gtest/gtest.h>

namespace compound_tests {
namespace {

using compound::CompoundFile;
using compound::SectorSize;
using namespace compound::format;

const std::filesystem::path kPath = "group.stg";

// A storage "S" with short streams "one", "two" and "six" (300 bytes each), and a long one, "long".
RawFile makeRaw(SectorSize sectorSize) {
    MemoryDisk disk;
    CompoundFile file = CompoundFile::create(disk.create(kPath), sectorSize);
    auto storage = file.root().createStorage(u"S");
    for (const std::u16string_view name : {u"one", u"two", u"six"}) {
        storage.createStream(name).assign(patterned(300, 1));
    }
    storage.createStream(u"long").assign(patterned(20000, 1));
    file.commit();
    return RawFile(disk.content(kPath));
}

void putUnit(RawFile& raw, std::u16string_view name, std::size_t unit, char16_t value) {
    raw.bytes().at(raw.entry(name) + 2 * unit) = static_cast<std::byte>(value);
}

void putField(RawFile& raw, std::u16string_view name, std::size_t field, std::uint32_t value) {
    raw.put(raw.entry(name) + field, value);
}

std::uint32_t startOf(const RawFile& raw, std::u16string_view name) {
    return raw.get(raw.entry(name) + entry::kStartAt);
}

struct Case {
    const char* finding;
    std::function<void(RawFile&)> make;
};

class CheckTest : public testing::TestWithParam<SectorSize> {
  protected:
    static void expectAll(const std::vector<Case>& cases) {
        for (const Case& each : cases) {
            RawFile raw = makeRaw(GetParam());
            each.make(raw);
            MemoryDisk disk;
            disk.setContent(kPath, raw.bytes());
            const std::string findings = findingsOf(disk, kPath);
            EXPECT_NE(findings.find(each.finding), std::string::npos)
                << each.finding << " is not among\n"
                << findings;
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Sectors, CheckTest, testing::ValuesIn(kBothSectorSizes));

TEST_P(CheckTest, Names) {
    expectAll({
        {"S/t/o: its name is not allowed", [](RawFile& raw) { putUnit(raw, u"two", 1, u'/'); }},
        {"S/o:e: its name is not allowed", [](RawFile& raw) { putUnit(raw, u"one", 1, u':'); }},
        {"it stands in the wrong place of its storage's order",
         [](RawFile& raw) { putUnit(raw, u"one", 0, u'z'); }},
        {"it bears the same name as S/",
         [](RawFile& raw) {
             putUnit(raw, u"two", 0, u'S');
             putUnit(raw, u"Swo", 1, u'I');
             putUnit(raw, u"SIo", 2, u'X');
         }},
    });
}

TEST_P(CheckTest, ShortStreams) {
    expectAll({
        {"S/one: its chain does not fit its size of 200 bytes",
         [](RawFile& raw) { putField(raw, u"one", entry::kSizeAt, 200); }},
        {"S/one: its chain does not fit its size of 400 bytes",
         [](RawFile& raw) { putField(raw, u"one", entry::kSizeAt, 400); }},
        {"is used twice or lies outside the mini stream",
         [](RawFile& raw) { putField(raw, u"one", entry::kStartAt, startOf(raw, u"two")); }},
        {"mini FAT: mini sector 0 is marked as used, but in no chain",
         [](RawFile& raw) { putField(raw, u"one", entry::kSizeAt, 0); }},
        {"mini FAT: mini sector 14 is used, but marked free",
         [](RawFile& raw) { raw.put(raw.miniFatEntry(14), kFreeSector); }},
    });
}

TEST_P(CheckTest, SectorsAndTables) {
    expectAll({
        {"is marked as used, but in no chain",
         [](RawFile& raw) { putField(raw, u"long", entry::kSizeAt, 0); }},
        {"is marked as used, but lies behind the file's end",
         [](RawFile& raw) { raw.put(raw.fatEntry(raw.sectors()), 7); }},
        {"S/long: its chain does not fit its size of 30000 bytes",
         [](RawFile& raw) { putField(raw, u"long", entry::kSizeAt, 30000); }},
        {"header: its number of mini FAT sectors is wrong",
         [](RawFile& raw) { raw.put(header::kMiniFatSectorsAt, 9); }},
        {"header: it counts 9 FAT sectors",
         [](RawFile& raw) { raw.put(header::kFatSectorsAt, 9); }},
        {"mini stream: its chain does not fit its size",
         [](RawFile& raw) { putField(raw, u"Root Entry", entry::kSizeAt, 64 * 1000); }},
        {"S: the colours of its tree are wrong",
         [](RawFile& raw) {
             const std::uint32_t top = raw.get(raw.entry(u"S") + entry::kChildAt);
             raw.bytes().at(raw.entry(top) + entry::kColourAt) = std::byte{0};
         }},
    });
}

} // namespace
} // namespace compound_tests
