// What this process remembers of a few files: the parts of their FAT, directory and mini stream
// that its last operation has read or committed, and what its own last commit left.
//
// Nothing stays open. A file that is opened again, for reading or writing, takes up its state only
// when the disk says that the file is the same one with the same size and time stamps, and its
// header is the same byte for byte. Then nobody has changed the file since, so all that the state
// knows is still true: see docs/decisions/0020-pages-are-kept-between-changes.md.
//
// A header that this process has committed is known to be durable, so that the next transaction
// need not make it so, as long as the file is in that very state. The header's bytes alone do not
// tell that: they differ from those of every other header of the same file, since each counts the
// transaction signature up, but another file that has got the number of this one begins to count
// anew, and whoever has changed it may not have lived to make that durable.
#pragma once

#include "compound/disk.h"
#include "compound/header.h"

#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace compound {

class FileState;

// What a commit leaves behind in memory.
struct CommittedFile {
    FileIdentity identity;
    Header header;
    std::vector<std::uint32_t> soundStorages; // entries of storages whose trees are sound
};

// Safe to be used from several threads.
class ReadCache {
  public:
    static constexpr std::size_t kMostBytes = std::size_t{32} << 20U;

    // `mostBytes`: of one file's pages.
    explicit ReadCache(std::size_t mostBytes = kMostBytes);
    ~ReadCache();
    ReadCache(const ReadCache&) = delete;
    ReadCache& operator=(const ReadCache&) = delete;

    // The state of this file as it is now, or null. Whatever was kept of the file is gone then.
    std::unique_ptr<FileState> take(const FileIdentity& identity, const Header& header);

    // Keeps a state that is as the committed file, if that file is settled; without its pages when
    // they are too much. The oldest one goes when there are too many or they take too much memory.
    void keep(const FileIdentity& identity, std::unique_ptr<FileState> state);

    // What this process has last committed to the file, if it is still in the state that this left.
    std::optional<CommittedFile> recall(const FileIdentity& identity, const Header& header);

    // Takes the place of what was remembered of that file before.
    void remember(CommittedFile file);
    void forget(const FileIdentity& identity);

  private:
    void forgetLocked(const FileIdentity& identity);

    struct Entry;
    const std::size_t mostBytes_;
    std::mutex mutex_;
    std::list<Entry> entries_;           // the latest first
    std::list<CommittedFile> committed_; // the latest first
};

} // namespace compound
