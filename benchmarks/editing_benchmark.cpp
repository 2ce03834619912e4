// Editing a picture of 12 megapixels: our operations against the same ones of OpenCV and libvips,
// each on four bytes a pixel and in place where the library can; libvips writes to memory of its
// own. A quarter turn takes new memory in all three. The free rotation is measured against Qt's.
#include "imaging/operations/colour_operations.h"
#include "imaging/operations/mirroring.h"
#include "imaging/operations/rotation.h"
#include "ratio_reporter.h"
#include "rotation_quality.h"

#include <QTransform>

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <vips/vips.h>

namespace {

using namespace imaging::operations;

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr int kAmount = 300; // of saturation and contrast
constexpr int kHue = 4000;   // hundredths of a degree
constexpr double kSlope = 1 + kAmount / 1000.0;
constexpr double kOffset = 127.5 * (1 - kSlope);

// Soft colours with some noise, as photographs have.
QImage makePicture() {
    QImage picture(kWidth, kHeight, QImage::Format_RGB32);
    std::uint32_t noise = 1;
    for (int y = 0; y < kHeight; ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < kWidth; ++x) {
            noise = noise * 1664525 + 1013904223;
            const int grain = static_cast<int>(noise >> 27);
            row[x] = qRgb(static_cast<int>(100 + 90 * std::sin(x / 300.0)) + grain,
                          static_cast<int>(110 + 80 * std::cos(y / 400.0)) + grain,
                          static_cast<int>(90 + 70 * std::sin((x + y) / 500.0)) + grain);
        }
    }
    return picture;
}

const QImage& picture() {
    static const QImage shared = makePicture();
    return shared;
}

// ---- ours

template <typename Operation>
void runOurs(benchmark::State& state, const Operation& operation) {
    QImage image = picture().copy();
    for (auto _ : state) {
        operation(image);
    }
}

void contrast(benchmark::State& state) {
    runOurs(state, [](QImage& image) { changeContrast(image, kAmount); });
}

void intensity(benchmark::State& state) {
    runOurs(state, [](QImage& image) { changeIntensity(image, kAmount); });
}

void saturation(benchmark::State& state) {
    runOurs(state, [](QImage& image) { changeSaturation(image, kAmount); });
}

void hue(benchmark::State& state) {
    runOurs(state, [](QImage& image) { changeHue(image, kHue); });
}

void inversion(benchmark::State& state) {
    runOurs(state, [](QImage& image) { invert(image); });
}

void flipping(benchmark::State& state) {
    runOurs(state, [](QImage& image) { flip(image); });
}

void reversing(benchmark::State& state) {
    runOurs(state, [](QImage& image) { reverse(image); });
}

void quarterTurn(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(rotated(picture(), {9000, Canvas::Grow, 0}));
    }
}

