#include "peers.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <sqlite3.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace benchmarks {
namespace {

void require(bool good, const char* what) {
    if (!good) {
        throw std::runtime_error(what);
    }
}

enum class Durable { Yes, No };

void writeFile(const std::filesystem::path& path, const void* bytes, std::size_t size,
               Durable durable) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    require(file >= 0, "open");
    require(write(file, bytes, size) == static_cast<ssize_t>(size), "write");
    if (durable == Durable::Yes) {
        require(fsync(file) == 0, "fsync");
    }
    close(file);
}

void put(std::vector<std::byte>& bytes, std::size_t at, std::uint32_t value, unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        bytes[at + i] = static_cast<std::byte>((value >> (8U * i)) & 0xFFU);
    }
}

} // namespace

std::vector<std::byte> noiseBitmap(int side, unsigned seed) {
    constexpr std::size_t kHeader = 54;
    const auto pixels = static_cast<std::size_t>(side);
    std::vector<std::byte> bytes(kHeader + 3 * pixels * pixels);
    put(bytes, 0, 0x4D42, 2);
    put(bytes, 2, static_cast<std::uint32_t>(bytes.size()), 4);
    put(bytes, 10, kHeader, 4);
    put(bytes, 14, 40, 4);
    put(bytes, 18, static_cast<std::uint32_t>(side), 4);
    put(bytes, 22, static_cast<std::uint32_t>(side), 4);
    put(bytes, 26, 1, 2);
    put(bytes, 28, 24, 2);
    std::mt19937 noise(seed);
    for (std::size_t i = kHeader; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>(noise() & 0xFFU);
    }
    return bytes;
}

void writeDurably(const std::filesystem::path& path, std::span<const std::byte> bytes) {
    writeFile(path, bytes.data(), bytes.size(), Durable::Yes);
}

ScratchFolder::ScratchFolder() {
    std::string pattern = (std::filesystem::current_path() / "txs-benchmark-XXXXXX").string();
    require(mkdtemp(pattern.data()) != nullptr, "mkdtemp");
    path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

PlainFolder::PlainFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
}

void PlainFolder::addDurably(const std::string& name, std::span<const std::byte> picture,
                             const std::string& record) const {
    writeFile(folder_ / (name + ".bmp"), picture.data(), picture.size(), Durable::Yes);
    writeFile(folder_ / (name + ".txt"), record.data(), record.size(), Durable::Yes);
    syncFolder();
}

void PlainFolder::renameDurably(const std::string& from, const std::string& to) const {
    for (const char* suffix : {".bmp", ".txt"}) {
        const std::filesystem::path before = folder_ / (from + suffix);
        const std::filesystem::path after = folder_ / (to + suffix);
        require(renameat2(AT_FDCWD, before.c_str(), AT_FDCWD, after.c_str(), RENAME_NOREPLACE) == 0,
                "rename");
    }
    syncFolder();
}

void PlainFolder::syncFolder() const {
    const int folder = open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    require(folder >= 0 && fsync(folder) == 0, "sync folder");
    close(folder);
}

void PlainFolder::addQuickly(const std::string& name, std::span<const std::byte> picture,
                             const std::string& record) const {
    writeFile(folder_ / (name + ".bmp"), picture.data(), picture.size(), Durable::No);
    writeFile(folder_ / (name + ".txt"), record.data(), record.size(), Durable::No);
}

std::size_t PlainFolder::readPicture(const std::string& name, std::vector<std::byte>& into) const {
    const int file = open((folder_ / (name + ".bmp")).c_str(), O_RDONLY | O_CLOEXEC);
    require(file >= 0, "open");
    struct stat status = {};
    require(fstat(file, &status) == 0, "fstat");
    into.resize(static_cast<std::size_t>(status.st_size));
    const ssize_t length = read(file, into.data(), into.size());
    close(file);
    require(length == status.st_size, "read");
    return into.size();
}

Database::Database(const std::filesystem::path& file) {
    require(sqlite3_open(file.c_str(), &database_) == SQLITE_OK, "sqlite3_open");
    execute("PRAGMA synchronous=FULL");
    execute("CREATE TABLE IF NOT EXISTS pictures(name TEXT PRIMARY KEY, record TEXT, bytes BLOB)");
    require(sqlite3_prepare_v2(database_, "INSERT INTO pictures VALUES(?1, ?2, ?3)", -1, &insert_,
                               nullptr) == SQLITE_OK,
            "prepare");
}

Database::~Database() {
    sqlite3_finalize(insert_);
    sqlite3_close(database_);
}

void Database::execute(const char* statement) {
    require(sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) == SQLITE_OK, statement);
}

void Database::begin() {
    execute("BEGIN IMMEDIATE");
}

void Database::commit() {
    execute("COMMIT");
}

void Database::add(const std::string& name, std::span<const std::byte> picture,
                   const std::string& record) {
    sqlite3_reset(insert_);
    sqlite3_bind_text(insert_, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
    sqlite3_bind_text(insert_, 2, record.data(), static_cast<int>(record.size()), SQLITE_STATIC);
    sqlite3_bind_blob(insert_, 3, picture.data(), static_cast<int>(picture.size()), SQLITE_STATIC);
    require(sqlite3_step(insert_) == SQLITE_DONE, "insert");
}

std::size_t Database::list() {
    struct Row {
        std::string name;
        std::int64_t bytes;
        std::string record;
    };
    std::vector<Row> rows;
    sqlite3_stmt* select = nullptr;
    require(sqlite3_prepare_v2(database_,
                               "SELECT name, length(bytes), record FROM pictures ORDER BY name", -1,
                               &select, nullptr) == SQLITE_OK,
            "prepare");
    const auto textOf = [&](int column) {
        return std::string(reinterpret_cast<const char*>(sqlite3_column_text(select, column)));
    };
    while (sqlite3_step(select) == SQLITE_ROW) {
        rows.push_back({textOf(0), sqlite3_column_int64(select, 1), textOf(2)});
    }
    sqlite3_finalize(select);
    return rows.size();
}

} // namespace benchmarks
