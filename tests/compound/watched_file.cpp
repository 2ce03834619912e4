#include "compound/watched_file.h"

#include "compound/file_helpers.h"
#include "compound/format.h"

#include <memory>

namespace compound_tests {

using compound::Access;
using compound::CompoundFile;
using compound::DiskFile;
using compound::ReadCache;
using compound::SectorSize;
using namespace compound::format;

namespace {

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

    void syncName() override { inner_->syncName(); }
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

} // namespace

std::u16string nameOf(char16_t kind, std::size_t number) {
    std::u16string name(1, kind);
    for (const char digit : std::to_string(100000 + number)) {
        name += static_cast<char16_t>(digit);
    }
    return name;
}

CompoundFile openWatched(MemoryDisk& disk, SectorSize sectorSize, Traffic& traffic, Access access,
                         ReadCache* cache) {
    return CompoundFile::open(std::make_unique<WatchedFile>(disk.open(kWatchedPath, access),
                                                            static_cast<std::uint32_t>(sectorSize),
                                                            traffic),
                              access, cache);
}

void makePictures(MemoryDisk& disk, SectorSize sectorSize, std::size_t count, std::size_t bytes) {
    CompoundFile file = CompoundFile::create(disk.create(kWatchedPath), sectorSize);
    auto pictures = file.root().createStorage(u"Pumps");
    auto records = file.root().createStorage(u"PumpsInfo");
    for (std::size_t i = 0; i < count; ++i) {
        pictures.createStream(nameOf(u'p', i)).assign(patterned(bytes, 1));
        records.createStream(nameOf(u'p', i)).assign(patterned(12, 2));
    }
    file.commit();
}

} // namespace compound_tests