void halfTurn(benchmark::State& state) {
    runOurs(state, [](QImage& image) { rotate(image, {18'000, Canvas::Grow, 0}); });
}

void freeTurn(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(rotated(picture(), {3330, Canvas::Grow, qRgb(255, 0, 0)}));
    }
}

void freeTurnWithAlpha(benchmark::State& state) {
    QImage image = picture().convertToFormat(QImage::Format_ARGB32);
    image.setPixel(0, 0, 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(rotated(image, {3330, Canvas::Grow, 0}));
    }
}

// What a dialog does on each move of its slider, were it to show the whole picture at full size.
void previewOfHue(benchmark::State& state) {
    QImage target;
    apply({ColourProperty::Hue, 1}, picture(), target);
    for (auto _ : state) {
        apply({ColourProperty::Hue, kHue}, picture(), target);
    }
}

// The same for a window's worth of the middle of a turned picture.
void previewOfFreeTurn(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(rotatedPart(picture(), {3330, Canvas::Grow, qRgb(255, 0, 0)},
                                             QRect(1500, 1800, 1920, 1080)));
    }
}

// ---- Qt

void freeTurnOfQt(benchmark::State& state) {
    const QTransform turn = QTransform().rotate(33.3);
    for (auto _ : state) {
        benchmark::DoNotOptimize(picture().transformed(turn, Qt::SmoothTransformation));
    }
}

void freeTurnWithAlphaOfQt(benchmark::State& state) {
    QImage image = picture().convertToFormat(QImage::Format_ARGB32);
    image.setPixel(0, 0, 0);
    const QTransform turn = QTransform().rotate(33.3);
    for (auto _ : state) {
        benchmark::DoNotOptimize(image.transformed(turn, Qt::SmoothTransformation));
    }
}

// ---- OpenCV

template <typename Operation>
void runOpenCv(benchmark::State& state, const Operation& operation) {
    QImage image = picture().copy();
    cv::Mat pixels(kHeight, kWidth, CV_8UC4, image.bits());
    for (auto _ : state) {
        operation(pixels);
    }
}

cv::Mat tableOfThree(const std::function<int(int channel, int level)>& value) {
    cv::Mat table(1, 256, CV_8UC3);
    for (int level = 0; level < 256; ++level) {
        for (int channel = 0; channel < 3; ++channel) {
            table.at<cv::Vec3b>(0, level)[channel] =
                static_cast<unsigned char>(value(channel, level));
        }
    }
    return table;
}

int hueLevel(int level) {
    return (level + kHue * 256 / 36'000) & 255;
}

int saturationLevel(int level) {
    return std::min(255, static_cast<int>(std::lround(level * kSlope)));
}

// To HSL and back with a table in between.
void throughHls(benchmark::State& state, const cv::Mat& table) {
    static cv::Mat hls; // its memory is not what is measured
    runOpenCv(state, [&](cv::Mat& pixels) {
        cv::cvtColor(pixels, hls, cv::COLOR_BGR2HLS_FULL);
        cv::LUT(hls, table, hls);
        cv::cvtColor(hls, pixels, cv::COLOR_HLS2BGR_FULL, 4);
    });
}

void contrastOfOpenCv(benchmark::State& state) {
    runOpenCv(state, [](cv::Mat& pixels) { pixels.convertTo(pixels, -1, kSlope, kOffset); });
}

void intensityOfOpenCv(benchmark::State& state) {
    runOpenCv(state,
              [](cv::Mat& pixels) { pixels.convertTo(pixels, -1, 1, 255 * kAmount / 1000.0); });
}

void saturationOfOpenCv(benchmark::State& state) {
    throughHls(state, tableOfThree([](int channel, int level) {
                   return channel == 2 ? saturationLevel(level) : level;
               }));
}

void hueOfOpenCv(benchmark::State& state) {
    throughHls(state, tableOfThree([](int channel, int level) {
                   return channel == 0 ? hueLevel(level) : level;
               }));
}

void inversionOfOpenCv(benchmark::State& state) {
    runOpenCv(state, [](cv::Mat& pixels) { cv::bitwise_not(pixels, pixels); });
}

void flippingOfOpenCv(benchmark::State& state) {
    runOpenCv(state, [](cv::Mat& pixels) { cv::flip(pixels, pixels, 0); });
}

void reversingOfOpenCv(benchmark::State& state) {
    runOpenCv(state, [](cv::Mat& pixels) { cv::flip(pixels, pixels, 1); });
}

void halfTurnOfOpenCv(benchmark::State& state) {
    runOpenCv(state, [](cv::Mat& pixels) { cv::rotate(pixels, pixels, cv::ROTATE_180); });
}

void quarterTurnOfOpenCv(benchmark::State& state) {
    runOpenCv(state, [](const cv::Mat& pixels) {
        cv::Mat turned;
        cv::rotate(pixels, turned, cv::ROTATE_90_CLOCKWISE);
        benchmark::DoNotOptimize(turned.data);
    });
}

void freeTurnOfOpenCv(benchmark::State& state) {
    const QSize size = rotatedSize({kWidth, kHeight}, {3330, Canvas::Grow, 0});
    cv::Mat matrix =
        cv::getRotationMatrix2D(cv::Point2f((kWidth - 1) / 2.0F, (kHeight - 1) / 2.0F), -33.3, 1);
    matrix.at<double>(0, 2) += (size.width() - kWidth) / 2.0;
    matrix.at<double>(1, 2) += (size.height() - kHeight) / 2.0;
    runOpenCv(state, [&](const cv::Mat& pixels) {
        cv::Mat turned;
        cv::warpAffine(pixels, turned, matrix, cv::Size(size.width(), size.height()),
                       cv::INTER_LINEAR, cv::BORDER_CONSTANT, cv::Scalar(0, 0, 255, 255));
        benchmark::DoNotOptimize(turned.data);
    });
}

// ---- libvips

// One that owns a reference.
using VipsPicture = std::unique_ptr<VipsImage, decltype(&g_object_unref)>;

VipsPicture owned(VipsImage* image) {
    if (image == nullptr) {
        throw std::runtime_error(vips_error_buffer());
    }
    return {image, &g_object_unref};
}

// `operation` is one of libvips' functions with its further arguments.
template <typename Operation>
VipsPicture result(const VipsPicture& image, const Operation& operation) {
    VipsImage* out = nullptr;
    if (operation(image.get(), &out) != 0) {
        throw std::runtime_error(vips_error_buffer());
    }
    return owned(out);
}

template <typename Operation>
void runVips(benchmark::State& state, const Operation& operation) {
    const QImage& image = picture();
    const VipsPicture raw = owned(
        vips_image_new_from_memory(image.constBits(), static_cast<std::size_t>(image.sizeInBytes()),
                                   kWidth, kHeight, 4, VIPS_FORMAT_UCHAR));
    const VipsPicture colours = result(raw, [](VipsImage* in, VipsImage** out) {
        return vips_copy(in, out, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr);
    });
    for (auto _ : state) {
        const VipsPicture changed = operation(colours);
        std::size_t size = 0;
        void* pixels = vips_image_write_to_memory(changed.get(), &size);
        benchmark::DoNotOptimize(pixels);
        g_free(pixels);
    }
}

template <typename Call>
void runVipsCall(benchmark::State& state, const Call& call) {
    runVips(state, [&](const VipsPicture& image) { return result(image, call); });
}

VipsPicture linear(const VipsPicture& image, double slope, double offset) {
    return result(image, [=](VipsImage* in, VipsImage** out) {
        double slopes[] = {slope, slope, slope, 1};
        double offsets[] = {offset, offset, offset, 0};
        return vips_linear(in, out, slopes, offsets, 4, "uchar", TRUE, nullptr);
    });
}

// To HSV (it knows no HSL) and back with a table in between.
void throughHsv(benchmark::State& state, int channel, int (*value)(int)) {
    std::array<unsigned char, std::size_t{256} * 4> table{};
    for (int i = 0; i < 256 * 4; ++i) {
        table[static_cast<std::size_t>(i)] =
            static_cast<unsigned char>(i % 4 == channel ? value(i / 4) : i / 4);
    }
    const VipsPicture lut =
        owned(vips_image_new_from_memory(table.data(), table.size(), 256, 1, 4, VIPS_FORMAT_UCHAR));
    runVips(state, [&](const VipsPicture& image) {
        const VipsPicture hsv = result(
            image, [](VipsImage* in, VipsImage** out) { return vips_sRGB2HSV(in, out, nullptr); });
        const VipsPicture changed = result(hsv, [&](VipsImage* in, VipsImage** out) {
            return vips_maplut(in, out, lut.get(), nullptr);
        });
        return result(changed, [](VipsImage* in, VipsImage** out) {
            return vips_HSV2sRGB(in, out, nullptr);
        });
    });
}

void contrastOfVips(benchmark::State& state) {
    runVips(state, [](const VipsPicture& image) { return linear(image, kSlope, kOffset); });
}

void intensityOfVips(benchmark::State& state) {
    runVips(state,
            [](const VipsPicture& image) { return linear(image, 1, 255 * kAmount / 1000.0); });
}

void saturationOfVips(benchmark::State& state) {
    throughHsv(state, 1, saturationLevel);
}

void hueOfVips(benchmark::State& state) {
    throughHsv(state, 0, hueLevel);
}

void inversionOfVips(benchmark::State& state) {
    runVipsCall(state,
                [](VipsImage* in, VipsImage** out) { return vips_invert(in, out, nullptr); });
}

void flippingOfVips(benchmark::State& state) {
    runVipsCall(state, [](VipsImage* in, VipsImage** out) {
        return vips_flip(in, out, VIPS_DIRECTION_VERTICAL, nullptr);
    });
}

void reversingOfVips(benchmark::State& state) {
    runVipsCall(state, [](VipsImage* in, VipsImage** out) {
        return vips_flip(in, out, VIPS_DIRECTION_HORIZONTAL, nullptr);
    });
}

void quarterTurnOfVips(benchmark::State& state) {
    runVipsCall(state, [](VipsImage* in, VipsImage** out) { return vips_rot90(in, out, nullptr); });
}

void halfTurnOfVips(benchmark::State& state) {
    runVipsCall(state,
                [](VipsImage* in, VipsImage** out) { return vips_rot180(in, out, nullptr); });
}

void freeTurnOfVips(benchmark::State& state) {
    runVipsCall(state,
                [](VipsImage* in, VipsImage** out) { return vips_rotate(in, out, 33.3, nullptr); });
}

void configure(benchmark::internal::Benchmark* benchmark) {
    benchmark->Iterations(3)->Repetitions(9)->ReportAggregatesOnly()->UseRealTime()->Unit(
        benchmark::kMillisecond);
}

BENCHMARK(contrast)->Apply(configure);
BENCHMARK(contrastOfOpenCv)->Apply(configure);
BENCHMARK(contrastOfVips)->Apply(configure);
BENCHMARK(intensity)->Apply(configure);
BENCHMARK(intensityOfOpenCv)->Apply(configure);
BENCHMARK(intensityOfVips)->Apply(configure);
BENCHMARK(inversion)->Apply(configure);
BENCHMARK(inversionOfOpenCv)->Apply(configure);
BENCHMARK(inversionOfVips)->Apply(configure);
BENCHMARK(hue)->Apply(configure);
BENCHMARK(hueOfOpenCv)->Apply(configure);
BENCHMARK(hueOfVips)->Apply(configure);
BENCHMARK(saturation)->Apply(configure);
BENCHMARK(saturationOfOpenCv)->Apply(configure);
BENCHMARK(saturationOfVips)->Apply(configure);
BENCHMARK(flipping)->Apply(configure);
BENCHMARK(flippingOfOpenCv)->Apply(configure);
BENCHMARK(flippingOfVips)->Apply(configure);
BENCHMARK(reversing)->Apply(configure);
BENCHMARK(reversingOfOpenCv)->Apply(configure);
BENCHMARK(reversingOfVips)->Apply(configure);
BENCHMARK(quarterTurn)->Apply(configure);
BENCHMARK(quarterTurnOfOpenCv)->Apply(configure);
BENCHMARK(quarterTurnOfVips)->Apply(configure);
BENCHMARK(halfTurn)->Apply(configure);
BENCHMARK(halfTurnOfOpenCv)->Apply(configure);
BENCHMARK(halfTurnOfVips)->Apply(configure);
BENCHMARK(freeTurn)->Apply(configure);
BENCHMARK(freeTurnOfQt)->Apply(configure);
BENCHMARK(freeTurnOfOpenCv)->Apply(configure);
BENCHMARK(freeTurnOfVips)->Apply(configure);
BENCHMARK(freeTurnWithAlpha)->Apply(configure);
BENCHMARK(freeTurnWithAlphaOfQt)->Apply(configure);
BENCHMARK(previewOfHue)->Apply(configure);
BENCHMARK(previewOfFreeTurn)->Apply(configure);

std::vector<benchmarks::Ratio> ratios() {
    std::vector<benchmarks::Ratio> all;
    const auto againstBoth = [&](const std::string& operation, double allowed) {
        all.push_back({operation + " / OpenCV", operation, operation + "OfOpenCv", allowed});
        all.push_back({operation + " / libvips", operation, operation + "OfVips", allowed});
    };
    for (const char* operation : {"contrast", "intensity", "inversion", "hue", "flipping",
                                  "reversing", "quarterTurn", "halfTurn"}) {
        againstBoth(operation, 0.9);
    }
    againstBoth("saturation", 1.0);
    all.push_back({"freeTurn / QImage::transformed", "freeTurn", "freeTurnOfQt", 0.6});
    all.push_back({"freeTurnWithAlpha / QImage::transformed", "freeTurnWithAlpha",
                   "freeTurnWithAlphaOfQt", 0.6});
    return all;
}

} // namespace

int main(int argc, char** argv) {
    if (VIPS_INIT(argv[0]) != 0) {
        return 2;
    }
    vips_cache_set_max(0); // the same picture is to be computed each time
    std::vector<char*> arguments(argv, argv + argc);
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, interleaved.data());
    const int speed =
        benchmarks::runWithRatios(static_cast<int>(arguments.size()), arguments.data(), ratios());
    const benchmarks::RotationQuality quality = benchmarks::measureRotationQuality();
    const bool good = quality.ours >= quality.qt;
    std::printf("\nturned by 33.3 degrees, signal to noise in dB: ours %.2f, QImage %.2f%s\n",
                quality.ours, quality.qt, good ? "" : "  <-- worse");
    return good ? speed : 1;
}
