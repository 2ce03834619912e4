#include "compound/compound_file.h"

#include "compound/check.h"
#include "compound/error.h"
#include "compound/file_state.h"
#include "compound/names.h"
#include "compound/read_cache.h"

#include <array>
#include <exception>
#include <string>
#include <utility>

namespace compound {

using namespace format;

namespace {

void requireLegal(FileState& file, std::u16string_view name) {
    if (!isLegalName(name)) {
        throw Error(ErrorCode::InvalidName, file.file().disk().path(),
                    "\"" + shownName(name) + "\" cannot name a storage or stream");
    }
}

Error notFound(FileState& file, std::u16string_view name) {
    return {ErrorCode::NotFound, file.file().disk().path(),
            "there is no \"" + shownName(name) + "\" in the file"};
}

Error alreadyThere(FileState& file, std::u16string_view name) {
    return {ErrorCode::Exists, file.file().disk().path(),
            "there is a \"" + shownName(name) + "\" in the file already"};
}

Element elementOf(Directory& directory, EntryId id) {
    Directory::Walked walked;
    directory.walk(id, walked);
    return std::move(walked.element);
}

EntryId require(FileState& file, EntryId storage, std::u16string_view name, EntryType type) {
    const auto id = file.directory().find(storage, name);
    if (!id || file.directory().type(*id) != type) {
        throw notFound(file, name);
    }
    return *id;
}

// Frees a stream, or a storage with all below it. No storage is met twice: elements() finds out.
void destroyTree(FileState& file, EntryId parent, EntryId id) {
    Directory& directory = file.directory();
    if (directory.type(id) == EntryType::Stream) {
        file.content().release(id);
        directory.remove(parent, id);
        return;
    }
    struct Storage {
        EntryId parent, id;
    };
    std::vector<Storage> open{{parent, id}};
    std::vector<Storage> emptied;
    while (!open.empty()) {
        const Storage storage = open.back();
        open.pop_back();
        emptied.push_back(storage);
        for (const EntryId element : directory.elements(storage.id)) {
            if (directory.type(element) == EntryType::Storage) {
                open.push_back({storage.id, element});
            } else {
                file.content().release(element);
                directory.remove(storage.id, element);
            }
        }
    }
    for (std::size_t i = emptied.size(); i-- > 0;) {
        directory.remove(emptied[i].parent, emptied[i].id);
    }
}

EntryId createElement(FileState& file, EntryId storage, std::u16string_view name, EntryType type,
                      IfExists ifExists) {
    requireLegal(file, name);
    const auto existing = file.directory().find(storage, name);
    const bool isReplaced =
        existing && (ifExists == IfExists::Replace || (ifExists == IfExists::ReplaceSameKind &&
                                                       file.directory().type(*existing) == type));
    if (existing && !isReplaced) {
        throw alreadyThere(file, name);
    }
    const FileState::Change change(file);
    if (existing) {
        destroyTree(file, storage, *existing);
    }
    return file.directory().insert(storage, name, type);
}

} // namespace

// --- Stream -------------------------------------------------------------------------------------

std::uint64_t Stream::size() const {
    return file_->directory().size(id_);
}

std::size_t Stream::read(std::uint64_t offset, std::span<std::byte> into) const {
    return file_->content().read(id_, offset, into);
}

base::Bytes Stream::readAll() const {
    return file_->content().readAll(id_);
}

void Stream::assign(std::span<const std::byte> bytes) {
    const FileState::Change change(*file_);
    file_->content().assign(id_, bytes);
}

void Stream::append(std::span<const std::byte> bytes) {
    const FileState::Change change(*file_);
    file_->content().append(id_, bytes);
}

// --- ElementCursor ------------------------------------------------------------------------------

ElementCursor::ElementCursor(FileState* file, EntryId storage) : file_(file), storage_(storage) {
    descend(file_->directory().child(storage));
}

void ElementCursor::descend(EntryId id) {
    for (; id != kNoEntry; id = file_->directory().left(id)) {
        if (++seen_ > file_->directory().bound()) {
            file_->file().throwDamaged("the directory runs in a ring");
        }
        path_.push_back(id);
    }
}

bool ElementCursor::next(Element& element) {
    if (path_.empty()) {
        return false;
    }
    const EntryId id = path_.back();
    path_.pop_back();
    Directory::Walked walked{std::move(element), kNoEntry}; // its name's memory serves again
    file_->directory().walk(id, walked);
    file_->directory().reach(storage_, id);
    element = std::move(walked.element);
    descend(walked.right);
    return true;
}

std::size_t ElementCursor::skip(std::size_t count) {
    std::size_t skipped = 0;
    for (; skipped < count && !path_.empty(); ++skipped) {
        const EntryId id = path_.back();
        path_.pop_back();
        descend(file_->directory().right(id));
    }
    return skipped;
}

// --- Storage ------------------------------------------------------------------------------------

std::optional<Element> Storage::find(std::u16string_view name, const Element* companion) const {
    const EntryId near = companion != nullptr ? companion->id : kNoEntry;
    const auto id = file_->directory().find(id_, name, near);
    return id ? std::optional(elementOf(file_->directory(), *id)) : std::nullopt;
}

ElementCursor Storage::elements() const {
    return {file_, id_};
}

Storage Storage::openStorage(std::u16string_view name) const {
    return {file_, require(*file_, id_, name, EntryType::Storage)};
}

Stream Storage::openStream(std::u16string_view name) const {
    return {file_, require(*file_, id_, name, EntryType::Stream)};
}

Storage Storage::openStorage(const Element& element) const {
    if (element.kind != ElementKind::Storage) {
        throw notFound(*file_, element.name);
    }
    return {file_, element.id};
}

Stream Storage::openStream(const Element& element) const {
    if (element.kind != ElementKind::Stream) {
        throw notFound(*file_, element.name);
    }
    return {file_, element.id};
}

Storage Storage::createStorage(std::u16string_view name, IfExists ifExists) {
    return {file_, createElement(*file_, id_, name, EntryType::Storage, ifExists)};
}

Stream Storage::createStream(std::u16string_view name, IfExists ifExists) {
    return {file_, createElement(*file_, id_, name, EntryType::Stream, ifExists)};
}

void Storage::rename(std::u16string_view from, std::u16string_view to) {
    requireLegal(*file_, to);
    const auto id = file_->directory().find(id_, from);
    if (!id) {
        throw notFound(*file_, from);
    }
    const auto taken = file_->directory().find(id_, to);
    if (taken && *taken != *id) {
        throw alreadyThere(*file_, to);
    }
    const FileState::Change change(*file_);
    file_->directory().rename(id_, *id, to);
}

void Storage::destroy(std::u16string_view name) {
    const auto id = file_->directory().find(id_, name);
    if (!id) {
        throw notFound(*file_, name);
    }
    const FileState::Change change(*file_);
    destroyTree(*file_, id_, *id);
}

// --- CompoundFile -------------------------------------------------------------------------------

CompoundFile::CompoundFile(std::unique_ptr<FileState> state, ReadCache* cache)
    : state_(std::move(state)), cache_(cache) {}

CompoundFile::CompoundFile(CompoundFile&&) noexcept = default;

CompoundFile& CompoundFile::operator=(CompoundFile&& other) noexcept {
    if (this != &other) {
        keep();
        state_ = std::move(other.state_);
        cache_ = other.cache_;
    }
    return *this;
}

CompoundFile::~CompoundFile() {
    keep();
}

void CompoundFile::keep() noexcept {
    // A state in which something has just gone wrong is not worth keeping.
    if (!state_ || !cache_ || !state_->identity() || std::uncaught_exceptions() > 0 ||
        !state_->isWorthKeeping()) {
        return;
    }
    try {
        const FileIdentity identity = *state_->identity();
        cache_->keep(identity, std::move(state_));
    } catch (const std::exception&) {
        return; // no memory to remember with
    }
}

CompoundFile CompoundFile::open(std::unique_ptr<DiskFile>&& file, Access access, ReadCache* cache) {
    const Header header = readHeader(*file);
    const std::optional<FileIdentity> identity = cache ? file->identity() : std::nullopt;
    std::unique_ptr<FileState> state;
    if (identity) {
        state = cache->take(*identity, header);
    }
    if (state) {
        state->resume(std::move(file), access);
        return {std::move(state), cache};
    }
    state = std::make_unique<FileState>(std::move(file), header, access, false);
    if (const auto known = identity ? cache->recall(*identity, header) : std::nullopt) {
        state->recall(*known);
    }
    state->setIdentity(identity);
    return {std::move(state), cache};
}

CompoundFile CompoundFile::create(std::unique_ptr<DiskFile> file, SectorSize sectorSize) {
    Header header;
    header.majorVersion = sectorSize == SectorSize::Bytes512 ? 3 : 4;
    header.difat.fill(kFreeSector);
    return {std::make_unique<FileState>(std::move(file), header, Access::ReadWrite, true), nullptr};
}

bool CompoundFile::hasSignature(DiskFile& file) {
    std::array<std::byte, kSignature.size()> bytes{};
    if (file.read(0, bytes) != bytes.size()) {
        return false;
    }
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (std::to_integer<std::uint8_t>(bytes[i]) != kSignature[i]) {
            return false;
        }
    }
    return true;
}

