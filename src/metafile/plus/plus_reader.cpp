#include "metafile/plus/plus_reader.h"

#include "metafile/plus/plus_fields.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

enum Type : std::uint16_t {
    Header = 0x4001,
    GetDc = 0x4004,
    Object_ = 0x4008,
    Clear,
    FillRects,
    DrawRects,
    FillPolygon,
    DrawLines,
    FillEllipse,
    DrawEllipse,
    FillPie,
    DrawPie,
    DrawArc,
    FillRegion,
    FillPath,
    DrawPath,
    FillClosedCurve,
    DrawClosedCurve,
    DrawCurve,
    DrawBeziers,
    DrawImage,
    DrawImagePoints,
    DrawString,
    SetRenderingOrigin,
    SetInterpolationMode = 0x4021,
    SetCompositingMode = 0x4023,
    Save = 0x4025,
    Restore,
    BeginContainer,
    BeginContainerNoParams,
    EndContainer,
    SetWorldTransform,
    ResetWorldTransform,
    MultiplyWorldTransform,
    TranslateWorldTransform,
    ScaleWorldTransform,
    RotateWorldTransform,
    SetPageTransform,
    ResetClip,
    SetClipRect,
    SetClipPath,
    SetClipRegion,
    OffsetClip,
    DrawDriverString,
};

enum Flag : unsigned {
    IsColour = 0x8000,   // the brush's number is a colour
    IsSmall = 0x4000,    // 16-bit integers
    Closes = 0x2000,     // a line's end is joined with its begin
    Winding = 0x2000,    // of filled curves
    Appends = 0x2000,    // of transforms
    IsRelative = 0x0800, // points as steps
};

constexpr std::size_t kNumbers = 64;

// A record's flags and what they say of its data.
struct Reading {
    std::uint16_t type;
    unsigned flags;
    PlusCursor in;

    bool has(Flag flag) const { return (flags & flag) != 0; }
    std::size_t number() const { return flags & 0xFFU; }

    PlusFillWith brush() {
        const std::uint32_t value = in.u32();
        if (has(IsColour)) {
            return QRgb{value};
        }
        return std::size_t{value};
    }
    QRectF rectangle() { return has(IsSmall) ? in.smallRectangle() : in.rectangle(); }
    std::vector<QPointF> points() {
        const std::size_t count = in.count(2);
        return points(count);
    }
    std::vector<QPointF> points(std::size_t count) {
        return readPlusPoints(in, count,
                              has(IsRelative) ? PlusPoints::Relative
                              : has(IsSmall)  ? PlusPoints::Small
                                              : PlusPoints::Real);
    }
};

QPainterPath polygonOf(const std::vector<QPointF>& points, bool closed) {
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points.begin(), points.end())));
    if (closed) {
        path.closeSubpath();
    }
    return path;
}

QPainterPath rectanglesOf(Reading& reading) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    const std::size_t count = reading.in.count(8);
    for (std::size_t i = 0; i < count; ++i) {
        path.addRect(reading.rectangle().normalized());
    }
    return path;
}

// Angles with the clock, as if the rectangle were a square.
QPainterPath arcOf(Reading& reading, bool pie) {
    const double start = std::fmod(reading.in.real(), 360.0);
    const double sweep = std::clamp(reading.in.real(), -360.0, 360.0);
    const QRectF rectangle = reading.rectangle().normalized();
    QPainterPath path;
    if (pie) {
        path.moveTo(rectangle.center());
    } else {
        path.arcMoveTo(rectangle, -start);
    }
    path.arcTo(rectangle, -start, -sweep);
    if (pie) {
        path.closeSubpath();
    }
    return path;
}

// A cardinal spline: at each point the curve runs along its neighbours' difference.
QPainterPath splineOf(const std::vector<QPointF>& points, double tension, bool closed) {
    constexpr double kThird = 1.0 / 3;
    if (points.size() < 2) {
        return {};
    }
    const std::size_t count = points.size();
    const auto tangent = [&](std::size_t i) {
        const std::size_t before = i > 0 ? i - 1 : closed ? count - 1 : 0;
        const std::size_t after = i + 1 < count ? i + 1 : closed ? 0 : count - 1;
        return (points[after] - points[before]) * tension * kThird;
    };
    QPainterPath path(points[0]);
    for (std::size_t i = 0; i + 1 < count + (closed ? 1 : 0); ++i) {
        const std::size_t next = (i + 1) % count;
        path.cubicTo(points[i] + tangent(i), points[next] - tangent(next), points[next]);
    }
    if (closed) {
        path.closeSubpath();
    }
    return path;
}

