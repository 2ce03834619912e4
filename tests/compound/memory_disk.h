// A disk in memory for tests: sparse files, locks, a trash, a capacity, and calls made to fail. As
// on some network file systems, a locked file can be read and written through the handle that has
// the lock only.
#pragma once

#include "compound/disk.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// Bytes in pages; pages never written read as zeros and take no memory.
class SparseBytes {
  public:
    std::uint64_t size() const { return size_; }
    void resize(std::uint64_t size);
    std::size_t read(std::uint64_t offset, std::span<std::byte> into) const;
    void write(std::uint64_t offset, std::span<const std::byte> bytes);
    std::uint64_t allocated() const; // bytes of the pages that were written and are not zeros

    // Bytes that a file system would take for it: what was passed over, a hole, takes none.
    std::uint64_t placed() const { return blocks_ * kBlock; }
    // The same after a write.
    std::uint64_t placedAfter(std::uint64_t offset, std::size_t bytes) const;

  private:
    static constexpr std::uint64_t kPage = 4096;
    static constexpr std::uint64_t kBlock = 512;
    std::map<std::uint64_t, std::vector<std::byte>> pages_;
    std::uint64_t size_ = 0;
    std::vector<bool> isPlaced_; // for each block
    std::uint64_t blocks_ = 0;   // that are placed
};

class MemoryDisk : public compound::Disk {
  public:
    struct File {
        SparseBytes bytes;
        bool locked = false;
        std::uint64_t number = 0;
        std::int64_t changed = 0; // the time of the last change
    };

    enum class Call { Read, Write, Sync, Truncate, Size, Lock, Folder, SyncFolder };

    MemoryDisk() = default;

    virtual void makeFolder(const std::filesystem::path& folder);
    virtual std::vector<std::byte> content(const std::filesystem::path& path) const;
    virtual void setContent(const std::filesystem::path& path, std::span<const std::byte> bytes);
    const std::vector<std::filesystem::path>& trashed() const { return trashed_; }

    // Called before every call with its kind; may throw in the call's place.
    void setInterceptor(std::function<void(Call)> interceptor) {
        interceptor_ = std::move(interceptor);
    }
    // Whether half of the 512-byte sectors of a write that is refused by the interceptor reach the
    // file.
    // Only who has just changed a file can say that its time stamps tell of any later change.
    void setIsBusy(bool busy) { isBusy_ = busy; }

    void setTearsWrites(bool tears) { tearsWrites_ = tears; }
    // Becomes a copy of the other disk's files and folders.
    void copyFilesOf(const MemoryDisk& other);
    virtual std::uint64_t placed() const; // bytes that all files together take
    // The most bytes that all files together may take, holes apart; a write past it throws NoSpace.
    void setCapacity(std::optional<std::uint64_t> bytes) { capacity_ = bytes; }

    std::unique_ptr<compound::DiskFile> open(const std::filesystem::path& path,
                                             compound::Access access) override;
    std::unique_ptr<compound::DiskFile> create(const std::filesystem::path& path) override;
    void copyAttributes(compound::DiskFile& from, compound::DiskFile& to) override;
    std::vector<compound::FolderEntry> list(const std::filesystem::path& folder) override;
    bool exists(const std::filesystem::path& path) override;
    std::optional<compound::FileIdentity> glance(const std::filesystem::path& path) override;
    void setSettled(bool settled) { isSettled_ = settled; } // whether glances find files settled
    void renameWithoutReplacing(const std::filesystem::path& from,
                                const std::filesystem::path& to) override;
    void renameReplacing(const std::filesystem::path& from,
                         const std::filesystem::path& to) override;
    void syncFolder(const std::filesystem::path& folder) override;
    void trash(const std::filesystem::path& path) override;
    void removeTemporary(const std::filesystem::path& path) override;

  protected:
    void announce(Call call) const;
    void noteTrashed(const std::filesystem::path& path) { trashed_.push_back(path); }
    // NoSpace when a file that takes `before` bytes may not take `after`.
    void checkCapacity(std::uint64_t before, std::uint64_t after) const;

  private:
    friend class MemoryFile;
    std::shared_ptr<File> find(const std::filesystem::path& path) const;
    std::shared_ptr<File> makeFile();
    void touch(File& file) { file.changed = ++clock_; }

    std::map<std::filesystem::path, std::shared_ptr<File>> files_;
    std::vector<std::filesystem::path> folders_;
    std::vector<std::filesystem::path> trashed_;
    std::function<void(Call)> interceptor_;
    bool tearsWrites_ = false;
    bool isBusy_ = false;
    std::optional<std::uint64_t> capacity_;
    std::vector<std::weak_ptr<File>> made_;
    std::int64_t clock_ = 0; // goes on with every change
    bool isSettled_ = true;
};
