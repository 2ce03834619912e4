#include "rotation_quality.h"

#include "imaging/operations/rotation.h"

#include <QPainter>
#include <QTransform>

#include <array>
#include <cmath>
#include <functional>

namespace benchmarks {
namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 600;
constexpr int kSamples = 8; // each way

using Colour = std::array<double, 3>;

// Waves that get shorter away from the middle, to four pixels a wave, rings and bars with sharp
// edges, and a sky.
Colour drawingAt(double x, double y) {
    if (x < 0 || y < 0 || x >= kWidth || y >= kHeight) {
        return {0, 0, 0};
    }
    const double dx = x - kWidth / 2.0;
    const double dy = y - kHeight / 2.0;
    const double distance = std::hypot(dx, dy);
    const double wave = 127.5 + 127.5 * std::cos(distance * distance * 1.5 / kWidth);
    if (distance < 200) {
        return {wave, wave, 255 - wave};
    }
    if (distance < 240) {
        return {255, 220, 40};
    }
    if (std::fmod(x + y / 3, 40) < 6) {
        return {20, 30, 160};
    }
    return {120 + 100 * y / kHeight, 160 + 80 * x / kWidth, 230};
}

// `toDrawing` tells where a place of the image is in the drawing.
QImage sampled(QSize size, const QTransform& toDrawing) {
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            Colour sum{};
            for (int i = 0; i < kSamples * kSamples; ++i) {
                const int column = i % kSamples;
                const int row = i / kSamples;
                const QPointF place = toDrawing.map(
                    QPointF(x + (column + 0.5) / kSamples, y + (row + 0.5) / kSamples));
                const Colour colour = drawingAt(place.x(), place.y());
                for (std::size_t c = 0; c < 3; ++c) {
                    sum[c] += colour[c] / (kSamples * kSamples);
                }
            }
            image.setPixel(x, y,
                           qRgb(static_cast<int>(std::lround(sum[0])),
                                static_cast<int>(std::lround(sum[1])),
                                static_cast<int>(std::lround(sum[2]))));
        }
    }
    return image;
}

double signalToNoise(const QImage& image, const QImage& reference) {
    double squares = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb one = image.pixel(x, y);
            const QRgb other = reference.pixel(x, y);
            squares += std::pow(qRed(one) - qRed(other), 2) +
                       std::pow(qGreen(one) - qGreen(other), 2) +
                       std::pow(qBlue(one) - qBlue(other), 2);
        }
    }
    return 10 * std::log10(255.0 * 255.0 * 3 * image.width() * image.height() / squares);
}

QImage onBlack(const QImage& image) {
    QImage ground(image.size(), QImage::Format_RGB32);
    ground.fill(Qt::black);
    QPainter(&ground).drawImage(0, 0, image);
    return ground;
}

} // namespace

RotationQuality measureRotationQuality() {
    using namespace imaging::operations;
    const QImage picture = sampled({kWidth, kHeight}, QTransform());

    const QImage ours = rotated(picture, {3330, Canvas::Grow, qRgb(0, 0, 0)});
    QTransform back;
    back.translate(kWidth / 2.0, kHeight / 2.0);
    back.rotate(-33.3);
    back.translate(-ours.width() / 2.0, -ours.height() / 2.0);

    const QTransform turn = QTransform().rotate(33.3);
    const QImage theirs = onBlack(picture.transformed(turn, Qt::SmoothTransformation));
    const QTransform theirTurn = QImage::trueMatrix(turn, kWidth, kHeight);

    return {signalToNoise(ours, sampled(ours.size(), back)),
            signalToNoise(theirs, sampled(theirs.size(), theirTurn.inverted()))};
}

} // namespace benchmarks
