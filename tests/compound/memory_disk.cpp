#include "compound/memory_disk.h"

#include "compound/error.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <utility>

using compound::Access;
using compound::Error;
using compound::ErrorCode;

void SparseBytes::resize(std::uint64_t size) {
    if (size < size_) {
        pages_.erase(pages_.lower_bound((size + kPage - 1) / kPage), pages_.end());
        const auto last = pages_.find(size / kPage);
        if (last != pages_.end()) {
            std::fill(last->second.begin() + static_cast<std::ptrdiff_t>(size % kPage),
                      last->second.end(), std::byte{0});
        }
        const std::size_t kept = (size + kBlock - 1) / kBlock;
        for (std::size_t block = kept; block < isPlaced_.size(); ++block) {
            blocks_ -= isPlaced_[block] ? 1U : 0U;
        }
        isPlaced_.resize(std::min(kept, isPlaced_.size()));
    }
    size_ = size;
}

std::size_t SparseBytes::read(std::uint64_t offset, std::span<std::byte> into) const {
    if (offset >= size_) {
        return 0;
    }
    const std::size_t length =
        static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), size_ - offset));
    for (std::size_t done = 0; done < length;) {
        const std::uint64_t at = offset + done;
        const std::size_t part = std::min<std::size_t>(length - done, kPage - at % kPage);
        const auto page = pages_.find(at / kPage);
        const auto out = into.subspan(done, part);
        if (page == pages_.end()) {
            std::fill(out.begin(), out.end(), std::byte{0});
        } else {
            std::copy_n(page->second.begin() + static_cast<std::ptrdiff_t>(at % kPage), part,
                        out.begin());
        }
        done += part;
    }
    return length;
}

void SparseBytes::write(std::uint64_t offset, std::span<const std::byte> bytes) {
    static constexpr std::array<std::byte, kPage> kZeros{};
    size_ = std::max(size_, offset + bytes.size());
    blocks_ = placedAfter(offset, bytes.size()) / kBlock;
    isPlaced_.resize(std::max<std::size_t>(isPlaced_.size(), (size_ + kBlock - 1) / kBlock));
    for (std::uint64_t block = offset / kBlock; block * kBlock < offset + bytes.size(); ++block) {
        isPlaced_[block] = true;
    }
    for (std::size_t done = 0; done < bytes.size();) {
        const std::uint64_t at = offset + done;
        const std::size_t part = std::min<std::size_t>(bytes.size() - done, kPage - at % kPage);
        const auto in = bytes.subspan(done, part);
        const bool zeros = std::memcmp(in.data(), kZeros.data(), in.size()) == 0;
        auto page = pages_.find(at / kPage);
        if (page == pages_.end() && !zeros) {
            page = pages_.emplace(at / kPage, std::vector<std::byte>(kPage)).first;
        }
        if (page != pages_.end()) {
            std::copy(in.begin(), in.end(),
                      page->second.begin() + static_cast<std::ptrdiff_t>(at % kPage));
        }
        done += part;
    }
}

std::uint64_t SparseBytes::placedAfter(std::uint64_t offset, std::size_t bytes) const {
    std::uint64_t blocks = blocks_;
    for (std::uint64_t block = offset / kBlock; block * kBlock < offset + bytes; ++block) {
        blocks += block >= isPlaced_.size() || !isPlaced_[block] ? 1U : 0U;
    }
    return blocks * kBlock;
}

std::uint64_t SparseBytes::allocated() const {
    return pages_.size() * kPage;
}

class MemoryFile : public compound::DiskFile {
  public:
    MemoryFile(MemoryDisk& disk, std::shared_ptr<MemoryDisk::File> file, std::filesystem::path path,
               Access access)
        : disk_(disk), file_(std::move(file)), path_(std::move(path)), access_(access) {}
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() override {
        if (locked_) {
            file_->locked = false;
        }
    }

    const std::filesystem::path& path() const override { return path_; }