Storage CompoundFile::root() {
    return {state_.get(), DirectoryEntries::kRoot};
}

void CompoundFile::commit() {
    if (!state_->hasChanges()) {
        return;
    }
    const bool isKnown = forgetCommit();
    state_->commit();
    if (isKnown) {
        rememberCommit();
    }
}

void CompoundFile::closeGaps() noexcept {
    try {
        if (state_->hasLargeGaps()) {
            const bool isKnown = forgetCommit();
            state_->closeGaps();
            if (isKnown) {
                rememberCommit();
            }
        }
    } catch (const std::exception&) {
        state_->drop(); // nothing of it is remembered
    }
}

// What is known of the file holds no longer once a commit begins. Whether anything was.
bool CompoundFile::forgetCommit() {
    const std::optional<FileIdentity> before = state_->identity();
    if (cache_ && before) {
        cache_->forget(*before);
    }
    state_->setIdentity(std::nullopt);
    return cache_ && before;
}

// The commit is done: what goes wrong here costs the next transaction some time only.
void CompoundFile::rememberCommit() noexcept {
    try {
        const std::optional<FileIdentity> identity = disk().stamp();
        if (identity) {
            cache_->remember({*identity, state_->header(), state_->directory().soundStorages()});
        }
        state_->setIdentity(identity);
    } catch (const std::exception&) {
        return;
    }
}

void CompoundFile::dropChanges() {
    state_->drop();
}

bool CompoundFile::hasChanges() const {
    return state_->hasChanges();
}

void CompoundFile::makeRoom(std::uint64_t bytes) {
    state_->makeRoom(bytes);
}

std::vector<Finding> CompoundFile::check() {
    return checkFile(*state_);
}

SectorSize CompoundFile::sectorSize() const {
    return static_cast<SectorSize>(state_->header().sectorSize());
}

std::uint32_t CompoundFile::transactionSignature() const {
    return state_->header().transaction;
}

DiskFile& CompoundFile::disk() {
    return state_->file().disk();
}

} // namespace compound
