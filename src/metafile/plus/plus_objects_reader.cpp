// EMF+ objects: brushes, pens, paths, regions, fonts and string formats.
// Source: [MS-EMFPLUS] 2.2.1 and 2.2.2.
#include "metafile/plus/plus_fields.h"
#include "metafile/plus/plus_images.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace metafile {

namespace {

enum ObjectType : unsigned {
    BrushObject = 1,
    PenObject,
    PathObject,
    RegionObject,
    ImageObject,
    FontObject,
    StringFormatObject,
};

constexpr std::size_t kMostStops = 256;

QPainterPath readPath(PlusCursor in);

void readTransform(PlusCursor& in, std::uint32_t flags, PlusBrush& brush) {
    constexpr std::uint32_t kTransform = 0x2;
    if ((flags & kTransform) != 0) {
        brush.transform = in.transform();
    }
}

PlusWrap wrapOf(std::uint32_t value) {
    return value <= 4 ? static_cast<PlusWrap>(value) : PlusWrap::Tile;
}

QRgb mixed(QRgb from, QRgb to, double share) {
    const auto channel = [&](int (*of)(QRgb)) {
        return std::clamp(static_cast<int>(std::lround(of(from) + (of(to) - of(from)) * share)), 0,
                          255);
    };
    return qRgba(channel(qRed), channel(qGreen), channel(qBlue), channel(qAlpha));
}

constexpr std::uint32_t kPresetColours = 0x4;
constexpr std::uint32_t kShares = 0x8;
constexpr std::uint32_t kSharesDown = 0x10;

// Positions that do not fall, then what belongs to each.
template <typename Stop, typename Read>
std::vector<Stop> readPlaced(PlusCursor& in, Read read) {
    const std::size_t count = in.count(8);
    if (count > kMostStops) {
        throw imaging::DecodeError("a gradient in the metafile has too many colours");
    }
    std::vector<Stop> stops(count);
    double latest = 0;
    for (Stop& stop : stops) {
        stop.at = latest = std::clamp(in.real(), latest, 1.0);
    }
    for (Stop& stop : stops) {
        read(stop);
    }
    return stops;
}

std::vector<PlusStop> readColours(PlusCursor& in) {
    return readPlaced<PlusStop>(in, [&](PlusStop& stop) { stop.colour = in.colour(); });
}

std::vector<PlusShare> readShares(PlusCursor& in) {
    return readPlaced<PlusShare>(
        in, [&](PlusShare& stop) { stop.share = std::clamp(in.real(), 0.0, 1.0); });
}

std::vector<PlusStop> stopsOf(const std::vector<PlusShare>& shares, QRgb from, QRgb to) {
    std::vector<PlusStop> stops;
    stops.reserve(shares.size());
    for (const PlusShare& share : shares) {
        stops.push_back({share.at, mixed(from, to, share.share)});
    }
    return stops;
}

PlusBrush readTexture(PlusCursor& in) {
    PlusBrush brush;
    brush.kind = PlusBrushKind::Texture;
    const std::uint32_t flags = in.u32();
    brush.wrap = wrapOf(in.u32());
    readTransform(in, flags, brush);
    brush.texture = readPlusImage(in.rest()).image;
    if (brush.texture.isNull()) {
        throw imaging::DecodeError("a texture in the metafile cannot be read");
    }
    return brush;
}

PlusBrush readPathGradient(PlusCursor& in) {
    constexpr std::uint32_t kBoundaryPath = 0x1;
    constexpr std::uint32_t kFocus = 0x40;
    PlusBrush brush;
    brush.kind = PlusBrushKind::PathGradient;
    const std::uint32_t flags = in.u32();
    brush.wrap = wrapOf(in.u32());
    brush.colour = in.colour();
    brush.centre = in.point();
    for (std::size_t left = in.count(4); left > 0; --left) {
        brush.surroundings.push_back(in.colour());
    }
    if (brush.surroundings.empty()) {
        brush.surroundings.push_back(qRgba(0, 0, 0, 0));
    }
    if ((flags & kBoundaryPath) != 0) {
        const std::size_t size = in.count(1);
        brush.boundary = readPath(PlusCursor(in.bytes(size)));
    } else {
        const std::size_t count = in.count(8);
        const auto points = readPlusPoints(in, count, PlusPoints::Real);
        brush.boundary.addPolygon(QPolygonF(QList<QPointF>(points.begin(), points.end())));
        brush.boundary.closeSubpath();
    }
    readTransform(in, flags, brush);
    if ((flags & kPresetColours) != 0) {
        brush.stops = readColours(in);
    } else if ((flags & kShares) != 0) {
        brush.shares = readShares(in);
    }
    if ((flags & kFocus) != 0) {
        in.u32(); // how many numbers follow: always two
        brush.focus = in.point();
    }
    return brush;
}

PlusBrush readLinearGradient(PlusCursor& in) {
    PlusBrush brush;
    brush.kind = PlusBrushKind::LinearGradient;
    const std::uint32_t flags = in.u32();
    brush.wrap = wrapOf(in.u32());
    brush.rectangle = in.rectangle();
    const QRgb from = in.colour();
    const QRgb to = in.colour();
    in.bytes(std::min<std::size_t>(in.left(), 8)); // reserved; some writers leave them out
    readTransform(in, flags, brush);
    if ((flags & kPresetColours) != 0) {
        brush.stops = readColours(in);
    } else if ((flags & (kShares | kSharesDown)) != 0) {
        brush.stops = stopsOf(readShares(in), from, to);
    }
    brush.runsDown = (flags & (kPresetColours | kShares | kSharesDown)) == kSharesDown;
    if (brush.stops.empty()) {
        brush.stops = {{0, from}, {1, to}};
    }
    return brush;
}

PlusBrush readBrush(PlusCursor in) {
    in.u32(); // version
    const std::uint32_t type = in.u32();
    PlusBrush brush;
    switch (type) {
    case 0:
        brush.colour = in.colour();
        return brush;
    case 1:
        brush.kind = PlusBrushKind::Hatch;
        brush.hatch = static_cast<int>(std::min(in.u32(), std::uint32_t{52}));
        brush.colour = in.colour();
        brush.ground = in.colour();
        return brush;
    case 2:
        return readTexture(in);
    case 3:
        return readPathGradient(in);
    case 4:
        return readLinearGradient(in);
    default:
        throw imaging::DecodeError("a brush in the metafile is of an unknown kind");
    }
}

PlusCap capOf(std::uint32_t value) {
    return value <= 3 ? static_cast<PlusCap>(value) : PlusCap::Flat;
}

void setLineEnd(PlusLineEnd& end, std::uint32_t value) {
    constexpr std::uint32_t kFirstHead = 0x11;
    constexpr std::uint32_t kLastHead = 0x14;
    end.cap = capOf(value);
    if (value >= kFirstHead && value <= kLastHead) {
        end.head = static_cast<PlusHead>(value - kFirstHead + 1);
    }
}

std::vector<double> dashesOf(std::uint32_t style) {
    switch (style) {
    case 1:
        return {3, 1};
    case 2:
        return {1, 1};
    case 3:
        return {3, 1, 1, 1};
    case 4:
        return {3, 1, 1, 1, 1, 1};
    default:
        return {};
    }
}

std::vector<double> readReals(PlusCursor& in) {
    std::vector<double> values(in.count(4));
    for (double& value : values) {
        value = std::max(0.0, in.real());
    }
    return values;
}

QPainterPath readSizedPath(PlusCursor& in) {
    const std::size_t size = in.count(1);
    return readPath(PlusCursor(in.bytes(size)));
}

void readArrow(PlusCursor& in, PlusLineEnd& end) {
    const double width = in.real();
    const double height = in.real();
    const double notch = in.real();
    const bool filled = in.u32() != 0;
    const QPointF left(-width / 2, -height);
    const QPointF right(width / 2, -height);
    QPainterPath path(left);
    path.lineTo(0, 0);
    path.lineTo(right);
    if (!filled) {
        end.line = path;
        return;
    }
    path.lineTo(0, notch - height);
    path.closeSubpath();
    end.fill = path;
    end.inset = std::max(0.0, height - notch);
}

void readPathCap(PlusCursor& in, PlusLineEnd& end) {
    constexpr std::uint32_t kFill = 1;
    constexpr std::uint32_t kLine = 2;
    const std::uint32_t parts = in.u32();
    in.u32(); // the cap below it
    end.inset = std::max(0.0, in.real());
    in.bytes(16); // caps, joins and mitres of its line
    const double scale = in.real();
    in.bytes(16); // two points that are always zero
    const QTransform larger = QTransform::fromScale(scale, scale);
    if ((parts & kFill) != 0) {
        end.fill = larger.map(readSizedPath(in));
    }
    if ((parts & kLine) != 0) {
        end.line = larger.map(readSizedPath(in));
    }
    end.lineWidth = std::clamp(std::abs(scale), 0.01, 100.0);
}

// Its size comes first.
void readCustomEnd(PlusCursor& in, PlusLineEnd& end) {
    constexpr std::uint32_t kArrow = 1;
    const std::size_t size = in.count(1);
    PlusCursor cap(in.bytes(size));
    cap.u32(); // version
    end.head = PlusHead::Custom;
    if (cap.u32() == kArrow) {
        readArrow(cap, end);
    } else {
        readPathCap(cap, end);
    }
}

// The optional fields stand in the order of their flags.
PlusPen readPen(PlusCursor in) {
    enum Field : std::uint32_t {
        Transform = 0x1,
        StartCap = 0x2,
        EndCap = 0x4,
        Join = 0x8,
        MiterLimit = 0x10,
        LineStyle = 0x20,
        DashCap = 0x40,
        DashOffset = 0x80,
        Dashes = 0x100,
        Alignment = 0x200,
        Compound = 0x400,
        CustomStartCap = 0x800,
        CustomEndCap = 0x1000,
    };
    PlusPen pen;
    in.bytes(8); // version, type
    const std::uint32_t fields = in.u32();
    const auto has = [&](Field field) { return (fields & field) != 0; };
    pen.unit = in.unit();
    pen.width = std::abs(in.real());
    if (has(Transform)) {
        pen.transform = in.transform();
    }
    if (has(StartCap)) {
        setLineEnd(pen.start, in.u32());
    }
    if (has(EndCap)) {
        setLineEnd(pen.end, in.u32());
    }
    if (has(Join)) {
        const std::uint32_t join = in.u32();
        constexpr std::array kJoins{Qt::MiterJoin, Qt::BevelJoin, Qt::RoundJoin, Qt::SvgMiterJoin};
        pen.join = join < kJoins.size() ? kJoins[join] : Qt::MiterJoin;
    }
    if (has(MiterLimit)) {
        pen.miterLimit = in.real();
    }
    if (has(LineStyle)) {
        pen.dashes = dashesOf(in.u32());
    }
    if (has(DashCap)) {
        pen.dashCap = capOf(in.u32());
    }
    if (has(DashOffset)) {
        pen.dashOffset = in.real();
    }
    if (has(Dashes)) {
        pen.dashes = readReals(in);
    }
    if (has(Alignment) && in.u32() == 1) {
        pen.place = PlusPenPlace::Inside;
    }
    if (has(Compound)) {
        pen.lines = readReals(in);
    }
    if (has(CustomStartCap)) {
        readCustomEnd(in, pen.start);
    }
    if (has(CustomEndCap)) {
        readCustomEnd(in, pen.end);
    }
    pen.brush = readBrush(PlusCursor(in.rest()));
    return pen;
}

std::vector<std::uint8_t> readTypes(PlusCursor& in, std::size_t count, bool runs) {
    constexpr std::uint8_t kRunLength = 0x3F;
    std::vector<std::uint8_t> types;
    while (types.size() < count) {
        if (!runs) {
            types.push_back(in.u8());
            continue;
        }
        const std::size_t length = in.u8() & kRunLength;
        const std::uint8_t type = in.u8();
        if (length == 0) {
            throw imaging::DecodeError("a path in the metafile cannot be read");
        }
        types.insert(types.end(), std::min(length, count - types.size()), type);
    }
    return types;
}

QPainterPath readPath(PlusCursor in) {
    constexpr std::uint32_t kRelative = 0x800; // with types in runs too
    constexpr std::uint32_t kRuns = 0x1000;
    constexpr std::uint32_t kWinding = 0x2000;
    constexpr std::uint32_t kSmall = 0x4000;
    constexpr unsigned kLine = 1;
    constexpr unsigned kCurve = 3;
    constexpr unsigned kCloses = 0x80;
    in.u32(); // version
    const std::size_t count = in.count(2);
    const std::uint32_t flags = in.u32();
    const PlusPoints kind = (flags & kRelative) != 0 ? PlusPoints::Relative
                            : (flags & kSmall) != 0  ? PlusPoints::Small
                                                     : PlusPoints::Real;
    const std::vector<QPointF> points = readPlusPoints(in, count, kind);
    const std::vector<std::uint8_t> types =
        readTypes(in, count, (flags & (kRuns | kRelative)) != 0);
    QPainterPath path;
    path.setFillRule((flags & kWinding) != 0 ? Qt::WindingFill : Qt::OddEvenFill);
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned type = types[i] & 0x7U;
        if (type == kCurve && i + 2 < count) {
            path.cubicTo(points[i], points[i + 1], points[i + 2]);
            i += 2;
        } else if (type == kLine) {
            path.lineTo(points[i]);
        } else {
            path.moveTo(points[i]);
        }
        if ((types[i] & kCloses) != 0) {
            path.closeSubpath();
        }
    }
    return path;
}

