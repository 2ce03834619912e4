// EMF records that draw lines, shapes, regions and gradients.
// Source: [MS-EMF] 2.3.5 (drawing).
#include "metafile/emf/emf_records.h"

#include <algorithm>

namespace metafile {

namespace {

enum Type : std::uint32_t {
    PolyBezier = 2,
    Polygon,
    Polyline,
    PolyBezierTo,
    PolylineTo,
    PolyPolyline,
    PolyPolygon,
    SetPixelV = 15,
    MoveToEx = 27,
    AngleArc_ = 41,
    Ellipse,
    Rectangle,
    RoundRect,
    Arc,
    Chord,
    Pie,
    ExtFloodFill = 53,
    LineTo_,
    ArcTo,
    PolyDraw_,
    FillRgn = 71,
    FrameRgn,
    InvertRgn,
    PaintRgn,
    PolyBezier16 = 85,
    Polygon16,
    Polyline16,
    PolyBezierTo16,
    PolylineTo16,
    PolyPolyline16,
    PolyPolygon16,
    PolyDraw16,
    GradientFill_ = 118,
};

enum class PointSize : std::size_t { Small = 4, Large = 8 };

PointSize pointSizeOf(std::uint32_t type) {
    return type >= PolyBezier16 && type <= PolyDraw16 ? PointSize::Small : PointSize::Large;
}

std::vector<QPointF> pointsAt(const imaging::ByteReader& in, std::size_t at, std::size_t count,
                              PointSize size) {
    const auto step = static_cast<std::size_t>(size);
    const std::size_t there = in.rest(at).size() / step;
    std::vector<QPointF> points;
    points.reserve(std::min(count, there));
    for (std::size_t i = 0; i < std::min(count, there); ++i, at += step) {
        if (size == PointSize::Small) {
            points.emplace_back(in.i16(at), in.i16(at + 2));
        } else {
            points.push_back(pointAt(in, at));
        }
    }
    return points;
}

PolyKind polyKindOf(std::uint32_t type) {
    switch (type) {
    case PolyBezier:
    case PolyBezier16:
        return PolyKind::Bezier;
    case Polygon:
    case Polygon16:
    case PolyPolygon:
    case PolyPolygon16:
        return PolyKind::Polygon;
    case PolyBezierTo:
    case PolyBezierTo16:
        return PolyKind::BezierTo;
    case PolylineTo:
    case PolylineTo16:
        return PolyKind::LineTo;
    default:
        return PolyKind::Line;
    }
}

Poly readPoly(const EmfRecord& record) {
    return {polyKindOf(record.type),
            pointsAt(record.in, 28, record.in.u32(24), pointSizeOf(record.type)),
            {}};
}

Poly readPolyPoly(const EmfRecord& record) {
    const imaging::ByteReader& in = record.in;
    const std::size_t parts = in.u32(24);
    in.part(32, parts * 4);
    Poly poly;
    poly.kind = polyKindOf(record.type);
    poly.points = pointsAt(in, 32 + 4 * parts, in.u32(28), pointSizeOf(record.type));
    std::size_t left = poly.points.size();
    for (std::size_t i = 0; i < parts && left > 0; ++i) {
        poly.counts.push_back(std::min<std::size_t>(in.u32(32 + 4 * i), left));
        left -= poly.counts.back();
    }
    return poly;
}

PolyDraw readPolyDraw(const EmfRecord& record) {
    const imaging::ByteReader& in = record.in;
    const PointSize size = pointSizeOf(record.type);
    PolyDraw poly;
    poly.points = pointsAt(in, 28, in.u32(24), size);
    std::size_t at = 28 + poly.points.size() * static_cast<std::size_t>(size);
    for (std::size_t i = 0; i < poly.points.size() && in.has(at, 1); ++i, ++at) {
        poly.types.push_back(in.u8(at));
    }
    poly.points.resize(poly.types.size());
    return poly;
}

BoxKind boxKindOf(std::uint32_t type) {
    switch (type) {
    case Ellipse:
        return BoxKind::Ellipse;
    case RoundRect:
        return BoxKind::RoundRectangle;
    case Arc:
        return BoxKind::Arc;
    case ArcTo:
        return BoxKind::ArcTo;
    case Chord:
        return BoxKind::Chord;
    case Pie:
        return BoxKind::Pie;
    default:
        return BoxKind::Rectangle;
    }
}

Box readBox(const EmfRecord& record) {
    const imaging::ByteReader& in = record.in;
    Box box;
    box.kind = boxKindOf(record.type);
    box.rectangle = rectangleAt(in, 8);
    if (record.type == RoundRect) {
        box.corner = QSizeF(in.u32(24), in.u32(28));
    }
    if (record.type == Arc || record.type == ArcTo || record.type == Chord || record.type == Pie) {
        box.from = pointAt(in, 24);
        box.to = pointAt(in, 32);
    }
    return box;
}

RegionPaint readRegionPaint(const EmfRecord& record) {
    const imaging::ByteReader& in = record.in;
    switch (record.type) {
    case FillRgn:
        return {RegionAction::Fill, regionAt(in, 32), in.u32(28), {}};
    case FrameRgn:
        return {RegionAction::Frame, regionAt(in, 40), in.u32(28), QSizeF(in.i32(32), in.i32(36))};
    case InvertRgn:
        return {RegionAction::Invert, regionAt(in, 28), std::nullopt, {}};
    default:
        return {RegionAction::Paint, regionAt(in, 28), std::nullopt, {}};
    }
}

GradientVertex vertexAt(const imaging::ByteReader& in, std::size_t at) {
    // Colours are 16 bits deep; the upper half is what a sheet shows.
    const auto channel = [&](std::size_t index) { return int{in.u8(at + 9 + 2 * index)}; };
    return {pointAt(in, at), qRgba(channel(0), channel(1), channel(2), 255)};
}

GradientFill readGradient(const imaging::ByteReader& in) {
    constexpr std::size_t kVertex = 16;
    const std::size_t vertices = in.u32(24);
    const std::size_t meshes = in.u32(28);
    const std::uint32_t mode = in.u32(32);
    GradientFill fill;
    fill.kind = mode == 2   ? GradientKind::Triangle
                : mode == 1 ? GradientKind::Vertical
                            : GradientKind::Horizontal;
    in.part(36, vertices * kVertex);
    for (std::size_t i = 0; i < vertices; ++i) {
        fill.vertices.push_back(vertexAt(in, 36 + i * kVertex));
    }
    const std::size_t corners = fill.kind == GradientKind::Triangle ? 3 : 2;
    std::size_t at = 36 + vertices * kVertex;
    for (std::size_t i = 0; i < meshes && in.has(at, 4 * corners); ++i, at += 4 * corners) {
        std::array<std::size_t, 3> mesh{};
        for (std::size_t k = 0; k < corners; ++k) {
            mesh.at(k) = in.u32(at + 4 * k);
        }
        if (std::all_of(mesh.begin(), mesh.end(),
                        [&](std::size_t index) { return index < vertices; })) {
            fill.meshes.push_back(mesh);
        }
    }
    return fill;
}

bool readSinglePoint(const EmfRecord& record, const EmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    RecordSink& sink = reading.sink;
    switch (record.type) {
    case SetPixelV:
        sink.take(SetPixel{pointAt(in, 8), reading.colourAt(in, 16)});
        return true;
    case MoveToEx:
        sink.take(MoveTo{pointAt(in, 8)});
        return true;
    case LineTo_:
        sink.take(LineTo{pointAt(in, 8)});
        return true;
    case ExtFloodFill:
        sink.take(FloodFill{pointAt(in, 8), reading.colourAt(in, 16),
                            in.u32(20) == 1 ? FloodMode::WhileSurface : FloodMode::ToBorder});
        return true;
    default:
        return false;
    }
}

} // namespace

bool readEmfShape(const EmfRecord& record, EmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    RecordSink& sink = reading.sink;
    if (readSinglePoint(record, reading)) {
        return true;
    }
    switch (record.type) {
    case PolyBezier:
    case Polygon:
    case Polyline:
    case PolyBezierTo:
    case PolylineTo:
    case PolyBezier16:
    case Polygon16:
    case Polyline16:
    case PolyBezierTo16:
    case PolylineTo16:
        sink.take(readPoly(record));
        return true;
    case PolyPolyline:
    case PolyPolygon:
    case PolyPolyline16:
    case PolyPolygon16:
        sink.take(readPolyPoly(record));
        return true;
    case PolyDraw_:
    case PolyDraw16:
        sink.take(readPolyDraw(record));
        return true;
    case AngleArc_:
        sink.take(AngleArc{pointAt(in, 8), double{1} * in.u32(16), realAt(in, 20), realAt(in, 24)});
        return true;
    case Ellipse:
    case Rectangle:
    case RoundRect:
    case Arc:
    case Chord:
    case Pie:
    case ArcTo:
        sink.take(readBox(record));
        return true;
    case FillRgn:
    case FrameRgn:
    case InvertRgn:
    case PaintRgn:
        sink.take(readRegionPaint(record));
        return true;
    case GradientFill_:
        sink.take(readGradient(in));
        return true;
    default:
        return false;
    }
}

} // namespace metafile
