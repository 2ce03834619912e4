// What a batch leaves in a large file: gaps are found wherever they are.
#include "compound/file_helpers.h"
#include "compound/format.h"
#include "compound/raw_file.h"
#include "compound/watched_file.h"

#include <gtest/gtest.h>

namespace compound_tests {
namespace {

using compound::CompoundFile;
using compound::SectorSize;
using namespace compound::format;

const std::filesystem::path& kPath = kWatchedPath;

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

} // namespace
} // namespace compound_tests
