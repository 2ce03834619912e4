// Pictures to encode, made of numbers that are the same in every run.
#pragma once

#include <QImage>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>

namespace imaging::testing {

enum class Alpha { Opaque, OnOrOff, Any };

// Every pixel another colour, with alpha of that kind; what cannot be seen is black.
inline QImage colourful(QSize size, Alpha alpha) {
    std::mt19937 random(static_cast<unsigned>(size.width() * 1000 + size.height()));
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const auto colour = static_cast<QRgb>(random());
            QRgb opacity = 0xFF;
            if (alpha == Alpha::OnOrOff) {
                opacity = colour >> 31U != 0 ? 0xFFU : 0U;
            }
            if (alpha == Alpha::Any) {
                opacity = colour >> 24U;
            }
            image.setPixel(x, y, opacity == 0 ? 0 : opacity << 24U | (colour & 0xFFFFFFU));
        }
    }
    if (alpha == Alpha::Any) { // also where there are but a few pixels
        image.setPixel(0, 0, qRgba(200, 100, 50, 77));
    }
    return image;
}

inline constexpr std::array kEveryAlpha{Alpha::Opaque, Alpha::OnOrOff, Alpha::Any};

} // namespace imaging::testing
