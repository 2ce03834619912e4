// A file whose reads, writes and syncs are counted, for tests of where bytes go and of what a
// change costs; and files of pictures to change.
#pragma once

#include "compound/compound_file.h"
#include "compound/memory_disk.h"
#include "compound/read_cache.h"

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

namespace compound_tests {

// The file that all of it is about.
inline const std::filesystem::path kWatchedPath = "group.stg";

// A name of one length for all numbers, so that they sort by them.
std::u16string nameOf(char16_t kind, std::size_t number);

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

// The overwritten sectors are looked up in the FAT of the header in force, in which the header
// alone locates 109 FAT sectors.
compound::CompoundFile openWatched(MemoryDisk& disk, compound::SectorSize sectorSize,
                                   Traffic& traffic,
                                   compound::Access access = compound::Access::ReadWrite,
                                   compound::ReadCache* cache = nullptr);

// Makes a file of pairs of streams, as pictures and their records are stored.
void makePictures(MemoryDisk& disk, compound::SectorSize sectorSize, std::size_t count,
                  std::size_t bytes);

} // namespace compound_tests
