// The same pictures in our store, in a plain folder and in a database, and what is measured on
// them. Ours and the peers take turns, picture by picture where that is possible, so that whatever
// else the machine does hits all of them.
#pragma once

#include "contenders.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace benchmarks {

inline constexpr std::size_t kContenders = 3; // ours first
using Seconds = std::array<double, kContenders>;

// Bitmap files whose sizes are log-uniform between 1 KiB and 256 KiB: picture `number`, counted
// over all that a population ever holds, is a copy of one of them.
class Sources {
  public:
    explicit Sources(const std::filesystem::path& folder);
    const std::filesystem::path& of(std::uint64_t number) const;

  private:
    std::vector<std::filesystem::path> files_;
};

class Population {
  public:
    Population(std::size_t count, const Sources& sources, std::filesystem::path folder);
    ~Population();

    // Fills new contenders with the pictures in one transaction each; what there was before goes.
    Seconds fill();

    // Each works on all pictures once, or on `samples` of them.
    Seconds list();
    Seconds readAll();
    Seconds readAtRandom(std::size_t samples);

    // One round of durable transactions: `samples` pictures are added, as many renamed, and as many
    // deleted, so that the population stays as large as it was.
    struct Round {
        Seconds add{}, rename{}, remove{};
        double bareLoop = 0;      // writing as many bytes as our adding did, and syncing twice
        std::uint64_t writes = 0; // our adding's calls for writing, and their bytes
        std::uint64_t bytesWritten = 0;
    };
    Round changeDurably(std::size_t samples);

    // Replaces, adds and deletes pictures at random in our store and the database until each has
    // had its turn `turns` times on average; the population's size stays about the same. The plain
    // folder is left out: only the two can be asked for their space from then on.
    void liveLong(std::size_t turns);

    // Bytes on disk for each byte of the pictures.
    std::array<double, kContenders> space();

    // The least that is possible with the format's sectors of 4096 bytes: whole sectors for every
    // picture of 4096 bytes and more, 64-byte sectors for all else, two directory entries a
    // picture, and the entries of the allocation tables.
    double leastSpace();

    std::size_t count() const { return count_; }

  private:
    Contender& contender(std::size_t index) { return *contenders_[index]; }
    NewPicture next();
    std::size_t anyPlace();
    std::uint64_t payload() const;
    template <typename Operation>
    Seconds time(std::size_t turn, Operation operation);
    Seconds timeWhole(Seen (Contender::*operation)());
    void addDurably(std::size_t turn, Round& round);
    void writeBare(std::uint64_t bytes);

    struct Kept {
        std::string name;
        std::uint64_t bytes;
    };

    std::size_t count_;
    const Sources& sources_;
    std::filesystem::path folder_;
    std::array<std::unique_ptr<Contender>, kContenders> contenders_;
    std::vector<Kept> kept_; // what every contender holds
    std::uint64_t added_ = 0;
    std::mt19937 random_{1};
};

} // namespace benchmarks
