// The store against a plain folder of files and against SQLite, side by side in one run:
// durable adding and how its cost grows, listing, reading one picture with opening included, and
// durable renaming.
#include "base/utf8.h"
#include "peers.h"
#include "picture/picture.h"
#include "platform/native_disk.h"
#include "ratio_reporter.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <thread>

namespace {

using namespace benchmarks;

constexpr int kRepetitions = 5;
constexpr int kPictureSide = 64; // 64 x 64 pixels of 24 bits: 12342 bytes

std::string nameOf(int number) {
    std::string digits = std::to_string(number);
    return "picture-" + std::string(6 - std::min<std::size_t>(6, digits.size()), '0') + digits;
}

store::TwipSize measure(std::span<const std::byte> bytes) {
    const picture::TwipSize size = picture::measure(bytes).twips;
    return {size.height, size.width};
}

// Each picture gets a new name, and in the next round its old one again.
class Renamer {
  public:
    explicit Renamer(int size) : size_(size) {}

    struct Names {
        std::string from, to;
    };
    Names next() {
        const std::string old = nameOf(next_ * kStep % size_);
        const std::string renamed = "renamed-" + old;
        const bool isBack = next_ / size_ % 2 == 1;
        ++next_;
        return isBack ? Names{renamed, old} : Names{old, renamed};
    }

  private:
    static constexpr int kStep = 37; // no neighbours one after the other; prime to the sizes
    int size_;
    int next_ = 0;
};

// One library, one folder and one database with the same pictures, made once for each count.
struct Setup {
    explicit Setup(int count)
        : library{platform::nativeDisk(), scratch.path() / "library", measure},
          folder(scratch.path() / "folder"),
          database(scratch.path() / "pictures.db"),
          bitmap(noiseBitmap(kPictureSide, 7)),
          source(scratch.path() / "source.bmp"),
          next(count),
          size(count),
          inStore(count),
          inFolder(count) {
        std::filesystem::create_directories(library.folder);
        std::ofstream(source, std::ios::binary)
            .write(reinterpret_cast<const char*>(bitmap.data()),
                   static_cast<std::streamsize>(bitmap.size()));
        group = store::createGroup(library, std::nullopt, {u"Group"});
        store::PictureBatch batch(library, group);
        database.begin();
        for (int i = 0; i < count; ++i) {
            batch.add({base::fromUtf8(nameOf(i))}, source, store::IfPictureExists::Refuse);
            folder.addQuickly(nameOf(i), bitmap, "h64w64tBMP");
            database.add(nameOf(i), bitmap, "h64w64tBMP");
        }
        batch.commit();
        database.commit();
        // As in a library that was filled some time ago: time stamps have gone on since.
        std::this_thread::sleep_for(std::chrono::seconds(4));
    }

    ScratchFolder scratch;
    store::Library library;
    PlainFolder folder;
    Database database;
    std::vector<std::byte> bitmap;
    std::filesystem::path source;
    store::GroupAddress group;
    int next;
    int size;
    Renamer inStore;
    Renamer inFolder;
};

Setup& setupOf(std::int64_t count) {
    static std::map<std::int64_t, std::unique_ptr<Setup>> setups;
    std::unique_ptr<Setup>& setup = setups[count];
    if (!setup) {
        setup = std::make_unique<Setup>(static_cast<int>(count));
    }
    return *setup;
}

void addDurablyStore(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    for (auto _ : state) {
        store::addPicture(setup.library, setup.group, {base::fromUtf8(nameOf(setup.next++))},
                          setup.source);
    }
}

void addDurablyFolder(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    std::vector<std::byte> bytes;
    for (auto _ : state) {
        std::ifstream in(setup.source, std::ios::binary);
        bytes.resize(setup.bitmap.size());
        in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        benchmark::DoNotOptimize(measure(bytes));
        setup.folder.addDurably(nameOf(setup.next++), bytes, "h64w64tBMP");
    }
}

void addDurablyDatabase(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    for (auto _ : state) {
        setup.database.begin();
        setup.database.add(nameOf(setup.next++), setup.bitmap, "h64w64tBMP");
        setup.database.commit();
    }
}

void listStore(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(store::listPictures(setup.library, setup.group).size());
    }
}

