// The library: one folder of group files ("*.stg"), the disk it lies on, and what the store needs
// to know from the floors above. Every operation of the store takes a Library.
//
// The store keeps nothing open between two operations: each one opens the group file, holds its
// lock for the time of the operation, and releases every handle on every way out. An operation is
// one transaction; a failure leaves the group file as it was.
//
// Several threads may work on one library: they wait for each other at a group file, however long
// it takes, before they wait for other programs.
//
// Errors are compound::Error with the file concerned (see compound/error.h): Locked when another
// program holds the file longer than lockWait, Damaged and NotCompoundFile for bad bytes, NotFound,
// Denied, NoSpace and the rest as the system reports them.
#pragma once

#include "compound/disk.h"
#include "compound/read_cache.h"
#include "store/address.h"
#include "store/file_turns.h"

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace store {

// A picture's height and width in twips (15 twips are a pixel).
struct TwipSize {
    double height = 0;
    double width = 0;
};

// Decodes a picture file's bytes to learn its size; throws any exception when they are no picture.
using MeasurePicture = std::function<TwipSize(std::span<const std::byte>)>;

// Waiting time for locks that several operations share, so that a refresh of many files waits a
// second in all and not a second each.
class LockBudget {
  public:
    explicit LockBudget(std::chrono::milliseconds total);

    std::chrono::milliseconds remaining() const;

  private:
    std::chrono::steady_clock::time_point end_;
};

struct Library {
    compound::Disk& disk;
    std::filesystem::path folder; // the storages folder
    MeasurePicture measure;
    char16_t decimalSeparator = u'.'; // of the records that are written; both are read
    std::chrono::milliseconds lockWait{500};
    // What operations have learnt of the files, for the next ones.
    std::shared_ptr<compound::ReadCache> cache = std::make_shared<compound::ReadCache>();
    // Shared by all copies, so that they can be used on several threads.
    std::shared_ptr<FileTurns> turns = std::make_shared<FileTurns>();
};

inline constexpr std::u16string_view kGroupFileSuffix = u".stg";
inline constexpr std::u16string_view kDamagedFileSuffix = u".err";

// The path of T's group file: the only place where one is built. A file whose suffix is written in
// another case is found as well. Never throws for the disk's sake.
std::filesystem::path pathOf(const Library& library, const FileName& file);

// The same without looking at the disk: the suffix as this program writes it.
std::filesystem::path plainPathOf(const Library& library, const FileName& file);

// The base name of a group file that may lie anywhere: its name without ".stg" in any case.
FileName fileNameOf(const std::filesystem::path& path);

// The group files, by name without regard to case. Only regular files whose last four characters
// are ".stg" in any case count. A file that is just getting another name is there once, by its new
// name as soon as it has that. What a crashed program has left beside them is cleared away first,
// where that is possible (store/leftovers.h). Throws NotFound or Denied when the folder cannot be
// listed.
std::vector<FileName> groupFiles(const Library& library);

// The same with nothing cleared away: for whoever looks often.
std::vector<FileName> groupFilesAsTheyAre(const Library& library);

// Every file that bears the name of a group file: for whoever asks about files and not about
// groups. One that is just getting another name may be there by both.
std::vector<FileName> everyGroupFile(const Library& library);

// The files that were set aside as damaged ("*.err"), by name without regard to case.
std::vector<std::filesystem::path> damagedFiles(const Library& library);

// The folder that holds the file; "." for a bare name.
std::filesystem::path folderOf(const std::filesystem::path& file);

// Makes a file's new place in its folder durable, after the file was moved or made there. When that
// fails the change is done, but may not outlast a power cut: OutcomeUnknown.
void syncPlaceOf(const Library& library, const std::filesystem::path& file);

} // namespace store
