#include "platform/folder_entries.h"

#include "compound/error.h"
#include "platform/shared_volume.h"

#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

using compound::FolderEntry;
using compound::systemError;

// Memory that is not touched costs nothing. The first does for some 20,000 files.
constexpr std::size_t kRoom = std::size_t{1} << 20U;
constexpr std::size_t kAmpleRoom = std::size_t{1} << 24U;

bool isRegularEntry(int folder, const dirent64& entry) {
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) {
        return entry.d_type == DT_REG;
    }
    struct stat status {};
    return ::fstatat(folder, entry.d_name, &status, 0) == 0 && S_ISREG(status.st_mode);
}

class FolderReading {
  public:
    FolderReading(int folder, FolderIs folderIs, const std::filesystem::path& path)
        : folder_(folder), folderIs_(folderIs), path_(path) {}

    std::vector<FolderEntry> read() {
        constexpr int kTries = 8;
        std::vector<FolderEntry> most;
        for (int i = 0; i < kTries; ++i) {
            const struct stat before = status(); // a newer shared folder is read anew
            const bool isWhole = readPieces(i == 0 ? kRoom : kAmpleRoom) < 2;
            const bool isShared = folderIs_ == FolderIs::Shared;
            // A local folder's time stamps may be too coarse: more room is better than they are.
            const bool tellsTime = isWhole || isShared || i > 0;
            if ((isWhole && isShared) || (tellsTime && isUnchangedSince(before))) {
                return std::move(entries_);
            }
            // Btrfs tells no name that is given between the beginning of a reading and its first
            // piece, so that a file that is renamed then is missing.
            if (isWhole && entries_.size() > most.size()) {
                most = std::move(entries_);
            }
        }
        return most.empty() ? std::move(entries_) : std::move(most);
    }

  private:
    // Returns how many pieces there were.
    int readPieces(std::size_t room) {
        const auto piece = std::make_unique_for_overwrite<std::byte[]>(room);
        entries_.clear();
        if (::lseek(folder_, 0, SEEK_SET) < 0) {
            throw systemError(errno, path_, "list");
        }
        for (int pieces = 0;; ++pieces) {
            const ssize_t length = ::getdents64(folder_, piece.get(), room);
            if (length < 0) {
                throw systemError(errno, path_, "list");
            }
            if (length == 0) {
                return pieces;
            }
            take(piece.get(), static_cast<std::size_t>(length));
        }
    }

    void take(const std::byte* piece, std::size_t length) {
        for (std::size_t at = 0; at < length;) {
            const auto& entry = *reinterpret_cast<const dirent64*>(piece + at);
            const std::string_view name = entry.d_name;
            if (name != "." && name != "..") {
                entries_.push_back({std::filesystem::path(name), isRegularEntry(folder_, entry)});
            }
            at += entry.d_reclen;
        }
    }

    struct stat status() const {
        struct stat status {};
        const bool isTold = folderIs_ == FolderIs::Shared ? askStatus(folder_, status)
                                                          : ::fstat(folder_, &status) == 0;
        if (!isTold) {
            throw systemError(errno, path_, "list");
        }
        return status;
    }

    bool isUnchangedSince(const struct stat& before) const {
        const struct stat now = status();
        return now.st_mtim.tv_sec == before.st_mtim.tv_sec &&
               now.st_mtim.tv_nsec == before.st_mtim.tv_nsec;
    }

    int folder_;
    FolderIs folderIs_;
    const std::filesystem::path& path_;
    std::vector<FolderEntry> entries_;
};

} // namespace

std::vector<FolderEntry> readFolder(int folder, FolderIs folderIs,
                                    const std::filesystem::path& path) {
    return FolderReading(folder, folderIs, path).read();
}

} // namespace platform
