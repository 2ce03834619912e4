#include "store/leftovers.h"

#include "base/utf8.h"
#include "compound/error.h"
#include "compound/format.h"
#include "store/damage.h"
#include "store/moved_content.h"
#include "store/storage_access.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <functional>
#include <optional>
#include <random>
#include <span>
#include <string>
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

// What a record holds. No file's name has the sign between the parts.
constexpr char kBetweenParts = '/';

struct Move {
    FileName old;
    FileName now;
    std::uint64_t number = 0; // of the file that gets the new name
};

std::string textOf(const Move& move) {
    return base::toUtf8(move.old.text) + kBetweenParts + base::toUtf8(move.now.text) +
           kBetweenParts + std::to_string(move.number);
}

// Nothing for a record without names: a power cut may have emptied it.
std::optional<Move> moveIn(DiskFile& record) {
    constexpr std::size_t kLongest = 1024;
    std::string text(kLongest, '\0');
    text.resize(record.read(0, std::as_writable_bytes(std::span(text))));
    const std::size_t afterOld = text.find(kBetweenParts);
    const std::size_t afterNew = text.find(kBetweenParts, afterOld + 1);
    if (afterOld == std::string::npos || afterNew == std::string::npos) {
        return std::nullopt;
    }
    return Move{
        {base::fromUtf8(std::string_view(text).substr(0, afterOld))},
        {base::fromUtf8(std::string_view(text).substr(afterOld + 1, afterNew - afterOld - 1))},
        std::strtoull(text.c_str() + afterNew + 1, nullptr, 10)};
}

bool isAmong(const std::vector<FileName>& files, const FileName& file) {
    return std::find(files.begin(), files.end(), file) != files.end();
}

using UseLeftover = std::function<void(const std::filesystem::path&, DiskFile&)>;

