#include "metafile/records/stock_objects.h"

#include <array>
#include <span>

namespace metafile {

namespace {

constexpr std::array<QRgb, 20> kDefaultPalette{
    0xFF000000, 0xFF800000, 0xFF008000, 0xFF808000, 0xFF000080, 0xFF800080, 0xFF008080,
    0xFFC0C0C0, 0xFFC0DCC0, 0xFFA6CAF0, 0xFFFFFBF0, 0xFFA0A0A4, 0xFF808080, 0xFFFF0000,
    0xFF00FF00, 0xFFFFFF00, 0xFF0000FF, 0xFFFF00FF, 0xFF00FFFF, 0xFFFFFFFF};

Object stockPen(QRgb colour) {
    Pen pen;
    pen.brush.colour = colour;
    return pen;
}

Object stockFont(const char* family, std::uint8_t pitchAndFamily) {
    constexpr double kHeight = 16;
    Font font;
    font.height = kHeight;
    font.deviceUnits = true;
    font.family = QString::fromLatin1(family);
    font.pitchAndFamily = pitchAndFamily;
    return font;
}

Object nullPen() {
    Pen pen;
    pen.style = PenStyle::Null;
    return pen;
}

} // namespace

QRgb meantColour(std::uint32_t value, const Palette* selected) {
    constexpr std::uint32_t kPaletteIndex = 1;
    if (value >> 24U != kPaletteIndex) {
        return qRgb(static_cast<int>(value & 0xFFU), static_cast<int>(value >> 8U & 0xFFU),
                    static_cast<int>(value >> 16U & 0xFFU));
    }
    const std::size_t index = value & 0xFFFFU;
    const std::span<const QRgb> colours = selected != nullptr
                                              ? std::span<const QRgb>(selected->colours)
                                              : std::span<const QRgb>(kDefaultPalette);
    return index < colours.size() ? colours[index] | 0xFF000000U : qRgb(0, 0, 0);
}

Brush solidBrush(QRgb colour) {
    Brush brush;
    brush.colour = colour;
    return brush;
}

Object stockObject(std::uint32_t number) {
    constexpr std::uint8_t kFixedModern = 0x31;
    constexpr std::uint8_t kVariableSwiss = 0x22;
    switch (number) {
    case 0:
    case 18:
        return solidBrush(qRgb(255, 255, 255));
    case 1:
        return solidBrush(qRgb(192, 192, 192));
    case 2:
        return solidBrush(qRgb(128, 128, 128));
    case 3:
        return solidBrush(qRgb(64, 64, 64));
    case 4:
        return solidBrush(qRgb(0, 0, 0));
    case 5:
        return plainBrush(1, 0, 0);
    case 6:
        return stockPen(qRgb(255, 255, 255));
    case 7:
    case 19:
        return stockPen(qRgb(0, 0, 0));
    case 8:
        return nullPen();
    case 10:
    case 11:
    case 16:
        return stockFont("Courier", kFixedModern);
    case 12:
    case 13:
    case 14:
    case 17:
        return stockFont("Arial", kVariableSwiss);
    default:
        return {};
    }
}

PenStyle penStyleOf(std::uint32_t style) {
    constexpr std::uint32_t kAlternate = 8;
    switch (style & 0xFU) {
    case 1:
        return PenStyle::Dash;
    case 2:
    case kAlternate:
        return PenStyle::Dot;
    case 3:
        return PenStyle::DashDot;
    case 4:
        return PenStyle::DashDotDot;
    case 5:
        return PenStyle::Null;
    case 6:
        return PenStyle::InsideFrame;
    case 7:
        return PenStyle::UserDashes;
    default:
        return PenStyle::Solid;
    }
}

Qt::PenCapStyle penCapOf(std::uint32_t style) {
    switch (style & 0xF00U) {
    case 0x100:
        return Qt::SquareCap;
    case 0x200:
        return Qt::FlatCap;
    default:
        return Qt::RoundCap;
    }
}

Qt::PenJoinStyle penJoinOf(std::uint32_t style) {
    switch (style & 0xF000U) {
    case 0x1000:
        return Qt::BevelJoin;
    case 0x2000:
        return Qt::SvgMiterJoin; // bevelled beyond the limit, not cut at it
    default:
        return Qt::RoundJoin;
    }
}

Brush plainBrush(std::uint32_t style, QRgb colour, std::uint32_t hatch) {
    constexpr std::uint32_t kNull = 1;
    constexpr std::uint32_t kHatched = 2;
    constexpr std::uint32_t kHatches = 6;
    constexpr std::uint32_t kTextColour = 8;  // and 9
    constexpr std::uint32_t kBackground = 10; // and 11
    Brush brush = solidBrush(colour);
    if (style == kNull) {
        brush.kind = BrushKind::Null;
    }
    if (style == kHatched && hatch < kHatches) {
        brush.kind = BrushKind::Hatched;
        brush.hatch = static_cast<int>(hatch);
    } else if (style == kHatched && hatch >= kTextColour) {
        brush.ink = hatch < kBackground ? BrushInk::Text : BrushInk::Background;
    }
    return brush;
}

} // namespace metafile
