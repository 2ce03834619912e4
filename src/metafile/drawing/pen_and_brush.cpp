#include "metafile/drawing/pen_and_brush.h"

#include <algorithm>
#include <array>

namespace metafile {

namespace {

constexpr int kCopyPen = 13;

// Lengths of dashes and gaps in turn; thin pens' in image pixels, wide pens' in widths.
QList<qreal> dashes(PenStyle style, bool thin) {
    switch (style) {
    case PenStyle::Dash:
        return thin ? QList<qreal>{12, 4} : QList<qreal>{3, 1};
    case PenStyle::Dot:
        return thin ? QList<qreal>{3, 3} : QList<qreal>{1, 1};
    case PenStyle::DashDot:
        return thin ? QList<qreal>{9, 4, 3, 4} : QList<qreal>{3, 1, 1, 1};
    case PenStyle::DashDotDot:
        return thin ? QList<qreal>{9, 3, 3, 3, 3, 3} : QList<qreal>{3, 1, 1, 1, 1, 1};
    default:
        return {};
    }
}

// Told lengths -> widths of the pen. Empty where they make no sensible pattern.
QList<qreal> userDashes(const Pen& pen, double unit, double width) {
    constexpr double kShortest = 0.5; // image pixels a period
    QList<qreal> result;
    double period = 0;
    for (const double length : pen.dashes) {
        const double dash = std::max(0.0, length) * unit;
        period += dash;
        // A dash without length is the dot that its round ends make.
        result.append(std::max(dash / width, 0.01));
    }
    if (period < kShortest) {
        return {};
    }
    if (result.size() % 2 != 0) {
        result += result;
    }
    return result;
}

} // namespace

QPen painterPen(const DeviceContext& context) {
    const Pen& pen = context.pen;
    if (pen.style == PenStyle::Null || pen.brush.kind == BrushKind::Null) {
        return Qt::NoPen;
    }
    const bool cosmetic = pen.widthKind == PenWidth::Cosmetic;
    constexpr double kWidest = 30000; // image pixels; more covers no more of any sheet
    const double width = cosmetic ? 1 : std::clamp(pen.width * context.scale(), 1.0, kWidest);
    constexpr double kThin = 1.5;
    QPen result(painterBrush(pen.brush, context), width, Qt::SolidLine, pen.cap, pen.join);
    result.setMiterLimit(std::max(1.0, context.miterLimit));
    QList<qreal> pattern = dashes(pen.style, width < kThin);
    if (pen.style == PenStyle::UserDashes) {
        pattern = userDashes(pen, cosmetic ? 1 : context.scale(), width);
    } else if (width < kThin && !pattern.isEmpty()) {
        std::for_each(pattern.begin(), pattern.end(), [width](qreal& dash) { dash /= width; });
    }
    if (!pattern.isEmpty()) {
        result.setDashPattern(pattern);
        // Round ends would close the gaps of thin dashes.
        if (width < kThin) {
            result.setCapStyle(Qt::FlatCap);
        }
    }
    return result;
}

QBrush painterBrush(const Brush& brush, const DeviceContext& context) {
    constexpr std::array kHatches{Qt::HorPattern,   Qt::VerPattern,   Qt::FDiagPattern,
                                  Qt::BDiagPattern, Qt::CrossPattern, Qt::DiagCrossPattern};
    switch (brush.kind) {
    case BrushKind::Null:
        return Qt::NoBrush;
    case BrushKind::Hatched:
        return {QColor::fromRgb(brush.colour), kHatches.at(static_cast<std::size_t>(brush.hatch))};
    case BrushKind::Pattern:
        return QBrush(brush.monochrome ? inContextColours(brush.pattern, context) : brush.pattern);
    case BrushKind::Solid:
        break;
    }
    switch (brush.ink) {
    case BrushInk::Text:
        return QColor::fromRgb(context.textColour);
    case BrushInk::Background:
        return QColor::fromRgb(context.backgroundColour);
    case BrushInk::Own:
        break;
    }
    return QColor::fromRgb(brush.colour);
}

double patternCost(const Brush& brush) {
    return brush.kind == BrushKind::Pattern ? 2.0 * brush.pattern.width() * brush.pattern.height()
                                            : 0;
}

std::optional<QPainter::CompositionMode> compositionMode(int rasterOperation) {
    switch (rasterOperation) {
    case 1:
        return QPainter::RasterOp_ClearDestination;
    case 2:
        return QPainter::RasterOp_NotSourceAndNotDestination;
    case 3:
        return QPainter::RasterOp_NotSourceAndDestination;
    case 4:
        return QPainter::RasterOp_NotSource;
    case 5:
        return QPainter::RasterOp_SourceAndNotDestination;
    case 6:
        return QPainter::RasterOp_NotDestination;
    case 7:
        return QPainter::RasterOp_SourceXorDestination;
    case 8:
        return QPainter::RasterOp_NotSourceOrNotDestination;
    case 9:
        return QPainter::RasterOp_SourceAndDestination;
    case 10:
        return QPainter::RasterOp_NotSourceXorDestination;
    case 11:
        return std::nullopt;
    case 12:
        return QPainter::RasterOp_NotSourceOrDestination;
    case 14:
        return QPainter::RasterOp_SourceOrNotDestination;
    case 15:
        return QPainter::RasterOp_SourceOrDestination;
    case 16:
        return QPainter::RasterOp_SetDestination;
    default:
        return QPainter::CompositionMode_SourceOver;
    }
}

bool copiesPen(const DeviceContext& context) {
    return context.rasterOperation == kCopyPen;
}

QImage inContextColours(const QImage& image, const DeviceContext& context) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < result.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(result.scanLine(y));
        std::transform(row, row + result.width(), row, [&](QRgb pixel) {
            return qGray(pixel) < 128 ? context.textColour : context.backgroundColour;
        });
    }
    return result;
}

} // namespace metafile
