// What reading has learnt of a few files: parts of their FAT, directory and mini stream.
//
// Nothing stays open. A file that is opened for reading again takes up its state only when the disk
// says that the file is the same one with the same size and time stamps, and its header is the same
// byte for byte. Writers never touch a sector that a header in force names, so all that the state
// knows is still true then.
#pragma once

#include "compound/disk.h"
#include "compound/header.h"

#include <list>
#include <memory>

namespace compound {

class FileState;

class ReadCache {
  public:
    ReadCache();
    ~ReadCache();
    ReadCache(const ReadCache&) = delete;
    ReadCache& operator=(const ReadCache&) = delete;

    // The state of this file as it is now, or null.
    std::unique_ptr<FileState> take(const FileIdentity& identity, const Header& header);

    // Keeps an unchanged state; the oldest one goes when there are too many.
    void keep(const FileIdentity& identity, std::unique_ptr<FileState> state);

  private:
    struct Entry;
    std::list<Entry> entries_; // the latest first
};

} // namespace compound
