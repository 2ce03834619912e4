#include "crash/recording_disk.h"

#include "compound/error.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace crash {

using compound::Access;
using compound::DiskFile;

class RecordingFile : public DiskFile {
  public:
    RecordingFile(RecordingDisk& disk, std::unique_ptr<DiskFile> inner, FileId id)
        : disk_(disk), inner_(std::move(inner)), id_(id) {}

    const std::filesystem::path& path() const override { return inner_->path(); }

    std::size_t read(std::uint64_t offset, std::span<std::byte> into) override {
        return inner_->read(offset, into);
    }

    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        disk_.admit(path());
        inner_->write(offset, bytes);
        disk_.record({EventKind::Write, id_, offset, {bytes.begin(), bytes.end()}, {}, {}});
    }

    void sync() override {
        disk_.admit(path());
        inner_->sync();
        disk_.record({EventKind::SyncFile, id_, 0, {}, {}, {}});
    }

    void syncName() override {
        disk_.admit(path());
        inner_->syncName();
        disk_.record({EventKind::SyncFolder, 0, 0, {}, path().parent_path(), {}});
    }

    void truncate(std::uint64_t size) override {
        disk_.admit(path());
        inner_->truncate(size);
        disk_.record({EventKind::Truncate, id_, size, {}, {}, {}});
    }

    std::uint64_t size() override { return inner_->size(); }
    bool lock(std::chrono::milliseconds wait) override { return inner_->lock(wait); }
    bool isStillAtPath() override { return inner_->isStillAtPath(); }
    std::optional<compound::FileIdentity> identity() override { return inner_->identity(); }

    DiskFile& inner() { return *inner_; }

  private:
    RecordingDisk& disk_;
    std::unique_ptr<DiskFile> inner_;
    FileId id_;
};

RecordingDisk::RecordingDisk(compound::Disk& inner, std::vector<std::filesystem::path> folders)
    : inner_(inner), folders_(std::move(folders)) {
    for (const std::filesystem::path& folder : folders_) {
        for (const compound::FolderEntry& entry : inner_.list(folder)) {
            const std::filesystem::path path = folder / entry.name;
            const auto file = inner_.open(path, Access::Read);
            std::vector<std::byte> bytes(static_cast<std::size_t>(file->size()));
            file->read(0, bytes);
            names_.emplace(path, nextId_);
            beginning_.contents.emplace(nextId_++, std::move(bytes));
        }
    }
    beginning_.names = names_;
}

void RecordingDisk::breakAfter(Breakage breakage, std::size_t changes) {
    breakage_ = breakage;
    headersLeft_ = 0;
    breakAt_ = events_.size() + changes;
}

void RecordingDisk::breakAfterHeaders(Breakage breakage, std::size_t headers) {
    breakage_ = breakage;
    headersLeft_ = headers;
    breakAt_ = std::numeric_limits<std::size_t>::max();
}

void RecordingDisk::admit(const std::filesystem::path& path) {
    if (breakage_ == Breakage::None || events_.size() < breakAt_) {
        return;
    }
    if (breakage_ == Breakage::OneError) {
        mend();
    }
    throw compound::Error(compound::ErrorCode::Failed, path, "the disk has failed");
}

void RecordingDisk::record(Event event) {
    const bool isHeader = event.kind == EventKind::Write && event.offset == 0;
    events_.push_back(std::move(event));
    if (isHeader && headersLeft_ > 0 && --headersLeft_ == 0) {
        breakAt_ = events_.size();
    }
}

std::unique_ptr<DiskFile> RecordingDisk::open(const std::filesystem::path& path, Access access) {
    std::unique_ptr<DiskFile> file = inner_.open(path, access);
    const auto known = names_.find(path);
    if (known == names_.end()) {
        return file; // outside the folder, such as a picture that is added
    }
    return std::make_unique<RecordingFile>(*this, std::move(file), known->second);
}

std::unique_ptr<DiskFile> RecordingDisk::create(const std::filesystem::path& path) {
    if (std::find(folders_.begin(), folders_.end(), path.parent_path()) == folders_.end()) {
        return inner_.create(path);
    }
    admit(path);
    std::unique_ptr<DiskFile> file = inner_.create(path);
    const FileId id = nextId_++;
    names_[path] = id;
    record({EventKind::Create, id, 0, {}, path, {}});
    return std::make_unique<RecordingFile>(*this, std::move(file), id);
}

void RecordingDisk::copyAttributes(DiskFile& from, DiskFile& to) {
    inner_.copyAttributes(dynamic_cast<RecordingFile&>(from).inner(),
                          dynamic_cast<RecordingFile&>(to).inner());
}

std::vector<compound::FolderEntry> RecordingDisk::list(const std::filesystem::path& folder) {
    return inner_.list(folder);
}

bool RecordingDisk::exists(const std::filesystem::path& path) {
    return inner_.exists(path);
}

void RecordingDisk::renameWithoutReplacing(const std::filesystem::path& from,
                                           const std::filesystem::path& to) {
    admit(from);
    inner_.renameWithoutReplacing(from, to);
    recordRename(from, to);
}

void RecordingDisk::renameReplacing(const std::filesystem::path& from,
                                    const std::filesystem::path& to) {
    admit(from);
    inner_.renameReplacing(from, to);
    recordRename(from, to);
}

void RecordingDisk::recordRename(const std::filesystem::path& from,
                                 const std::filesystem::path& to) {
    names_[to] = names_.at(from);
    names_.erase(from);
    record({EventKind::Rename, 0, 0, {}, from, to});
}

void RecordingDisk::syncFolder(const std::filesystem::path& folder) {
    admit(folder);
    inner_.syncFolder(folder);
    record({EventKind::SyncFolder, 0, 0, {}, folder, {}});
}

void RecordingDisk::trash(const std::filesystem::path& path) {
    admit(path);
    inner_.trash(path);
    names_.erase(path);
    record({EventKind::Trash, 0, 0, {}, path, {}});
}

void RecordingDisk::removeTemporary(const std::filesystem::path& path) {
    admit(path);
    inner_.removeTemporary(path);
    if (names_.erase(path) > 0) {
        record({EventKind::Remove, 0, 0, {}, path, {}});
    }
}

} // namespace crash
