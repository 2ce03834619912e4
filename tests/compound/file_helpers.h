// What the engine's tests share: contents to compare, bytes to store, findings as text.
#pragma once

#include "compound/compound_file.h"
#include "compound/memory_disk.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace compound_tests {

inline constexpr compound::SectorSize kBothSectorSizes[] = {compound::SectorSize::Bytes512,
                                                            compound::SectorSize::Bytes4096};

// Every element by its path ("Pumps/valve"); a storage's path ends in "/" and has no bytes.
using Content = std::map<std::u16string, std::vector<std::byte>>;

Content contentOf(compound::CompoundFile& file);

// The same of a committed file on the disk.
Content contentOf(MemoryDisk& disk, const std::filesystem::path& path);

// The findings of check(), one a line; nothing for a sound file.
std::string findingsOf(compound::CompoundFile& file);
std::string findingsOf(MemoryDisk& disk, const std::filesystem::path& path);

// The same without remarks, for what a failure may leave.
std::string damageOf(MemoryDisk& disk, const std::filesystem::path& path);

// Bytes that differ from each other and with the seed.
std::vector<std::byte> patterned(std::size_t size, std::uint32_t seed);

compound::CompoundFile openFile(MemoryDisk& disk, const std::filesystem::path& path,
                                compound::Access access = compound::Access::ReadWrite);

} // namespace compound_tests
