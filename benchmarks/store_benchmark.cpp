// The store against a plain folder of files and against SQLite, side by side in one run and in one
// table, each figure beside its goal. `store_benchmark --help` tells how to run a part of it.
#include "machine.h"
#include "population.h"
#include "scratch.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string_view>
#include <thread>

namespace {

using namespace benchmarks;

constexpr std::string_view kUsage =
    "usage: store_benchmark [--pictures=100,2000,10000] "
    "[--only=batch,list,all,one,durable,history]\n"
    "                       [--samples=40] [--rounds=5]\n"
    "\n"
    "Measures in the working directory's file system. --samples: operations in a round.\n"
    "Exit status 1: a goal is missed.\n";

struct Options {
    std::vector<std::size_t> pictures{100, 2000, 10000};
    std::set<std::string, std::less<>> only{"batch", "list", "all", "one", "durable", "history"};
    std::size_t samples = 40;
    std::size_t rounds = 5;

    bool wants(std::string_view part) const { return only.find(part) != only.end(); }
};

// One figure: the values of all three, what is judged, and the most that it may be.
struct Row {
    std::string operation;
    std::size_t pictures = 0;
    std::array<double, kContenders> values{}; // 0: nothing to compare with
    double judged = 0;
    double goal = 0;  // 0: none
    int decimals = 0; // of the values
};

double medianOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The medians of several rounds, in microseconds for one of `operations`; the judged ratio is the
// median of the rounds' ratios to the plain folder.
Row timeRow(std::string operation, std::size_t pictures, const std::vector<Seconds>& rounds,
            double operations, double goal) {
    Row row{std::move(operation), pictures, {}, 0, goal, 1};
    for (std::size_t index = 0; index < kContenders; ++index) {
        std::vector<double> values;
        values.reserve(rounds.size());
        for (const Seconds& seconds : rounds) {
            values.push_back(1e6 * seconds[index] / operations);
        }
        row.values[index] = medianOf(values);
    }
    std::vector<double> ratios;
    ratios.reserve(rounds.size());
    for (const Seconds& seconds : rounds) {
        ratios.push_back(seconds[0] / seconds[1]);
    }
    row.judged = medianOf(ratios);
    return row;
}

// Returns whether every goal is reached.
bool print(const std::vector<Row>& rows) {
    std::printf("\n%-42s %8s %10s %10s %10s %8s %9s %6s\n", "operation (time of one in us)",
                "pictures", "ours", "folder", "SQLite", "/SQLite", "measured", "goal");
    bool good = true;
    for (const Row& row : rows) {
        std::printf("%-42s %8zu", row.operation.c_str(), row.pictures);
        for (const double value : row.values) {
            value > 0 ? std::printf(" %10.*f", row.decimals, value) : std::printf(" %10s", "");
        }
        row.values[2] > 0 ? std::printf(" %8.2f", row.values[0] / row.values[2])
                          : std::printf(" %8s", "");
        std::printf(" %9.3f", row.judged);
        row.goal > 0 ? std::printf(" %6.2f", row.goal) : std::printf(" %6s", "");
        const bool isReached = row.goal <= 0 || row.judged <= row.goal;
        std::printf("%s\n", isReached ? "" : "  <-- missed");
        good = good && isReached;
    }
    std::printf("\nmeasured: ours / folder where the row says nothing else\n");
    return good;
}

class Run {
  public:
    explicit Run(const Options& options)
        : options_(options), sources_(scratch_.path() / "sources") {
        for (const std::size_t count : options.pictures) {
            populations_.push_back(std::make_unique<Population>(
                count, sources_, scratch_.path() / std::to_string(count)));
        }
    }

    bool run() {
        std::printf("%sSQLite: rollback journal, synchronous=FULL. Pages are in memory.\n",
                    describeMachine(scratch_.path()).c_str());
        for (const auto& population : populations_) {
            fill(*population);
        }
        // As in a library that was filled some time ago: time stamps have gone on since.
        std::this_thread::sleep_for(std::chrono::seconds(4));
        for (const auto& population : populations_) {
            read(*population);
        }
        if (options_.wants("durable")) {
            changeDurably();
        }
        for (const auto& population : populations_) {
            liveLong(*population);
        }
        std::stable_sort(rows_.begin(), rows_.end(), [&](const Row& one, const Row& other) {
            return order_[one.operation] < order_[other.operation];
        });
        return print(rows_);
    }

  private:
    // Rows of one operation stand together, in the order in which the operations came first.
    void put(const Row& row) {
        order_.try_emplace(row.operation, order_.size());
        rows_.push_back(row);
    }

    void putSpace(Population& population, const char* operation, double goal, bool withFolder) {
        std::array<double, kContenders> space = population.space();
        space[1] = withFolder ? space[1] : 0;
        put({operation, population.count(), space, space[0], goal, 3});
    }

    void fill(Population& population) {
        constexpr std::size_t kLarge = 5000; // of which one round is long enough
        const std::size_t rounds =
            !options_.wants("batch") || population.count() > kLarge ? 1 : options_.rounds;
        std::vector<Seconds> seconds;
        for (std::size_t round = 0; round < rounds; ++round) {
            seconds.push_back(population.fill());
        }
        if (options_.wants("batch")) {
            put(timeRow("add in one batch", population.count(), seconds,
                        static_cast<double>(population.count()), 0.08));
            putSpace(population, "bytes on disk / payload, one batch", 1.03, true);
            const double least = population.leastSpace();
            put({"  the least with sectors of 4096", population.count(), {least}, least, 0, 3});
        }
    }

