#include "store/leftovers.h"

#include "compound/error.h"
#include "compound/format.h"
#include "store/damage.h"
#include "store/moved_content.h"
#include "store/storage_access.h"

#include <algorithm>
#include <array>
#include <exception>
#include <functional>
#include <random>
#include <span>
#include <string_view>
#include <utility>

namespace store {
namespace {

using compound::Access;
using compound::CompoundFile;
using compound::DiskFile;
using compound::Error;
using compound::ErrorCode;

constexpr std::string_view kPrefix = ".txs-";
constexpr std::string_view kInTheMaking = ".new";
constexpr std::string_view kMoving = ".was";
constexpr std::size_t kDigits = 16;

std::string nameOf(std::uint64_t number, std::string_view suffix) {
    constexpr std::string_view kHexadecimal = "0123456789abcdef";
    std::string name(kPrefix);
    for (std::size_t i = 0; i < kDigits; ++i, number >>= 4U) {
        name.push_back(kHexadecimal[number & 0xFU]);
    }
    return name.append(suffix);
}

bool isNameOf(const std::string& name, std::string_view suffix) {
    return name.size() == kPrefix.size() + kDigits + suffix.size() && name.starts_with(kPrefix) &&
           name.ends_with(suffix);
}

// FNV-1a, 64 bits.
class Fingerprint {
  public:
    void add(std::span<const std::byte> bytes) {
        constexpr std::uint64_t kPrime = 0x100000001B3;
        for (const std::byte byte : bytes) {
            value_ = (value_ ^ std::to_integer<std::uint64_t>(byte)) * kPrime;
        }
    }
    void add(std::u16string_view text) { // ended, so that no two texts run into one another
        add(std::as_bytes(std::span(text)));
        add(std::array{std::byte{0}, std::byte{0}});
    }
    std::uint64_t value() const { return value_; }