    std::size_t read(std::uint64_t offset, std::span<std::byte> into) override {
        disk_.announce(MemoryDisk::Call::Read);
        requireNoOthersLock();
        return file_->bytes.read(offset, into);
    }

    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        requireWritable();
        requireNoOthersLock();
        announceWrite(offset, bytes);
        disk_.checkCapacity(file_->bytes.placed(), file_->bytes.placedAfter(offset, bytes.size()));
        disk_.touch(*file_);
        file_->bytes.write(offset, bytes);
    }

    void sync() override { disk_.announce(MemoryDisk::Call::Sync); }
    void syncName() override { disk_.announce(MemoryDisk::Call::SyncFolder); }

    void truncate(std::uint64_t size) override {
        requireWritable();
        disk_.announce(MemoryDisk::Call::Truncate);
        disk_.touch(*file_);
        file_->bytes.resize(size);
    }

    std::uint64_t size() override {
        disk_.announce(MemoryDisk::Call::Size);
        return file_->bytes.size();
    }

    bool lock(std::chrono::milliseconds) override {
        disk_.announce(MemoryDisk::Call::Lock);
        if (file_->locked) {
            return locked_;
        }
        locked_ = file_->locked = true;
        return true;
    }

    bool isStillAtPath() override { return disk_.find(path_) == file_; }

    std::optional<compound::FileIdentity> identity() override { return identity(!disk_.isBusy_); }

    std::optional<compound::FileIdentity> stamp() override { return identity(true); }

  private:
    compound::FileIdentity identity(bool settled) const {
        return {1, file_->number, file_->bytes.size(), file_->changed, file_->changed, settled};
    }

    void announceWrite(std::uint64_t offset, std::span<const std::byte> bytes) {
        try {
            disk_.announce(MemoryDisk::Call::Write);
        } catch (const Error&) {
            if (disk_.tearsWrites_) {
                disk_.touch(*file_);
                file_->bytes.write(offset, bytes.first(bytes.size() / 1024 * 512));
            }
            throw;
        }
    }

    void requireNoOthersLock() const {
        if (file_->locked && !locked_) {
            throw Error(ErrorCode::Denied, path_, "another handle has locked the file");
        }
    }

    void requireWritable() const {
        if (access_ == Access::Read) {
            throw Error(ErrorCode::Denied, path_, "the file was opened for reading only");
        }
    }

    MemoryDisk& disk_;
    std::shared_ptr<MemoryDisk::File> file_;
    std::filesystem::path path_;
    Access access_;
    bool locked_ = false;
};

void MemoryDisk::makeFolder(const std::filesystem::path& folder) {
    folders_.push_back(folder);
}

std::vector<std::byte> MemoryDisk::content(const std::filesystem::path& path) const {
    const auto file = find(path);
    std::vector<std::byte> bytes(file ? static_cast<std::size_t>(file->bytes.size()) : 0);
    if (file) {
        file->bytes.read(0, bytes);
    }
    return bytes;
}

void MemoryDisk::setContent(const std::filesystem::path& path, std::span<const std::byte> bytes) {
    auto file = makeFile();
    file->bytes.write(0, bytes);
    files_[path] = std::move(file);
}

// With the number of a file that has gone, as file systems do.
std::shared_ptr<MemoryDisk::File> MemoryDisk::makeFile() {
    std::erase_if(made_, [](const auto& file) { return file.expired(); });
    std::set<std::uint64_t> taken;
    for (const auto& file : made_) {
        taken.insert(file.lock()->number);
    }
    auto file = std::make_shared<File>();
    do {
        ++file->number;
    } while (taken.contains(file->number));
    touch(*file);
    made_.push_back(file);
    return file;
}

void MemoryDisk::copyFilesOf(const MemoryDisk& other) {
    files_.clear();
    made_.clear();
    for (const auto& [path, file] : other.files_) {
        made_.push_back(files_.emplace(path, std::make_shared<File>(*file)).first->second);
    }
    folders_ = other.folders_;
    clock_ = other.clock_;
}