QPainterPath curvesOf(const std::vector<QPointF>& points) {
    QPainterPath path;
    if (points.empty()) {
        return path;
    }
    path.moveTo(points[0]);
    for (std::size_t i = 1; i + 2 < points.size(); i += 3) {
        path.cubicTo(points[i], points[i + 1], points[i + 2]);
    }
    return path;
}

QPainterPath ellipseOf(Reading& reading) {
    QPainterPath path;
    path.addEllipse(reading.rectangle().normalized());
    return path;
}

std::optional<PlusRecord> readFill(Reading& reading) {
    PlusFill fill;
    fill.with = reading.brush();
    switch (reading.type) {
    case FillRects:
        fill.shape = rectanglesOf(reading);
        return fill;
    case FillPolygon:
        fill.shape = polygonOf(reading.points(), true);
        return fill;
    case FillEllipse:
        fill.shape = ellipseOf(reading);
        return fill;
    case FillPie:
        fill.shape = arcOf(reading, true);
        return fill;
    case FillRegion:
    case FillPath:
        fill.shape = PlusShapeNumber{reading.number()};
        return fill;
    default: {
        const double tension = reading.in.real();
        QPainterPath path = splineOf(reading.points(), tension, true);
        path.setFillRule(reading.has(Winding) ? Qt::WindingFill : Qt::OddEvenFill);
        fill.shape = path;
        return fill;
    }
    }
}

std::optional<PlusRecord> readStroke(Reading& reading) {
    PlusStroke stroke;
    stroke.pen = reading.number();
    switch (reading.type) {
    case DrawRects:
        stroke.shape = rectanglesOf(reading);
        return stroke;
    case DrawLines:
        stroke.shape = polygonOf(reading.points(), reading.has(Closes));
        return stroke;
    case DrawEllipse:
        stroke.shape = ellipseOf(reading);
        return stroke;
    case DrawPie:
        stroke.shape = arcOf(reading, true);
        return stroke;
    case DrawArc:
        stroke.shape = arcOf(reading, false);
        return stroke;
    case DrawPath:
        stroke.pen = reading.in.u32();
        stroke.shape = PlusShapeNumber{reading.number()};
        return stroke;
    case DrawBeziers:
        stroke.shape = curvesOf(reading.points());
        return stroke;
    case DrawClosedCurve: {
        const double tension = reading.in.real();
        stroke.shape = splineOf(reading.points(), tension, true);
        return stroke;
    }
    default: { // DrawCurve
        const double tension = reading.in.real();
        const std::size_t first = reading.in.u32();
        const std::size_t segments = reading.in.u32();
        const std::vector<QPointF> all = reading.points();
        if (first >= all.size()) {
            return std::nullopt;
        }
        const auto begin = all.begin() + static_cast<std::ptrdiff_t>(first);
        const std::size_t taken = std::min(segments + 1, all.size() - first);
        stroke.shape =
            splineOf({begin, begin + static_cast<std::ptrdiff_t>(taken)}, tension, false);
        return stroke;
    }
    }
}

PlusDrawImage readImage(Reading& reading) {
    PlusDrawImage image;
    image.image = reading.number();
    reading.in.u32(); // image attributes
    image.unit = reading.in.unit();
    image.part = reading.in.rectangle();
    if (reading.type == DrawImage) {
        const QRectF to = reading.rectangle();
        image.corners = {to.topLeft(), to.topRight(), to.bottomLeft()};
        return image;
    }
    const std::size_t count = reading.in.count(2);
    const auto points = reading.points(std::min(count, image.corners.size()));
    std::copy(points.begin(), points.end(), image.corners.begin());
    return image;
}

PlusDrawString readString(Reading& reading) {
    PlusDrawString string;
    string.with = reading.brush();
    string.font = reading.number();
    string.format = reading.in.u32();
    const std::size_t length = reading.in.u32();
    string.layout = reading.in.rectangle();
    string.text = reading.in.text(std::min(length, reading.in.left() / 2));
    return string;
}

