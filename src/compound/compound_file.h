// Structured storage: a compound file is a small file system inside one file, a tree of storages
// (folders) and streams (files). This is the public face of the engine.
//
// Format: [MS-CFB] "Compound File Binary File Format". New files have 4096-byte sectors (major
// version 4); files with 512-byte sectors (version 3) are read and changed in place.
//
// Transactions. All changes since opening or since the last commit() are one transaction. They
// live in memory and in sectors that the committed state does not use; commit() alone makes them
// the file's state, at one instant. A CompoundFile that is destroyed, or told to dropChanges(),
// leaves header, live sectors and length as they were.
//
// Errors. Everything throws compound::Error with the file's path; Damaged means that the bytes are
// wrong (every chain, tree and size is checked when it is first reached). After an exception the
// transaction is to be dropped; the committed state is untouched. After OutcomeUnknown the file can
// be changed again only when it is opened anew.
//
// Names are 1 to 31 UTF-16 units without / \ : ! and compare without regard to case (simple
// upper-casing of each unit, length first).
#pragma once

#include "base/bytes.h"
#include "compound/disk.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace compound {

class FileState; // the open file's internals
class ReadCache;

// Told again and again how many further bytes of streams were copied; what it throws ends the
// copying.
using CopiedBytes = std::function<void(std::uint64_t)>;

// Index of a directory entry. Valid until the transaction that destroys the element.
using EntryId = std::uint32_t;

enum class ElementKind : std::uint8_t { Storage = 1, Stream = 2 };
enum class IfExists { Refuse, Replace, ReplaceSameKind };
enum class SectorSize : std::uint16_t { Bytes512 = 512, Bytes4096 = 4096 };

struct Element {
    std::u16string name;
    ElementKind kind = ElementKind::Stream;
    std::uint64_t size = 0; // bytes of a stream; 0 for a storage
    EntryId id = 0;
};

// A stream's handle; cheap to copy, usable while its CompoundFile lives and the stream exists.
class Stream {
  public:
    std::uint64_t size() const;

    // Copies bytes from byte `offset` on into `into`; returns how many there were.
    std::size_t read(std::uint64_t offset, std::span<std::byte> into) const;

    // The whole content. Memory is taken only after the chain was found to be as long as the size.
    base::Bytes readAll() const;

    // Replaces the content.
    void assign(std::span<const std::byte> bytes);

    // Adds to the end. The first bytes that make the stream 4096 long move it out of the mini
    // stream.
    void append(std::span<const std::byte> bytes);

  private:
    friend class Storage;
    Stream(FileState* file, EntryId id) : file_(file), id_(id) {}
    FileState* file_;
    EntryId id_;
};

class Storage;

// Walks a storage's elements in the order of its tree (name length, then upper-cased name).
// Changing the storage ends the cursor's validity.
class ElementCursor {
  public:
    // The next element into `element`; false at the end.
    bool next(Element& element);

    // Passes over up to `count` elements without building them; returns how many there were.
    std::size_t skip(std::size_t count);

  private:
    friend class Storage;
    ElementCursor(FileState* file, EntryId storage);
    void descend(EntryId id);

    FileState* file_;
    EntryId storage_;
    std::vector<EntryId> path_; // entries whose left side is done, the next one last
    std::uint64_t seen_ = 0;    // bound against rings
};

// A storage's handle; cheap to copy, usable while its CompoundFile lives and the storage exists.
class Storage {
  public:
    // `companion`, which may be null: an element, of another storage, that may have been made
    // together with the one looked for, which then is found sooner.
    std::optional<Element> find(std::u16string_view name, const Element* companion = nullptr) const;
    ElementCursor elements() const;

    // NotFound also when the element is of the other kind.
    Storage openStorage(std::u16string_view name) const;
    Stream openStream(std::u16string_view name) const;

    // The same without a search, for the element of a cursor or of find().
    Storage openStorage(const Element& element) const;
    Stream openStream(const Element& element) const;

    // Exists when the name is taken (in any case) and `ifExists` is Refuse, or ReplaceSameKind and
    // the element is of the other kind; otherwise it is destroyed first. InvalidName.
    Storage createStorage(std::u16string_view name, IfExists ifExists = IfExists::Refuse);
    Stream createStream(std::u16string_view name, IfExists ifExists = IfExists::Refuse);

