// Changes of colour, pixel by pixel, on all cores.
//
// Images: RGB32 and ARGB32 are worked on in place; any other becomes RGB32 or, if it has alpha,
// ARGB32 first. Amounts beyond a range count as its nearest end. Alpha never changes, and colours
// are those of straight (not premultiplied) pixels, so that a pixel's change does not depend on its
// alpha; colours of fully transparent pixels change like all others. Results are rounded to the
// nearest level and clamped to [0, 255]. An amount of 0, and a null image, are left alone
// altogether.
//
// An image that shares its pixels with others is given pixels of its own. Throws std::bad_alloc
// when there is no memory for them; the image then is as it was.
//
// Source for HSL (hue, saturation, lightness): G. H. Joblove and D. Greenberg, "Color spaces for
// computer graphics", SIGGRAPH 1978; formulas as in CSS Color Module Level 4, section 8 (W3C).
#pragma once

#include <QImage>

namespace imaging::operations {

inline constexpr int kMostAmount = 1000;      // of saturation, contrast and intensity, either way
inline constexpr int kMostHueAmount = 18'000; // hundredths of a degree, either way

// In thousandths of the saturation: S' = S * (1 + amount / 1000), at most 1, in HSL with hue and
// lightness kept. -1000: shades of grey; 1000: twice as saturated. Grey stays grey.
void changeSaturation(QImage& image, int amount);

// In thousandths of the slope: c' = 127.5 + (c - 127.5) * (1 + amount / 1000). -1000: all one grey;
// 1000: twice as far from the middle. Source: Filter Effects Module Level 1, contrast() (W3C).
void changeContrast(QImage& image, int amount);

// In thousandths of the way from black to white: c' = c + 255 * amount / 1000. -1000: black, 1000:
// white. Source: Filter Effects Module Level 1, the linear component transfer function (W3C).
void changeIntensity(QImage& image, int amount);

// Turns the hue by hundredths of a degree in HSL, saturation and lightness kept: 12000 makes red
// green, green blue and blue red. Any number of turns; whole turns change nothing. Each pixel's
// largest and smallest channel value stay exactly, so that turning back gives each channel to
// within one level.
void changeHue(QImage& image, int hundredthsOfDegree);

// c' = 255 - c.
void invert(QImage& image);

enum class ColourProperty { Saturation, Contrast, Intensity, Hue };

struct ColourChange {
    ColourProperty property = ColourProperty::Saturation;
    int amount = 0; // in the unit and range of the property's function above
};

// One of the four above, in place.
void apply(const ColourChange& change, QImage& image);

// The same from `source` into `target`, for previews: read once, written once. Pixels of `target`
// are reused if it has the size and format of the result and shares them with no other image, or
// else it becomes a new image. To see a part only, let `source` be an image on that part's pixels.
void apply(const ColourChange& change, const QImage& source, QImage& target);

} // namespace imaging::operations
