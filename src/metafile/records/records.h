// What a WMF or EMF file tells to draw, freed from either format: the readers turn bytes into these
// checked records, the player plays them.
//
// Coordinates are logical units unless a comment says otherwise; rectangles are as drawn (right and
// bottom are edges, not pixels). Sizes may be negative where that mirrors something. Every number
// is finite, every list as long as the file really holds.
// Sources: [MS-EMF] 2.3, [MS-WMF] 2.3.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QTransform>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <variant>
#include <vector>

namespace metafile {

// ---- Objects

enum class PenStyle { Solid, Dash, Dot, DashDot, DashDotDot, Null, InsideFrame, UserDashes };
enum class PenWidth { Cosmetic, Geometric }; // one device pixel, or as told in logical units

enum class BrushKind { Solid, Null, Hatched, Pattern };

// Whose colour a brush has.
enum class BrushInk { Own, Text, Background };

struct Brush {
    BrushKind kind = BrushKind::Solid;
    BrushInk ink = BrushInk::Own;
    QRgb colour = qRgb(255, 255, 255);
    int hatch = 0;  // horizontal, vertical, falling, rising, cross, diagonal cross
    QImage pattern; // one pixel of it is one pixel of the sheet
    // Two colours that stand for the text colour (black) and the background colour (white).
    bool monochrome = false;
};

struct Pen {
    PenStyle style = PenStyle::Solid;
    PenWidth widthKind = PenWidth::Geometric;
    double width = 0; // of a geometric pen; at least a device pixel is drawn
    Qt::PenCapStyle cap = Qt::RoundCap;
    Qt::PenJoinStyle join = Qt::RoundJoin;
    // Of UserDashes: lengths of dashes and gaps in turn, in the width's units.
    std::vector<double> dashes;
    Brush brush{BrushKind::Solid, BrushInk::Own, qRgb(0, 0, 0), 0, {}, false};
};

struct Font {
    bool deviceUnits = false; // the height counts in them, whatever the mapping
    double height = 0;        // negative: of the em; positive: of the cell; 0: the system's choice
    double width = 0;         // of an average character; 0: as the font is
    int escapement = 0;       // tenths of a degree, against the clock
    int weight = 400;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    std::uint8_t characterSet = 0;
    std::uint8_t pitchAndFamily = 0;
    QString family;
};

// Read only: bitmaps may name its colours by number.
struct Palette {
    std::vector<QRgb> colours;
};

// Nothing: an object that cannot be read or that only the reader needs.
using Object = std::variant<std::monostate, Pen, Brush, Font>;

struct CreateObject {
    std::size_t handle = 0;
    Object object;
};
struct SelectObject {
    std::size_t handle = 0;
};
// One of the objects that every device has.
struct SelectStockObject {
    Object object;
};
struct DeleteObject {
    std::size_t handle = 0;
};

// ---- State

enum class MapMode {
    Text = 1,
    LowMetric,
    HighMetric,
    LowEnglish,
    HighEnglish,
    Twips,
    Isotropic,
    Anisotropic
};
enum class FillMode { Alternate = 1, Winding = 2 };
enum class ArcDirection { CounterClockwise = 1, Clockwise = 2 };

struct SetMapMode {
    MapMode mode = MapMode::Text;
};
struct SetBackgroundOpaque {
    bool opaque = true;
};
struct SetFillMode {
    FillMode mode = FillMode::Alternate;
};
// One of the sixteen operations of pen and destination, 1 to 16.
struct SetRasterOperation {
    int operation = 13;
};
struct SetSmoothStretching {
    bool smooth = false;
};
// TA_ flags: 1 moves the current position, 2 right, 6 centre, 8 bottom, 24 base line.
struct SetTextAlignment {
    unsigned flags = 0;
};
struct SetArcDirection {
    ArcDirection direction = ArcDirection::CounterClockwise;
};
struct SetMiterLimit {
    double limit = 10;
};
// Logical units added to every character's advance.
struct SetCharacterExtra {
    double extra = 0;
};
// `extra` logical units spread over `breaks` spaces of every text.
struct SetJustification {
    double extra = 0;
    int breaks = 0;
};
struct SetTextColour {
    QRgb colour = 0;
};
struct SetBackgroundColour {
    QRgb colour = 0;
};
struct SetBrushOrigin {
    QPoint origin; // device pixels
};

enum class MappingPart { WindowOrigin, WindowExtent, ViewportOrigin, ViewportExtent };
struct SetMapping {
    MappingPart part = MappingPart::WindowOrigin;
    QPointF value;
};
struct MoveMapping {
    MappingPart part = MappingPart::WindowOrigin;
    QPointF by;
};
struct ScaleMapping {
    MappingPart part = MappingPart::WindowExtent;
    QPointF factor;
};

struct SetWorldTransform {
    QTransform transform;
};
enum class Multiply { Before, After };
struct MultiplyWorldTransform {
    QTransform transform;
    Multiply order = Multiply::Before;
};

struct SaveState {};
// Negative: that many states back; positive: that state, counted from 1.
struct RestoreState {
    int state = -1;
};

// ---- Clip and paths

// How a new shape changes the clip. The first five by the numbers that EMF files use; Complement:
// what is in the new one and not in the old.
enum class ClipMode { And = 1, Or, Xor, Difference, Copy, Complement };

struct ClipRectangle {
    ClipMode mode = ClipMode::And; // And or Difference
    QRectF rectangle;
};
struct MoveClip {
    QPointF by;
};
struct ResetClip {};
struct ClipRegion {
    ClipMode mode = ClipMode::Copy;
    std::vector<QRect> rectangles; // device units
};
// What is the clip by now bounds every clip to come.
struct FreezeClip {};

enum class PathAction {
    Begin,
    End,
    Abort,
    CloseFigure,
    Fill,
    Stroke,
    FillAndStroke,
    Flatten,
    Widen
};
struct PathStep {
    PathAction action = PathAction::Begin;
};
struct ClipPath {
    ClipMode mode = ClipMode::Copy;
};

// ---- Shapes

struct MoveTo {
    QPointF point;
};
struct LineTo {
    QPointF point;
};

enum class PolyKind { Line, LineTo, Bezier, BezierTo, Polygon };
struct Poly {
    PolyKind kind = PolyKind::Line;
    std::vector<QPointF> points;
    std::vector<std::size_t> counts; // of each part; empty: one part
};

// Moves, lines and curves mixed. Types: 6 move, 2 line, 4 curve (three in turn); + 1 closes.
struct PolyDraw {
    std::vector<QPointF> points;
    std::vector<std::uint8_t> types;
};

enum class BoxKind { Rectangle, Ellipse, RoundRectangle, Arc, ArcTo, Chord, Pie };
struct Box {
    BoxKind kind = BoxKind::Rectangle;
    QRectF rectangle;
    QSizeF corner;    // of RoundRectangle: both diameters
    QPointF from, to; // of arcs: points on the rays
};

// A line to an arc's begin, then the arc. Degrees, against the clock.
struct AngleArc {
    QPointF centre;
    double radius = 0;
    double start = 0;
    double sweep = 0;
};

struct SetPixel {
    QPointF point;
    QRgb colour = 0;
};

enum class FloodMode { ToBorder, WhileSurface };
struct FloodFill {
    QPointF point;
    QRgb colour = 0;
    FloodMode mode = FloodMode::ToBorder;
};

enum class RegionAction { Fill, Frame, Invert, Paint };
struct RegionPaint {
    RegionAction action = RegionAction::Fill;
    std::vector<QRect> rectangles;    // logical units
    std::optional<std::size_t> brush; // of Fill and Frame
    QSizeF frame;                     // of Frame
};

struct GradientVertex {
    QPointF point;
    QRgb colour = 0; // with alpha
};
enum class GradientKind { Horizontal, Vertical, Triangle };
struct GradientFill {
    GradientKind kind = GradientKind::Horizontal;
    std::vector<GradientVertex> vertices;
    // Indexes of vertices, checked: two corners of a rectangle or three of a triangle.
    std::vector<std::array<std::size_t, 3>> meshes;
};

// ---- Text

enum class TextTransform { Upright, WithAxes }; // whether mirrored axes mirror the letters

struct Text {
    QPointF reference;
    // Unicode; or bytes, whose meaning the font's character set tells; or glyph numbers of the
    // font.
    std::variant<QString, QByteArray, std::vector<std::uint16_t>> characters;
    // The advance of each UTF-16 unit, byte or glyph; empty: the font's own.
    std::vector<double> advances;
    std::vector<double> verticalAdvances; // upwards
    std::optional<QRectF> rectangle;
    bool opaque = false;  // fills the rectangle with the background colour
    bool clipped = false; // to the rectangle
    bool rightToLeft = false;
    TextTransform transform = TextTransform::Upright;
};

// ---- Pictures

enum class Placement { Logical, DevicePixels };

// A parallelogram: what the top left, top right and bottom left corner of the source go to.
struct Destination {
    QPointF topLeft;
    QPointF topRight;
    QPointF bottomLeft;
    // DevicePixels: only topLeft is logical, the other corners are device units away from it.
    Placement placement = Placement::Logical;
};

struct Bitmap {
    QImage image;            // ARGB32
    bool monochrome = false; // black and white stand for text and background colour
};

struct RasterBlit {
    Destination destination;
    std::optional<Bitmap> source;
    QRectF part;                // of the source, in its pixels
    std::uint8_t operation = 0; // ternary: bit 4P + 2S + D
    std::optional<Bitmap> mask; // where it is black, `behindMask` applies
    QPointF maskOffset;         // from the part's corner
    std::uint8_t behindMask = 0xAA;
};

struct AlphaBlit {
    Destination destination;
    QImage source; // ARGB32_Premultiplied
    QRectF part;
    double opacity = 1;
};

using Record =
    std::variant<CreateObject, SelectObject, SelectStockObject, DeleteObject, SetMapMode,
                 SetBackgroundOpaque, SetFillMode, SetRasterOperation, SetSmoothStretching,
                 SetTextAlignment, SetArcDirection, SetMiterLimit, SetCharacterExtra,
                 SetJustification, SetTextColour, SetBackgroundColour, SetBrushOrigin, SetMapping,
                 MoveMapping, ScaleMapping, SetWorldTransform, MultiplyWorldTransform, SaveState,
                 RestoreState, ClipRectangle, MoveClip, ResetClip, ClipRegion, FreezeClip, PathStep,
                 ClipPath, MoveTo, LineTo, Poly, PolyDraw, Box, AngleArc, SetPixel, FloodFill,
                 RegionPaint, GradientFill, Text, RasterBlit, AlphaBlit>;

} // namespace metafile
