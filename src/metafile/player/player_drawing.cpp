// The player's lines, shapes, paths and texts.
#include "metafile/drawing/shapes.h"
#include "metafile/player/player.h"

#include <algorithm>

namespace metafile {

namespace {

constexpr std::uint8_t kClosesFigure = 1;
constexpr std::uint8_t kLineType = 2;
constexpr std::uint8_t kCurveType = 4;
constexpr std::uint8_t kMoveType = 6;

// The same with every figure closed.
QPainterPath closed(const QPainterPath& path) {
    QPainterPath result;
    result.setFillRule(path.fillRule());
    for (int i = 0; i < path.elementCount(); ++i) {
        const auto element = path.elementAt(i);
        if (element.type == QPainterPath::MoveToElement) {
            if (!result.isEmpty()) {
                result.closeSubpath();
            }
            result.moveTo(element);
        } else if (element.type == QPainterPath::LineToElement) {
            result.lineTo(element);
        } else if (element.type == QPainterPath::CurveToElement && i + 2 < path.elementCount()) {
            result.cubicTo(element, path.elementAt(i + 1), path.elementAt(i + 2));
            i += 2;
        }
    }
    if (!result.isEmpty()) {
        result.closeSubpath();
    }
    return result;
}

// Goes on with the outline's lines and curves from the path's end, which is where they begin.
// QPainterPath::connectPath() would join them to the figure before when a move is the last element.
void append(QPainterPath& path, const QPainterPath& outline) {
    for (int i = 1; i < outline.elementCount(); ++i) {
        const auto element = outline.elementAt(i);
        if (element.type == QPainterPath::LineToElement) {
            path.lineTo(element);
        } else if (element.type == QPainterPath::CurveToElement && i + 2 < outline.elementCount()) {
            path.cubicTo(element, outline.elementAt(i + 1), outline.elementAt(i + 2));
            i += 2;
        }
    }
}

bool continues(PolyKind kind) {
    return kind == PolyKind::LineTo || kind == PolyKind::BezierTo;
}

} // namespace

// ---- Lines that go on from the current position

QPainterPath& Player::goOn(QPainterPath& path) {
    bool& open = &path == &path_ ? figureOpen_ : lineOpen_;
    if (!open || path.elementCount() == 0) {
        path.moveTo(context_.map(context_.position));
    }
    open = true;
    return path;
}

void Player::flushLines() {
    lineOpen_ = false;
    if (lines_.isEmpty()) {
        return;
    }
    const QPainterPath lines = std::exchange(lines_, {});
    shapes_.draw(lines, context_, ShapePart::Stroke);
}

void Player::on(const MoveTo& record) {
    context_.position = record.point;
    figureOpen_ = false;
    lineOpen_ = false;
}

void Player::on(const LineTo& record) {
    constexpr int kMostElements = 400;
    if (inPath()) {
        goOn(path_).lineTo(context_.map(record.point));
    } else {
        goOn(lines_).lineTo(context_.map(record.point));
        // Where lines change what they cross, each is drawn for itself.
        if (lines_.elementCount() > kMostElements || context_.rasterOperation != 13) {
            flushLines();
        }
    }
    context_.position = record.point;
}

// ---- Shapes

// Paths grow from record to record: a few files' worth of text would fill the memory.
void Player::boundPath() const {
    constexpr int kMostElements = 1'500'000;
    if (path_.elementCount() > kMostElements) {
        throw WorkExhausted();
    }
}

void Player::drawOutline(const QPainterPath& outline, ShapePart part) {
    if (inPath()) {
        canvas_.budget().spendPoints(static_cast<std::size_t>(outline.elementCount()));
        path_.addPath(outline);
        figureOpen_ = false;
        boundPath();
    } else {
        shapes_.draw(outline, context_, part);
    }
}

// An outline that begins at the current position and leaves it at another.
void Player::drawAndMove(const QPainterPath& outline, QPointF end) {
    if (inPath()) {
        append(goOn(path_), outline);
        boundPath();
    } else {
        shapes_.draw(outline, context_, ShapePart::Stroke);
    }
    context_.position = end;
}

void Player::on(const Poly& record) {
    if (record.points.empty()) {
        return;
    }
    if (!continues(record.kind)) {
        const bool closed = record.kind == PolyKind::Polygon;
        drawOutline(outlineOf(record, context_),
                    closed ? ShapePart::FillAndStroke : ShapePart::Stroke);
        return;
    }
    Poly whole = record;
    whole.kind = record.kind == PolyKind::LineTo ? PolyKind::Line : PolyKind::Bezier;
    whole.points.insert(whole.points.begin(), context_.position);
    drawAndMove(outlineOf(whole, context_), record.points.back());
}

void Player::on(const PolyDraw& record) {
    QPainterPath own;
    QPainterPath& path = inPath() ? path_ : own;
    if (!inPath()) {
        own.moveTo(context_.map(context_.position));
    }
    for (std::size_t i = 0; i < record.points.size(); ++i) {
        const unsigned type = record.types[i];
        const unsigned kind = type & ~unsigned{kClosesFigure};
        std::size_t last = i;
        if (kind == kMoveType) {
            path.moveTo(context_.map(record.points[i]));
        } else if (kind == kLineType) {
            (inPath() ? goOn(path) : path).lineTo(context_.map(record.points[i]));
        } else if (kind == kCurveType && i + 2 < record.points.size()) {
            last = i + 2;
            (inPath() ? goOn(path) : path)
                .cubicTo(context_.map(record.points[i]), context_.map(record.points[i + 1]),
                         context_.map(record.points[last]));
        }
        if (inPath()) {
            figureOpen_ = true;
        }
        context_.position = record.points[last];
        if ((record.types[last] & kClosesFigure) != 0) {
            path.closeSubpath();
        }
        i = last;
    }
    if (!inPath()) {
        shapes_.draw(own, context_, ShapePart::Stroke);
    }
}

void Player::joinArc(const QPainterPath& arc) {
    if (arc.elementCount() == 0) { // a frame around nothing
        return;
    }
    QPainterPath joined;
    joined.moveTo(context_.position);
    joined.lineTo(arc.elementAt(0));
    append(joined, arc);
    drawAndMove(context_.map(joined), arc.currentPosition());
}

void Player::on(const Box& record) {
    if (record.rectangle.width() == 0 && record.rectangle.height() == 0) {
        return;
    }
    if (record.kind == BoxKind::ArcTo) {
        joinArc(arcOf(record, context_));
        return;
    }
    drawOutline(outlineOf(record, context_),
                record.kind == BoxKind::Arc ? ShapePart::Stroke : ShapePart::FillAndStroke);
}

void Player::on(const AngleArc& record) {
    joinArc(arcOf(record));
}

void Player::on(const SetPixel& record) {
    const QPointF corner = context_.map(record.point);
    const double side = std::max(1.0, canvas_.scale());
    QPainterPath path;
    path.addRect(QRectF(corner, QSizeF(side, side)));
    shapes_.fill(path, record.colour, context_);
}

// ---- Paths

void Player::paintPath(ShapePart part) {
    const QPainterPath path = std::exchange(path_, {});
    pathOpen_ = false;
    shapes_.draw(part == ShapePart::FillAndStroke ? closed(path) : path, context_, part);
}

void Player::on(const PathStep& record) {
    switch (record.action) {
    case PathAction::Begin:
        path_ = {};
        pathOpen_ = true;
        figureOpen_ = false;
        return;
    case PathAction::End:
        pathOpen_ = false;
        return;
    case PathAction::Abort:
        path_ = {};
        pathOpen_ = false;
        return;
    case PathAction::CloseFigure:
        if (inPath() && !path_.isEmpty()) {
            path_.closeSubpath();
        }
        figureOpen_ = false;
        return;
    case PathAction::Fill:
        paintPath(ShapePart::Fill);
        return;
    case PathAction::Stroke:
        paintPath(ShapePart::Stroke);
        return;
    case PathAction::FillAndStroke:
        paintPath(ShapePart::FillAndStroke);
        return;
    case PathAction::Flatten:
        // Curves are drawn as exactly as the sheet shows them anyway.
        return;
    case PathAction::Widen:
        path_ = shapes_.widened(path_, context_);
        return;
    }
}

// ---- Text

void Player::on(const Text& record) {
    if (!fontChosen_) {
        font_ = chosenFont(context_.font);
        canvas_.budget().lookAtClock();
        fontChosen_ = true;
    }
    const auto rectangle = [&] {
        QPainterPath path;
        path.addRect(record.rectangle->normalized());
        return context_.map(path);
    };
    if (record.opaque && record.rectangle && !inPath()) {
        shapes_.fill(rectangle(), context_.backgroundColour, context_);
    }
    const PlacedText placed = placeText(record, font_, context_, canvas_.budget());
    const bool movesPosition = (context_.textAlignment & 1U) != 0;
    if (inPath()) {
        path_.addPath(placed.outline);
        figureOpen_ = false;
        boundPath();
    } else {
        const Clip clip = context_.clip;
        const bool clipped = record.clipped && record.rectangle;
        if (clipped) {
            clipTo(rectangle(), ClipMode::And);
        }
        if (context_.backgroundOpaque) {
            shapes_.fill(placed.background, context_.backgroundColour, context_);
        }
        shapes_.fillSmoothly(placed.outline, context_.textColour, context_);
        if (clipped) {
            context_.clip = clip;
            clipChanged();
        }
    }
    if (movesPosition) {
        context_.position += placed.advance;
    }
}

} // namespace metafile
