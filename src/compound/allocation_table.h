// The file allocation table (FAT): which sector follows which, and which are free.
//
// It is loaded one FAT sector at a time, when an entry of its range is first asked for, and is
// changed in memory only; writeOut() puts changed FAT (and DIFAT) sectors to new places. Sectors
// that the committed state uses are never handed out before the next commit, even when this
// transaction has freed them.
#pragma once

#include "compound/header.h"
#include "compound/sector_bits.h"
#include "compound/sector_file.h"
#include "compound/sector_set.h"
#include "compound/sector_writes.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace compound {

// Sectors from `begin` on, up to the one before `end`.
struct Stretch {
    std::uint32_t begin = 0;
    std::uint32_t end = 0;

    bool contains(std::uint32_t sector) const { return sector >= begin && sector < end; }
};

class AllocationTable {
  public:
    AllocationTable(SectorFile& file, Header& header);

    // The entry of a sector. Damaged when the sector lies outside the file.
    std::uint32_t entry(std::uint32_t sector);

    // The sector behind `sector` in its chain, or kEndOfChain. Damaged for anything else.
    std::uint32_t next(std::uint32_t sector);

    // Whether a FAT sector describes the sector.
    bool covers(std::uint32_t sector) { return sector / perSector_ < fatSectors().size(); }

    // The sector that no file may use, which covers byte 0x7FFFFFFF; kFreeSector in version 3.
    std::uint32_t rangeLock() const {
        return header_.majorVersion == 3
                   ? format::kFreeSector
                   : static_cast<std::uint32_t>(format::kRangeLockOffset / file_.sectorSize()) - 1;
    }

    // Whether the sector is the range lock with its mark, which no chain uses. Another program may
    // have led a chain through it; one that ends there cannot be told from the mark: see
    // makeSound().
    bool isMarkedLock(std::uint32_t sector) {
        return sector == rangeLock() && covers(sector) && entry(sector) == format::kEndOfChain;
    }

    // What a sector is wanted for: a page of the directory, the mini stream, the mini FAT or the
    // DIFAT, or a FAT sector. Only these take the last free sector of a range.
    enum class Purpose { Chain, Fat };

    // Takes a free sector and ends its chain with it; a FAT sector's lies in the range of `near`,
    // if that has one. It has its place on the medium: on a full disk it is one inside the file.
    // TooLarge when the format can number no more, NoSpace when nothing is left.
    std::uint32_t allocate(std::uint32_t near, Purpose purpose);

    // Takes a free sector for data: anywhere, preferring the one behind `previous` (kEndOfChain for
    // a chain's first). `wanted`: how many the caller will take in a row, this one included.
    std::uint32_t allocateData(std::uint32_t previous, std::size_t wanted);

    void link(std::uint32_t sector, std::uint32_t next);

    // Until the commit only sectors inside the file as it is are handed out, wherever they lie: the
    // disk is full. False when that has been so already.
    bool stayInside();

    // Whether that is so.
    bool isFull() const { return insideLimit_ != format::kMaximumSector; }

    // Frees one sector; one that the committed state uses stays untouchable until the commit.
    void release(std::uint32_t sector);

    // Frees a whole chain. Damaged when it is longer than the file.
    void releaseChain(std::uint32_t first);

    // Whether this transaction has taken the sector, so that it may be written in place.
    bool isFresh(std::uint32_t sector) const { return fresh_.contains(sector); }

    // Has all changed FAT sectors and the DIFAT written to new places and tells the header of them.
    // FAT sectors at the end that describe nothing go, as long as `reserve` sectors stay free.
    void writeOut(std::uint64_t reserve, SectorWrites& writes);

    // Comes before the first change of another program's file: its FAT and DIFAT sectors are marked
    // as such, and the whole DIFAT is written anew by the next writeOut(). Damaged when a chain
    // runs through one of them, or when one ends in the range lock.
    void makeSound();
    [[noreturn]] void throwLockUsed() const;

    // Which free sectors count: those that this transaction may take, or those that are free when
    // it is committed, with what it has freed.
    enum class Free { Now, AfterCommit };

    // Whether `wanted` of the file's first `count` sectors are free, one of each range left to its
    // FAT sector; otherwise how many are missing. Only the home of the chains and the last ranges
    // count, so that it costs the same in every file; all do once the disk is full.
    std::uint64_t missing(std::uint64_t wanted, std::uint32_t count, Free which);

    // Lengthens the file until `wanted` sectors inside it are free, and by some more where there is
    // room. NoSpace.
    void provide(std::uint64_t wanted, Free which);

    // Lengthens the file by zeros that the next changes find room in: by half of what may still
    // stand free beyond `reserve`, since one of the next transactions cuts what is more. Not for a
    // transaction that takes more than that; does without on a full disk.
    void growAhead(std::uint64_t reserve);

    // Whether `sectors` may be taken before they are needed: not of what was provided.
    bool canSpare(std::uint64_t sectors) const {
        return promised_ == 0 || provided_ >= promised_ + sectors;
    }

    // What tells whether a large file has a surplus: a few ranges, others in each transaction, or
    // also all whose FAT sector is in memory, as it is where the transactions before have freed.
    enum class Look { Few, Loaded };

