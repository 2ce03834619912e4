// A library's whole content as text, to be compared before and after a power cut.
#pragma once

#include "crash/power_cut.h"
#include "store/library.h"

#include <map>
#include <string>

namespace crash {

// The folder that every library of these tests lies in, and the one of the pictures to add.
inline constexpr char kLibraryFolder[] = "/library";
inline constexpr char kSourceFolder[] = "/sources";
// Group files that are imported, and those that are exported.
inline constexpr char kElsewhereFolder[] = "/elsewhere";

// The folders whose changes are recorded: all but that of the pictures.
std::vector<std::filesystem::path> recordedFolders();

// What stands in for decoding: any bytes are a picture, but for those that begin with "broken".
store::TwipSize measureSource(std::span<const std::byte> bytes);

store::Library libraryOn(compound::Disk& disk);

// File name -> its groups, pictures (bytes and records) and findings; outside of the library the
// whole path. Group files, and those set aside or kept, only: temporary files are nobody's content.
// What cannot be read as groups stands there as the error and the bare elements.
using LibraryDump = std::map<std::string, std::string>;

LibraryDump dumpOf(const Medium& medium);

// The files in the recorded folders of a running disk, as a medium.
Medium mediumOf(compound::Disk& disk);

// Puts the medium's files onto the empty `disk`.
void fill(compound::Disk& disk, const Medium& medium);

// For messages: the lines of `actual` that `expected` does not have, and the reverse.
std::string difference(const LibraryDump& expected, const LibraryDump& actual);

} // namespace crash
