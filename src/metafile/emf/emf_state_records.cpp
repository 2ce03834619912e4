// EMF records that set the device context's state, clip and path.
// Source: [MS-EMF] 2.3.2 (clipping), 2.3.10 (path bracket), 2.3.11 (state), 2.3.12 (transform).
#include "metafile/emf/emf_records.h"

#include <algorithm>

namespace metafile {

namespace {

enum Type : std::uint32_t {
    SetWindowExtEx = 9,
    SetWindowOrgEx,
    SetViewportExtEx,
    SetViewportOrgEx,
    SetBrushOrgEx = 13,
    SetMapMode_ = 17,
    SetBkMode = 18,
    SetPolyFillMode = 19,
    SetRop2 = 20,
    SetStretchBltMode = 21,
    SetTextAlign = 22,
    SetTextColor = 24,
    SetBkColor = 25,
    OffsetClipRgn = 26,
    SetMetaRgn = 28,
    ExcludeClipRect = 29,
    IntersectClipRect = 30,
    ScaleViewportExtEx = 31,
    ScaleWindowExtEx = 32,
    SaveDc = 33,
    RestoreDc = 34,
    SetWorldTransform_ = 35,
    ModifyWorldTransform = 36,
    SetArcDirection_ = 57,
    SetMiterLimit_ = 58,
    BeginPath = 59,
    EndPath,
    CloseFigure,
    FillPath,
    StrokeAndFillPath,
    StrokePath,
    FlattenPath,
    WidenPath,
    SelectClipPath = 67,
    AbortPath = 68,
    ExtSelectClipRgn = 75,
    SetTextJustification = 120,
};

ClipMode clipModeOf(std::uint32_t value) {
    return value >= 1 && value <= 5 ? static_cast<ClipMode>(value) : ClipMode::Copy;
}

PathAction pathActionOf(std::uint32_t type) {
    switch (type) {
    case BeginPath:
        return PathAction::Begin;
    case EndPath:
        return PathAction::End;
    case CloseFigure:
        return PathAction::CloseFigure;
    case FillPath:
        return PathAction::Fill;
    case StrokeAndFillPath:
        return PathAction::FillAndStroke;
    case StrokePath:
        return PathAction::Stroke;
    case FlattenPath:
        return PathAction::Flatten;
    case WidenPath:
        return PathAction::Widen;
    default:
        return PathAction::Abort;
    }
}

MappingPart mappingPartOf(std::uint32_t type) {
    switch (type) {
    case SetWindowExtEx:
    case ScaleWindowExtEx:
        return MappingPart::WindowExtent;
    case SetWindowOrgEx:
        return MappingPart::WindowOrigin;
    case SetViewportOrgEx:
        return MappingPart::ViewportOrigin;
    default:
        return MappingPart::ViewportExtent;
    }
}

double quotient(const imaging::ByteReader& in, std::size_t at) {
    const double divisor = in.i32(at + 4);
    if (divisor == 0) {
        throw imaging::DecodeError("a scale in the metafile divides by zero");
    }
    return in.i32(at) / divisor;
}

// A whole number by the format, but some writers put a float there.
double miterLimitAt(const imaging::ByteReader& in, std::size_t at) {
    constexpr std::uint32_t kMostWhole = 0x30000000;
    const std::uint32_t value = in.u32(at);
    return value > kMostWhole ? realAt(in, at) : value;
}

// Patterns repeat long before these bounds.
QPoint originAt(const imaging::ByteReader& in, std::size_t at) {
    constexpr int kMost = 1'000'000;
    return {std::clamp(in.i32(at), -kMost, kMost), std::clamp(in.i32(at + 4), -kMost, kMost)};
}

void readClip(const EmfRecord& record, RecordSink& sink) {
    const imaging::ByteReader& in = record.in;
    switch (record.type) {
    case OffsetClipRgn:
        sink.take(MoveClip{pointAt(in, 8)});
        return;
    case SetMetaRgn:
        sink.take(FreezeClip{});
        return;
    case ExcludeClipRect:
        sink.take(ClipRectangle{ClipMode::Difference, rectangleAt(in, 8)});
        return;
    case IntersectClipRect:
        sink.take(ClipRectangle{ClipMode::And, rectangleAt(in, 8)});
        return;
    case SelectClipPath:
        sink.take(ClipPath{clipModeOf(in.u32(8))});
        return;
    default: // ExtSelectClipRgn
        if (clipModeOf(in.u32(12)) == ClipMode::Copy && in.u32(8) == 0) {
            sink.take(ResetClip{});
        } else {
            sink.take(ClipRegion{clipModeOf(in.u32(12)), regionAt(in, 16)});
        }
    }
}

// The modes that are one number.
bool readMode(const EmfRecord& record, RecordSink& sink) {
    const std::uint32_t value = record.in.has(8, 4) ? record.in.u32(8) : 0;
    switch (record.type) {
    case SetMapMode_:
        if (value >= 1 && value <= 8) {
            sink.take(SetMapMode{static_cast<MapMode>(value)});
        }
        return true;
    case SetBkMode:
        sink.take(SetBackgroundOpaque{value != 1});
        return true;
    case SetPolyFillMode:
        sink.take(SetFillMode{value == 2 ? FillMode::Winding : FillMode::Alternate});
        return true;
    case SetRop2:
        if (value >= 1 && value <= 16) {
            sink.take(SetRasterOperation{static_cast<int>(value)});
        }
        return true;
    case SetStretchBltMode:
        sink.take(SetSmoothStretching{value == 4});
        return true;
    case SetTextAlign:
        sink.take(SetTextAlignment{value});
        return true;
    case SetArcDirection_:
        sink.take(
            SetArcDirection{value == 2 ? ArcDirection::Clockwise : ArcDirection::CounterClockwise});
        return true;
    default:
        return false;
    }
}

bool readMapping(const EmfRecord& record, RecordSink& sink) {
    const imaging::ByteReader& in = record.in;
    switch (record.type) {
    case SetWindowExtEx:
    case SetWindowOrgEx:
    case SetViewportExtEx:
    case SetViewportOrgEx:
        sink.take(SetMapping{mappingPartOf(record.type), pointAt(in, 8)});
        return true;
    case ScaleViewportExtEx:
    case ScaleWindowExtEx:
        sink.take(
            ScaleMapping{mappingPartOf(record.type), QPointF(quotient(in, 8), quotient(in, 16))});
        return true;
    case SetWorldTransform_:
        sink.take(SetWorldTransform{transformAt(in, 8)});
        return true;
    case ModifyWorldTransform:
        if (in.u32(32) == 1) {
            sink.take(SetWorldTransform{});
        } else if (in.u32(32) == 4) {
            sink.take(SetWorldTransform{transformAt(in, 8)});
        } else {
            sink.take(MultiplyWorldTransform{transformAt(in, 8),
                                             in.u32(32) == 3 ? Multiply::After : Multiply::Before});
        }
        return true;
    default:
        return false;
    }
}

} // namespace

bool readEmfState(const EmfRecord& record, EmfReading& reading) {
    const imaging::ByteReader& in = record.in;
    RecordSink& sink = reading.sink;
    if (readMapping(record, sink) || readMode(record, sink)) {
        return true;
    }
    switch (record.type) {
    case SetBrushOrgEx:
        sink.take(SetBrushOrigin{originAt(in, 8)});
        return true;
    case SetTextColor:
        sink.take(SetTextColour{reading.colourAt(in, 8)});
        return true;
    case SetBkColor:
        sink.take(SetBackgroundColour{reading.colourAt(in, 8)});
        return true;
    case SaveDc:
        sink.take(SaveState{});
        return true;
    case RestoreDc:
        sink.take(RestoreState{in.i32(8)});
        return true;
    case SetMiterLimit_:
        sink.take(SetMiterLimit{miterLimitAt(in, 8)});
        return true;
    case SetTextJustification:
        sink.take(SetJustification{double{1} * in.i32(8), in.i32(12)});
        return true;
    case OffsetClipRgn:
    case SetMetaRgn:
    case ExcludeClipRect:
    case IntersectClipRect:
    case SelectClipPath:
    case ExtSelectClipRgn:
        readClip(record, sink);
        return true;
    case BeginPath:
    case EndPath:
    case CloseFigure:
    case FillPath:
    case StrokeAndFillPath:
    case StrokePath:
    case FlattenPath:
    case WidenPath:
    case AbortPath:
        sink.take(PathStep{pathActionOf(record.type)});
        return true;
    default:
        return false;
    }
}

} // namespace metafile