PlusRegionNode readRegionNode(PlusCursor& in) {
    constexpr std::uint32_t kRectangle = 0x10000000;
    constexpr std::uint32_t kPath = 0x10000001;
    constexpr std::uint32_t kEmpty = 0x10000002;
    PlusRegionNode node;
    const std::uint32_t type = in.u32();
    if (type >= 1 && type <= 5) {
        node.kind = static_cast<PlusRegionKind>(type - 1);
    } else if (type == kRectangle) {
        node.kind = PlusRegionKind::Shape;
        node.shape.addRect(in.rectangle());
    } else if (type == kPath) {
        node.kind = PlusRegionKind::Shape;
        const std::size_t size = in.count(1);
        node.shape = readPath(PlusCursor(in.bytes(size)));
    } else {
        node.kind = type == kEmpty ? PlusRegionKind::Empty : PlusRegionKind::Infinite;
    }
    return node;
}

// The tree is told from its root, each node before its operands.
PlusRegion readRegion(PlusCursor in) {
    in.bytes(8); // version, number of nodes
    PlusRegion region;
    for (std::size_t missing = 1; missing > 0;) {
        region.nodes.push_back(readRegionNode(in));
        if (region.nodes.back().kind < PlusRegionKind::Shape) {
            ++missing;
        } else {
            --missing;
        }
    }
    return region;
}

