// A page of forty photographs of 24 megapixels: read from the group file and brought as thumbnails
// by the window's loader, against reading and decoding them one after the other at full size.
#include "app/executor.h"
#include "base/utf8.h"
#include "browser/picture_painting.h"
#include "browser/thumbnail_loader.h"
#include "picture/picture.h"
#include "platform/native_disk.h"
#include "ratio_reporter.h"
#include "scratch.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"

#include <QBuffer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>

#include <benchmark/benchmark.h>
#include <fstream>
#include <random>
#include <stdexcept>

namespace {

using namespace benchmarks;

constexpr int kPictures = 40;
constexpr QSize kSize(6000, 4000);
constexpr QSizeF kArea(50, 50); // a thumbnail's

// Soft shapes under the grain of a camera's sensor; about eight megabytes.
QByteArray photograph() {
    std::mt19937 random(24);
    QImage image(kSize, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const auto grain = static_cast<int>(random() % 16U);
            row[x] = qRgb(x * 200 / kSize.width() + grain, y * 200 / kSize.height() + grain,
                          (x / 400 + y / 400) % 2 * 120 + grain);
        }
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG", 85);
    return bytes;
}

class Group {
  public:
    Group() {
        library.measure = [](std::span<const std::byte>) { return store::TwipSize{15, 15}; };
        address = store::createGroup(library, std::nullopt, {u"Photographs"});
        const QByteArray bytes = photograph();
        const std::filesystem::path source = scratch_.path() / "source.jpg";
        store::PictureBatch batch(library, address);
        for (int i = 0; i < kPictures; ++i) {
            // What follows the picture's end makes each of them another one.
            std::ofstream(source, std::ios::binary)
                << std::string_view(bytes.constData(), std::size_t(bytes.size())) << i;
            names.push_back({base::fromUtf8("Photograph " + std::to_string(i))});
            batch.add(names.back(), source, store::IfPictureExists::Refuse);
        }
        batch.commit();
    }

  private:
    ScratchFolder scratch_;

  public:
    store::Library library{platform::nativeDisk(), scratch_.path(), {}};
    store::GroupAddress address;
    std::vector<store::PictureName> names;
};

Group& group() {
    static Group photographs;
    return photographs;
}

void pageOfThumbnails(benchmark::State& state) {
    Group& photographs = group();
    for (auto _ : state) {
        browser::ThumbnailLoader loader; // which remembers nothing yet
        int shown = 0;
        QEventLoop loop;
        QObject::connect(&loader, &browser::ThumbnailLoader::loaded, &loop,
                         [&](int, const QString&, const QImage& image) {
                             shown += image.isNull() ? 0 : 1;
                             if (shown == kPictures) {
                                 loop.quit();
                             }
                         });
        loader.start(photographs.library,
                     {photographs.address, photographs.names, std::nullopt, kArea, 1});
        loop.exec();
    }
}

void oneAfterTheOther(benchmark::State& state) {
    Group& photographs = group();
    for (auto _ : state) {
        for (const store::PictureName& name : photographs.names) {
            const auto bytes =
                store::readPicture(photographs.library, photographs.address, name).bytes;
            if (browser::fitted(picture::decode(bytes), kArea, 1).isNull()) {
                throw std::runtime_error("a picture was not decoded");
            }
        }
    }
}

void measured(benchmark::internal::Benchmark* benchmark) {
    benchmark->Iterations(1)->Repetitions(3)->ReportAggregatesOnly()->UseRealTime()->Unit(
        benchmark::kMillisecond);
}
BENCHMARK(pageOfThumbnails)->Apply(measured);
BENCHMARK(oneAfterTheOther)->Apply(measured);

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return runWithRatios(argc, argv,
                         {{"a page of 40 JPGs of 24 megapixels / decoding one after the other",
                           "pageOfThumbnails", "oneAfterTheOther", 0.5}});
}
