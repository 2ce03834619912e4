// Colours as numbers to calculate with: 0..255 each, fractions allowed.
#pragma once

#include <QRgb>

#include <algorithm>
#include <cmath>

namespace imaging {

struct Colour {
    float red = 0;
    float green = 0;
    float blue = 0;

    friend Colour operator+(Colour one, Colour other) {
        return {one.red + other.red, one.green + other.green, one.blue + other.blue};
    }
    friend Colour operator-(Colour one, Colour other) {
        return {one.red - other.red, one.green - other.green, one.blue - other.blue};
    }
    friend Colour operator*(Colour colour, float factor) {
        return {colour.red * factor, colour.green * factor, colour.blue * factor};
    }
};

inline Colour toColour(QRgb colour) {
    return {static_cast<float>(qRed(colour)), static_cast<float>(qGreen(colour)),
            static_cast<float>(qBlue(colour))};
}

inline float squaredDistance(Colour one, Colour other) {
    const Colour apart = one - other;
    return apart.red * apart.red + apart.green * apart.green + apart.blue * apart.blue;
}

// Of a pixel that becomes transparent where there is only opaque and transparent.
inline bool isSeenThrough(QRgb pixel) {
    return qAlpha(pixel) < 128;
}

} // namespace imaging
