#include "metafile/player/player.h"

#include "metafile/bounds/drawing_costs.h"
#include "metafile/records/stock_objects.h"

#include <algorithm>
#include <cmath>

namespace metafile {

namespace {

constexpr std::size_t kMostObjects = 65536;
constexpr std::size_t kMostStates = 2048;

template <typename... Kinds>
bool isOneOf(const Record& record) {
    return (std::holds_alternative<Kinds>(record) || ...);
}

// Pixels that a picture in the record holds.
double pixelsIn(const RasterBlit& blit) {
    const auto area = [](const std::optional<Bitmap>& bitmap) {
        return bitmap ? double{1} * bitmap->image.width() * bitmap->image.height() : 0;
    };
    return area(blit.source) + area(blit.mask);
}

double pixelsIn(const AlphaBlit& blit) {
    return double{1} * blit.source.width() * blit.source.height();
}

} // namespace

Player::Player(Canvas& canvas, QSizeF pixelsPerMillimetre, PlusHalf plusHalf,
               const NestedMetafiles& nested)
    : canvas_(canvas),
      pixelsPerMillimetre_(pixelsPerMillimetre),
      plusHalf_(plusHalf),
      plus_(canvas, nested),
      shapes_(canvas),
      blits_(canvas) {
    for (const std::uint32_t stock : {0U, 7U, 13U}) { // white brush, black pen, system font
        select(stockObject(stock));
    }
    context_.imagePerDevice = canvas_.scale();
    remap();
}

// A file that is played by its EMF+ half has other records besides: those it means too, and those
// that only stand in for it.
bool Player::skips(const Record& record) const {
    if (plusHalf_ != PlusHalf::Played || plus_.wantsDeviceRecords()) {
        return false;
    }
    return isOneOf<LineTo, Poly, PolyDraw, Box, AngleArc, SetPixel, FloodFill, RegionPaint,
                   GradientFill, Text, RasterBlit, AlphaBlit, PathStep, ClipPath>(record);
}

void Player::take(const Record& record) {
    canvas_.budget().spendRecord();
    if (skips(record)) {
        // The picture in it has been decoded.
        if (isOneOf<RasterBlit, AlphaBlit>(record)) {
            canvas_.budget().lookAtClock();
        }
        return;
    }
    if (!isOneOf<MoveTo, LineTo>(record)) {
        flushLines();
    }
    std::visit([this](const auto& kind) { on(kind); }, record);
}

void Player::leaveOut() {
    canvas_.budget().lookAtClock();
}

void Player::takePlus(std::span<const std::byte> comment) {
    if (plusHalf_ == PlusHalf::Ignored) {
        return;
    }
    flushLines();
    plus_.play(comment);
    clipChanged();
}

// ---- Objects

void Player::on(const CreateObject& record) {
    if (record.handle >= kMostObjects) {
        return;
    }
    Object& object = objects_[record.handle];
    object = {}; // what it held is free before the new one is kept
    object = record.object;
    if (auto* pen = std::get_if<Pen>(&object)) {
        keepPattern(pen->brush);
    }
    if (auto* brush = std::get_if<Brush>(&object)) {
        keepPattern(*brush);
    }
}

void Player::keepPattern(Brush& brush) {
    if (brush.kind != BrushKind::Pattern) {
        return;
    }
    WorkBudget& budget = canvas_.budget();
    canvas_.renewPainter();
    clipChanged();
    budget.spendPixels(double{1} * brush.pattern.width() * brush.pattern.height());
    brush.pattern = budget.pictures().keep(brush.pattern);
    if (brush.pattern.isNull()) {
        brush.kind = BrushKind::Null;
    }
}

void Player::on(const SelectObject& record) {
    const auto found = objects_.find(record.handle);
    if (found != objects_.end()) {
        select(found->second);
    }
}

void Player::on(const DeleteObject& record) {
    objects_.erase(record.handle);
}

void Player::select(const Object& object) {
    if (const auto* pen = std::get_if<Pen>(&object)) {
        context_.pen = *pen;
    }
    if (const auto* brush = std::get_if<Brush>(&object)) {
        context_.brush = *brush;
    }
    if (const auto* font = std::get_if<Font>(&object)) {
        context_.font = *font;
        fontChosen_ = false;
    }
}

// ---- Mapping and states

void Player::remap() {
    context_.pageToImage =
        context_.mapping.pageToDevice(pixelsPerMillimetre_) * canvas_.deviceToImage();
    context_.toImage = context_.mapping.world * context_.pageToImage;
}

QPointF& Player::mappingPart(MappingPart part) {
    switch (part) {
    case MappingPart::WindowOrigin:
        return context_.mapping.windowOrigin;
    case MappingPart::WindowExtent:
        return context_.mapping.windowExtent;
    case MappingPart::ViewportOrigin:
        return context_.mapping.viewportOrigin;
    default:
        return context_.mapping.viewportExtent;
    }
}

void Player::on(const SetMapMode& record) {
    context_.mapping.mode = record.mode;
    remap();
}

void Player::on(const SetMapping& record) {
    const bool extent =
        record.part == MappingPart::WindowExtent || record.part == MappingPart::ViewportExtent;
    if (extent && (record.value.x() == 0 || record.value.y() == 0)) {
        return;
    }
    mappingPart(record.part) = record.value;
    remap();
}

void Player::on(const MoveMapping& record) {
    mappingPart(record.part) += record.by;
    remap();
}

void Player::on(const ScaleMapping& record) {
    constexpr double kMost = 1e9;
    QPointF& part = mappingPart(record.part);
    const QPointF scaled(part.x() * record.factor.x(), part.y() * record.factor.y());
    if (scaled.x() != 0 && scaled.y() != 0 && std::abs(scaled.x()) < kMost &&
        std::abs(scaled.y()) < kMost) {
        part = scaled;
    }
    remap();
}

void Player::on(const SetWorldTransform& record) {
    context_.mapping.world = record.transform;
    remap();
}

void Player::on(const MultiplyWorldTransform& record) {
    constexpr double kMost = 1e12;
    QTransform& world = context_.mapping.world;
    const QTransform product =
        record.order == Multiply::Before ? record.transform * world : world * record.transform;
    const double sum = std::abs(product.m11()) + std::abs(product.m12()) + std::abs(product.m21()) +
                       std::abs(product.m22()) + std::abs(product.dx()) + std::abs(product.dy());
    if (sum < kMost) {
        world = product;
    }
    remap();
}

void Player::on(const SaveState&) {
    if (saved_.size() >= kMostStates) {
        return;
    }
    std::size_t weight = context_.clip.weight() + context_.frozenClip.weight();
    if (!saved_.empty()) {
        weight += savedWeights_.back();
    }
    if (weight > Clip::kMostSavedWeight) {
        throw WorkExhausted();
    }
    saved_.push_back(context_);
    savedWeights_.push_back(weight);
}

void Player::on(const RestoreState& record) {
    const auto count = static_cast<long long>(saved_.size());
    const long long index = record.state < 0 ? count + record.state : record.state - 1LL;
    if (index < 0 || index >= count) {
        return;
    }
    context_ = saved_[static_cast<std::size_t>(index)];
    saved_.resize(static_cast<std::size_t>(index));
    savedWeights_.resize(saved_.size());
    fontChosen_ = false;
    clipChanged();
}

// ---- Clip

void Player::on(const ClipRectangle& record) {
    QPainterPath path;
    path.addRect(record.rectangle.normalized());
    clipTo(context_.map(path), record.mode);
}

void Player::clipTo(const QPainterPath& path, ClipMode mode) {
    const QRect sheet = canvas_.sheet();
    spendClip();
    canvas_.budget().spendPixels(fillCost(path, sheet, EdgeLook::Stepped));
    const bool plain =
        context_.toImage.type() <= QTransform::TxScale && rectangleOf(path).has_value();
    // Whole pixels are found by painting the path, and combined row by row.
    if (!plain || mode != ClipMode::And) {
        canvas_.budget().spendPixels(2.0 * sheet.width() * sheet.height());
    }
    const auto pixels = [&] {
        return plain ? QRegion(path.boundingRect().toRect()) : metafile::regionOf(path, sheet);
    };
    Clip& clip = context_.clip;
    // Paths keep their smooth edges where the clip only gets smaller.
    const bool smooth = mode == ClipMode::Copy || (mode == ClipMode::And && !plain);
    if (!smooth) {
        clip.combine(pixels(), mode, sheet);
    } else {
        if (mode == ClipMode::Copy) {
            clip = {};
        }
        clip.intersect(path, sheet);
    }
    clipChanged();
}

void Player::on(const MoveClip& record) {
    const QPointF origin = context_.toImage.map(QPointF());
    context_.clip.translate(context_.toImage.map(record.by) - origin);
    clipChanged();
}

void Player::on(const ResetClip&) {
    context_.clip = {};
    clipChanged();
}

void Player::on(const ClipRegion& record) {
    const QRect sheet = canvas_.sheet();
    spendClip();
    std::vector<QRect> rectangles;
    rectangles.reserve(record.rectangles.size());
    for (const QRect& rectangle : record.rectangles) {
        rectangles.push_back(
            (canvas_.deviceToImage().mapRect(QRectF(rectangle)) & QRectF(sheet)).toRect());
    }
    const QRegion region = unionOf(rectangles, canvas_.budget());
    context_.clip.combine(region, record.mode, sheet);
    clipChanged();
}

// Before the clip is combined with another.
void Player::spendClip() {
    const QRect sheet = canvas_.sheet();
    canvas_.budget().spendPixels(context_.clip.cost(sheet) + context_.frozenClip.cost(sheet));
}

void Player::on(const FreezeClip&) {
    spendClip();
    context_.frozenClip.intersect(context_.clip, canvas_.sheet());
    context_.clip = {};
    clipChanged();
}

void Player::on(const ClipPath& record) {
    if (path_.isEmpty()) {
        return; // without a path there is nothing to select
    }
    QPainterPath path = path_;
    path.setFillRule(context_.fillMode == FillMode::Winding ? Qt::WindingFill : Qt::OddEvenFill);
    path_ = {};
    clipTo(path, record.mode);
}

// ---- Blocks of pixels

void Player::on(const RegionPaint& record) {
    std::vector<QRect> rectangles;
    rectangles.reserve(record.rectangles.size());
    for (const QRect& rectangle : record.rectangles) {
        QPainterPath path;
        path.addRect(rectangle);
        rectangles.push_back(context_.map(path).boundingRect().toRect() & canvas_.sheet());
    }
    const QRegion region = unionOf(rectangles, canvas_.budget());
    const QPainterPath outline = pathOf(region);
    Object brush = context_.brush;
    if (record.brush) {
        const auto found = objects_.find(*record.brush);
        brush = found != objects_.end()
                    ? found->second
                    : stockObject(static_cast<std::uint32_t>(*record.brush) & 0x7FFFFFFFU);
    }
    const auto* filling = std::get_if<Brush>(&brush);
    if (filling == nullptr) {
        return;
    }
    if (record.action == RegionAction::Invert) {
        shapes_.invert(outline, context_);
    } else if (record.action == RegionAction::Frame) {
        const auto pixels = [&](double logical) {
            constexpr double kMost = 10000;
            return static_cast<int>(
                std::lround(std::clamp(std::abs(logical) * context_.scale(), 1.0, kMost)));
        };
        const int across = pixels(record.frame.width());
        const int down = pixels(record.frame.height());
        const QRegion inner = region & region.translated(across, 0) &
                              region.translated(-across, 0) & region.translated(0, down) &
                              region.translated(0, -down);
        shapes_.fill(pathOf(region - inner), *filling, context_);
    } else {
        shapes_.fill(outline, *filling, context_);
    }
}

void Player::on(const FloodFill& record) {
    blits_.draw(record, context_);
    clipChanged();
}

void Player::on(const GradientFill& record) {
    blits_.draw(record, context_);
    clipChanged();
}

void Player::on(const RasterBlit& record) {
    canvas_.budget().spendPixels(pixelsIn(record));
    blits_.draw(record, context_);
    clipChanged();
}

void Player::on(const AlphaBlit& record) {
    canvas_.budget().spendPixels(pixelsIn(record));
    blits_.draw(record, context_);
    clipChanged();
}

} // namespace metafile
