#include "population.h"

#include "scratch.h"
#include "store/picture_record.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <unistd.h>
#include <utility>

namespace benchmarks {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kSources = 500;
constexpr std::size_t kOurs = 0;
constexpr std::size_t kFolder = 1;
constexpr std::size_t kDatabase = 2;

void require(bool good, const char* what) {
    if (!good) {
        throw std::runtime_error(what);
    }
}

double secondsOf(Clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

template <typename Operation>
double secondsFor(Operation operation) {
    const Clock::time_point start = Clock::now();
    operation();
    return secondsOf(Clock::now() - start);
}

// What this process has written so far, as the kernel counts it.
struct Written {
    std::uint64_t calls = 0;
    std::uint64_t bytes = 0;
};

Written writtenSoFar() {
    std::ifstream in("/proc/self/io");
    Written written;
    std::string key;
    for (std::uint64_t value = 0; in >> key >> value;) {
        if (key == "wchar:") {
            written.bytes = value;
        } else if (key == "syscw:") {
            written.calls = value;
        }
    }
    return written;
}

// The order in which the contenders take their turn. All orders come equally often: what one leaves
// to the medium keeps the next one waiting, and which one that is must not always be the same.
std::array<std::size_t, kContenders> orderOf(std::size_t turn) {
    std::array<std::size_t, kContenders> order{kOurs, kFolder, kDatabase};
    constexpr std::size_t kOrders = 6;
    for (std::size_t i = 0; i < turn % kOrders; ++i) {
        std::next_permutation(order.begin(), order.end());
    }
    return order;
}

std::string nameOf(std::uint64_t number) {
    std::string digits = std::to_string(number);
    return "picture-" + std::string(7 - std::min<std::size_t>(7, digits.size()), '0') + digits;
}

} // namespace

Sources::Sources(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> logarithm(std::log(1024.0), std::log(262144.0));
    for (std::size_t i = 0; i < kSources; ++i) {
        constexpr double kBytesPerPixel = 3;
        const double pixels = (std::exp(logarithm(random)) - 54) / kBytesPerPixel;
        const int width = 4 * std::max(1, static_cast<int>(std::sqrt(pixels) / 4));
        const int height = std::max(1, static_cast<int>(pixels / width));
        files_.push_back(folder / ("source-" + std::to_string(i) + ".bmp"));
        writeFile(files_.back(), noiseBitmap(width, height, static_cast<unsigned>(i)),
                  Durable::Yes);
    }
}

const std::filesystem::path& Sources::of(std::uint64_t number) const {
    return files_[static_cast<std::size_t>(number % files_.size())];
}

Population::Population(std::size_t count, const Sources& sources, std::filesystem::path folder)
    : count_(count), sources_(sources), folder_(std::move(folder)) {}

Population::~Population() = default;

NewPicture Population::next() {
    const std::uint64_t number = added_++;
    return {nameOf(number), sources_.of(number)};
}

std::size_t Population::anyPlace() {
    return std::uniform_int_distribution<std::size_t>(0, kept_.size() - 1)(random_);
}

// Times the operation with each contender.
template <typename Operation>
Seconds Population::time(std::size_t turn, Operation operation) {
    Seconds seconds{};
    for (const std::size_t index : orderOf(turn)) {
        seconds[index] = secondsFor([&] { operation(contender(index)); });
    }
    return seconds;
}

Seconds Population::fill() {
    contenders_ = {};
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    contenders_[kOurs] = std::make_unique<Store>(folder_ / "library");
    contenders_[kFolder] = std::make_unique<PlainFolder>(folder_ / "folder");
    contenders_[kDatabase] = std::make_unique<Database>(folder_ / "pictures.db");
    kept_.clear();
    added_ = 0;
    std::vector<NewPicture> pictures;
    for (std::size_t i = 0; i < count_; ++i) {
        pictures.push_back(next());
        kept_.push_back({pictures.back().name, file_size(pictures.back().source)});
    }
    Seconds seconds{};
    for (std::size_t index = 0; index < kContenders; ++index) {
        ::sync(); // nobody pays for what another one has left in memory
        seconds[index] = secondsFor([&] { contender(index).addBatch(pictures); });
    }
    return seconds;
}

Seconds Population::timeWhole(Seen (Contender::*operation)()) {
    const Seen expected{kept_.size(), payload(), kept_.size()};
    return time(random_(), [&](Contender& contender) {
        require((contender.*operation)() == expected, "a contender has not seen every picture");
    });
}

Seconds Population::list() {
    return timeWhole(&Contender::list);
}

Seconds Population::readAll() {
    return timeWhole(&Contender::readAll);
}

Seconds Population::readAtRandom(std::size_t samples) {
    Seconds total{};
    for (std::size_t i = 0; i < samples; ++i) {
        const Kept& picture = kept_[anyPlace()];
        const Seconds seconds = time(i, [&](Contender& contender) {
            require(contender.readOne(picture.name) == picture.bytes, "a picture is not whole");
        });
        for (std::size_t index = 0; index < kContenders; ++index) {
            total[index] += seconds[index];
        }
    }
    return total;
}

// As durable a file as can be had with as many bytes: they are appended and synced, then a header
// is written and synced.
void Population::writeBare(std::uint64_t bytes) {
    constexpr std::size_t kHeader = 512;
    static const std::vector<std::byte> content(std::size_t{4} << 20U, std::byte{0x5A});
    const std::filesystem::path path = folder_ / "bare";
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    require(file >= 0, "open");
    const std::size_t length = std::min(content.size(), static_cast<std::size_t>(bytes) -
                                                            std::min<std::size_t>(bytes, kHeader));
    const off_t end = std::max(lseek(file, 0, SEEK_END), static_cast<off_t>(4096));
    require(pwrite(file, content.data(), length, end) == static_cast<ssize_t>(length), "write");
    require(fdatasync(file) == 0, "sync");
    require(pwrite(file, content.data(), kHeader, 0) == kHeader, "write");
    require(fdatasync(file) == 0, "sync");
    close(file);
}

// Adds one picture everywhere. What ours writes is counted, and then written bare.
void Population::addDurably(std::size_t turn, Round& round) {
    const NewPicture picture = next();
    Written before;
    Written after;
    for (const std::size_t index : orderOf(turn)) {
        before = index == kOurs ? writtenSoFar() : before;
        round.add[index] += secondsFor([&] { contender(index).add(picture); });
        after = index == kOurs ? writtenSoFar() : after;
    }
    const std::uint64_t bytes = after.bytes - before.bytes;
    round.bareLoop += secondsFor([&] { writeBare(bytes); });
    round.writes += after.calls - before.calls;
    round.bytesWritten += bytes;
    kept_.push_back({picture.name, file_size(picture.source)});
}

Population::Round Population::changeDurably(std::size_t samples) {
    Round round;
    const auto sum = [](Seconds& total, const Seconds& more) {
        for (std::size_t index = 0; index < kContenders; ++index) {
            total[index] += more[index];
        }
    };
    for (std::size_t i = 0; i < samples; ++i) {
        addDurably(i, round);
    }
    for (std::size_t i = 0; i < samples; ++i) {
        Kept& picture = kept_[anyPlace()];
        const std::string to = nameOf(added_++);
        sum(round.rename,
            time(i, [&](Contender& contender) { contender.rename(picture.name, to); }));
        picture.name = to;
    }
    for (std::size_t i = 0; i < samples; ++i) {
        std::swap(kept_[anyPlace()], kept_.back());
        sum(round.remove,
            time(i, [&](Contender& contender) { contender.remove(kept_.back().name); }));
        kept_.pop_back();
    }
    return round;
}

void Population::liveLong(std::size_t turns) {
    constexpr std::size_t kLongestBatch = 40;
    for (std::size_t changed = 0; changed < turns * count_;) {
        std::vector<NewPicture> batch;
        const std::size_t length = 1 + random_() % kLongestBatch;
        std::vector<std::string> gone;
        for (std::size_t i = 0; i < length; ++i) {
            NewPicture picture = next();
            if (random_() % 2 == 0) { // replaces one; another size comes under its name
                Kept& kept = kept_[anyPlace()];
                picture.name = kept.name;
                kept.bytes = file_size(picture.source);
            } else {
                kept_.push_back({picture.name, file_size(picture.source)});
            }
            batch.push_back(std::move(picture));
        }
        while (kept_.size() > count_ - std::min(count_ / 2, random_() % (2 * kLongestBatch))) {
            std::swap(kept_[anyPlace()], kept_.back());
            gone.push_back(kept_.back().name);
            kept_.pop_back();
        }
        for (const std::size_t index : {kOurs, kDatabase}) {
            contender(index).addBatch(batch);
            for (const std::string& name : gone) {
                contender(index).remove(name);
            }
        }
        changed += length;
    }
}

std::uint64_t Population::payload() const {
    std::uint64_t bytes = 0;
    for (const Kept& picture : kept_) {
        bytes += picture.bytes;
    }
    return bytes;
}

std::array<double, kContenders> Population::space() {
    std::array<double, kContenders> space{};
    for (std::size_t index = 0; index < kContenders; ++index) {
        space[index] =
            static_cast<double>(contender(index).bytesOnDisk()) / static_cast<double>(payload());
    }
    return space;
}

double Population::leastSpace() {
    constexpr std::uint64_t kSector = 4096;
    constexpr std::uint64_t kMiniSector = 64;
    constexpr std::uint64_t kEntries = std::uint64_t{2} * 128; // of the picture and its record
    const auto rounded = [](std::uint64_t bytes, std::uint64_t to) {
        return (bytes + to - 1) / to * to;
    };
    std::uint64_t bytes = 0;
    for (const Kept& picture : kept_) {
        bytes += rounded(picture.bytes, picture.bytes < kSector ? kMiniSector : kSector) +
                 kMiniSector + kEntries;
    }
    bytes += bytes / kSector * 4;
    return static_cast<double>(bytes) / static_cast<double>(payload());
}

} // namespace benchmarks
