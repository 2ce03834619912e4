// The storage access layer: the five shared handles through which every operation of the store
// reads and writes a group file, and the structured-storage operations on them.
//
// A StorageAccess lives for one operation. It holds the group file's kernel lock as long as its
// file-storage slot is filled, and empties all slots when it goes. What was written becomes the
// file's state by the file storage's Commit alone; without it nothing has changed.
//
// Errors are compound::Error.
#pragma once

#include "compound/compound_file.h"
#include "store/library.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace store {

class StreamHandle {
  public:
    explicit StreamHandle(compound::Stream stream) : stream_(stream) {}

    void Put(std::span<const std::byte> bytes) { stream_.assign(bytes); }
    void Put(std::u16string_view text); // InvalidName when the code page cannot carry it
    base::Bytes Get() const { return stream_.readAll(); }
    std::u16string
    GetText() const; // a `Name` or `Parent`; looks at no more than its first kilobyte
    void PutString(std::string_view record);
    std::string GetString() const; // a record; the empty text when it is longer than any can be

  private:
    compound::Stream stream_;
};

class StorageHandle {
  public:
    explicit StorageHandle(compound::Storage storage) : storage_(storage) {}

    StorageHandle OpenStorage(std::u16string_view name) const;
    StorageHandle OpenStorage(const compound::Element& element) const;
    StorageHandle CreateStorage(std::u16string_view name);
    StreamHandle OpenStream(std::u16string_view name) const;
    StreamHandle OpenStream(const compound::Element& element) const;
    // In place of the stream that has the name. Another program's storage stays: Exists.
    StreamHandle CreateStream(std::u16string_view name);
    void RenameElement(std::u16string_view from, std::u16string_view to);
    void DestroyElement(std::u16string_view name);
    void DestroyStreamIfThere(std::u16string_view name); // a storage stays

    // All elements, in the storage's fixed order.
    compound::ElementCursor elements() const { return storage_.elements(); }
    std::optional<compound::Element> find(std::u16string_view name,
                                          const compound::Element* companion = nullptr) const;
    bool holdsStorage(std::u16string_view name) const;

  private:
    compound::Storage storage_;
};

class StorageAccess {
  public:
    explicit StorageAccess(const Library& library) : library_(library) {}
    StorageAccess(const StorageAccess&) = delete;
    StorageAccess& operator=(const StorageAccess&) = delete;

    // Fills the file-storage slot. Waits up to `wait` for the lock, makes sure that the path still
    // names the locked file. Locked, NotFound, Denied, NotCompoundFile, Damaged.
    void openFile(const std::filesystem::path& path, compound::Access access,
                  std::chrono::milliseconds wait);
    void openFile(const FileName& file, compound::Access access);

    // Fills the file-storage slot and the group-storage slot.
    void openGroup(const GroupAddress& group, compound::Access access);

    // Fills the info-storage slot; false (and an empty slot) when the group has none.
    bool openInfo(const GroupAddress& group);
    void openOrCreateInfo(const GroupAddress& group);

    StorageHandle root() { return StorageHandle(fileStorage_->root()); }
    StorageHandle& groupStorage() { return *groupStorage_; }
    StorageHandle& infoStorage() { return *infoStorage_; }
    std::optional<StreamHandle>& groupStream() { return groupStream_; }
    std::optional<StreamHandle>& infoStream() { return infoStream_; }
    compound::CompoundFile& file() { return *fileStorage_; }

    // Makes everything durable at one instant.
    void Commit() { fileStorage_->commit(); }

    // Comes after the Commit of what has changed so many pictures: the space of several that were
    // replaced or removed is given back at once. What a single one leaves waits for the next
    // changes, so that it costs one transaction.
    void CloseGaps(std::size_t pictures);

    // Empties all five slots and lets go of the lock.
    void release();

  private:
    void requireGroup(std::u16string_view storage);

    const Library& library_;
    FileTurns::Turn turn_; // ends after the file's lock
    std::optional<compound::CompoundFile> fileStorage_;
    std::optional<StorageHandle> groupStorage_;
    std::optional<StreamHandle> groupStream_;
    std::optional<StorageHandle> infoStorage_;
    std::optional<StreamHandle> infoStream_;
};

// Opens and locks a file whose path still names it once the lock is held.
std::unique_ptr<compound::DiskFile> openLocked(compound::Disk& disk,
                                               const std::filesystem::path& path,
                                               compound::Access access,
                                               std::chrono::milliseconds wait);

} // namespace store