// Calls `use` for every file of passage with this suffix that nobody holds; it stays locked so
// long. Another program may be clearing away, removing or publishing the same file: nothing depends
// on our doing it.
void forEachLeftover(const Library& library, const std::filesystem::path& folder,
                     std::string_view suffix, const UseLeftover& use) {
    for (const compound::FolderEntry& entry : library.disk.list(folder)) {
        if (!entry.isRegularFile || !isNameOf(entry.name.string(), suffix)) {
            continue;
        }
        try {
            // Another program may have cleared it away since, and a third have made one of its
            // name.
            const auto file = library.disk.open(folder / entry.name, Access::Read);
            if (file->lock(std::chrono::milliseconds{0}) && file->isStillAtPath()) {
                use(folder / entry.name, *file);
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

// Whether the file that gets the new name has yet to get it: its maker lives, or it were gone.
bool isInTheMaking(const Library& library, const Move& move) {
    const auto entries = library.disk.list(library.folder);
    return std::any_of(entries.begin(), entries.end(), [&](const compound::FolderEntry& entry) {
        if (!entry.isRegularFile || !isNameOf(entry.name.string(), kInTheMaking)) {
            return false;
        }
        const auto file = library.disk.glance(library.folder / entry.name);
        return file && file->number == move.number;
    });
}

// Removes the old file of the pair whose record this is, if both are there. The lock of an old file
// that its owner could not open for writing may let others in.
MoveEnd finishMove(const Library& library, const std::filesystem::path& record, DiskFile& file) {
    const std::optional<Move> move = moveIn(file);
    if (move && isInTheMaking(library, *move)) {
        return MoveEnd::Unknown;
    }
    // From before the record was locked a listing may lack the name that its maker gave last.
    const std::vector<FileName> files = everyGroupFile(library);
    std::vector<FileName> candidates = files;
    if (move) {
        if (!isAmong(files, move->old)) {
            return MoveEnd::NotToFinish;
        }
        candidates = {move->old};
    }
    MoveEnd end = MoveEnd::NotToFinish;
    for (const FileName& old : candidates) {
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

enum class Says {
    Nothing, // the two are not there
    OldGoes,
    TwoGroups, // unless this is a later record of the same name
    OutOfDate, // the move was going on when the folder was listed, and has come to its end
};

// Another program may have made a group of the new name before the file that is moved got it.
bool hasNewName(const Library& library, const Move& move) {
    const auto now = library.disk.glance(pathOf(library, move.now));
    return now && now->number == move.number;
}

// Looks at the old file without its lock, which whoever moves it has: nobody changes it then. Where
// locks keep other handles from reading, that it is locked has to do.
Says compare(const Library& library, const Move& move, const std::filesystem::path& record) {
    const std::filesystem::path path = pathOf(library, move.old);
    const auto unlessGone = [&] {
        return library.disk.exists(record) ? Says::TwoGroups : Says::OutOfDate;
    };
    if (!hasNewName(library, move)) {
        return unlessGone();
    }
    try {
        const auto old = library.disk.open(path, Access::Read);
        const Fingerprint fingerprint = fingerprintOf(*old, move.old);
        if (record.filename() == recordName(fingerprint, move.now)) {
            return Says::OldGoes;
        }
        return old->isStillAtPath() ? unlessGone() : Says::OutOfDate;
    } catch (const Error& error) {
        const bool isHeld = error.code() == ErrorCode::Denied;
        return !isHeld && library.disk.exists(path) ? unlessGone() : Says::OldGoes;
    }
}

Says askRecord(const Library& library, const std::filesystem::path& record,
               const std::vector<FileName>& files, FileName& old) {
    std::optional<Move> move;
    try {
        move = moveIn(*library.disk.open(record, Access::Read));
    } catch (const Error&) {
        return library.disk.exists(record) ? Says::TwoGroups : Says::OutOfDate;
    }
    if (!move) {
        return Says::TwoGroups;
    }
    if (!isAmong(files, move->old) || !isAmong(files, move->now)) {
        return Says::Nothing;
    }
    old = move->old;
    return compare(library, *move, record);
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
                       const std::filesystem::path& unnamed, const FileName& newFile)
    : library_(library), path_(library.folder / recordName(fingerprintOf(old, oldFile), newFile)) {
    constexpr int kTries = 3; // another program may be clearing away what a crash has left of it
    const auto moving = library.disk.glance(unnamed);
    const std::string text = textOf({oldFile, newFile, moving ? moving->number : 0});
    bool isThere = false;
    try {
        for (int i = 0; i < kTries && !isThere; ++i) {
            if (auto record = written(text)) {
                isThere = lockNew(library, std::move(record)) != nullptr;
            }
        }
        library.disk.syncFolder(library.folder); // its name, before the new one's can be durable
    } catch (const Error& error) {
        remove();
        throw Error(error.code(), plainPathOf(library, newFile), error.cause());
    }
}

// A record that a crash has left and nobody could clear away serves as well, even one that is not
// ours to write to.
std::unique_ptr<DiskFile> MoveRecord::written(const std::string& text) const {
    std::unique_ptr<DiskFile> file;
    try {
        file = library_.disk.create(path_);
    } catch (const Error& error) {
        if (error.code() != ErrorCode::Exists) {
            throw;
        }
    }
    try {
        if (!file) {
            file = library_.disk.open(path_, Access::ReadWrite);
        }
    } catch (const Error&) {
        return nullptr;
    }
    try {
        file->write(0, std::as_bytes(std::span(text)));
        file->truncate(text.size());
    } catch (const Error&) {
        library_.disk.removeTemporary(path_);
        throw;
    }
    return file;
}

MoveRecord::~MoveRecord() {
    remove();
}

void MoveRecord::remove() noexcept {
    try {
        library_.disk.removeTemporary(path_);
    } catch (const std::exception&) {
        return;
    }
}

void removeUnfinishedFiles(const Library& library, const std::filesystem::path& folder) {
    forEachLeftover(library, folder, kInTheMaking,
                    [&](const auto& path, DiskFile&) { library.disk.removeTemporary(path); });
}

bool clearLeftovers(const Library& library) {
    removeUnfinishedFiles(library, library.folder);
    bool hasGone = false;
    forEachLeftover(library, library.folder, kMoving, [&](const auto& record, DiskFile& file) {
        const MoveEnd end = finishMove(library, record, file);
        hasGone = hasGone || end == MoveEnd::Finished;
        if (end != MoveEnd::Unknown) {
            library.disk.syncFolder(library.folder); // that one of two has gone, before the record
            library.disk.removeTemporary(record);
        }
    });
    return hasGone;
}

ListingIs leaveOutOldNames(const Library& library,
                           const std::vector<compound::FolderEntry>& entries,
                           std::vector<FileName>& files) {
    ListingIs listing = ListingIs::Known;
    for (const compound::FolderEntry& entry : entries) {
        if (!entry.isRegularFile || !isNameOf(entry.name.string(), kMoving)) {
            continue;
        }
        FileName old;
        const Says says = askRecord(library, library.folder / entry.name, files, old);
        if (says == Says::OutOfDate) {
            return ListingIs::OutOfDate;
        }
        if (says == Says::TwoGroups) {
            listing = ListingIs::Doubtful;
        } else if (says == Says::OldGoes) {
            std::erase(files, old);
        }
    }
    return listing;
}

} // namespace store
