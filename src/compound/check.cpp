#include "compound/check.h"

#include "compound/error.h"
#include "compound/file_state.h"
#include "compound/names.h"
#include "compound/red_black_tree.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

namespace compound {

using namespace format;

namespace {

constexpr std::size_t kMostFindings = 1000; // a wild file has no use for more

struct ByName {
    bool operator()(std::u16string_view one, std::u16string_view other) const {
        return compareNames(one, other) < 0;
    }
};

class Checker {
  public:
    explicit Checker(FileState& file) : file_(file) {}

    std::vector<Finding> run() {
        guarded("FAT", [&] { checkTables(); });
        guarded("directory", [&] { markChain("directory", file_.header().firstDirectory); });
        guarded("directory", [&] { checkHeaderCounts(); });
        guarded("mini FAT", [&] { markMiniTables(); });
        guarded("directory", [&] { checkTree(); });
        guarded("directory", [&] { checkUnreachedEntries(); });
        guarded("FAT", [&] { checkOrphans(); });
        guarded("mini FAT", [&] { checkMiniOrphans(); });
        if (findings_.empty()) {
            guarded("file", [&] { checkTail(); });
        }
        return std::move(findings_);
    }

  private:
    struct Node {
        EntryId id;
        std::string path;
    };

    void find(std::string where, std::string what) {
        if (findings_.size() < kMostFindings) {
            findings_.push_back({std::move(where), std::move(what)});
        }
    }

    // What a part cannot be walked for is a finding, and the next part is walked.
    template <typename Part>
    void guarded(const char* where, Part part) {
        try {
            part();
        } catch (const Error& error) {
            find(where, error.cause());
        }
    }

    bool claim(const std::string& where, std::uint32_t sector) {
        if (sector >= owned_.size()) {
            find(where, "sector " + std::to_string(sector) + " lies outside the file");
            return false;
        }
        if (owned_[sector]) {
            find(where, "sector " + std::to_string(sector) + " is used twice");
            return false;
        }
        owned_[sector] = true;
        return true;
    }

    void checkTables() {
        owned_.assign(file_.file().count(), false);
        AllocationTable& table = file_.table();
        const Header& header = file_.header();
        const auto checkMark = [&](const char* where, std::uint32_t sector, std::uint32_t mark) {
            if (claim(where, sector) && table.entry(sector) != mark) {
                find(where, "sector " + std::to_string(sector) + " is not marked as one of it");
            }
        };
        for (const std::uint32_t sector : table.fatSectors()) {
            checkMark("FAT", sector, kFatSector);
        }
        for (const std::uint32_t sector : table.difatSectors()) {
            checkMark("DIFAT", sector, kDifatSector);
        }
        if (table.fatSectors().size() != header.fatSectors) {
            find("header", "it counts " + std::to_string(header.fatSectors) + " FAT sectors, not " +
                               std::to_string(table.fatSectors().size()));
        }
        if (table.difatSectors().size() != header.difatSectors) {
            find("header", "it counts " + std::to_string(header.difatSectors) +
                               " DIFAT sectors, not " +
                               std::to_string(table.difatSectors().size()));
        }
    }

    // Claims a chain; returns its length. Stops at what another chain has claimed.
    std::uint64_t markChain(const std::string& where, std::uint32_t first) {
        std::uint64_t length = 0;
        for (std::uint32_t at = first; at != kEndOfChain; at = file_.table().next(at)) {
            if (!claim(where, at)) {
                return length;
            }
            ++length;
        }
        return length;
    }

    void checkHeaderCounts() {
        const Header& header = file_.header();
        const std::uint32_t pages = file_.directoryChain().count();
        if (header.directorySectors != (header.majorVersion == 3 ? 0 : pages)) {
            find("header", "its number of directory sectors is wrong");
        }
    }

    void markMiniTables() {
        const Header& header = file_.header();
        const std::uint64_t pages =
            header.firstMiniFat > kMaximumSector ? 0 : markChain("mini FAT", header.firstMiniFat);
        if (pages != header.miniFatSectors) {
            find("header", "its number of mini FAT sectors is wrong");
        }
        const std::uint64_t size = file_.directory().size(DirectoryEntries::kRoot);
        if (size > 0) {
            const std::uint64_t held =
                markChain("mini stream", file_.directory().start(DirectoryEntries::kRoot)) *
                file_.file().sectorSize();
            if (size > held || size + file_.file().sectorSize() <= held) {
                find("mini stream", "its chain does not fit its size");
            }
        }
        miniOwned_.assign(file_.mini().count(), false);
        if (std::uint64_t{file_.mini().count()} * 4 > pages * file_.file().sectorSize()) {
            find("mini FAT", "it is too short for the mini stream");
        }
    }

    void checkTree() {
        Directory& directory = file_.directory();
        reached_.assign(static_cast<std::size_t>(directory.count()), false);
        if (reached_.empty()) {
            find("directory", "it is empty");
            return;
        }
        reached_[DirectoryEntries::kRoot] = true;
        if (directory.type(DirectoryEntries::kRoot) != EntryType::Root) {
            find("directory", "its first entry is not the root");
        }
        std::vector<Node> open{{DirectoryEntries::kRoot, ""}};
        while (!open.empty()) {
            const Node storage = std::move(open.back());
            open.pop_back();
            guarded("directory", [&] { checkStorage(storage, open); });
        }
    }

