#include "compound/header.h"

#include "compound/error.h"

#include <algorithm>
#include <string>

namespace compound {

using namespace format;

namespace {

void require(bool good, DiskFile& file, const char* what) {
    if (!good) {
        throw Error(ErrorCode::Damaged, file.path(), std::string("header: ") + what);
    }
}

} // namespace

Header readHeader(DiskFile& file) {
    std::array<std::byte, kHeaderSize> raw{};
    const std::size_t length = file.read(0, raw);
    const auto matches = [&](std::size_t i) {
        return std::to_integer<std::uint8_t>(raw[i]) == kSignature[i];
    };
    for (std::size_t i = 0; i < kSignature.size(); ++i) {
        if (length < kSignature.size() || !matches(i)) {
            throw Error(ErrorCode::NotCompoundFile, file.path(), "this is no compound file");
        }
    }
    require(length == kHeaderSize, file, "the file is cut short");
    const auto at16 = [&](std::size_t at) { return read16(raw.data() + at); };
    const auto at32 = [&](std::size_t at) { return read32(raw.data() + at); };
    Header header;
    header.majorVersion = at16(header::kMajorVersionAt);
    require(header.majorVersion == 3 || header.majorVersion == 4, file, "unknown version");
    require(at16(header::kByteOrderAt) == kLittleEndian, file, "unknown byte order");
    require(at16(header::kSectorShiftAt) == (header.majorVersion == 3 ? 9 : 12), file,
            "the sector size does not fit the version");
    require(at16(header::kMiniSectorShiftAt) == 6, file, "unknown mini sector size");
    require(at32(header::kMiniCutoffAt) == kMiniStreamCutoff, file, "unknown mini stream cutoff");
    header.directorySectors = at32(header::kDirectorySectorsAt);
    header.fatSectors = at32(header::kFatSectorsAt);
    header.firstDirectory = at32(header::kFirstDirectoryAt);
    header.transaction = at32(header::kTransactionAt);
    header.firstMiniFat = at32(header::kFirstMiniFatAt);
    header.miniFatSectors = at32(header::kMiniFatSectorsAt);
    header.firstDifat = at32(header::kFirstDifatAt);
    header.difatSectors = at32(header::kDifatSectorsAt);
    for (std::size_t i = 0; i < kHeaderDifatEntries; ++i) {
        header.difat[i] = at32(header::kDifatAt + 4 * i);
    }
    return header;
}

std::array<std::byte, kHeaderSize> encodeHeader(const Header& header) {
    std::array<std::byte, kHeaderSize> raw{};
    for (std::size_t i = 0; i < kSignature.size(); ++i) {
        raw[i] = static_cast<std::byte>(kSignature[i]);
    }
    const auto put16 = [&](std::size_t at, unsigned value) {
        write16(raw.data() + at, static_cast<std::uint16_t>(value));
    };
    const auto put32 = [&](std::size_t at, std::uint32_t value) {
        write32(raw.data() + at, value);
    };
    put16(header::kMinorVersionAt, kMinorVersion);
    put16(header::kMajorVersionAt, header.majorVersion);
    put16(header::kByteOrderAt, kLittleEndian);
    put16(header::kSectorShiftAt, header.majorVersion == 3 ? 9 : 12);
    put16(header::kMiniSectorShiftAt, 6);
    put32(header::kDirectorySectorsAt, header.majorVersion == 3 ? 0 : header.directorySectors);
    put32(header::kFatSectorsAt, header.fatSectors);
    put32(header::kFirstDirectoryAt, header.firstDirectory);
    put32(header::kTransactionAt, header.transaction);
    put32(header::kMiniCutoffAt, kMiniStreamCutoff);
    put32(header::kFirstMiniFatAt, header.firstMiniFat);
    put32(header::kMiniFatSectorsAt, header.miniFatSectors);
    put32(header::kFirstDifatAt, header.firstDifat);
    put32(header::kDifatSectorsAt, header.difatSectors);
    for (std::size_t i = 0; i < kHeaderDifatEntries; ++i) {
        put32(header::kDifatAt + 4 * i, header.difat[i]);
    }
    return raw;
}

} // namespace compound
