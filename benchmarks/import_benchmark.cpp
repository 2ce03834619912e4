// Whole groups at once: a folder of small pictures that becomes a group, against writing the same
// as separate synced files; a merge of many groups, against copying a tree of folders with the same
// files, which syncs nothing.
#include "base/utf8.h"
#include "picture/picture.h"
#include "platform/native_disk.h"
#include "ratio_reporter.h"
#include "scratch.h"
#include "store/group_import.h"
#include "store/pictures_from_files.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <fstream>
#include <random>
#include <stdexcept>

namespace {

using namespace benchmarks;

constexpr int kPictures = 10000;
constexpr int kGroups = 1000;
constexpr int kRepetitions = 5;
constexpr int kSide = 16; // pixels; 24 bits each: 822 bytes, an icon

store::TwipSize measure(std::span<const std::byte> bytes) {
    const picture::TwipSize size = picture::measure(bytes).twips;
    return {size.height, size.width};
}

// A folder of pictures, and the same pictures in groups and in folders below folders.
struct Setup {
    Setup() : library{platform::nativeDisk(), scratch.path() / "library", measure} {
        std::filesystem::create_directories(library.folder);
        std::filesystem::create_directories(pictures);
        for (int i = 0; i < kPictures; ++i) {
            const std::vector<std::byte> bytes =
                noiseBitmap(kSide, kSide, static_cast<unsigned>(i));
            std::ofstream(pictures / ("picture" + std::to_string(i) + ".bmp"), std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()),
                       static_cast<std::streamsize>(bytes.size()));
        }
        files = store::pictureFilesIn(library.disk, pictures);
    }

    // Ten pictures in each of a thousand groups, each below one of those before it.
    void makeTree() {
        constexpr std::size_t kEach = kPictures / kGroups;
        store::Library outside = library;
        outside.folder = scratch.path();
        std::vector<store::GroupAddress> groups{
            store::createGroup(outside, std::nullopt, {u"Merged"})};
        std::vector<std::filesystem::path> folders{tree};
        std::mt19937 random(5);
        for (std::size_t i = 0; i < kGroups; ++i) {
            const std::size_t parent = random() % groups.size();
            const std::string name = "group" + std::to_string(i);
            const auto part = std::span(files).subspan(i * kEach, kEach);
            groups.push_back(
                store::createGroupFromFiles(outside, groups[parent], {base::fromUtf8(name)}, part)
                    .group);
            folders.push_back(folders[parent] / name);
            std::filesystem::create_directories(folders.back());
            for (const std::filesystem::path& file : part) {
                std::filesystem::copy_file(file, folders.back() / file.filename());
            }
        }
        std::filesystem::rename(scratch.path() / "Merged.stg", original);
    }

    ScratchFolder scratch;
    store::Library library;
    std::filesystem::path pictures = scratch.path() / "pictures";
    std::filesystem::path tree = scratch.path() / "tree";
    std::filesystem::path original = scratch.path() / "original";
    std::vector<std::filesystem::path> files;
};

Setup& setup() {
    static Setup made;
    return made;
}

Setup& setupWithTree() {
    static const bool isMade = (setup().makeTree(), true);
    (void)isMade;
    return setup();
}

void groupOfFolder(benchmark::State& state) {
    Setup& made = setup();
    for (auto _ : state) {
        const store::FilesAdded added =
            store::createGroupFromFiles(made.library, std::nullopt, {u"Run"}, made.files);
        state.PauseTiming();
        if (added.pictures != kPictures) {
            throw std::runtime_error("pictures are missing");
        }
        std::filesystem::remove(made.library.folder / "Run.stg");
        state.ResumeTiming();
    }
}

// Reads and measures as the store does, and keeps no records.
void syncedFiles(benchmark::State& state) {
    Setup& made = setup();
    const std::filesystem::path folder = made.scratch.path() / "synced";
    for (auto _ : state) {
        std::filesystem::create_directories(folder);
        for (const std::filesystem::path& file : made.files) {
            const auto bytes = store::readPictureFile(made.library.disk, file);
            benchmark::DoNotOptimize(measure(bytes));
            writeFile(folder / file.filename(), bytes, Durable::Yes);
        }
        state.PauseTiming();
        std::filesystem::remove_all(folder);
        state.ResumeTiming();
    }
}

void mergeGroups(benchmark::State& state) {
    Setup& made = setupWithTree();
    const std::filesystem::path source = made.scratch.path() / "Merged.stg";
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::copy_file(made.original, source);
        const store::GroupAddress target =
            store::createGroup(made.library, std::nullopt, {u"Target"});
        state.ResumeTiming();
        const store::MergedGroup merged = store::mergeGroupFile(made.library, target, source);
        state.PauseTiming();
        if (merged.source != store::SourceAfterMerge::Renumbered) {
            throw std::runtime_error("the source is as it was");
        }
        std::filesystem::remove(source);
        std::filesystem::remove(source.string() + ".bak");
        std::filesystem::remove(made.library.folder / "Target.stg");
        state.ResumeTiming();
    }
}

void copyFolders(benchmark::State& state) {
    Setup& made = setupWithTree();
    const std::filesystem::path copy = made.scratch.path() / "copy";
    for (auto _ : state) {
        std::filesystem::copy(made.tree, copy, std::filesystem::copy_options::recursive);
        state.PauseTiming();
        std::filesystem::remove_all(copy);
        state.ResumeTiming();
    }
}

void configure(benchmark::internal::Benchmark* benchmark) {
    benchmark->Repetitions(kRepetitions)
        ->Iterations(1)
        ->ReportAggregatesOnly()
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
}

BENCHMARK(groupOfFolder)->Apply(configure);
BENCHMARK(syncedFiles)->Apply(configure)->Repetitions(2); // each takes a minute on a busy disk
BENCHMARK(mergeGroups)->Apply(configure);
BENCHMARK(copyFolders)->Apply(configure);

} // namespace

int main(int argc, char** argv) {
    return benchmarks::runWithRatios(
        argc, argv,
        {{"10,000 small pictures: a group in one run / separate synced files", "groupOfFolder",
          "syncedFiles", 0.1},
         {"1,000 groups with 10,000 pictures: merge / copy as folders", "mergeGroups",
          "copyFolders", 2.0}});
}
