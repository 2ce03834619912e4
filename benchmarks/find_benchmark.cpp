// Finding names while they are typed: the index of 1,000 groups with 100,000 pictures against a
// plain search through as many strings, which somebody has brought to lower case before, and
// against LIKE of SQLite in memory. All of them count every match; only the index takes accents,
// types and the names of groups into account.
#include "finding/name_index.h"
#include "ratio_reporter.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <random>
#include <sqlite3.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace benchmarks;

constexpr int kGroups = 1000;
constexpr int kPictures = 100; // in each of them
constexpr std::size_t kMostMatches = 1000;
constexpr std::array kWords{"Pumpe", "Ventil",    "Behälter", "Motor",  "Rührwerk", "Klappe",
                            "rot",   "grün",      "Störung",  "offen",  "Kreisel",  "links",
                            "DN50",  "Edelstahl", "Anzeige",  "Sensor", "Leitung",  "Bogen"};
constexpr std::array kTypes{"BMP", "GIF", "WMF", "EMF", "ICO"};
constexpr std::array kQueries{"motor", "pumpe dn50", "ventil links rot", "st", "xyz", "17"};

struct Setup {
    Setup() {
        std::mt19937 random(14);
        const auto anyOf = [&](const auto& all) { return all.at(random() % all.size()); };
        for (int g = 0; g < kGroups; ++g) {
            const std::u16string file = QString("Anlage %1").arg(g).toStdU16String();
            finding::NamedGroup group{store::topLevelAddress(file),
                                      QString::fromStdU16String(file),
                                      QString::fromStdU16String(file),
                                      {}};
            for (int p = 0; p < kPictures; ++p) {
                const QString name = QString::fromUtf8(anyOf(kWords)) + u' ' +
                                     QString::fromUtf8(anyOf(kWords)) + u' ' + QString::number(p);
                group.pictures.push_back({{name.toStdU16String()}, anyOf(kTypes)});
                plain.push_back(name.toLower().toStdString());
            }
            index.put({file}, std::make_shared<const finding::FileNames>(std::vector{group}));
        }
        fillTable();
    }

    void fillTable() {
        if (sqlite3_open(":memory:", &database) != SQLITE_OK) {
            throw std::runtime_error("no database in memory");
        }
        sqlite3_exec(database, "CREATE TABLE pictures(name TEXT); BEGIN", nullptr, nullptr,
                     nullptr);
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(database, "INSERT INTO pictures VALUES(?)", -1, &insert, nullptr);
        for (const std::string& name : plain) {
            sqlite3_bind_text(insert, 1, name.c_str(), -1, SQLITE_STATIC);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        sqlite3_exec(database, "COMMIT", nullptr, nullptr, nullptr);
    }

    finding::NameIndex index;
    std::vector<std::string> plain;
    sqlite3* database = nullptr;
};

Setup& setup() {
    static Setup made;
    return made;
}

void findInIndex(benchmark::State& state) {
    const QString query = QString::fromUtf8(kQueries.at(static_cast<std::size_t>(state.range(0))));
    for (auto _ : state) {
        benchmark::DoNotOptimize(setup().index.find(finding::Words(query), kMostMatches).total);
    }
}

std::vector<std::string> wordsOf(std::size_t query) {
    std::vector<std::string> words;
    for (const QString& word : QString::fromUtf8(kQueries.at(query)).split(u' ')) {
        words.push_back(word.toStdString());
    }
    return words;
}

void findInStrings(benchmark::State& state) {
    const std::vector<std::string> words = wordsOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            std::count_if(setup().plain.begin(), setup().plain.end(), [&](const auto& name) {
                return std::all_of(words.begin(), words.end(), [&](const std::string& word) {
                    return name.find(word) != std::string::npos;
                });
            }));
    }
}

void findInTable(benchmark::State& state) {
    const std::vector<std::string> words = wordsOf(static_cast<std::size_t>(state.range(0)));
    std::string statement = "SELECT count(*) FROM pictures WHERE 1";
    for (const std::string& word : words) {
        statement += " AND name LIKE '%" + word + "%'";
    }
    sqlite3_stmt* select = nullptr;
    sqlite3_prepare_v2(setup().database, statement.c_str(), -1, &select, nullptr);
    for (auto _ : state) {
        sqlite3_step(select);
        benchmark::DoNotOptimize(sqlite3_column_int(select, 0));
        sqlite3_reset(select);
    }
    sqlite3_finalize(select);
}

} // namespace

int main(int argc, char** argv) {
    (void)setup();
    std::vector<Ratio> ratios;
    for (std::size_t query = 0; query < kQueries.size(); ++query) {
        const std::string number = "/" + std::to_string(query);
        using Search = std::pair<const char*, void (*)(benchmark::State&)>;
        for (const auto& [name, search] :
             {Search("index", findInIndex), Search("strings", findInStrings),
              Search("LIKE", findInTable)}) {
            benchmark::RegisterBenchmark(name, search)
                ->Arg(static_cast<int>(query))
                ->Repetitions(5)
                ->ReportAggregatesOnly()
                ->Unit(benchmark::kMicrosecond);
        }
        const std::string title = std::string("find \"") + kQueries.at(query) + "\", x ";
        ratios.push_back({title + "strings", "index" + number, "strings" + number, 1.0});
        ratios.push_back({title + "LIKE", "index" + number, "LIKE" + number, 0.3});
    }
    return runWithRatios(argc, argv, ratios);
}
