#include "contenders.h"

#include "base/utf8.h"
#include "picture/picture.h"
#include "platform/native_disk.h"
#include "scratch.h"
#include "store/group_operations.h"

#include <cstdio>
#include <fcntl.h>
#include <sqlite3.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace benchmarks {
namespace {

void require(bool good, const std::string& what) {
    if (!good) {
        throw std::runtime_error(what);
    }
}

store::TwipSize measure(std::span<const std::byte> bytes) {
    const picture::TwipSize size = picture::measure(bytes).twips;
    return {size.height, size.width};
}

// Reads and measures a picture file; returns its record.
std::string readSource(const NewPicture& picture, std::vector<std::byte>& bytes) {
    readFile(picture.source, bytes);
    const store::TwipSize size = measure(bytes);
    return store::formatRecord(store::recordOf(size, "BMP"), u'.');
}

std::uint64_t blocksOf(const std::filesystem::path& file) {
    struct stat status = {};
    require(stat(file.c_str(), &status) == 0, file.string());
    return static_cast<std::uint64_t>(status.st_blocks) * 512;
}

store::PictureName storeName(const std::string& name) {
    return {base::fromUtf8(name)};
}

} // namespace

// --- our store ----------------------------------------------------------------------------------

Store::Store(const std::filesystem::path& folder)
    : library_{platform::nativeDisk(), folder, measure} {
    std::filesystem::create_directories(folder);
    group_ = store::createGroup(library_, std::nullopt, {u"Group"});
}

void Store::addBatch(std::span<const NewPicture> pictures) {
    store::PictureBatch batch(library_, group_);
    for (const NewPicture& picture : pictures) {
        batch.add(storeName(picture.name), picture.source, store::IfPictureExists::Replace);
    }
    batch.commit();
}

void Store::add(const NewPicture& picture) {
    store::addPicture(library_, group_, storeName(picture.name), picture.source,
                      store::IfPictureExists::Refuse);
}

Seen Store::list() {
    Seen seen;
    for (const store::PictureEntry& entry : store::listPictures(library_, group_)) {
        ++seen.pictures;
        seen.pictureBytes += entry.bytes;
        seen.records += entry.record.type.empty() ? 0U : 1U;
    }
    return seen;
}

Seen Store::readAll() {
    Seen seen;
    store::walkPictures(library_, group_, 0, [&](const store::StoredPicture& picture) {
        ++seen.pictures;
        seen.pictureBytes += picture.bytes.size();
        seen.records += picture.record.type.empty() ? 0U : 1U;
        return store::TakePicture::Continue;
    });
    return seen;
}

std::uint64_t Store::readOne(const std::string& name) {
    return store::readPicture(library_, group_, storeName(name)).bytes.size();
}

void Store::rename(const std::string& from, const std::string& to) {
    store::renamePicture(library_, group_, storeName(from), storeName(to));
}

void Store::remove(const std::string& name) {
    store::deletePicture(library_, group_, storeName(name));
}

std::uint64_t Store::bytesOnDisk() {
    return blocksOf(store::pathOf(library_, group_.file));
}

// --- a plain folder -----------------------------------------------------------------------------

PlainFolder::PlainFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
}

void PlainFolder::write(const NewPicture& picture) {
    const std::string record = readSource(picture, buffer_);
    writeFile(folder_ / (picture.name + ".bmp"), buffer_, Durable::Yes);
    writeFile(folder_ / (picture.name + ".txt"), std::as_bytes(std::span(record)), Durable::Yes);
}

void PlainFolder::addBatch(std::span<const NewPicture> pictures) {
    for (const NewPicture& picture : pictures) {
        write(picture);
    }
    syncFolder(folder_);
}

void PlainFolder::add(const NewPicture& picture) {
    write(picture);
    syncFolder(folder_);
}

Seen PlainFolder::list() {
    Seen seen;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        if (entry.path().extension() == ".bmp") {
            ++seen.pictures;
            seen.pictureBytes += entry.file_size();
        } else {
            readFile(entry.path(), buffer_);
            seen.records += buffer_.empty() ? 0U : 1U;
        }
    }
    return seen;
}

Seen PlainFolder::readAll() {
    Seen seen;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        readFile(entry.path(), buffer_);
        if (entry.path().extension() == ".bmp") {
            ++seen.pictures;
            seen.pictureBytes += buffer_.size();
        } else {
            seen.records += buffer_.empty() ? 0U : 1U;
        }
    }
    return seen;
}

std::uint64_t PlainFolder::readOne(const std::string& name) {
    std::vector<std::byte> record;
    readFile(folder_ / (name + ".txt"), record);
    readFile(folder_ / (name + ".bmp"), buffer_);
    return buffer_.size();
}

void PlainFolder::rename(const std::string& from, const std::string& to) {
    for (const char* suffix : {".bmp", ".txt"}) {
        const std::filesystem::path before = folder_ / (from + suffix);
        const std::filesystem::path after = folder_ / (to + suffix);
        require(renameat2(AT_FDCWD, before.c_str(), AT_FDCWD, after.c_str(), RENAME_NOREPLACE) == 0,
                before.string());
    }
    syncFolder(folder_);
}