void MemoryDisk::announce(Call call) const {
    if (interceptor_) {
        interceptor_(call);
    }
}

std::uint64_t MemoryDisk::placed() const {
    std::uint64_t total = 0;
    for (const auto& [path, file] : files_) {
        total += file->bytes.placed();
    }
    return total;
}

void MemoryDisk::checkCapacity(std::uint64_t before, std::uint64_t after) const {
    if (capacity_ && after > before && placed() - before + after > *capacity_) {
        throw Error(ErrorCode::NoSpace, {}, "the disk is full");
    }
}

std::shared_ptr<MemoryDisk::File> MemoryDisk::find(const std::filesystem::path& path) const {
    const auto found = files_.find(path);
    return found == files_.end() ? nullptr : found->second;
}

std::unique_ptr<compound::DiskFile> MemoryDisk::open(const std::filesystem::path& path,
                                                     Access access) {
    announce(Call::Folder);
    auto file = find(path);
    if (!file) {
        throw Error(ErrorCode::NotFound, path, "no such file");
    }
    return std::make_unique<MemoryFile>(*this, std::move(file), path, access);
}

std::unique_ptr<compound::DiskFile> MemoryDisk::create(const std::filesystem::path& path) {
    announce(Call::Folder);
    auto file = makeFile();
    if (!files_.emplace(path, file).second) {
        throw Error(ErrorCode::Exists, path, "the file exists");
    }
    return std::make_unique<MemoryFile>(*this, std::move(file), path, Access::ReadWrite);
}

void MemoryDisk::copyAttributes(compound::DiskFile&, compound::DiskFile&) {
    announce(Call::Folder);
}

std::vector<compound::FolderEntry> MemoryDisk::list(const std::filesystem::path& folder) {
    announce(Call::Folder);
    if (std::find(folders_.begin(), folders_.end(), folder) == folders_.end()) {
        throw Error(ErrorCode::NotFound, folder, "no such folder");
    }
    std::vector<compound::FolderEntry> entries;
    for (const auto& [path, file] : files_) {
        if (path.parent_path() == folder) {
            entries.push_back({path.filename(), true});
        }
    }
    std::reverse(entries.begin(), entries.end()); // no caller may rely on an order
    return entries;
}

bool MemoryDisk::exists(const std::filesystem::path& path) {
    announce(Call::Folder);
    return files_.contains(path);
}

std::optional<compound::FileIdentity> MemoryDisk::glance(const std::filesystem::path& path) {
    const auto file = files_.find(path);
    if (file == files_.end()) {
        return std::nullopt;
    }
    return compound::FileIdentity{1,
                                  file->second->number,
                                  file->second->bytes.size(),
                                  file->second->changed,
                                  file->second->changed,
                                  isSettled_};
}

void MemoryDisk::renameWithoutReplacing(const std::filesystem::path& from,
                                        const std::filesystem::path& to) {
    if (files_.contains(to)) {
        throw Error(ErrorCode::Exists, to, "the file exists");
    }
    renameReplacing(from, to);
}

void MemoryDisk::renameReplacing(const std::filesystem::path& from,
                                 const std::filesystem::path& to) {
    announce(Call::Folder);
    auto file = find(from);
    if (!file) {
        throw Error(ErrorCode::NotFound, from, "no such file");
    }
    files_.erase(from);
    files_[to] = std::move(file);
}

void MemoryDisk::syncFolder(const std::filesystem::path&) {
    announce(Call::SyncFolder);
}

void MemoryDisk::trash(const std::filesystem::path& path) {
    announce(Call::Folder);
    if (files_.erase(path) == 0) {
        throw Error(ErrorCode::NotFound, path, "no such file");
    }
    noteTrashed(path);
}

void MemoryDisk::removeTemporary(const std::filesystem::path& path) {
    announce(Call::Folder);
    files_.erase(path);
}
