// What EMF+ records tell to draw, checked: the reader turns bytes into these, the player plays
// them.
//
// Lengths are in the units that the world and page transforms begin with; colours are ARGB, not
// multiplied with their alpha. Every number is finite.
// Source: [MS-EMFPLUS] 2.2 (objects), 2.3 (records).
#pragma once

#include "metafile/records/records.h"

#include <QByteArray>
#include <QImage>
#include <QPainterPath>
#include <QRectF>
#include <QString>
#include <QTransform>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace metafile {

enum class PlusUnit { World, Display, Pixel, Point, Inch, Document, Millimetre };

// ---- Objects

enum class PlusBrushKind { Solid, Hatch, Texture, PathGradient, LinearGradient };
enum class PlusWrap { Tile, FlipAcross, FlipDown, FlipBoth, Clamp };

struct PlusStop {
    double at = 0; // 0 to 1
    QRgb colour = 0;
};

struct PlusShare {
    double at = 0;    // 0 to 1
    double share = 0; // of the way from one colour to the other
};

struct PlusBrush {
    PlusBrushKind kind = PlusBrushKind::Solid;
    QRgb colour = 0; // of a hatch: its lines; of a path gradient: its centre
    QRgb ground = 0; // of a hatch
    int hatch = 0;
    PlusWrap wrap = PlusWrap::Tile;
    QTransform transform;
    QImage texture;
    QRectF rectangle; // a linear gradient runs across it, or down
    bool runsDown = false;
    std::vector<PlusStop> stops;    // of gradients; a path gradient's run from the edge inwards
    std::vector<PlusShare> shares;  // of a path gradient without stops; none: straight
    QPainterPath boundary;          // of a path gradient
    std::vector<QRgb> surroundings; // the colours of the boundary's points, the last one repeated
    QPointF centre;
    QPointF focus; // how much of the figure, across and down, has the centre's colour
};

enum class PlusCap { Flat, Square, Round, Triangle };
enum class PlusHead { None, Square, Round, Diamond, Arrow, Custom };
struct PlusLineEnd {
    PlusCap cap = PlusCap::Flat;
    PlusHead head = PlusHead::None; // instead of the cap
    // A custom head, told for a line one unit wide that comes from below (negative y) and ends at
    // the origin.
    QPainterPath fill;
    QPainterPath line;
    double lineWidth = 1;
    double inset = 0; // how much shorter the line becomes
};

enum class PlusPenPlace { Centred, Inside };
struct PlusPen {
    double width = 1;
    PlusUnit unit = PlusUnit::World;
    QTransform transform; // of the nib
    PlusLineEnd start;
    PlusLineEnd end;
    Qt::PenJoinStyle join = Qt::MiterJoin;
    double miterLimit = 10;
    double dashOffset = 0;      // widths
    std::vector<double> dashes; // lengths of dashes and gaps in turn, in widths
    PlusCap dashCap = PlusCap::Flat;
    PlusPenPlace place = PlusPenPlace::Centred;
    // Where in the width each of several lines begins and ends, 0 to 1; empty: one line.
    std::vector<double> lines;
    PlusBrush brush;
};

// What regions are made of. Shape, empty and infinite ones are leaves; each other node is followed
// by its first and then its second operand, which may be such nodes themselves. All are there.
enum class PlusRegionKind { And, Or, Xor, Exclude, Complement, Shape, Empty, Infinite };
struct PlusRegionNode {
    PlusRegionKind kind = PlusRegionKind::Infinite;
    QPainterPath shape;
};
struct PlusRegion {
    std::vector<PlusRegionNode> nodes;
};

// One of both.
struct PlusImage {
    QImage image;
    QByteArray metafile;
};

struct PlusFont {
    double size = 0;
    PlusUnit unit = PlusUnit::World;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    QString family;
};

enum class PlusAlignment { Near, Centre, Far };
struct PlusStringFormat {
    bool wraps = true;
    bool clips = true; // to the layout rectangle: whole letters and lines outside are left out
    bool rightToLeft = false;
    bool vertical = false;  // turned with the clock
    bool marksKeys = false; // by "&", which is not shown
    PlusAlignment across = PlusAlignment::Near;
    PlusAlignment down = PlusAlignment::Near;
    double leadingMargin = 1.0 / 6; // of the font's size
};

using PlusObject = std::variant<std::monostate, PlusBrush, PlusPen, QPainterPath, PlusRegion,
                                PlusImage, PlusFont, PlusStringFormat>;

struct PlusDefine {
    std::size_t id = 0; // 0 to 63
    PlusObject object;
};

// ---- Drawing

// A brush object's number or a colour.
using PlusFillWith = std::variant<std::size_t, QRgb>;

// An outline, or the number of the path or region object that is one.
struct PlusShapeNumber {
    std::size_t id = 0;
};
using PlusShape = std::variant<QPainterPath, PlusShapeNumber>;

struct PlusClear {
    QRgb colour = 0;
};
struct PlusFill {
    PlusFillWith with;
    PlusShape shape;
};
struct PlusStroke {
    std::size_t pen = 0;
    PlusShape shape;
};
struct PlusDrawImage {
    std::size_t image = 0;
    QRectF part; // of the image, in `unit`
    PlusUnit unit = PlusUnit::Pixel;
    std::array<QPointF, 3> corners; // for the part's top left, top right and bottom left
};
struct PlusDrawString {
    PlusFillWith with;
    std::size_t font = 0;
    std::size_t format = 0;
    QRectF layout; // a side of 0 is no limit
    QString text;
};
// Characters each at a place of its own, on the base line.
struct PlusDrawLetters {
    PlusFillWith with;
    std::size_t font = 0;
    std::u32string letters;
    std::vector<QPointF> places;
    bool firstPlaceOnly = false; // the others follow by their advances
    QTransform transform;
};

// ---- State

struct PlusBegin {
    double dotsPerInch = 96;
};
struct PlusGetContext {}; // records of the other half belong to this one until the next comment
struct PlusSetWorld {
    QTransform transform;
};
enum class PlusOrder { Prepend, Append };
struct PlusMultiplyWorld {
    QTransform transform;
    PlusOrder order = PlusOrder::Prepend;
};
struct PlusSetPage {
    PlusUnit unit = PlusUnit::Display;
    double scale = 1;
};
struct PlusSave {
    std::uint32_t number = 0;
};
// Brings back what was saved under that number, and forgets what was saved since.
struct PlusRestore {
    std::uint32_t number = 0;
};
// Saves; then coordinates of `source` mean places in `destination`.
struct PlusBeginContainer {
    std::uint32_t number = 0;
    std::optional<QRectF> destination;
    QRectF source;
    PlusUnit unit = PlusUnit::Pixel;
};

struct PlusClip {
    ClipMode mode = ClipMode::Copy;
    PlusShape shape;
};
struct PlusResetClip {};
struct PlusMoveClip {
    QPointF by;
};

enum class PlusSwitch { SmoothImages, CopiesSource };
struct PlusSet {
    PlusSwitch what = PlusSwitch::SmoothImages;
    bool on = false;
};
struct PlusSetOrigin {
    QPoint origin; // of hatches, in device units
};

using PlusRecord =
    std::variant<PlusDefine, PlusClear, PlusFill, PlusStroke, PlusDrawImage, PlusDrawString,
                 PlusDrawLetters, PlusBegin, PlusGetContext, PlusSetWorld, PlusMultiplyWorld,
                 PlusSetPage, PlusSave, PlusRestore, PlusBeginContainer, PlusClip, PlusResetClip,
                 PlusMoveClip, PlusSet, PlusSetOrigin>;

} // namespace metafile
