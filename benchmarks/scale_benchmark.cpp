// What one group costs as it grows: to 200,000 small pictures, and to 5 GB of large ones. One line
// for each size on the way; a cost that grows with the file shows as a column that rises. The last
// column is the most memory that the operations of a line have taken.
//
// usage: scale_benchmark [--small=2000,20000,200000] [--large=12,120,1200]
// Numbers of pictures; 0 leaves a part out. Needs twice the room of the largest file.
#include "contenders.h"
#include "machine.h"
#include "scratch.h"
#include "store/group_operations.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <random>
#include <string_view>

namespace {

using namespace benchmarks;

constexpr std::size_t kSamples = 20;
constexpr unsigned long kMostMemory = 200; // MiB

// A stretch of the run: how long it took and how much memory the process had at the most.
template <typename Operation>
double secondsFor(Operation operation) {
    const auto start = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void forgetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

unsigned long peakMegabytes() {
    std::ifstream in("/proc/self/status");
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("VmHWM:")) {
            return std::stoul(line.substr(6)) / 1024;
        }
    }
    return 0;
}

struct Kind {
    const char* title;
    int side;          // of the pictures, in pixels
    std::size_t batch; // pictures that are added in one transaction
};

class Growth {
  public:
    explicit Growth(const Kind& kind) : kind_(kind), store_(scratch_.path() / "library") {
        source_ = scratch_.path() / "source.bmp";
        writeFile(source_, noiseBitmap(kind.side, kind.side, 1), Durable::Yes);
        std::printf("\n%s: %ju bytes each; microseconds for one unless it says seconds\n",
                    kind.title, static_cast<std::uintmax_t>(file_size(source_)));
        std::printf("%9s %9s %9s %9s %9s %9s %9s %9s %9s %9s %9s\n", "pictures", "batch", "add",
                    "list", "read", "rename", "delete", "compact s", "MiB", "disk/load",
                    "peak MiB");
    }

    // Whether the memory stayed within bounds.
    bool growTo(std::size_t count) {
        forgetPeak();
        const std::size_t more = count - names_.size();
        const double batch = secondsFor([&] { fill(count); });
        const double add = each([&] { store_.add(next()); });
        const double list = secondsFor([&] { store_.list(); });
        const double read = each([&] { store_.readOne(any()); });
        const double rename = each([&] {
            std::string& name = any();
            const std::string renamed = "renamed-" + std::to_string(number_++);
            store_.rename(name, renamed);
            name = renamed;
        });
        const double remove = each([&] {
            std::swap(any(), names_.back());
            store_.remove(names_.back());
            names_.pop_back();
        });
        const auto path = store::pathOf(store_.library(), store_.group().file);
        const double compact = secondsFor([&] { store::compactGroupFile(store_.library(), path); });
        const double payload =
            static_cast<double>(file_size(source_)) * static_cast<double>(names_.size());
        const auto bytes = static_cast<double>(store_.bytesOnDisk());
        const unsigned long peak = peakMegabytes();
        std::printf("%9zu %9.1f %9.1f %9.2f %9.1f %9.1f %9.1f %9.2f %9.0f %9.3f %9lu%s\n", count,
                    1e6 * batch / static_cast<double>(more), add,
                    1e6 * list / static_cast<double>(count), read, rename, remove, compact,
                    bytes / 1048576, bytes / payload, peak,
                    peak > kMostMemory ? "  <-- too much" : "");
        std::fflush(stdout);
        return peak <= kMostMemory;
    }

  private:
    // Microseconds for one.
    template <typename Operation>
    static double each(Operation operation) {
        operation(); // the first one learns the file
        const double seconds = secondsFor([&] {
            for (std::size_t i = 0; i < kSamples; ++i) {
                operation();
            }
        });
        return 1e6 * seconds / static_cast<double>(kSamples);
    }

    NewPicture next() {
        names_.push_back("picture-" + std::to_string(number_++));
        return {names_.back(), source_};
    }

    std::string& any() {
        return names_[std::uniform_int_distribution<std::size_t>(0, names_.size() - 1)(random_)];
    }

    void fill(std::size_t count) {
        while (names_.size() < count) {
            std::vector<NewPicture> pictures;
            while (names_.size() < count && pictures.size() < kind_.batch) {
                pictures.push_back(next());
            }
            store_.addBatch(pictures);
        }
    }

    Kind kind_;
    ScratchFolder scratch_;
    Store store_;
    std::filesystem::path source_;
    std::vector<std::string> names_;
    std::size_t number_ = 0;
    std::mt19937 random_{1};
};

// Numbers that a comma parts, ascending; nothing when it is none.
std::vector<std::size_t> numbersOf(std::string_view list) {
    std::vector<std::size_t> numbers;
    while (!list.empty()) {
        std::size_t number = 0;
        const auto [end, error] = std::from_chars(list.data(), list.data() + list.size(), number);
        if (error != std::errc()) {
            return {};
        }
        numbers.push_back(number);
        list.remove_prefix(static_cast<std::size_t>(end - list.data()));
        list.remove_prefix(list.starts_with(',') ? 1 : 0);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

bool grow(const Kind& kind, const std::vector<std::size_t>& counts) {
    bool good = true;
    if (counts.front() > 0) {
        Growth growth(kind);
        for (const std::size_t count : counts) {
            good = growth.growTo(count) && good;
        }
    }
    return good;
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::size_t> small{2000, 20000, 200000};
    std::vector<std::size_t> large{12, 120, 1200};
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        const bool isSmall = argument.starts_with("--small=");
        (isSmall ? small : large) = isSmall || argument.starts_with("--large=")
                                        ? numbersOf(argument.substr(8))
                                        : std::vector<std::size_t>();
        if (small.empty() || large.empty()) {
            std::fputs("usage: scale_benchmark [--small=COUNT,...] [--large=COUNT,...]\n", stderr);
            return 2;
        }
    }
    try {
        std::fputs(describeMachine(std::filesystem::current_path()).c_str(), stdout);
        const bool isSmallGood = grow({"small pictures", 16, 2000}, small);
        const bool isLargeGood = grow({"large pictures", 1180, 12}, large);
        return isSmallGood && isLargeGood ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "scale_benchmark: %s\n", failure.what());
        return 2;
    }
}