void listDatabase(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(setup.database.list());
    }
}

void readOneStore(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    std::mt19937 random(1);
    for (auto _ : state) {
        const int number = static_cast<int>(random() % static_cast<unsigned>(setup.size));
        benchmark::DoNotOptimize(
            store::readPicture(setup.library, setup.group, {base::fromUtf8(nameOf(number))})
                .bytes.size());
    }
}

void readOneFolder(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    std::mt19937 random(1);
    for (auto _ : state) {
        const int number = static_cast<int>(random() % static_cast<unsigned>(setup.size));
        std::vector<std::byte> bytes;
        benchmark::DoNotOptimize(setup.folder.readPicture(nameOf(number), bytes));
    }
}

void renameDurablyStore(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    for (auto _ : state) {
        const auto [from, to] = setup.inStore.next();
        store::renamePicture(setup.library, setup.group, {base::fromUtf8(from)},
                             {base::fromUtf8(to)});
    }
}

void renameDurablyFolder(benchmark::State& state) {
    Setup& setup = setupOf(state.range(0));
    for (auto _ : state) {
        const auto [from, to] = setup.inFolder.next();
        setup.folder.renameDurably(from, to);
    }
}

void configure(benchmark::internal::Benchmark* benchmark) {
    benchmark->Repetitions(kRepetitions)
        ->ReportAggregatesOnly()
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
}

BENCHMARK(listStore)->Arg(10000)->Apply(configure);
BENCHMARK(listDatabase)->Arg(10000)->Apply(configure);
BENCHMARK(readOneStore)->Arg(100)->Arg(10000)->Apply(configure);
BENCHMARK(readOneFolder)->Arg(100)->Arg(10000)->Apply(configure);
BENCHMARK(addDurablyStore)->Arg(100)->Arg(10000)->Iterations(60)->Apply(configure);
BENCHMARK(addDurablyFolder)->Arg(100)->Arg(10000)->Iterations(60)->Apply(configure);
BENCHMARK(addDurablyDatabase)->Arg(100)->Arg(10000)->Iterations(60)->Apply(configure);
BENCHMARK(renameDurablyStore)->Arg(2000)->Arg(10000)->Iterations(60)->Apply(configure);
BENCHMARK(renameDurablyFolder)->Arg(2000)->Arg(10000)->Iterations(60)->Apply(configure);

} // namespace

int main(int argc, char** argv) {
    return benchmarks::runWithRatios(
        argc, argv,
        {{"durable add, 100 pictures: store / plain folder", "addDurablyStore/100",
          "addDurablyFolder/100", 1.0},
         {"durable add, 10,000 pictures: store / plain folder", "addDurablyStore/10000",
          "addDurablyFolder/10000", 1.0},
         {"durable add, 10,000 pictures: store / SQLite", "addDurablyStore/10000",
          "addDurablyDatabase/10000", 1.0},
         {"durable add: store at 10,000 / store at 100", "addDurablyStore/10000",
          "addDurablyStore/100", 1.3},
         {"list 10,000 pictures: store / SQLite select", "listStore/10000", "listDatabase/10000",
          1.0},
         {"read one of 100 pictures: store / plain file", "readOneStore/100", "readOneFolder/100",
          2.0},
         {"read one of 10,000 pictures: store / plain file", "readOneStore/10000",
          "readOneFolder/10000", 2.0},
         {"durable rename, 2,000 pictures: store / plain folder", "renameDurablyStore/2000",
          "renameDurablyFolder/2000", 1.5},
         {"durable rename, 10,000 pictures: store / plain folder", "renameDurablyStore/10000",
          "renameDurablyFolder/10000", 1.5}});
}