  private:
    std::uint64_t value_ = 0xCBF29CE484222325;
};

// Of the old file's state and name. Every change of a group file gives it another header.
Fingerprint fingerprintOf(DiskFile& file, const FileName& name) {
    std::array<std::byte, compound::format::kHeaderSize> header{};
    const std::size_t length = file.read(0, header);
    const std::array<std::uint64_t, 1> size{file.size()};
    Fingerprint fingerprint;
    fingerprint.add(std::as_bytes(std::span(size)));
    fingerprint.add(std::span(header).first(length));
    fingerprint.add(name.text);
    return fingerprint;
}

std::string recordName(Fingerprint old, const FileName& newFile) {
    old.add(newFile.text);
    return nameOf(old.value(), kMoving);
}

// Calls `use` for every file of passage with this suffix that nobody holds; it stays locked so
// long. Another program may be clearing away, removing or publishing the same file: nothing depends
// on our doing it.
void forEachLeftover(const Library& library, const std::filesystem::path& folder,
                     std::string_view suffix,
                     const std::function<void(const std::filesystem::path&)>& use) {
    for (const compound::FolderEntry& entry : library.disk.list(folder)) {
        if (!entry.isRegularFile || !isNameOf(entry.name.string(), suffix)) {
            continue;
        }
        try {
            // Another program may have cleared it away since, and a third have made one of its
            // name.
            const auto file = library.disk.open(folder / entry.name, Access::Read);
            if (file->lock(std::chrono::milliseconds{0}) && file->isStillAtPath()) {
                use(folder / entry.name);
            }
        } catch (const Error&) {
            continue;
        }
    }
}

// The old file's content is whole and durable under the new name. Who gave it that name may not
// have lived to make the name durable, and nothing says which of two changes of a folder a power
// cut leaves.
void removeOld(const Library& library, const std::filesystem::path& path) {
    const std::filesystem::path target = library.disk.resolved(path);
    syncPlaceOf(library, path);
    if (target != path) {
        syncPlaceOf(library, target);
    }
    library.disk.removeTemporary(path);
    if (target != path) {
        library.disk.removeTemporary(target);
    }
    syncPlaceOf(library, path);
}

enum class MoveEnd {
    Finished,
    NotToFinish, // one of the two is not there, or not as it was
    Unknown,     // something is in use or cannot be read: ask again
};

// What the record says of one file that may be the old one. It tells names, and another program may
// have made a group of the new name before the one that moved could: only what stands in both
// files, byte for byte, may go.
MoveEnd finishMoveOf(const Library& library, const FileName& old,
                     const std::filesystem::path& record, const std::vector<FileName>& files) {
    const LockBudget noWait(std::chrono::milliseconds{0});
    const std::filesystem::path path = pathOf(library, old);
    auto held = openLocked(library.disk, path, Access::Read, noWait.remaining());
    const Fingerprint fingerprint = fingerprintOf(*held, old);
    const auto moved = std::find_if(files.begin(), files.end(), [&](const FileName& file) {
        return file != old && record.filename() == recordName(fingerprint, file);
    });
    if (moved == files.end()) {
        return MoveEnd::NotToFinish;
    }
    StorageAccess access(library);
    try {
        access.openFile(pathOf(library, *moved), Access::Read, noWait.remaining());
        auto oldFile = CompoundFile::open(std::move(held), Access::Read);
        if (!holdsAllOf(oldFile, old, access.file(), *moved)) {
            return MoveEnd::NotToFinish;
        }
        removeOld(library, path);
    } catch (const Error& error) {
        if (isAboutBytes(error.code())) {
            return MoveEnd::NotToFinish;
        }
        throw;
    }
    return MoveEnd::Finished;
}

// Removes the old file of the pair whose record this is, if both are there.
MoveEnd finishMove(const Library& library, const std::filesystem::path& record,
                   const std::vector<FileName>& files) {
    MoveEnd end = MoveEnd::NotToFinish;
    for (const FileName& old : files) {
        try {
            const MoveEnd ofThis = finishMoveOf(library, old, record, files);
            if (ofThis == MoveEnd::Finished) {
                return ofThis;
            }
            end = std::max(end, ofThis);
        } catch (const Error&) {
            end = MoveEnd::Unknown;
        }
    }
    return end;
}

} // namespace

bool isFileOfPassage(const std::filesystem::path& name) {
    return isNameOf(name.string(), kInTheMaking) || isNameOf(name.string(), kMoving);
}

std::string nameInTheMaking() {
    thread_local std::mt19937_64 generator{std::random_device{}()};
    return nameOf(generator(), kInTheMaking);
}

std::unique_ptr<DiskFile> lockNew(const Library& library, std::unique_ptr<DiskFile> created) {
    return created->lock(library.lockWait) && created->isStillAtPath() ? std::move(created)
                                                                       : nullptr;
}

MoveRecord::MoveRecord(const Library& library, DiskFile& old, const FileName& oldFile,
                       const FileName& newFile)
    : library_(library), path_(library.folder / recordName(fingerprintOf(old, oldFile), newFile)) {
    try {
        file_ = lockNew(library, library.disk.create(path_));
    } catch (const Error& error) {
        // A record that a crash has left and nobody could clear away serves as well.
        if (error.code() != ErrorCode::Exists) {
            throw Error(error.code(), plainPathOf(library, newFile), error.cause());
        }
    }
}

MoveRecord::~MoveRecord() {
    try {
        library_.disk.removeTemporary(path_);
    } catch (const std::exception&) {
        return;
    }
}

void removeUnfinishedFiles(const Library& library, const std::filesystem::path& folder) {
    forEachLeftover(library, folder, kInTheMaking,
                    [&](const auto& path) { library.disk.removeTemporary(path); });
}

bool clearLeftovers(const Library& library, const std::vector<FileName>& files) {
    removeUnfinishedFiles(library, library.folder);
    bool hasGone = false;
    forEachLeftover(library, library.folder, kMoving, [&](const auto& record) {
        const MoveEnd end = finishMove(library, record, files);
        hasGone = hasGone || end == MoveEnd::Finished;
        if (end != MoveEnd::Unknown) {
            library.disk.removeTemporary(record);
        }
    });
    return hasGone;
}

} // namespace store