PlusFont readFont(PlusCursor in) {
    enum Style : std::uint32_t { Bold = 1, Italic = 2, Underline = 4, StrikeOut = 8 };
    PlusFont font;
    in.u32(); // version
    font.size = std::abs(in.real());
    font.unit = in.unit();
    const std::uint32_t style = in.u32();
    font.bold = (style & Bold) != 0;
    font.italic = (style & Italic) != 0;
    font.underline = (style & Underline) != 0;
    font.strikeOut = (style & StrikeOut) != 0;
    in.u32(); // reserved
    font.family = in.text(in.count(2));
    return font;
}

PlusStringFormat readStringFormat(PlusCursor in) {
    constexpr std::uint32_t kRightToLeft = 0x1;
    constexpr std::uint32_t kVertical = 0x2;
    constexpr std::uint32_t kNoWrap = 0x1000;
    constexpr std::uint32_t kNoClip = 0x4000;
    const auto alignment = [&] {
        return static_cast<PlusAlignment>(std::min(in.u32(), std::uint32_t{2}));
    };
    PlusStringFormat format;
    in.u32(); // version
    const std::uint32_t flags = in.u32();
    format.rightToLeft = (flags & kRightToLeft) != 0;
    format.vertical = (flags & kVertical) != 0;
    format.wraps = (flags & kNoWrap) == 0;
    format.clips = (flags & kNoClip) == 0;
    in.u32(); // language
    format.across = alignment();
    format.down = alignment();
    in.bytes(12); // digits of other languages, tabulator
    format.marksKeys = in.u32() != 0;
    format.leadingMargin = std::clamp(in.real(), 0.0, 10.0);
    return format;
}

} // namespace