    void read(Population& population) {
        std::vector<Seconds> list;
        std::vector<Seconds> all;
        std::vector<Seconds> one;
        const auto count = static_cast<double>(population.count());
        const std::size_t samples = 5 * options_.samples;
        for (std::size_t round = 0; round < options_.rounds; ++round) {
            if (options_.wants("list")) {
                list.push_back(population.list());
            }
            if (options_.wants("all")) {
                all.push_back(population.readAll());
            }
            if (options_.wants("one")) {
                one.push_back(population.readAtRandom(samples));
            }
        }
        if (!list.empty()) {
            put(timeRow("list names, sizes, records", population.count(), list, count, 0.15));
        }
        if (!all.empty()) {
            put(timeRow("read all", population.count(), all, count, 1.0));
        }
        if (!one.empty()) {
            put(timeRow("read one at random, open included", population.count(), one,
                        static_cast<double>(samples), 1.5));
        }
    }

    // The populations take turns, so that one can be compared with another.
    void changeDurably() {
        std::vector<std::vector<Population::Round>> rounds(populations_.size());
        for (std::size_t round = 0; round < options_.rounds; ++round) {
            for (std::size_t i = 0; i < populations_.size(); ++i) {
                rounds[i].push_back(populations_[i]->changeDurably(options_.samples));
            }
        }
        for (std::size_t i = 0; i < populations_.size(); ++i) {
            putDurable(*populations_[i], rounds[i], rounds.front());
        }
    }

    void putDurable(const Population& population, const std::vector<Population::Round>& rounds,
                    const std::vector<Population::Round>& smallest) {
        const auto samples = static_cast<double>(options_.samples);
        const auto row = [&](const char* operation, Seconds Population::Round::*part, double goal) {
            std::vector<Seconds> seconds;
            seconds.reserve(rounds.size());
            for (const Population::Round& round : rounds) {
                seconds.push_back(round.*part);
            }
            put(timeRow(operation, population.count(), seconds, samples, goal));
            return rows_.back();
        };
        const Row add = row("durable add", &Population::Round::add, 0.7);
        std::vector<double> toBare;
        std::vector<double> toSmallest;
        std::uint64_t writes = 0;
        std::uint64_t bytes = 0;
        for (std::size_t i = 0; i < rounds.size(); ++i) {
            toBare.push_back(rounds[i].add[0] / rounds[i].bareLoop);
            toSmallest.push_back(rounds[i].add[0] / smallest[i].add[0]);
            writes += rounds[i].writes;
            bytes += rounds[i].bytesWritten;
        }
        put({"  ours / a bare loop of as many bytes",
             population.count(),
             {add.values[0]},
             medianOf(toBare),
             1.5,
             1});
        put({"  ours / ours at " + std::to_string(populations_.front()->count()),
             population.count(),
             {add.values[0]},
             medianOf(toSmallest),
             1.3,
             1});
        const double added = samples * static_cast<double>(rounds.size());
        put({"  our calls for writing",
             population.count(),
             {},
             static_cast<double>(writes) / added,
             0,
             1});
        put({"  our KiB written",
             population.count(),
             {},
             static_cast<double>(bytes) / added / 1024,
             0,
             1});
        row("durable rename", &Population::Round::rename, 1.5);
        row("durable delete", &Population::Round::remove, 1.5);
    }

    void liveLong(Population& population) {
        if (options_.wants("history")) {
            constexpr std::size_t kTurns = 2;
            population.liveLong(kTurns);
            putSpace(population, "bytes on disk / payload, long history", 1.06, false);
            const double least = population.leastSpace();
            put({"  the least then", population.count(), {least}, least, 0, 3});
        }
    }

    const Options& options_;
    ScratchFolder scratch_;
    Sources sources_;
    std::vector<std::unique_ptr<Population>> populations_;
    std::vector<Row> rows_;
    std::map<std::string, std::size_t, std::less<>> order_;
};

std::vector<std::string> partsOf(std::string_view list) {
    std::vector<std::string> parts;
    for (std::size_t from = 0; from <= list.size();) {
        const std::size_t to = std::min(list.find(',', from), list.size());
        parts.emplace_back(list.substr(from, to - from));
        from = to + 1;
    }
    return parts;
}

std::optional<std::size_t> numberOf(std::string_view text) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number > 0
               ? std::optional(number)
               : std::nullopt;
}

// Whether the argument says anything.
bool take(std::string_view argument, Options& options) {
    const std::size_t equals = std::min(argument.find('='), argument.size() - 1);
    const std::string_view key = argument.substr(0, equals + 1);
    const std::vector<std::string> parts = partsOf(argument.substr(equals + 1));
    if (key == "--only=") {
        const Options all;
        options.only = {parts.begin(), parts.end()};
        return std::all_of(parts.begin(), parts.end(),
                           [&](const std::string& part) { return all.wants(part); });
    }
    std::vector<std::size_t> numbers;
    for (const std::string& part : parts) {
        const auto number = numberOf(part);
        if (!number) {
            return false;
        }
        numbers.push_back(*number);
    }
    if (key == "--pictures=") {
        options.pictures = numbers;
        return true;
    }
    if (key == "--samples=" || key == "--rounds=") {
        (key == "--samples=" ? options.samples : options.rounds) = numbers.front();
        return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        if (!take(argv[i], options)) {
            std::fputs(kUsage.data(), stderr);
            return 2;
        }
    }
    try {
        return Run(options).run() ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "store_benchmark: %s\n", failure.what());
        return 2;
    }
}
