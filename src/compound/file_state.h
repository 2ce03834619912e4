// An open compound file's parts, and the transaction on them.
#pragma once

#include "compound/allocation_table.h"
#include "compound/compound_file.h"
#include "compound/directory.h"
#include "compound/header.h"
#include "compound/mini_stream.h"
#include "compound/read_cache.h"
#include "compound/sector_chain.h"
#include "compound/sector_file.h"
#include "compound/stream_content.h"

#include <memory>
#include <optional>

namespace compound {

class FileState {
  public:
    // `committed`: the header that stands in the file; `isNew`: none stands there yet.
    FileState(std::unique_ptr<DiskFile> file, const Header& committed, Access access, bool isNew);
    ~FileState();
    FileState(const FileState&) = delete;
    FileState& operator=(const FileState&) = delete;

    Directory& directory() { return parts_->directory; }
    StreamContent& content() { return parts_->content; }
    MiniStream& mini() { return parts_->mini; }
    AllocationTable& table() { return parts_->table; }
    SectorChain& directoryChain() { return parts_->directoryChain; }
    SectorFile& file() { return file_; }
    const Header& header() const { return header_; }

    // Stands around every change of the transaction. Refuses it in a file opened for reading
    // (Denied), and before the first one makes the header in force durable and another program's
    // file sound. When an exception ends the change,
    // the transaction is in pieces: from then on it can only be dropped.
    class Change {
      public:
        explicit Change(FileState& file);
        ~Change();
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;

      private:
        FileState& file_;
        int exceptionsBefore_;
    };

    // Refuses a transaction in pieces (Failed). One that fails is in pieces.
    void commit();

    // Needs no memory, unless the file is new; where that is lacking it can be told again.
    void drop();

    // Whether the last transaction has freed a good deal, and far more than may stands free now.
    bool hasLargeGaps();

    // Closes them in transactions of their own. When one fails, it is to be dropped.
    void closeGaps();

    bool hasChanges() const { return changed_; }
    Access access() const { return access_; }

    // Whether all that is in memory is as the file's committed state has it.
    bool isWorthKeeping() const { return !changed_ && !inPieces_ && !outcomeUnknown_; }

    // Goes on with another handle of the same file, which is as identity() tells.
    void resume(std::unique_ptr<DiskFile> file, Access access);

    // See CompoundFile.
    void makeRoom(std::uint64_t bytes);

    // Sectors behind all that the file keeps, which the next process to change it gives back; 0 for
    // a few whole ones, which a change of ours may have left for the next to fill.
    std::uint32_t leftTail();

    // Takes over what this process knows of the header in force.
    void recall(const CommittedFile& known);

    // The file as the disk told it when it was opened or last committed; what is known of the file,
    // in bytes.
    const std::optional<FileIdentity>& identity() const { return identity_; }
    void setIdentity(const std::optional<FileIdentity>& identity) { identity_ = identity; }
    std::size_t memory();

    // Lets go of all that can be read again; there must be no change.
    void forgetPages();

  private:
    struct Parts {
        Parts(SectorFile& file, Header& header);

        AllocationTable table;
        SectorChain directoryChain;
        Directory directory;
        MiniStream mini;
        StreamContent content;
    };

    void beginChange();
    void makeHeaderDurable();
    void makeSound();
    void refuseStartInLock();
    void requireWhole();
    void startNewFile();
    std::uint64_t reserve();
    void keepReserve();
    std::uint64_t surplusToClose();
    bool hasRoomToBalance();
    bool moveIntoGaps(std::uint64_t most, AllocationTable::Look look);
    void commitMoving(std::uint64_t most, AllocationTable::Look look);
    void writeHeader();
    void putHeaderBack(const char* cause);
    std::uint32_t neededEnd();
    std::uint32_t behindNeeded();
    std::uint32_t unusedTail();
    void cutFreeTail(bool evenFew) noexcept;
    void restoreLength() noexcept;

    SectorFile file_;
    Header committed_;
    Header header_; // the transaction's
    Access access_;
    bool isNew_;
    bool changed_ = false;
    bool inPieces_ = false;
    bool outcomeUnknown_ = false;
    bool isDurable_;              // the committed header is known to be on the medium
    bool isInherited_ = false;    // what the transaction builds on, others may have left unfinished
    std::uint64_t lastTaken_ = 0; // sectors, by the last transaction
    std::uint64_t lastFreed_ = 0;
    bool hasMoved_ = false; // it has moved something into gaps
    std::uint64_t lengthBefore_;
    std::unique_ptr<Parts> parts_;
    std::unique_ptr<Parts> partsBefore_; // as the committed state has them, while there are changes
    std::optional<FileIdentity> identity_;
};

} // namespace compound