PlusDrawLetters readLetters(Reading& reading) {
    enum Option : std::uint32_t { Characters = 1, FollowAdvances = 4 };
    constexpr char32_t kGlyphOfSpace = 3;
    PlusDrawLetters letters;
    letters.with = reading.brush();
    letters.font = reading.number();
    const std::uint32_t options = reading.in.u32();
    const bool transformed = reading.in.u32() != 0;
    const std::size_t count = reading.in.count(2);
    for (std::size_t i = 0; i < count; ++i) {
        const char32_t unit = reading.in.u16();
        // Numbers of glyphs mean characters in the usual fonts, which begin with three others.
        const bool glyph = (options & Characters) == 0;
        letters.letters.push_back(glyph && unit >= kGlyphOfSpace ? unit - kGlyphOfSpace + U' '
                                                                 : unit);
    }
    letters.firstPlaceOnly = (options & FollowAdvances) != 0;
    // Writers align the places or do not; they write all of them or the first one alone.
    const std::size_t matrix = transformed ? 24 : 0;
    if (count % 2 != 0 && reading.in.left() >= 8 * count + matrix + 2) {
        reading.in.u16();
    }
    const bool isShort = letters.firstPlaceOnly && reading.in.left() < 8 * count + matrix;
    const std::size_t places = isShort ? std::min<std::size_t>(count, 1) : count;
    letters.places = readPlusPoints(reading.in, places, PlusPoints::Real);
    if (transformed && reading.in.left() >= 24) {
        letters.transform = reading.in.transform();
    }
    return letters;
}

PlusRecord readWorld(Reading& reading) {
    const PlusOrder order = reading.has(Appends) ? PlusOrder::Append : PlusOrder::Prepend;
    switch (reading.type) {
    case SetWorldTransform:
        return PlusSetWorld{reading.in.transform()};
    case ResetWorldTransform:
        return PlusSetWorld{};
    case MultiplyWorldTransform:
        return PlusMultiplyWorld{reading.in.transform(), order};
    case TranslateWorldTransform: {
        const QPointF by = reading.in.point();
        return PlusMultiplyWorld{QTransform::fromTranslate(by.x(), by.y()), order};
    }
    case ScaleWorldTransform: {
        const QPointF by = reading.in.point();
        return PlusMultiplyWorld{QTransform::fromScale(by.x(), by.y()), order};
    }
    default: {
        QTransform turn;
        turn.rotate(reading.in.real());
        return PlusMultiplyWorld{turn, order};
    }
    }
}

PlusRecord readClip(Reading& reading) {
    PlusClip clip;
    constexpr std::array kModes{ClipMode::Copy, ClipMode::And,        ClipMode::Or,
                                ClipMode::Xor,  ClipMode::Difference, ClipMode::Complement};
    clip.mode = kModes.at(std::min<std::size_t>(reading.flags >> 8U & 0xFU, kModes.size() - 1));
    if (reading.type == SetClipRect) {
        QPainterPath path;
        path.addRect(reading.in.rectangle().normalized());
        clip.shape = path;
    } else {
        clip.shape = PlusShapeNumber{reading.number()};
    }
    return clip;
}

PlusRecord readContainer(Reading& reading) {
    PlusBeginContainer container;
    if (reading.type == BeginContainer) {
        container.unit = plusUnitOf(reading.flags & 0xFFU);
        container.destination = reading.in.rectangle();
        container.source = reading.in.rectangle();
    }
    container.number = reading.in.u32();
    return container;
}

PlusBegin readHeader(Reading& reading) {
    reading.in.bytes(8); // version, flags
    const double dots = reading.in.u32();
    constexpr double kMost = 100000;
    return {dots > 0 && dots < kMost ? dots : 96};
}

std::optional<PlusRecord> readSetting(Reading& reading) {
    constexpr unsigned kNearestNeighbour = 5;
    switch (reading.type) {
    case SetInterpolationMode:
        return PlusSet{PlusSwitch::SmoothImages, reading.number() != kNearestNeighbour};
    case SetCompositingMode:
        return PlusSet{PlusSwitch::CopiesSource, reading.number() == 1};
    case SetRenderingOrigin: {
        // Patterns repeat long before these bounds.
        constexpr int kMost = 1'000'000;
        const int x = std::clamp(reading.in.i32(), -kMost, kMost);
        return PlusSetOrigin{QPoint(x, std::clamp(reading.in.i32(), -kMost, kMost))};
    }
    case SetPageTransform:
        return PlusSetPage{plusUnitOf(reading.flags & 0xFFU), reading.in.real()};
    case Save:
        return PlusSave{reading.in.u32()};
    case Restore:
    case EndContainer:
        return PlusRestore{reading.in.u32()};
    case BeginContainer:
    case BeginContainerNoParams:
        return readContainer(reading);
    case ResetClip:
        return PlusResetClip{};
    case OffsetClip:
        return PlusMoveClip{reading.in.point()};
    default:
        return std::nullopt;
    }
}