    void checkStorage(const Node& storage, std::vector<Node>& open) {
        Directory& directory = file_.directory();
        const std::string where = storage.path.empty() ? "root" : storage.path;
        std::u16string previous;
        std::map<std::u16string, std::string, ByName> names; // with their paths
        for (const EntryId id : directory.elements(storage.id)) {
            if (id >= reached_.size() || reached_[id]) {
                find(where, "entry " + std::to_string(id) + " is linked twice");
                return;
            }
            reached_[id] = true;
            const std::u16string name = directory.name(id);
            const std::string path =
                (storage.path.empty() ? "" : storage.path + "/") + shownName(name);
            if (!previous.empty() && compareNames(previous, name) > 0) {
                find(path, "it stands in the wrong place of its storage's order");
            }
            if (const auto [other, isFirst] = names.emplace(name, path); !isFirst) {
                find(path, "it bears the same name as " + other->second);
            }
            if (!isLegalName(name)) {
                find(path, "its name is not allowed");
            }
            previous = name;
            if (directory.type(id) == EntryType::Stream) {
                guarded(path.c_str(), [&] { checkStream(path, id); });
            } else {
                open.push_back({id, path});
            }
        }
        if (!RedBlackTree(directory, storage.id).hasSoundColours()) {
            find(where, "the colours of its tree are wrong");
        }
    }

    void checkStream(const std::string& path, EntryId id) {
        const std::uint64_t size = file_.directory().size(id);
        const std::uint32_t start = file_.directory().start(id);
        if (size == 0) {
            return;
        }
        const bool mini = size < kMiniStreamCutoff;
        const std::uint64_t unit = mini ? kMiniSectorSize : file_.file().sectorSize();
        const std::uint64_t length = mini ? markMiniChain(path, start) : markChain(path, start);
        if (length != (size + unit - 1) / unit) {
            find(path, "its chain does not fit its size of " + std::to_string(size) + " bytes");
        }
    }

    std::uint64_t markMiniChain(const std::string& where, std::uint32_t first) {
        std::uint64_t length = 0;
        for (std::uint32_t at = first; at != kEndOfChain; at = file_.mini().next(at)) {
            if (at >= miniOwned_.size() || miniOwned_[at]) {
                find(where, "mini sector " + std::to_string(at) +
                                " is used twice or lies outside the mini stream");
                return length;
            }
            miniOwned_[at] = true;
            ++length;
        }
        return length;
    }

    void checkUnreachedEntries() {
        for (std::size_t id = 0; id < reached_.size(); ++id) {
            const auto type = std::to_integer<std::uint8_t>(
                file_.directory().raw(static_cast<EntryId>(id))[entry::kTypeAt]);
            if (!reached_[id] && type != 0) {
                find("directory", "entry " + std::to_string(id) + " is in no storage");
            }
        }
    }

    void checkOrphans() {
        const std::uint32_t lock = file_.table().rangeLock();
        for (std::uint32_t sector = 0; sector < owned_.size(); ++sector) {
            const std::uint32_t value =
                file_.table().covers(sector) ? file_.table().entry(sector) : kFreeSector;
            if (sector == lock) {
                checkRangeLock(sector, value);
            } else if (owned_[sector] == (value == kFreeSector)) {
                find("FAT", "sector " + std::to_string(sector) +
                                (owned_[sector] ? " is used, but marked free"
                                                : " is marked as used, but in no chain"));
            }
        }
        checkMarksBehindEnd();
    }

    // A crash may leave a file longer than that whose header in force names nothing behind it.
    void checkRangeLock(std::uint32_t lock, std::uint32_t value) {
        const auto behind = owned_.begin() + lock;
        const bool isPassed = std::find(behind, owned_.end(), true) != owned_.end();
        if (owned_[lock]) {
            find("FAT", "the range-lock sector is used");
        } else if (value != kEndOfChain && (isPassed || value != kFreeSector)) {
            find("FAT", "the range-lock sector is not marked");
        }
    }

    // A file that grows over such a mark never uses the sector.
    void checkMarksBehindEnd() {
        const auto end = static_cast<std::uint32_t>(owned_.size());
        for (std::uint32_t sector = end; file_.table().covers(sector); ++sector) {
            if (file_.table().entry(sector) != kFreeSector && sector != file_.table().rangeLock()) {
                find("FAT", "sector " + std::to_string(sector) +
                                " is marked as used, but lies behind the file's end");
            }
        }
    }

    // A crash may leave sectors behind the end that no header in force has ever named.
    void checkTail() {
        const std::uint32_t tail = file_.leftTail();
        if (tail > 0) {
            findings_.push_back({"file",
                                 "its last " + std::to_string(tail) +
                                     " sectors are unused and go with the next change",
                                 Severity::Remark});
        }
    }

    void checkMiniOrphans() {
        for (std::uint32_t mini = 0; mini < miniOwned_.size(); ++mini) {
            const std::uint32_t value = file_.mini().entry(mini);
            if (miniOwned_[mini] == (value == kFreeSector)) {
                find("mini FAT", "mini sector " + std::to_string(mini) +
                                     (miniOwned_[mini] ? " is used, but marked free"
                                                       : " is marked as used, but in no chain"));
            }
        }
    }

    FileState& file_;
    std::vector<Finding> findings_;
    std::vector<bool> owned_;
    std::vector<bool> miniOwned_;
    std::vector<bool> reached_;
};

} // namespace

std::vector<Finding> checkFile(FileState& file) {
    return Checker(file).run();
}

} // namespace compound