    // A change of the element's own case goes through; another element of the new name: Exists.
    void rename(std::u16string_view from, std::u16string_view to);

    // Destroys a stream, or a storage with all it contains. NotFound.
    void destroy(std::u16string_view name);

    EntryId id() const { return id_; }

  private:
    friend class CompoundFile;
    friend void copyElement(const Storage& from, const Element& element, Storage into,
                            std::u16string_view name, const CopiedBytes& copied);
    Storage(FileState* file, EntryId id) : file_(file), id_(id) {}
    FileState* file_;
    EntryId id_;
};

// A remark tells of something that is in nobody's way and goes with the next change.
enum class Severity : std::uint8_t { Damage, Remark };

// One finding of check(): where, and what is wrong with it.
struct Finding {
    std::string where; // "header", "FAT sector 3", "Pumps/valve", ...
    std::string what;
    Severity severity = Severity::Damage;
};

class CompoundFile {
  public:
    // Opens a compound file; `file` is locked by the caller as it needs. Reads the header only.
    // NotCompoundFile when the signature is missing, Damaged when the header contradicts itself.
    // Access::Read refuses every change with Denied. A file whose header is refused stays with the
    // caller.
    // `cache`, if given, must live as long as the file; it is asked for and told what this process
    // knows of the file.
    static CompoundFile open(std::unique_ptr<DiskFile>&& file, Access access,
                             ReadCache* cache = nullptr);

    // Starts a new, empty compound file in the empty `file`; nothing is readable before commit().
    static CompoundFile create(std::unique_ptr<DiskFile> file,
                               SectorSize sectorSize = SectorSize::Bytes4096);

    // Whether the bytes begin with the signature of a compound file.
    static bool hasSignature(DiskFile& file);

    CompoundFile(CompoundFile&&) noexcept;
    CompoundFile& operator=(CompoundFile&&) noexcept;
    ~CompoundFile(); // drops what was not committed

    Storage root();

    // Makes the transaction durable at one instant: new sectors, sync, header, sync. On failure the
    // old header stands (or is put back); OutcomeUnknown when even that failed. Without changes
    // nothing is written.
    void commit();

    // Comes after the commit of a transaction that may have replaced or destroyed a good deal: none
    // of its old places could be used before, so they stand free inside the file. Where that is
    // far more than may stand free, what lies at the file's end moves there and the file is cut, in
    // transactions of their own; otherwise nothing is done. What was committed stays as it is, and
    // every handle and id valid. A failure costs only the space; but when the old header could not
    // be put back, the file can be changed again only when it is opened anew.
    void closeGaps() noexcept;

    void dropChanges();

    bool hasChanges() const;

    // Makes sure that streams of `bytes` bytes together can be added in this transaction and
    // committed. NoSpace, with the transaction as it was, when the disk is too full for that.
    void makeRoom(std::uint64_t bytes);

    // Walks everything; the findings in file order, none when the file is sound. Never throws
    // Damaged, never changes the file.
    std::vector<Finding> check();

    SectorSize sectorSize() const;

    // Counts commits of this file; part of the header.
    std::uint32_t transactionSignature() const;

    DiskFile& disk();

  private:
    friend void copyAll(CompoundFile& from, CompoundFile& to, const CopiedBytes& copied);
    CompoundFile(std::unique_ptr<FileState> state, ReadCache* cache);
    bool forgetCommit();
    void rememberCommit() noexcept;
    void keep() noexcept;

    std::unique_ptr<FileState> state_;
    ReadCache* cache_ = nullptr; // may be null
};

// Copies every element of `from` (class ids, state bits and times included) into the empty file
// `to`, densely, and leaves `to` uncommitted. The way to compact a file. Of elements of one storage
// that bear one name, which another program may have written, all but one get a number behind it.
void copyAll(CompoundFile& from, CompoundFile& to, const CopiedBytes& copied = {});

// Copies one element of the storage `from`, with all below it and as copyAll does, into the storage
// `into` of another file, where it is called `name`; part of that file's transaction. Exists when
// the name is taken; InvalidName, unless the element bears that very name already. After what
// `copied` throws, and after any other failure in the middle, that transaction can only be dropped.
void copyElement(const Storage& from, const Element& element, Storage into,
                 std::u16string_view name, const CopiedBytes& copied = {});

} // namespace compound
