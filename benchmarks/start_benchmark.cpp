// A start of the real program with 1,000 group files against a start with an empty library: from
// the launch until the window has been painted (--screenshot), on the offscreen platform.
#include "base/utf8.h"
#include "platform/native_disk.h"
#include "platform/paths.h"
#include "ratio_reporter.h"
#include "scratch.h"
#include "store/group_operations.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <map>
#include <memory>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

namespace {

using namespace benchmarks;

// A home for one start: its library holds `groups` group files, each with one sub-group.
struct Home {
    explicit Home(int groups) {
        use();
        const std::filesystem::path folder =
            platform::toFilePath(platform::studioFolder()) / "Common" / "Graphics" / "Storages";
        std::filesystem::create_directories(folder);
        const store::Library library{platform::nativeDisk(), folder, {}};
        for (int i = 0; i < groups; ++i) {
            const store::GroupAddress group = store::createGroup(
                library, std::nullopt, {base::fromUtf8("Group " + std::to_string(i))});
            store::createGroup(library, group, {u"Below"});
        }
    }

    void use() const { setenv(platform::kHomeVariable, scratch.path().c_str(), 1); }

    ScratchFolder scratch;
};

Home& homeOf(std::int64_t groups) {
    static std::map<std::int64_t, std::unique_ptr<Home>> homes;
    std::unique_ptr<Home>& home = homes[groups];
    if (!home) {
        home = std::make_unique<Home>(static_cast<int>(groups));
    }
    return *home;
}

void start(benchmark::State& state) {
    const Home& home = homeOf(state.range(0));
    home.use();
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    std::string program = TXS_PROGRAM;
    std::string option = "--screenshot";
    std::string picture = (home.scratch.path() / "window.png").string();
    for (auto _ : state) {
        char* arguments[] = {program.data(), option.data(), picture.data(), nullptr};
        pid_t child = 0;
        if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0) {
            throw std::runtime_error("cannot start " + program);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (status != 0) {
            throw std::runtime_error(program + " failed");
        }
    }
}

BENCHMARK(start)
    ->Arg(0)
    ->Arg(1000)
    ->Iterations(3)
    ->Repetitions(5)
    ->ReportAggregatesOnly()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    return benchmarks::runWithRatios(
        argc, argv,
        {{"start: library of 1,000 group files / empty library", "start/1000", "start/0", 2.0}});
}