    // Sectors inside the file that the transaction may take, beyond `reserve` and one of each
    // range. Only estimated, from the ranges that are looked at in a large file, when that is no
    // more than is allowed.
    std::uint64_t surplus(std::uint64_t reserve, Look look);

    // How large the surplus may get before it is worth giving back.
    std::uint64_t allowedSurplus() const;

    // How many free sectors of the chains' home data leave alone beyond `reserve`, for a file that
    // will end at `end`.
    std::uint64_t keptAtHome(std::uint64_t reserve, std::uint32_t end);

    // The first free sector of the range in which `end` lies, which its FAT sector can go to;
    // kFreeSector when there is none.
    std::uint32_t lowestPlaceForFat(std::uint32_t end);

    // Sectors from `end` on that are in use, those of FAT and DIFAT apart.
    std::uint64_t inChainsFrom(std::uint32_t end);

    // FAT sectors before `end`, and of ranges before it, that need a place in another range when
    // they change.
    std::uint64_t homelessBefore(std::uint32_t end);

    // Lengthens the file by `sectors` that its ranges describe already. Whether it could.
    bool tryLengthen(std::uint64_t sectors);

    // What the transaction takes from now on lies before `end`, as long as there is room; FAT and
    // DIFAT sectors behind it move.
    void leave(std::uint32_t end);

    // After leave(), for what lies at `before`, behind its end: takes a free sector before that
    // end, or else one between the two; kFreeSector when there is none.
    std::uint32_t allocateGap(std::uint32_t before);

    // Lets the next transactions' chains go to another range when little is left in their home and
    // there is one with room, for which the directory's first page has to move. Whether it has.
    bool leaveFullHome();

    // Whether the chains' home will have no run of free sectors for a small change, which this
    // transaction is; the sectors of the home inside the file.
    bool isHomeCrowded();
    Stretch homeInside() { return {home() * perSector_, home() * perSector_ + insideOf(home())}; }

    // The half empty stretch of the home that is cleared soonest: what is in use there `canMove`
    // (numbers in the home), or is of the FAT; the DIFAT moves as a whole, which is too much. None
    // where there is no room for it.
    std::optional<Stretch> emptiestPart(const SectorBits& canMove);

    // What the transaction takes from now on lies elsewhere; FAT sectors there move.
    void leavePart(const Stretch& part);

    // Sectors that the transaction has taken, and those of the committed state that it has freed.
    std::uint64_t taken() const { return fresh_.size(); }
    std::uint64_t freed() const { return pending_.size(); }

    // Whether the transaction leaves fewer sectors free than it has found.
    bool takesMoreThanItFrees() const { return fresh_.size() > pending_.size(); }

    // After the header is down: what the old state used is free.
    void committed();

    // Sectors from here on are free in the table as it stands (looks at the loaded tail only).
    std::uint32_t usedEnd();

    bool hasChanges() const { return anyDirty_; }

    // Bytes of what was loaded.
    std::size_t memory() const { return loaded_ * (file_.sectorSize() + sizeof(Range)); }

    // The places of the FAT sectors, in order.
    const std::vector<std::uint32_t>& fatSectors();
    const std::vector<std::uint32_t>& difatSectors();

  private:
    // Free sectors that a range keeps for moving the FAT sector that describes it.
    static constexpr std::uint32_t kKeptForFat = 1;

    // Sectors that most changes of one picture write: a run of so many is looked for.
    static constexpr std::uint32_t kSmallChange = 16;

    // What one FAT sector describes. Kept as it lies on the disk: most are only looked into.
    struct Range {
        std::vector<std::byte> bytes;
        std::optional<SectorBits> free;    // see freeSectors(); nothing until asked for
        bool touched = false;              // by this transaction, to which the rest belongs
        std::uint32_t pending = 0;         // freed, but used by the committed state
        std::optional<std::uint32_t> next; // entry from which it goes on looking
        bool dirty = false;
        bool moved = false; // has its new place already

        std::uint32_t at(std::uint32_t index) const {
            return format::read32(bytes.data() + std::size_t{4} * index);
        }
    };

    using Run = SectorBits::Run; // of a range's entries

    Range& load(std::uint32_t index) {
        const bool isThere = index < ranges_.size() && ranges_[index]; // then the DIFAT is, too
        return isThere ? *ranges_[index] : loadFromFile(index);
    }
    Range& loadFromFile(std::uint32_t index);
    Range& touch(std::uint32_t index); // loads it for what the transaction keeps there
    Range& change(std::uint32_t index);
    void dropLastRange();

    // What may be taken of a range: its entry says so, no table lies there, and the committed state
    // does not use it. The second, what may be taken after the commit.
    const SectorBits& freeSectors(std::uint32_t index);
    std::uint32_t freeIn(std::uint32_t index) { return freeSectors(index).size(); }
    SectorBits freeAfterCommit(std::uint32_t index);