double PlusCursor::real() {
    constexpr double kMost = 1e9;
    const double value = std::bit_cast<float>(u32());
    if (!std::isfinite(value)) {
        throw imaging::DecodeError("a number in the metafile cannot be read");
    }
    return std::clamp(value, -kMost, kMost);
}

QPointF PlusCursor::point() {
    const double x = real();
    return {x, real()};
}

QRectF PlusCursor::rectangle() {
    const QPointF corner = point();
    const QPointF size = point();
    return {corner, QSizeF(size.x(), size.y())};
}

QRectF PlusCursor::smallRectangle() {
    const double x = i16();
    const double y = i16();
    const double width = i16();
    return {x, y, width, double{1} * i16()};
}

QTransform PlusCursor::transform() {
    std::array<double, 6> m{};
    for (double& value : m) {
        value = real();
    }
    return {m[0], m[1], m[2], m[3], m[4], m[5]};
}

PlusUnit PlusCursor::unit() {
    return plusUnitOf(u32());
}

QString PlusCursor::text(std::size_t units) {
    QString text;
    for (std::size_t i = 0; i < units; ++i) {
        text.append(QChar(u16()));
    }
    return text;
}

std::size_t PlusCursor::count(std::size_t size) {
    const std::size_t count = u32();
    if (count > left() / size) {
        throw imaging::DecodeError("the metafile is cut short");
    }
    return count;
}

