#include "store/folder_disk.h"

#include "compound/error.h"
#include "platform/native_disk.h"

#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace store::testing {
namespace {

using compound::Access;
using compound::DiskFile;
using compound::Error;
using std::filesystem::path;
namespace fs = std::filesystem;

// Files of the native disk below a folder that stands for "/".
class FolderDisk final : public MemoryDisk {
  public:
    explicit FolderDisk(path root) : root_(std::move(root)) {}
    FolderDisk(const FolderDisk&) = delete;
    FolderDisk& operator=(const FolderDisk&) = delete;
    ~FolderDisk() override {
        std::error_code failure;
        fs::remove_all(root_, failure);
    }

    // Errors name the file as the tests do.
    template <typename Action>
    auto named(Action action) const {
        try {
            return action();
        } catch (const Error& error) {
            throw Error(error.code(), "/" / error.file().lexically_relative(root_), error.cause());
        }
    }

    template <typename Action>
    auto told(Call call, Action action) const {
        announce(call);
        return named(action);
    }

    void checkGrowth(std::uint64_t before, std::uint64_t after) const {
        checkCapacity(before, after);
    }

    path real(const path& filePath) const { return root_ / filePath.relative_path(); }

    void makeFolder(const path& folder) override { fs::create_directories(real(folder)); }
    std::vector<std::byte> content(const path& filePath) const override;
    void setContent(const path& filePath, std::span<const std::byte> bytes) override;
    std::uint64_t placed() const override;

    std::unique_ptr<DiskFile> open(const path& filePath, Access access) override {
        return wrapped(filePath, [&] { return native_.open(real(filePath), access); });
    }
    std::unique_ptr<DiskFile> create(const path& filePath) override {
        return wrapped(filePath, [&] { return native_.create(real(filePath)); });
    }
    std::unique_ptr<DiskFile> createPrivate(const path& filePath) override {
        return wrapped(filePath, [&] { return native_.createPrivate(real(filePath)); });
    }
    void copyAttributes(DiskFile& from, DiskFile& to) override;
    std::vector<compound::FolderEntry> list(const path& folder) override {
        return told(Call::Folder, [&] {
            auto entries = native_.list(real(folder));
            // What is open somewhere keeps such a name in file systems in user space.
            std::erase_if(entries, [](const compound::FolderEntry& entry) {
                return entry.name.string().starts_with(".fuse_hidden");
            });
            return entries;
        });
    }
    bool exists(const path& filePath) override {
        return told(Call::Folder, [&] { return native_.exists(real(filePath)); });
    }
    std::optional<compound::FileIdentity> glance(const path& filePath) override {
        return native_.glance(real(filePath));
    }
    void renameWithoutReplacing(const path& from, const path& to) override {
        told(Call::Folder, [&] { native_.renameWithoutReplacing(real(from), real(to)); });
    }
    void renameReplacing(const path& from, const path& to) override {
        told(Call::Folder, [&] { native_.renameReplacing(real(from), real(to)); });
    }
    void syncFolder(const path& folder) override {
        told(Call::SyncFolder, [&] { native_.syncFolder(real(folder)); });
    }
    void trash(const path& filePath) override {
        told(Call::Folder, [&] { native_.trash(real(filePath)); });
        noteTrashed(filePath);
    }
    void removeTemporary(const path& filePath) override {
        told(Call::Folder, [&] { native_.removeTemporary(real(filePath)); });
    }

  private:
    template <typename Action>
    std::unique_ptr<DiskFile> wrapped(const path& filePath, Action action);

    path root_;
    compound::Disk& native_ = platform::nativeDisk();
};

class FolderFile final : public DiskFile {
  public:
    FolderFile(const FolderDisk& disk, std::unique_ptr<DiskFile> native, fs::path filePath)
        : disk_(disk), native_(std::move(native)), path_(std::move(filePath)) {}

    DiskFile& native() { return *native_; }

    using Call = MemoryDisk::Call;
    template <typename Action>
    auto told(Call call, Action action) const {
        return disk_.told(call, action);
    }

    const fs::path& path() const override { return path_; }
    std::size_t read(std::uint64_t offset, std::span<std::byte> into) override {
        return told(Call::Read, [&] { return native_->read(offset, into); });
    }
    void write(std::uint64_t offset, std::span<const std::byte> bytes) override {
        told(Call::Write, [&] {
            disk_.checkGrowth(native_->size(), offset + bytes.size());
            native_->write(offset, bytes);
        });
    }
    void sync() override {
        told(Call::Sync, [&] { native_->sync(); });
    }
    void syncName() override {
        told(Call::SyncFolder, [&] { native_->syncName(); });
    }
    void truncate(std::uint64_t size) override {
        told(Call::Truncate, [&] { native_->truncate(size); });
    }
    std::uint64_t size() override {
        return told(Call::Size, [&] { return native_->size(); });
    }
    void extend(std::uint64_t size) override {
        told(Call::Write, [&] {
            disk_.checkGrowth(native_->size(), size);
            native_->extend(size);
        });
    }
    bool lock(std::chrono::milliseconds wait) override {
        return told(Call::Lock, [&] { return native_->lock(wait); });
    }
    bool isStillAtPath() override {
        return disk_.named([&] { return native_->isStillAtPath(); });
    }
    void retire() noexcept override { native_->retire(); }
    std::optional<compound::FileIdentity> identity() override {
        return disk_.named([&] { return native_->identity(); });
    }

  private:
    const FolderDisk& disk_;
    std::unique_ptr<DiskFile> native_;
    fs::path path_;
};

template <typename Action>
std::unique_ptr<DiskFile> FolderDisk::wrapped(const path& filePath, Action action) {
    return std::make_unique<FolderFile>(*this, told(Call::Folder, action), filePath);
}

void FolderDisk::copyAttributes(DiskFile& from, DiskFile& to) {
    told(Call::Folder, [&] {
        native_.copyAttributes(dynamic_cast<FolderFile&>(from).native(),
                               dynamic_cast<FolderFile&>(to).native());
    });
}

std::vector<std::byte> FolderDisk::content(const path& filePath) const {
    if (!fs::exists(real(filePath))) {
        return {};
    }
    const auto file = native_.open(real(filePath), Access::Read);
    std::vector<std::byte> bytes(static_cast<std::size_t>(file->size()));
    file->read(0, bytes);
    return bytes;
}

void FolderDisk::setContent(const path& filePath, std::span<const std::byte> bytes) {
    fs::remove(real(filePath));
    native_.create(real(filePath))->write(0, bytes);
}

std::uint64_t FolderDisk::placed() const {
    std::uint64_t total = 0;
    for (const auto& entry : fs::recursive_directory_iterator(root_)) {
        total += entry.is_regular_file() ? entry.file_size() : 0;
    }
    return total;
}

} // namespace

std::unique_ptr<MemoryDisk> makeTestDisk() {
    const char* folder = std::getenv("TXS_TEST_FOLDER");
    if (folder == nullptr) {
        return std::make_unique<MemoryDisk>();
    }
    std::string root = std::string(folder) + "/store-XXXXXX";
    if (::mkdtemp(root.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), root);
    }
    return std::make_unique<FolderDisk>(root);
}

} // namespace store::testing
