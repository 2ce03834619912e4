#include "compound/file_state.h"

#include "compound/error.h"
#include "compound/gap_closing.h"
#include "compound/home_tidying.h"

#include <algorithm>
#include <array>
#include <exception>
#include <string>
#include <utility>

namespace compound {

using namespace format;

namespace {

// The transaction signatures that this program writes begin with this byte. It tells who wrote the
// header, and nothing about the trees: another program may have edited the file in place since.
constexpr std::uint32_t kOwnSignature = 0x54000000;
constexpr std::uint32_t kSignatureMask = 0xFF000000;

// After a smaller change, or for less space, the two syncs of another transaction are too dear.
constexpr std::uint64_t kLeastBytes = std::uint64_t{256} << 10U;

bool isOurs(const Header& header) {
    return (header.transaction & kSignatureMask) == kOwnSignature;
}

std::uint32_t nextTransaction(const Header& header) {
    return isOurs(header) ? kOwnSignature | ((header.transaction + 1) & ~kSignatureMask)
                          : kOwnSignature + 1;
}

std::uint64_t sizeMask(const Header& header) {
    return header.majorVersion == 3 ? 0xFFFFFFFFULL : ~0ULL;
}

} // namespace

FileState::Parts::Parts(SectorFile& file, Header& header)
    : table(file, header),
      directoryChain(file, table, header.firstDirectory, "the directory"),
      directory(file, directoryChain, sizeMask(header)),
      mini(file, header, table, directory),
      content(file, table, directory, mini) {}

FileState::FileState(std::unique_ptr<DiskFile> file, const Header& committed, Access access,
                     bool isNew)
    : file_(std::move(file), committed.sectorSize()),
      committed_(committed),
      header_(committed),
      access_(access),
      isNew_(isNew),
      isDurable_(isNew),
      lengthBefore_(file_.refresh()),
      parts_(std::make_unique<Parts>(file_, header_)) {
    if (!isNew_) {
        return;
    }
    try {
        startNewFile();
    } catch (...) {
        restoreLength();
        throw;
    }
}

FileState::~FileState() {
    if (changed_) {
        restoreLength();
    }
}

std::size_t FileState::memory() {
    return parts_->table.memory() + parts_->directoryChain.memory() + parts_->mini.memory();
}

void FileState::forgetPages() {
    const std::vector<std::uint32_t> sound = parts_->directory.soundStorages();
    parts_ = std::make_unique<Parts>(file_, header_);
    parts_->directory.trust(sound);
}

void FileState::resume(std::unique_ptr<DiskFile> file, Access access) {
    file_.setDisk(std::move(file), identity_->size);
    lengthBefore_ = identity_->size;
    lastTaken_ = lastFreed_ = 0; // by another operation
    access_ = access;
}

void FileState::startNewFile() {
    changed_ = true;
    parts_->directory.createRoot();
}

FileState::Change::Change(FileState& file)
    : file_(file), exceptionsBefore_(std::uncaught_exceptions()) {
    file_.requireWhole();
    file_.beginChange();
}

FileState::Change::~Change() {
    if (std::uncaught_exceptions() > exceptionsBefore_) {
        file_.inPieces_ = true;
    }
}

void FileState::recall(const CommittedFile& known) {
    isDurable_ = true;
    parts_->directory.trust(known.soundStorages);
}

void FileState::requireWhole() {
    if (outcomeUnknown_) {
        throw Error(ErrorCode::Failed, file_.disk().path(),
                    "whether the last change was stored is not known; the file has to be opened "
                    "again before it can be changed");
    }
    if (inPieces_) {
        throw Error(ErrorCode::Failed, file_.disk().path(),
                    "an earlier failure has left the change incomplete; it can only be dropped");
    }
}

void FileState::beginChange() {
    if (access_ == Access::Read) {
        throw Error(ErrorCode::Denied, file_.disk().path(), "the file is open for reading only");
    }
    if (changed_) {
        return;
    }
    if (!isDurable_) {
        makeHeaderDurable();
    }
    partsBefore_ = std::make_unique<Parts>(file_, header_);
    changed_ = true;
    inPieces_ = true;
    makeSound();
    inPieces_ = false;
}

// The header in force may be another program's that died before it was durable: then a power cut
// brings back the one before it, and with it sectors that are free now and would be written over.
// Writing it again brings it to the medium even when an earlier attempt has failed. The file as a
// whole may be one that was to take another one's place: then the power cut brings back that one,
// without this change.
void FileState::makeHeaderDurable() {
    std::array<std::byte, kHeaderSize> raw{};
    if (file_.disk().read(0, raw) < raw.size()) {
        file_.throwDamaged("header: the file is cut short");
    }
    file_.disk().write(0, raw);
    file_.disk().sync();
    file_.disk().syncName();
    isDurable_ = isInherited_ = true;
}

// The trees of a file with our signature are looked at one by one, when they are searched in vain.
void FileState::makeSound() {
    parts_->mini.makeSound();
    if (isOurs(committed_)) {
        return;
    }
    parts_->table.makeSound();
    parts_->directory.makeSound();
    if (parts_->table.isMarkedLock(parts_->table.rangeLock())) {
        refuseStartInLock();
    }
}

// A chain of one sector, which the table knows nothing of.
void FileState::refuseStartInLock() {
    const std::uint32_t lock = parts_->table.rangeLock();
    Directory& directory = parts_->directory;
    bool isUsed = header_.firstDirectory == lock || header_.firstMiniFat == lock ||
                  directory.start(DirectoryEntries::kRoot) == lock;
    for (EntryId id = 0; !isUsed && id < directory.count(); ++id) {
        const auto type = std::to_integer<std::uint8_t>(directory.raw(id)[format::entry::kTypeAt]);
        isUsed = type == static_cast<std::uint8_t>(format::EntryType::Stream) &&
                 directory.start(id) == lock && directory.size(id) >= format::kMiniStreamCutoff;
    }
    if (isUsed) {
        parts_->table.throwLockUsed();
    }
}

void FileState::commit() {
    constexpr std::uint64_t kMostBytes = std::uint64_t{8} << 20U; // a small change waits for them
    if (changed_) {
        commitMoving(kMostBytes / file_.sectorSize(), AllocationTable::Look::Few);
    }
}

// `most`: sectors that may move for the file to become shorter.
void FileState::commitMoving(std::uint64_t most, AllocationTable::Look look) {
    requireWhole();
    inPieces_ = true;
    if (hasRoomToBalance()) {
        parts_->directory.balance();
    }
    const bool evenFew = moveIntoGaps(most, look) || isNew_ || isInherited_;
    if (!isNew_ && !isInherited_) { // one of several changes
        HomeTidying(parts_->table, parts_->directoryChain, parts_->mini).run();
    }
    SectorWrites writes;
    parts_->mini.writeOut(writes);
    header_.firstDirectory = parts_->directoryChain.first();
    header_.directorySectors = header_.majorVersion == 3 ? 0 : parts_->directoryChain.count();
    parts_->directoryChain.writeOut(writes);
    keepReserve();
    parts_->table.writeOut(reserve(), writes);
    writes.writeTo(file_);
    header_.transaction = nextTransaction(committed_);
    file_.disk().sync();
    writeHeader();
    committed_ = header_;
    isDurable_ = true;
    isNew_ = false;
    changed_ = false;
    partsBefore_.reset();
    inPieces_ = false;
    lastTaken_ = parts_->table.taken();
    lastFreed_ = parts_->table.freed();
    parts_->mini.committed();
    parts_->directory.committed();
    parts_->directoryChain.committed();
    parts_->table.committed();
    cutFreeTail(evenFew);
    isInherited_ = false;
    lengthBefore_ = file_.lengthOf(file_.count());
}

// A transaction that frees a good deal may leave as much as it must and yet have found no more than
// the pages it changes: on a disk that ends there the trees stay as they are.
bool FileState::hasRoomToBalance() {
    constexpr std::uint64_t kFew = 8;
    AllocationTable& table = parts_->table;
    if (table.isFull() || !parts_->directory.isToBalance()) {
        return false;
    }
    try {
        table.provide(parts_->directoryChain.count() + kFew, AllocationTable::Free::Now);
        return true;
    } catch (const Error& error) {
        if (error.code() != ErrorCode::NoSpace && error.code() != ErrorCode::TooLarge) {
            throw;
        }
        return false;
    }
}

// What the largest deletion has to write anew: every page of the directory, of the mini FAT and of
// the DIFAT, and a few pages of the mini stream. (FAT sectors move within what each leaves free.)
std::uint64_t FileState::reserve() {
    constexpr std::uint64_t kFew = 8;
    return kFew + parts_->directoryChain.count() + header_.miniFatSectors +
           parts_->table.difatSectors().size();
}

// Not on a full disk, where they are what changes live on.
bool FileState::moveIntoGaps(std::uint64_t most, AllocationTable::Look look) {
    Parts& parts = *parts_;
    hasMoved_ = false;
    if (parts.table.isFull()) {
        return false;
    }
    GapClosing closing(file_, parts.table, parts.directory, parts.directoryChain, parts.mini,
                       parts.content);
    const bool cuts = closing.run(reserve(), most, look);
    hasMoved_ = closing.hasMoved();
    return cuts;
}

bool FileState::hasLargeGaps() {
    return !changed_ && lastFreed_ * file_.sectorSize() >= kLeastBytes && surplusToClose() > 0;
}

// What stands free, if that is far more than may.
std::uint64_t FileState::surplusToClose() {
    constexpr std::uint64_t kMany = 2;
    AllocationTable& table = parts_->table;
    const std::uint64_t surplus = table.surplus(reserve(), AllocationTable::Look::Loaded);
    return surplus > kMany * table.allowedSurplus() ? surplus : 0;
}

// What moves is bounded by what the transaction has written, so that a batch which replaces all
// takes no more than twice its time, and by some more, since one that only deletes writes little.
// Pages and FAT sectors that have found no place before what moves, since it fills all gaps, may
// keep the file from being cut: then another step moves at least them. However little that is, it
// is worth it where much stands free; but the second step in a row that cuts little is the last.
void FileState::closeGaps() {
    constexpr std::uint64_t kMoreBytes = std::uint64_t{64} << 20U;
    constexpr int kMostSteps = 8; // three have been the most
    const std::uint64_t least = kLeastBytes / file_.sectorSize();
    std::uint64_t most = lastTaken_ + kMoreBytes / file_.sectorSize();
    bool goesOn = hasLargeGaps();
    int inVain = 0;
    for (int step = 0; step < kMostSteps && goesOn && inVain < 2 && most >= least; ++step) {
        const std::uint32_t before = file_.count();
        { const Change change(*this); }
        commitMoving(most, AllocationTable::Look::Loaded);
        const std::uint64_t cut = before - std::min(before, file_.count());
        most -= std::min(most, lastFreed_);
        most = cut >= lastFreed_ / 2 ? most : std::max(most, least);
        inVain = cut >= least ? 0 : inVain + 1;
        const std::uint64_t surplus = surplusToClose();
        goesOn = hasMoved_ && surplus > 0 && std::max(lastFreed_, surplus) >= least;
    }
}

void FileState::makeRoom(std::uint64_t bytes) {
    constexpr std::uint64_t kNewPages = 12; // of the directory and the tables
    { const Change change(*this); }
    const std::uint64_t sectors = bytes / file_.sectorSize() + 1;
    const std::uint64_t fatSectors = sectors / (file_.sectorSize() / 8);
    parts_->table.provide(reserve() + kNewPages + sectors + fatSectors, AllocationTable::Free::Now);
}

// On a full disk a change that frees as much as it takes finds room in the reserve; one that takes
// more leaves the reserve as it should be, or fails. A longer file makes a sync dear, so a process
// that goes on adding has it grow for several changes at once.
void FileState::keepReserve() {
    AllocationTable& table = parts_->table;
    if (!table.takesMoreThanItFrees()) {
        return;
    }
    table.provide(reserve(), AllocationTable::Free::AfterCommit);
    const bool hasGrown = file_.lengthOf(file_.count()) > lengthBefore_;
    if (hasGrown && !isNew_ && !isInherited_ && !table.isFull()) {
        table.growAhead(reserve());
    }
}

void FileState::writeHeader() {
    try {
        file_.disk().write(0, encodeHeader(header_));
        file_.disk().sync();
    } catch (const std::exception& failure) {
        putHeaderBack(failure.what());
        throw;
    }
}

// Our own header goes back under a signature of its own: a program that knows the old one to be
// durable must not take it for that, as long as the medium may hold the new one.
void FileState::putHeaderBack(const char* cause) {
    Header old = committed_;
    if (isOurs(committed_)) {
        old.transaction = nextTransaction(header_);
    }
    isDurable_ = false;
    try {
        if (isNew_) {
            file_.disk().write(0, std::vector<std::byte>(kHeaderSize));
        } else {
            file_.disk().write(0, encodeHeader(old));
        }
        file_.disk().sync();
    } catch (const std::exception&) {
        outcomeUnknown_ = true;
        throw Error(ErrorCode::OutcomeUnknown, file_.disk().path(),
                    std::string("the change may or may not have been stored: ") + cause);
    }
    committed_ = old;
    isDurable_ = true;
}

// Behind the last range any sector will do for the reserve, with one more for the FAT sector that
// will describe them; none of them is counted as free, so going on would keep them all.
std::uint32_t FileState::neededEnd() {
    const std::uint64_t count = file_.count();
    std::uint64_t end = parts_->table.usedEnd();
    while (end < count) {
        const std::uint64_t lacking = parts_->table.missing(
            reserve(), static_cast<std::uint32_t>(end), AllocationTable::Free::Now);
        if (lacking == 0) {
            break;
        }
        if (!parts_->table.covers(static_cast<std::uint32_t>(end))) {
            end += lacking + 1;
            break;
        }
        end += lacking; // one more when the last range had none free so far
    }
    return static_cast<std::uint32_t>(std::min(end, count));
}

std::uint32_t FileState::behindNeeded() {
    return file_.count() - std::min(file_.count(), neededEnd());
}

std::uint32_t FileState::unusedTail() {
    const std::uint32_t behind = behindNeeded();
    const bool isLong = behind > parts_->table.allowedSurplus();
    return isLong || (behind > 0 && !parts_->table.covers(file_.count() - 1)) ? behind : 0;
}

// No commit of ours ends within a sector.
std::uint32_t FileState::leftTail() {
    const bool isWhole = file_.disk().size() % file_.sectorSize() == 0;
    return isWhole ? unusedTail() : behindNeeded();
}

// Gives back what lies behind the last used sector and the reserve. To give back a few sectors
// costs more than a small change does, and the next one may fill them; so they stay, but after a
// change that has taken many, and where somebody else has left them, in holes perhaps. The change
// is durable already, so a failure loses nothing but space.
void FileState::cutFreeTail(bool evenFew) noexcept {
    try {
        const std::uint64_t few = parts_->table.allowedSurplus() * file_.sectorSize();
        const bool hasGrownMuch = file_.lengthOf(file_.count()) > lengthBefore_ + few;
        const std::uint32_t tail = evenFew || hasGrownMuch ? behindNeeded() : unusedTail();
        if (tail > 0) {
            file_.resize(file_.count() - tail);
        }
    } catch (const std::exception&) {
        return;
    }
}

void FileState::drop() {
    if (!changed_) {
        return;
    }
    restoreLength();
    header_ = committed_;
    if (isNew_) {
        inPieces_ = true; // unless all of the following goes well
        parts_ = std::make_unique<Parts>(file_, header_);
        startNewFile();
    } else {
        parts_ = std::move(partsBefore_);
        changed_ = false;
    }
    inPieces_ = false;
}

// What the transaction added to the file's length goes with it; should that fail, the tail is of
// unused sectors. A header that may name the new sectors keeps them.
void FileState::restoreLength() noexcept {
    if (outcomeUnknown_) {
        return;
    }
    try {
        if (file_.disk().size() > lengthBefore_) {
            file_.disk().truncate(lengthBefore_);
            (void)file_.refresh();
        }
    } catch (const std::exception&) {
        return;
    }
}

} // namespace compound
