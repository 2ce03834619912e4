// The files of passage that stand beside the group files for the time of an operation, and what of
// them a program has left behind that did not live to the operation's end.
//
//   .txs-XXXXXXXXXXXXXXXX.new   a group file in the making (see new_group_file.h)
//   .txs-XXXXXXXXXXXXXXXX.was   a group file is on its way to a new name. The digits are a
//                               fingerprint of the old file's name, size and header and of the new
//                               file's name; it holds "OLD/NEW/NUMBER" in UTF-8, the names and
//                               the new file's number on its device. One that a power cut has
//                               emptied is as good, only slower.
//
// Whoever makes a file holds its lock, so one whose lock is free was left by a crash. A record has
// to be read by whoever lists, which some locks keep everybody else from: the lock of the old file,
// which its maker holds until the end, stands for the record's.
//
// The record's name is durable before the new one is given, and what has become of the two before
// the record goes: a power cut may leave the later of two changes of a folder without the earlier.
#pragma once

#include "store/library.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace store {

// Whether a folder's entry is one of them by its name.
bool isFileOfPassage(const std::filesystem::path& name);

// A name for a new group file in the making.
std::string nameInTheMaking();

// Locks a file of passage that was just created; null when another program has taken it for a
// leftover in between.
std::unique_ptr<compound::DiskFile> lockNew(const Library& library,
                                            std::unique_ptr<compound::DiskFile> created);

// Stands for the time in which both names of a group file may be there: from before the new one is
// given until the old one is gone.
class MoveRecord {
  public:
    // `old`, locked, is the file that goes; `oldFile` and `newFile` are the names. `unnamed` is the
    // file that will get the latter. The record's name is durable afterwards; what it says need not
    // be.
    MoveRecord(const Library& library, compound::DiskFile& old, const FileName& oldFile,
               const std::filesystem::path& unnamed, const FileName& newFile);
    ~MoveRecord(); // removes the record
    MoveRecord(const MoveRecord&) = delete;
    MoveRecord& operator=(const MoveRecord&) = delete;

  private:
    std::unique_ptr<compound::DiskFile> written(const std::string& text) const;
    void remove() noexcept; // whatever is in the way, the next listing does it

    const Library& library_;
    std::filesystem::path path_;
};

// Removes from the folder the group files in the making that nobody makes any more.
void removeUnfinishedFiles(const Library& library, const std::filesystem::path& folder);

// Clears what crashed programs have left in the library: removes unfinished files and finishes
// moves. Where both files of a move are there and the old one is as it was, the old one goes.
// Returns whether one has gone. What is in use, or cannot be changed, stays for the next time;
// never throws for its sake.
bool clearLeftovers(const Library& library);

enum class ListingIs {
    Known,
    Doubtful,  // a record may be another one than was listed: what it says counts the second time
    OutOfDate, // a move has come to its end since, so that nothing more is known of it
};

// While a group file gets another name, and after a crash in that, it is there under both names.
// Leaves the old one out of `files`, the group files among `entries`, the whole folder. Waits for
// nobody.
ListingIs leaveOutOldNames(const Library& library,
                           const std::vector<compound::FolderEntry>& entries,
                           std::vector<FileName>& files);

} // namespace store