void PlainFolder::remove(const std::string& name) {
    for (const char* suffix : {".bmp", ".txt"}) {
        require(unlink((folder_ / (name + suffix)).c_str()) == 0, name);
    }
    syncFolder(folder_);
}

std::uint64_t PlainFolder::bytesOnDisk() {
    std::uint64_t bytes = blocksOf(folder_);
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
        bytes += blocksOf(entry.path());
    }
    return bytes;
}

// --- SQLite -------------------------------------------------------------------------------------

namespace {

sqlite3* openDatabase(const std::filesystem::path& file) {
    sqlite3* database = nullptr;
    require(sqlite3_open(file.c_str(), &database) == SQLITE_OK, "sqlite3_open");
    return database;
}

sqlite3_stmt* prepare(sqlite3* database, const char* statement) {
    sqlite3_stmt* prepared = nullptr;
    require(sqlite3_prepare_v2(database, statement, -1, &prepared, nullptr) == SQLITE_OK,
            statement);
    return prepared;
}

void bindText(sqlite3_stmt* statement, int index, const std::string& text) {
    sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

// Runs a statement that changes one row.
void change(sqlite3* database, sqlite3_stmt* statement, const char* what) {
    require(sqlite3_step(statement) == SQLITE_DONE && sqlite3_changes(database) == 1, what);
    sqlite3_reset(statement);
}

} // namespace

Database::Database(std::filesystem::path file)
    : file_(std::move(file)), database_(openDatabase(file_)) {
    execute("PRAGMA synchronous=FULL");
    execute("CREATE TABLE IF NOT EXISTS pictures(name TEXT PRIMARY KEY, record TEXT, bytes BLOB)");
    insert_ = prepare(database_, "INSERT OR REPLACE INTO pictures VALUES(?1, ?2, ?3)");
    rename_ = prepare(database_, "UPDATE pictures SET name = ?2 WHERE name = ?1");
    remove_ = prepare(database_, "DELETE FROM pictures WHERE name = ?1");
}

Database::~Database() {
    for (sqlite3_stmt* statement : {insert_, rename_, remove_}) {
        sqlite3_finalize(statement);
    }
    sqlite3_close(database_);
}

void Database::execute(const char* statement) {
    require(sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) == SQLITE_OK, statement);
}

void Database::insert(const NewPicture& picture) {
    const std::string record = readSource(picture, buffer_);
    bindText(insert_, 1, picture.name);
    bindText(insert_, 2, record);
    sqlite3_bind_blob(insert_, 3, buffer_.data(), static_cast<int>(buffer_.size()), SQLITE_STATIC);
    change(database_, insert_, "insert");
}

void Database::addBatch(std::span<const NewPicture> pictures) {
    execute("BEGIN IMMEDIATE");
    for (const NewPicture& picture : pictures) {
        insert(picture);
    }
    execute("COMMIT");
}

void Database::add(const NewPicture& picture) {
    execute("BEGIN IMMEDIATE");
    insert(picture);
    execute("COMMIT");
}

// Of each row: name, size of the picture, record, and maybe the picture.
Seen Database::select(const char* statement) {
    Seen seen;
    sqlite3_stmt* const select = prepare(database_, statement);
    std::string name;
    while (sqlite3_step(select) == SQLITE_ROW) {
        name = reinterpret_cast<const char*>(sqlite3_column_text(select, 0));
        ++seen.pictures;
        seen.pictureBytes += static_cast<std::uint64_t>(sqlite3_column_int64(select, 1));
        seen.records += sqlite3_column_bytes(select, 2) > 0 ? 1U : 0U;
        if (sqlite3_column_count(select) > 3) {
            const auto* const bytes = static_cast<const std::byte*>(sqlite3_column_blob(select, 3));
            buffer_.assign(bytes, bytes + sqlite3_column_bytes(select, 3));
        }
    }
    sqlite3_finalize(select);
    return seen;
}

Seen Database::list() {
    return select("SELECT name, length(bytes), record FROM pictures ORDER BY name");
}

Seen Database::readAll() {
    return select("SELECT name, length(bytes), record, bytes FROM pictures");
}

std::uint64_t Database::readOne(const std::string& name) {
    sqlite3* const database = openDatabase(file_);
    sqlite3_stmt* const select =
        prepare(database, "SELECT record, bytes FROM pictures WHERE name = ?1");
    bindText(select, 1, name);
    require(sqlite3_step(select) == SQLITE_ROW, name);
    for (const int column : {0, 1}) {
        const auto* const bytes =
            static_cast<const std::byte*>(sqlite3_column_blob(select, column));
        buffer_.assign(bytes, bytes + sqlite3_column_bytes(select, column));
    }
    sqlite3_finalize(select);
    sqlite3_close(database);
    return buffer_.size();
}

void Database::rename(const std::string& from, const std::string& to) {
    bindText(rename_, 1, from);
    bindText(rename_, 2, to);
    change(database_, rename_, "rename");
}

void Database::remove(const std::string& name) {
    bindText(remove_, 1, name);
    change(database_, remove_, "delete");
}

std::uint64_t Database::bytesOnDisk() {
    return blocksOf(file_);
}

} // namespace benchmarks