PlusUnit plusUnitOf(std::uint32_t value) {
    return value <= 6 ? static_cast<PlusUnit>(value) : PlusUnit::Pixel;
}

std::vector<QPointF> readPlusPoints(PlusCursor& in, std::size_t count, PlusPoints kind) {
    // One byte with seven bits, or two with fifteen, the larger half first.
    const auto step = [&] {
        constexpr unsigned kLong = 0x80;
        const unsigned first = in.u8();
        if ((first & kLong) == 0) {
            return static_cast<double>(static_cast<int>(first << 25U) >> 25);
        }
        const unsigned value = (first & 0x7FU) << 8U | in.u8();
        return static_cast<double>(static_cast<int>(value << 17U) >> 17);
    };
    std::vector<QPointF> points;
    QPointF last;
    for (std::size_t i = 0; i < count; ++i) {
        if (kind == PlusPoints::Relative) {
            const double across = step();
            last += QPointF(across, step());
        } else if (kind == PlusPoints::Small) {
            const double x = in.i16();
            last = {x, double{1} * in.i16()};
        } else {
            last = in.point();
        }
        points.push_back(last);
    }
    return points;
}

PlusObject readPlusObject(unsigned type, std::span<const std::byte> data) {
    switch (type) {
    case BrushObject:
        return readBrush(PlusCursor(data));
    case PenObject:
        return readPen(PlusCursor(data));
    case PathObject:
        return readPath(PlusCursor(data));
    case RegionObject:
        return readRegion(PlusCursor(data));
    case ImageObject:
        return readPlusImage(data);
    case FontObject:
        return readFont(PlusCursor(data));
    case StringFormatObject:
        return readStringFormat(PlusCursor(data));
    default:
        return {};
    }
}

} // namespace metafile