    SectorBits movableAtHome(const SectorBits& inChains);
    void set(std::uint32_t sector, std::uint32_t value);
    void loadDifat();
    [[noreturn]] void throwFull() const;
    void addRange();
    bool canGrow() const;
    bool isEmpty(std::uint32_t index);
    void dropEmptyRanges(std::uint64_t reserve);
    std::uint32_t findFree(std::uint32_t index, std::uint32_t from, std::uint32_t reserve);
    std::uint32_t findFreeForData(std::uint32_t at);
    std::uint32_t findFreeInRun(std::uint32_t index, std::uint32_t reserve);
    std::uint32_t findFreeIn(std::uint32_t index, std::uint32_t kept);
    std::uint32_t findPlaceForFat(std::uint32_t index);
    std::uint32_t findKept();
    bool isFreeInside(std::uint32_t index, std::uint32_t at);
    std::uint32_t insideOf(std::uint32_t index) const;
    Run runIn(std::uint32_t index, std::uint32_t enough);
    std::uint32_t freeInside(std::uint32_t index);
    bool freesMuch() const;
    bool liesBefore(std::uint32_t index, std::uint32_t end) const { // the whole range
        return std::uint64_t{index + 1} * perSector_ <= end;
    }
    bool leavesHome();
    bool staysHome();
    std::uint32_t home();
    std::optional<std::uint32_t> roomiestRange(std::uint32_t enough);
    void moveHome();
    void beginRunIn(std::uint32_t index);
    void beginRunAtEnd(std::uint32_t enough);
    std::uint32_t spareForChains() const;
    std::uint32_t spareForFat() const;
    std::uint32_t keptFromData(std::uint32_t index);
    std::uint32_t take(std::uint32_t sector);
    std::uint32_t takePlaced(std::uint32_t sector);
    void markRangeLock(std::uint64_t end);
    std::uint32_t allocateOnce(std::uint32_t near, Purpose purpose);
    std::int64_t usableIn(std::uint32_t index, std::uint32_t count, Free which);
    std::uint64_t usable(std::uint64_t wanted, std::uint32_t count, Free which);
    std::int64_t usableInLoaded();
    void lengthen(std::uint64_t sectors, std::uint64_t more);
    void lengthenFreely(std::uint64_t sectors, std::uint64_t more);
    std::uint32_t limit() const {
        constexpr std::uint64_t kVersion3Limit = 0x7FFFFFFF;
        return header_.majorVersion != 3
                   ? insideLimit_
                   : std::min(insideLimit_,
                              static_cast<std::uint32_t>(kVersion3Limit / file_.sectorSize()) - 1);
    }
    void setInsideLimit(std::uint32_t limit);
    bool isUsable(std::uint32_t sector) const {
        return sector < limit() && sector != rangeLock() && !tables_.contains(sector);
    }
    std::uint32_t choosePlaceForData(std::size_t wanted);
    void touchDifat(std::uint32_t fatIndex);
    void mark(std::uint32_t sector, std::uint32_t as);
    void markTable(std::uint32_t sector, std::uint32_t as);
    void releaseTable(std::uint32_t sector);
    bool moveFatSectors(std::size_t count, bool onlyAstray);
    bool moveDifat();
    std::vector<std::byte> difatSector(std::size_t index) const; // its bytes

    SectorFile& file_;
    Header& header_;
    std::uint32_t perSector_; // entries of one FAT sector
    bool difatLoaded_ = false;
    bool anyDirty_ = false;
    std::vector<std::uint32_t> fatSectors_;
    std::vector<std::uint32_t> difatSectors_;
    std::vector<std::unique_ptr<Range>> ranges_;
    std::size_t loaded_ = 0;             // of the ranges, since this table was made
    std::vector<std::uint32_t> touched_; // ranges: few of the many of a large file
    SectorSet fresh_;
    SectorSet pending_;              // freed, but used by the committed state
    SectorSet tables_;               // FAT and DIFAT, which another program may have left unmarked
    std::uint32_t difatTouched_ = 0; // FAT sectors before this one have moved
    std::size_t difatMoved_ = 0;     // DIFAT sectors before this one have their new places
    std::uint32_t dataHint_ = format::kFreeSector;
    std::uint32_t looked_ = 0;          // ranges that this transaction has looked at for data
    std::optional<std::uint32_t> home_; // once asked for or moved: see home()
    std::uint32_t runStart_ = 0; // of the sectors that moveHome() has added in this transaction
    std::uint32_t runEnd_ = 0;
    std::uint32_t leftEnd_ = 0;  // see leave(); 0: it was not called
    std::uint32_t lastGaps_ = 0; // that allocateGap() may take of the last range before it
    std::uint32_t gapAt_ = 0;    // where allocateGap() looks next
    Stretch leftPart_;           // see leavePart()
    bool countsAll_ = false;     // see missing(); the disk has proved full
    std::uint32_t insideLimit_ = format::kMaximumSector; // see stayInside()
    std::uint32_t scannedTo_ = 0; // ranges before it have nothing left for data
    std::uint64_t provided_ = 0;  // so many sectors at least may be taken inside the file
    std::uint64_t promised_ = 0;  // what provide() was last asked for
    std::uint64_t step_ = 0;      // by which the file is lengthened next beyond what is wanted
};

} // namespace compound
