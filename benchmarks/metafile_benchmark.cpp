// Drawing metafiles: WMF files against the library behind wmf2gd, both in this process and into
// memory; EMF files against emf2svg-conv with rsvg-convert, all as programs that write PNG files.
// The files are the demonstration library's, or those in the folder that TXS_METAFILES names.
#include "metafile/metafile.h"
#include "picture/picture.h"
#include "ratio_reporter.h"
#include "scratch.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>

extern "C" {
#include <libwmf/api.h>
#include <libwmf/gd.h>
}

namespace {

using namespace benchmarks;

constexpr int kSide = 480; // pixels of the longer side

struct Source {
    std::string path;
    std::vector<std::byte> bytes;
    QSize size;
};

void runProgram(std::vector<std::string> words) {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawnp(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0) {
        throw std::runtime_error("cannot start " + words[0]);
    }
    int status = 0;
    waitpid(child, &status, 0);
    if (status != 0) {
        throw std::runtime_error(words[0] + " failed with " + words[1]);
    }
}

const ScratchFolder& scratch() {
    static const ScratchFolder folder;
    return folder;
}

std::vector<std::byte> contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::vector<Source> sourcesOf(const std::string& extension) {
    std::filesystem::path folder;
    if (const char* told = std::getenv("TXS_METAFILES")) {
        folder = told;
    } else {
        folder = scratch().path() / "samples";
        if (!std::filesystem::exists(folder)) {
            runProgram({TXS_MAKE_SAMPLES, folder.string()});
        }
    }
    std::vector<Source> sources;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != extension) {
            continue;
        }
        Source source{entry.path().string(), contentOf(entry.path()), {}};
        try {
            source.size = picture::measure(source.bytes).pixels;
        } catch (const picture::DecodeError&) {
            continue; // one that nobody draws
        }
        source.size.scale(kSide, kSide, Qt::KeepAspectRatio);
        source.size = source.size.expandedTo({1, 1});
        sources.push_back(std::move(source));
    }
    return sources;
}

void drawWmf(benchmark::State& state) {
    const auto sources = sourcesOf(".wmf");
    for (auto _ : state) {
        for (const Source& source : sources) {
            const auto bytes = contentOf(source.path);
            benchmark::DoNotOptimize(metafile::draw(bytes, source.size));
        }
    }
}

void drawWithLibwmf(const Source& source) {
    wmfAPI* api = nullptr;
    wmfAPI_Options options{};
    options.function = wmf_gd_function;
    constexpr unsigned long kFlags = WMF_OPT_FUNCTION | WMF_OPT_IGNORE_NONFATAL;
    if (wmf_api_create(&api, kFlags, &options) != wmf_E_None) {
        return;
    }
    std::string path = source.path;
    wmfD_Rect box{};
    if (wmf_file_open(api, path.data()) == wmf_E_None && wmf_scan(api, 0, &box) == wmf_E_None) {
        wmf_gd_t* gd = WMF_GD_GetData(api);
        gd->type = wmf_gd_image;
        gd->flags |= WMF_GD_OUTPUT_MEMORY;
        gd->width = static_cast<unsigned>(source.size.width());
        gd->height = static_cast<unsigned>(source.size.height());
        gd->bbox = box;
        wmf_play(api, 0, &box);
        wmf_file_close(api);
    }
    wmf_api_destroy(api);
}

void drawWmfWithLibwmf(benchmark::State& state) {
    const auto sources = sourcesOf(".wmf");
    for (auto _ : state) {
        for (const Source& source : sources) {
            drawWithLibwmf(source);
        }
    }
}

void renderEmf(benchmark::State& state) {
    const auto sources = sourcesOf(".emf");
    const std::string target = (scratch().path() / "ours.png").string();
    for (auto _ : state) {
        for (const Source& source : sources) {
            runProgram({TXS_STGTOOL, "render", source.path, target, "--replace", "--width",
                        std::to_string(source.size.width())});
        }
    }
}

void renderEmfWithEmf2svg(benchmark::State& state) {
    const auto sources = sourcesOf(".emf");
    const std::string svg = (scratch().path() / "peer.svg").string();
    const std::string target = (scratch().path() / "peer.png").string();
    for (auto _ : state) {
        for (const Source& source : sources) {
            try {
                runProgram({"emf2svg-conv", "-i", source.path, "-o", svg});
                runProgram(
                    {"rsvg-convert", svg, "-w", std::to_string(source.size.width()), "-o", target});
            } catch (const std::runtime_error&) {
                continue; // a file that the peer cannot draw costs it less
            }
        }
    }
}

void configure(benchmark::internal::Benchmark* benchmark) {
    benchmark->Iterations(1)->Repetitions(5)->ReportAggregatesOnly()->UseRealTime()->Unit(
        benchmark::kMillisecond);
}

BENCHMARK(drawWmf)->Apply(configure);
BENCHMARK(drawWmfWithLibwmf)->Apply(configure);
BENCHMARK(renderEmf)->Apply(configure);
BENCHMARK(renderEmfWithEmf2svg)->Apply(configure);

} // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QGuiApplication application(argc, argv);
    return benchmarks::runWithRatios(
        argc, argv,
        {{"WMF files: our player / libwmf", "drawWmf", "drawWmfWithLibwmf", 1.0},
         {"EMF files: stgtool render / emf2svg-conv and rsvg-convert", "renderEmf",
          "renderEmfWithEmf2svg", 1.0}});
}
