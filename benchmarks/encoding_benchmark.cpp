// Reducing photographs to 256 colours, against libimagequant as its programs use it: speed 4, full
// dithering. Time of both, and the quality of what comes out, as PSNR over all pixels. The pictures
// are the JPG files in the folder that TXS_PHOTOS names, or one that is drawn here.
#include "imaging/decoders.h"
#include "imaging/encoding/error_diffusion.h"
#include "imaging/encoding/palette.h"
#include "ratio_reporter.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <libimagequant.h>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

namespace {

constexpr std::size_t kColours = 256;

struct Photo {
    std::string name;
    QImage image; // ARGB32
};

// Sky above a field, 12 megapixels.
QImage landscape() {
    constexpr int kWidth = 4000;
    constexpr int kHeight = 3000;
    std::mt19937 random(7);
    QImage image(kWidth, kHeight, QImage::Format_ARGB32);
    for (int y = 0; y < kHeight; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < kWidth; ++x) {
            const auto noise = static_cast<int>(random() % 40);
            const int wave = static_cast<int>(30 * std::sin(x / 90.0) * std::cos(y / 70.0));
            row[x] = y < kHeight / 2 ? qRgb(90 + y / 25, 140 + y / 38 + x / 250, 250 - x / 125)
                                     : qRgb(100 + wave + noise, 160 - wave - x / 100 + noise,
                                            40 + noise + y / 50);
        }
    }
    return image;
}

std::vector<Photo> findPhotos() {
    std::vector<Photo> photos;
    const char* const folder = std::getenv("TXS_PHOTOS");
    if (folder == nullptr) {
        return {{"drawn here", landscape()}};
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        try {
            const QImage image = imaging::decode(std::as_bytes(std::span(content)))
                                     .image.convertToFormat(QImage::Format_ARGB32);
            if (!imaging::exactColours(image, kColours)) {
                photos.push_back({entry.path().filename().string(), image});
            }
        } catch (const imaging::DecodeError&) {
            continue; // no picture, or a broken one
        }
    }
    return photos;
}

const std::vector<Photo>& photos() {
    static const std::vector<Photo> all = findPhotos();
    return all;
}

QImage reduced(const QImage& image) {
    const std::vector<QRgb> colours = imaging::bestColours(image, kColours);
    QImage indexes(image.size(), QImage::Format_Indexed8);
    imaging::diffuse(image, colours, indexes);
    indexes.setColorTable(QList<QRgb>(colours.begin(), colours.end()));
    return indexes;
}

template <typename Type, void (*destroy)(Type*)>
struct Destroy {
    void operator()(Type* object) const { destroy(object); }
};
using Attributes = std::unique_ptr<liq_attr, Destroy<liq_attr, liq_attr_destroy>>;
using Image = std::unique_ptr<liq_image, Destroy<liq_image, liq_image_destroy>>;
using Result = std::unique_ptr<liq_result, Destroy<liq_result, liq_result_destroy>>;

QImage reducedByPeer(const QImage& image) {
    const QImage source = image.convertToFormat(QImage::Format_RGBA8888);
    const Attributes attributes(liq_attr_create());
    liq_set_speed(attributes.get(), 4);
    const Image input(liq_image_create_rgba(attributes.get(), source.constBits(), source.width(),
                                            source.height(), 0));
    liq_result* found = nullptr;
    if (liq_image_quantize(input.get(), attributes.get(), &found) != LIQ_OK) {
        throw std::runtime_error("liq_image_quantize");
    }
    const Result result(found);
    liq_set_dithering_level(result.get(), 1);
    std::vector<uchar*> rows;
    QImage indexes(image.size(), QImage::Format_Indexed8);
    rows.reserve(static_cast<std::size_t>(indexes.height()));
    for (int y = 0; y < indexes.height(); ++y) {
        rows.push_back(indexes.scanLine(y));
    }
    liq_write_remapped_image_rows(result.get(), input.get(), rows.data());
    const liq_palette* const palette = liq_get_palette(result.get());
    QList<QRgb> colours;
    for (unsigned i = 0; i < palette->count; ++i) {
        colours.push_back(
            qRgb(palette->entries[i].r, palette->entries[i].g, palette->entries[i].b));
    }
    indexes.setColorTable(colours);
    return indexes;
}

void reduce(benchmark::State& state) {
    for (auto _ : state) {
        for (const Photo& photo : photos()) {
            benchmark::DoNotOptimize(reduced(photo.image));
        }
    }
}

void reduceByPeer(benchmark::State& state) {
    for (auto _ : state) {
        for (const Photo& photo : photos()) {
            benchmark::DoNotOptimize(reducedByPeer(photo.image));
        }
    }
}

double decibels(const QImage& image, const QImage& indexes) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb a = image.pixel(x, y);
            const QRgb b = indexes.pixel(x, y);
            for (const int apart :
                 {qRed(a) - qRed(b), qGreen(a) - qGreen(b), qBlue(a) - qBlue(b)}) {
                sum += apart * apart;
            }
        }
    }
    return 10 * std::log10(255.0 * 255 * 3 * image.width() * image.height() / sum);
}

// Prints both and how they compare; returns whether every picture is good enough.
bool compareQuality() {
    constexpr double kMostBelow = 0.5;
    bool good = true;
    std::printf("\n%-40s %8s %8s %8s   (dB)\n", "quality of 256 colours", "ours", "peer", "apart");
    for (const Photo& photo : photos()) {
        const double ours = decibels(photo.image, reduced(photo.image));
        const double peer = decibels(photo.image, reducedByPeer(photo.image));
        const bool isGood = ours >= peer - kMostBelow;
        std::printf("%-40.40s %8.2f %8.2f %+8.2f%s\n", photo.name.c_str(), ours, peer, ours - peer,
                    isGood ? "" : "  <-- worse");
        good = good && isGood;
    }
    return good;
}

} // namespace

BENCHMARK(reduce)->Unit(benchmark::kMillisecond)->Repetitions(3);
BENCHMARK(reduceByPeer)->Unit(benchmark::kMillisecond)->Repetitions(3);

int main(int argc, char** argv) {
    const int status = benchmarks::runWithRatios(
        argc, argv, {{"256 colours for photographs", "reduce", "reduceByPeer", 1.0}});
    return compareQuality() ? status : 1;
}
