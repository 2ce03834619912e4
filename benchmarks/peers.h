// The peers that the store is measured against: a plain folder of files, and SQLite.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace benchmarks {

// A bitmap file of noise, side x side pixels of 24 bits, so that no layer can profit from its
// content.
std::vector<std::byte> noiseBitmap(int side, unsigned seed);

// Writes a new file with fsync.
void writeDurably(const std::filesystem::path& path, std::span<const std::byte> bytes);

// A folder of its own below the working directory's file system, removed at the end.
class ScratchFolder {
  public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

// NAME.bmp and NAME.txt side by side in one folder.
class PlainFolder {
  public:
    explicit PlainFolder(std::filesystem::path folder);

    // Writes picture and side file, each with fsync, then syncs the folder.
    void addDurably(const std::string& name, std::span<const std::byte> picture,
                    const std::string& record) const;
    void addQuickly(const std::string& name, std::span<const std::byte> picture,
                    const std::string& record) const;
    std::size_t readPicture(const std::string& name, std::vector<std::byte>& into) const;

    // Renames both files without replacing any, then syncs the folder.
    void renameDurably(const std::string& from, const std::string& to) const;

  private:
    void syncFolder() const;

    std::filesystem::path folder_;
};

// One table of names, pictures and records in a database with full synchronisation.
class Database {
  public:
    explicit Database(const std::filesystem::path& file);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void begin();
    void commit();
    void add(const std::string& name, std::span<const std::byte> picture,
             const std::string& record);

    // Selects name, size and record of every picture; returns a sum over all that was read.
    std::size_t list();

  private:
    void execute(const char* statement);

    sqlite3* database_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
};

} // namespace benchmarks