std::optional<PlusRecord> readDrawing(Reading& reading) {
    switch (reading.type) {
    case Clear:
        return PlusClear{reading.in.colour()};
    case FillRects:
    case FillPolygon:
    case FillEllipse:
    case FillPie:
    case FillRegion:
    case FillPath:
    case FillClosedCurve:
        return readFill(reading);
    case DrawRects:
    case DrawLines:
    case DrawEllipse:
    case DrawPie:
    case DrawArc:
    case DrawPath:
    case DrawClosedCurve:
    case DrawCurve:
    case DrawBeziers:
        return readStroke(reading);
    case DrawImage:
    case DrawImagePoints:
        return readImage(reading);
    case DrawString:
        return readString(reading);
    case DrawDriverString:
        return readLetters(reading);
    default:
        return std::nullopt;
    }
}

std::optional<PlusRecord> readAny(Reading& reading) {
    if (reading.type == Header) {
        return readHeader(reading);
    }
    if (reading.type == GetDc) {
        return PlusGetContext{};
    }
    if (reading.type >= SetWorldTransform && reading.type <= RotateWorldTransform) {
        return readWorld(reading);
    }
    if (reading.type >= SetClipRect && reading.type <= SetClipRegion) {
        return readClip(reading);
    }
    if (auto setting = readSetting(reading)) {
        return setting;
    }
    return readDrawing(reading);
}

void define(unsigned flags, std::span<const std::byte> data, const PlusReader::Sink& sink) {
    const std::size_t id = flags & 0xFFU;
    if (id < kNumbers) {
        sink(PlusDefine{id, readPlusObject(flags >> 8U & 0x7FU, data)});
    }
}

} // namespace

bool forEachPlusRecord(
    std::span<const std::byte> comment,
    const std::function<void(std::uint16_t, std::uint16_t, std::span<const std::byte>)>& take) {
    constexpr std::size_t kHeader = 12;
    const imaging::ByteReader in(comment);
    std::size_t at = 0;
    while (in.has(at, kHeader)) {
        const std::size_t size = in.u32(at + 4);
        const std::size_t dataSize = in.u32(at + 8);
        if (size < kHeader || !in.has(at, size) || dataSize > size - kHeader) {
            return false;
        }
        take(in.u16(at), in.u16(at + 2), in.part(at + kHeader, dataSize));
        at += size;
    }
    return true;
}

// All parts but maybe the last are flagged, and those begin with the size of the whole.
void PlusReader::readObject(std::uint16_t flags, std::span<const std::byte> data,
                            const Sink& sink) {
    constexpr unsigned kContinues = 0x8000;
    constexpr std::size_t kTotalSize = 4;
    const bool continues = (flags & kContinues) != 0;
    const unsigned what = flags & ~kContinues;
    if (unfinished_ && unfinished_->flags != what) {
        unfinished_.reset();
    }
    if (!continues && !unfinished_) {
        define(what, data, sink);
        return;
    }
    if (!unfinished_) {
        unfinished_ = Unfinished{what, imaging::ByteReader(data).u32(0), {}};
    }
    std::vector<std::byte>& bytes = unfinished_->bytes;
    const auto part = continues ? imaging::ByteReader(data).rest(kTotalSize) : data;
    const auto fitting = part.first(std::min(part.size(), unfinished_->size - bytes.size()));
    bytes.insert(bytes.end(), fitting.begin(), fitting.end());
    if (continues && bytes.size() < unfinished_->size) {
        return;
    }
    const Unfinished whole = std::move(*unfinished_);
    unfinished_.reset();
    define(what, whole.bytes, sink);
}

void PlusReader::readRecord(std::uint16_t type, std::uint16_t flags,
                            std::span<const std::byte> data, const Sink& sink) {
    if (type == Object_) {
        readObject(flags, data, sink);
        return;
    }
    unfinished_.reset();
    Reading reading{type, flags, PlusCursor(data)};
    if (const auto record = readAny(reading)) {
        sink(*record);
    }
}

void PlusReader::read(std::span<const std::byte> comment, const Sink& sink,
                      const std::function<void()>& leaveOut) {
    forEachPlusRecord(
        comment, [&](std::uint16_t type, std::uint16_t flags, std::span<const std::byte> data) {
            try {
                readRecord(type, flags, data, sink);
            } catch (const imaging::DecodeError&) {
                // The others make the picture still.
                leaveOut();
            }
        });
}

} // namespace metafile
