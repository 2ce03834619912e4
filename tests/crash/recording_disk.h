// A disk that writes down every change that it passes on to another disk, so that a test can work
// out what the medium would hold after a power cut at any moment.
#pragma once

#include "compound/disk.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace crash {

// A file whatever it is called right now.
using FileId = std::size_t;

enum class EventKind : std::uint8_t {
    Write,
    Truncate,
    SyncFile,
    Create,
    Rename, // replaces what stands under the new name
    Remove,
    Trash,
    SyncFolder,
};

struct Event {
    EventKind kind = EventKind::Write;
    FileId file = 0;              // Write, Truncate, SyncFile, Create
    std::uint64_t offset = 0;     // Write; the new size for Truncate
    std::vector<std::byte> bytes; // Write
    std::filesystem::path from;   // all others; SyncFolder: the folder
    std::filesystem::path to;     // Rename
};

// The files of one or more folders, each under its id.
struct Snapshot {
    std::map<std::filesystem::path, FileId> names;
    std::map<FileId, std::vector<std::byte>> contents;
};

// What becomes of the changes from some event on: the process is killed (no change of it reaches
// the page cache any more), or the disk refuses one or all of them.
enum class Breakage : std::uint8_t { None, Killed, OneError, AllErrors };

class RecordingDisk : public compound::Disk {
  public:
    // Records changes to files in the folders of `inner`; the files there now are the beginning.
    RecordingDisk(compound::Disk& inner, std::vector<std::filesystem::path> folders);

    const Snapshot& beginning() const { return beginning_; }
    const std::vector<Event>& events() const { return events_; }

    // Breaks once `headers` headers were written from now on, or `changes` changes were made. Lasts
    // until it is called again.
    void breakAfterHeaders(Breakage breakage, std::size_t headers);
    void breakAfter(Breakage breakage, std::size_t changes);
    void mend() { breakage_ = Breakage::None; }

    std::unique_ptr<compound::DiskFile> open(const std::filesystem::path& path,
                                             compound::Access access) override;
    std::unique_ptr<compound::DiskFile> create(const std::filesystem::path& path) override;
    void copyAttributes(compound::DiskFile& from, compound::DiskFile& to) override;
    std::vector<compound::FolderEntry> list(const std::filesystem::path& folder) override;
    bool exists(const std::filesystem::path& path) override;
    void renameWithoutReplacing(const std::filesystem::path& from,
                                const std::filesystem::path& to) override;
    void renameReplacing(const std::filesystem::path& from,
                         const std::filesystem::path& to) override;
    void syncFolder(const std::filesystem::path& folder) override;
    void trash(const std::filesystem::path& path) override;
    void removeTemporary(const std::filesystem::path& path) override;

  private:
    friend class RecordingFile;

    void admit(const std::filesystem::path& path); // throws in a change's place
    void record(Event event);
    void recordRename(const std::filesystem::path& from, const std::filesystem::path& to);

    compound::Disk& inner_;
    std::vector<std::filesystem::path> folders_;
    std::map<std::filesystem::path, FileId> names_; // as the running system sees them
    FileId nextId_ = 0;
    Snapshot beginning_;
    std::vector<Event> events_;
    Breakage breakage_ = Breakage::None;
    std::size_t breakAt_ = 0; // the first event that does not happen
    std::size_t headersLeft_ = 0;
};

} // namespace crash
