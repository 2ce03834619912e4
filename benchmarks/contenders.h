// Those that are measured side by side: our store, a plain folder of files, and SQLite. Each keeps
// the same pictures and does the same work: it reads the picture file that is added, measures it,
// and keeps its bytes and a record.
//
// Errors: any exception ends the run.
#pragma once

#include "store/picture_operations.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace benchmarks {

struct NewPicture {
    std::string name;
    std::filesystem::path source; // a bitmap file
};

// What listing and reading have seen: the same for all contenders, or one of them cheats.
struct Seen {
    std::uint64_t pictures = 0;
    std::uint64_t pictureBytes = 0;
    std::uint64_t records = 0;
    bool operator==(const Seen&) const = default;
};

class Contender {
  public:
    virtual ~Contender() = default;
    Contender(const Contender&) = delete;
    Contender& operator=(const Contender&) = delete;

    // One transaction, durable when it returns; replaces what bears a name already.
    virtual void addBatch(std::span<const NewPicture> pictures) = 0;
    // The same of one picture, whose name is new.
    virtual void add(const NewPicture& picture) = 0;

    virtual Seen list() = 0; // names, sizes and records
    virtual Seen readAll() = 0;
    // A picture and its record; opens what has to be opened. Returns the picture's size.
    virtual std::uint64_t readOne(const std::string& name) = 0;

    // One transaction each, durable.
    virtual void rename(const std::string& from, const std::string& to) = 0;
    virtual void remove(const std::string& name) = 0;

    virtual std::uint64_t bytesOnDisk() = 0;

  protected:
    Contender() = default;
};

class Store : public Contender {
  public:
    explicit Store(const std::filesystem::path& folder);

    void addBatch(std::span<const NewPicture> pictures) override;
    void add(const NewPicture& picture) override;
    Seen list() override;
    Seen readAll() override;
    std::uint64_t readOne(const std::string& name) override;
    void rename(const std::string& from, const std::string& to) override;
    void remove(const std::string& name) override;
    std::uint64_t bytesOnDisk() override;

    const store::Library& library() const { return library_; }
    const store::GroupAddress& group() const { return group_; }

  private:
    store::Library library_;
    store::GroupAddress group_;
};

// NAME.bmp and NAME.txt side by side. Durable is what was synced: both files, then the folder.
class PlainFolder : public Contender {
  public:
    explicit PlainFolder(std::filesystem::path folder);

    void addBatch(std::span<const NewPicture> pictures) override;
    void add(const NewPicture& picture) override;
    Seen list() override;
    Seen readAll() override;
    std::uint64_t readOne(const std::string& name) override;
    void rename(const std::string& from, const std::string& to) override;
    void remove(const std::string& name) override;
    std::uint64_t bytesOnDisk() override;

  private:
    void write(const NewPicture& picture);

    std::filesystem::path folder_;
    std::vector<std::byte> buffer_;
};

// One table of names, records and pictures; full synchronisation, otherwise as SQLite comes.
class Database : public Contender {
  public:
    explicit Database(std::filesystem::path file);
    ~Database() override;

    void addBatch(std::span<const NewPicture> pictures) override;
    void add(const NewPicture& picture) override;
    Seen list() override;
    Seen readAll() override;
    std::uint64_t readOne(const std::string& name) override;
    void rename(const std::string& from, const std::string& to) override;
    void remove(const std::string& name) override;
    std::uint64_t bytesOnDisk() override;

  private:
    void execute(const char* statement);
    void insert(const NewPicture& picture);
    Seen select(const char* statement);

    std::filesystem::path file_;
    sqlite3* database_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
    sqlite3_stmt* rename_ = nullptr;
    sqlite3_stmt* remove_ = nullptr;
    std::vector<std::byte> buffer_;
};

} // namespace benchmarks
