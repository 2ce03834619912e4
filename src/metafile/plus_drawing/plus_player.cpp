#include "metafile/plus_drawing/plus_player.h"

#include "imaging/byte_reader.h"
#include "metafile/bounds/drawing_costs.h"
#include "metafile/bounds/outline_cutting.h"
#include "metafile/plus/plus_reader.h"
#include "metafile/plus_drawing/plus_image_painter.h"
#include "metafile/plus_drawing/plus_painting.h"
#include "metafile/plus_drawing/plus_pens.h"
#include "metafile/plus_drawing/plus_text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace metafile {

namespace {

constexpr std::size_t kMostStates = 512;
constexpr double kFarthest = 60000; // image pixels; far outside of any sheet

struct State {
    QTransform world;
    QTransform page;      // world units after the world transform -> device units
    QTransform container; // a container's page -> the one around it
    Clip clip;            // image pixels
    bool smoothImages = true;
    bool copiesSource = false;
    QPoint origin;
};

struct SavedState {
    std::uint32_t number;
    State state;
    std::size_t weight; // of its clip and those before it
};

// A wild outline is left out: no painter could draw it.
bool isSensible(const QPainterPath& path) {
    const QRectF box = path.controlPointRect();
    return std::isfinite(box.left()) && std::isfinite(box.top()) && box.left() > -kFarthest &&
           box.top() > -kFarthest && box.right() < kFarthest && box.bottom() < kFarthest;
}

} // namespace

class PlusPlayer::Impl {
  public:
    Impl(Canvas& canvas, const NestedMetafiles& nested) : canvas_(canvas), nested_(nested) {}

    void play(std::span<const std::byte> comment) {
        gettingContext_ = false;
        clipSet_ = false; // others have used the painter
        const auto take = [this](const PlusRecord& record) {
            canvas_.budget().spendRecord();
            std::visit([this](const auto& kind) { on(kind); }, record);
        };
        reader_.read(comment, take, [this] { canvas_.budget().lookAtClock(); });
    }

    bool wantsDeviceRecords() const { return gettingContext_; }

  private:
    // ---- Objects
    // Small files can hold large pictures: reading them costs time, and keeping many memory.
    void on(const PlusDefine& record) {
        PlusObject& object = objects_.at(record.id);
        object = {}; // what it held is free before the new one is kept
        object = record.object;
        if (auto* brush = std::get_if<PlusBrush>(&object)) {
            keep(brush->texture);
        }
        if (auto* pen = std::get_if<PlusPen>(&object)) {
            keep(pen->brush.texture);
        }
        if (auto* image = std::get_if<PlusImage>(&object)) {
            keep(image->image);
        }
    }

    void keep(QImage& picture) {
        constexpr double kCostOfPixel = 4;
        if (picture.isNull()) {
            return;
        }
        canvas_.renewPainter();
        clipSet_ = false;
        canvas_.budget().spendPixels(kCostOfPixel * picture.width() * picture.height());
        picture = canvas_.budget().pictures().keep(picture);
    }

    template <typename Kind>
    const Kind* object(std::size_t id) const {
        return id < objects_.size() ? std::get_if<Kind>(&objects_[id]) : nullptr;
    }

    // ---- State
    void on(const PlusBegin& record) { dotsPerInch_ = record.dotsPerInch; }
    void on(const PlusGetContext&) { gettingContext_ = true; }
    void on(const PlusSetWorld& record) { state_.world = record.transform; }
    void on(const PlusMultiplyWorld& record) {
        constexpr double kMost = 1e12;
        const QTransform product = record.order == PlusOrder::Append
                                       ? state_.world * record.transform
                                       : record.transform * state_.world;
        if (std::abs(product.determinant()) < kMost && std::abs(product.dx()) < kMost &&
            std::abs(product.dy()) < kMost) {
            state_.world = product;
        }
    }
    void on(const PlusSetPage& record) {
        const double unit = pageUnit(record.unit) * record.scale;
        state_.page = QTransform::fromScale(unit, unit);
    }
    void on(const PlusSave& record) { save(record.number); }
    void on(const PlusRestore& record) {
        for (std::size_t i = saved_.size(); i-- > 0;) {
            if (saved_[i].number == record.number) {
                state_ = saved_[i].state;
                clipSet_ = false;
                saved_.resize(i);
                return;
            }
        }
    }
    void on(const PlusBeginContainer& record) {
        save(record.number);
        QTransform placed;
        const QRectF& source = record.source;
        if (record.destination && source.width() != 0 && source.height() != 0) {
            const double unit = pageUnit(record.unit);
            placed =
                QTransform::fromTranslate(-source.x() * unit, -source.y() * unit) *
                QTransform::fromScale(record.destination->width() / (source.width() * unit),
                                      record.destination->height() / (source.height() * unit)) *
                QTransform::fromTranslate(record.destination->x(), record.destination->y());
        }
        state_.container = placed * state_.world * state_.page * state_.container;
        state_.world = {};
        state_.page = {};
    }
    void on(const PlusSet& record) {
        (record.what == PlusSwitch::SmoothImages ? state_.smoothImages : state_.copiesSource) =
            record.on;
    }
    void on(const PlusSetOrigin& record) { state_.origin = record.origin; }

    void save(std::uint32_t number) {
        if (saved_.size() >= kMostStates) {
            return;
        }
        const std::size_t before = saved_.empty() ? 0 : saved_.back().weight;
        const std::size_t weight = before + state_.clip.weight();
        if (weight > Clip::kMostSavedWeight) {
            throw WorkExhausted();
        }
        saved_.push_back({number, state_, weight});
    }

    double pageUnit(PlusUnit unit) const {
        return plusUnitScale(unit == PlusUnit::World ? PlusUnit::Pixel : unit, {}, canvas_,
                             dotsPerInch_) /
               std::max(canvas_.scale(), 1e-9);
    }

    QTransform toImage() const {
        constexpr double kMost = 1e12;
        const QTransform product =
            state_.world * state_.page * state_.container * canvas_.deviceToImage();
        for (const double cell : {product.m11(), product.m12(), product.m21(), product.m22(),
                                  product.dx(), product.dy()}) {
            if (!(std::abs(cell) < kMost)) {
                return QTransform::fromScale(0, 0); // where nothing has any extent
            }
        }
        return product;
    }

    // ---- Clip
    void on(const PlusResetClip&) { resetClip(); }
    void on(const PlusMoveClip& record) {
        clipSet_ = false;
        const QTransform transform = toImage();
        state_.clip.translate(transform.map(record.by) - transform.map(QPointF()));
    }
    void on(const PlusClip& record) {
        const QRect sheet = canvas_.sheet();
        canvas_.budget().spendPixels(double{1} * sheet.width() * sheet.height() / 8);
        canvas_.budget().spendPixels(state_.clip.cost(sheet));
        const auto path = outlineOf(record.shape);
        if (path) {
            canvas_.budget().spendPixels(fillCost(*path, sheet, EdgeLook::Stepped));
        }
        const bool smooth = path && (record.mode == ClipMode::Copy || record.mode == ClipMode::And);
        if (smooth) {
            if (record.mode == ClipMode::Copy) {
                resetClip();
            }
            intersect(*path);
            return;
        }
        const auto region = regionOf(record.shape, path);
        if (!region) {
            return;
        }
        clipSet_ = false;
        state_.clip.combine(*region, record.mode, sheet);
    }

    void resetClip() {
        state_.clip = {};
        clipSet_ = false;
    }

    // Rectangles keep whole pixels, so that pictures cut along them meet.
    void intersect(const QPainterPath& path) {
        clipSet_ = false;
        if (const auto rectangle = rectangleOf(path)) {
            state_.clip.intersect(QRegion(*rectangle), canvas_.sheet());
        } else {
            state_.clip.intersect(path, canvas_.sheet());
        }
    }

    // ---- Shapes, in image pixels
    std::optional<QPainterPath> outlineOf(const PlusShape& shape) const {
        const auto* own = std::get_if<QPainterPath>(&shape);
        if (own == nullptr) {
            own = object<QPainterPath>(std::get<PlusShapeNumber>(shape).id);
        }
        if (own == nullptr) {
            return std::nullopt;
        }
        canvas_.budget().spendPoints(static_cast<std::size_t>(own->elementCount()));
        const QPainterPath path = toImage().map(*own);
        return isSensible(path) ? std::optional(path) : std::nullopt;
    }

    QRegion leafOf(const PlusRegionNode& node) const {
        const QRect sheet = canvas_.sheet();
        if (node.kind == PlusRegionKind::Infinite) {
            return sheet;
        }
        if (node.kind == PlusRegionKind::Empty) {
            return {};
        }
        const QPainterPath path = toImage().map(node.shape);
        if (!isSensible(path)) {
            return {};
        }
        canvas_.budget().spendPixels(fillCost(path, sheet, EdgeLook::Stepped));
        return metafile::regionOf(path, sheet);
    }

    static QRegion combined(PlusRegionKind kind, const QRegion& first, const QRegion& second) {
        switch (kind) {
        case PlusRegionKind::And:
            return first & second;
        case PlusRegionKind::Or:
            return first | second;
        case PlusRegionKind::Xor:
            return first ^ second;
        case PlusRegionKind::Exclude:
            return first - second;
        default:
            return second - first;
        }
    }

    // From the last node to the first, so that operands are ready when their node comes.
    QRegion regionOf(const PlusRegion& region) const {
        const QRect sheet = canvas_.sheet();
        std::vector<QRegion> ready;
        for (auto node = region.nodes.rbegin(); node != region.nodes.rend(); ++node) {
            canvas_.budget().spendPixels(double{1} * sheet.width() * sheet.height() / 4);
            if (node->kind >= PlusRegionKind::Shape) {
                ready.push_back(leafOf(*node));
                continue;
            }
            const QRegion first = std::move(ready.back());
            ready.pop_back();
            canvas_.budget().spendPixels(regionCost(first) + regionCost(ready.back()));
            ready.back() = combined(node->kind, first, ready.back());
        }
        return ready.back();
    }

    std::optional<QRegion> regionOf(const PlusShape& shape,
                                    const std::optional<QPainterPath>& path) const {
        if (path) {
            return metafile::regionOf(*path, canvas_.sheet());
        }
        const auto* number = std::get_if<PlusShapeNumber>(&shape);
        const auto* region = number != nullptr ? object<PlusRegion>(number->id) : nullptr;
        return region != nullptr ? std::optional(regionOf(*region)) : std::nullopt;
    }

    // ---- Drawing
    QPainter& prepared() {
        QPainter& painter = canvas_.painter();
        painter.resetTransform();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, state_.smoothImages);
        if (!clipSet_) {
            canvas_.clipTo(state_.clip);
            clipSet_ = true;
        }
        painter.setOpacity(1);
        painter.setBrushOrigin(0, 0);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        return painter;
    }

    void spend(const QPainterPath& path) {
        canvas_.budget().spendPixels(2 * fillCost(path, canvas_.sheet(), EdgeLook::Smooth));
    }

    std::optional<QBrush> brushOf(const PlusFillWith& with) {
        if (const auto* colour = std::get_if<QRgb>(&with)) {
            return QBrush(QColor::fromRgba(*colour));
        }
        const auto* brush = object<PlusBrush>(std::get<std::size_t>(with));
        if (brush == nullptr) {
            return std::nullopt;
        }
        const QPoint origin = canvas_.deviceToImage().map(state_.origin);
        return plusBrush(*brush, toImage(), origin, canvas_);
    }

    void fill(const QPainterPath& outline, const QBrush& brush) {
        if (const auto rectangle = rectangleOf(outline)) {
            canvas_.budget().spendPixels(2 * fillCost(*rectangle, canvas_.sheet()));
            prepared().fillRect(*rectangle, brush);
            return;
        }
        const QPainterPath path = cutArea(outline, canvas_.sheet());
        spend(path);
        prepared().fillPath(path, brush);
    }

    void on(const PlusClear& record) {
        QPainter& painter = prepared();
        canvas_.budget().spendPixels(double{1} * canvas_.sheet().width() *
                                     canvas_.sheet().height());
        painter.fillRect(canvas_.sheet(), QColor::fromRgba(record.colour));
    }

    void on(const PlusFill& record) {
        const auto brush = brushOf(record.with);
        if (!brush) {
            return;
        }
        if (const auto path = outlineOf(record.shape)) {
            fill(*path, *brush);
        } else if (const auto region = regionOf(record.shape, std::nullopt)) {
            fill(pathOf(*region), *brush);
        }
    }

    // What maps the pen's units to image pixels. Only widths in world units follow the transforms.
    QTransform nibOf(const PlusPen& pen) const {
        if (pen.unit == PlusUnit::World) {
            return toImage();
        }
        const double unit =
            plusUnitScale(pen.unit, {}, canvas_, dotsPerInch_) / std::max(canvas_.scale(), 1e-9);
        return QTransform::fromScale(unit, unit) * canvas_.deviceToImage();
    }

    void on(const PlusStroke& record) {
        const auto* pen = object<PlusPen>(record.pen);
        const auto path = outlineOf(record.shape);
        if (pen == nullptr || !path) {
            return;
        }
        const QPoint origin = canvas_.deviceToImage().map(state_.origin);
        const QBrush brush = plusBrush(pen->brush, toImage(), origin, canvas_);
        // Half of a pen twice as wide is inside of a closed figure.
        const bool isInside = pen->place == PlusPenPlace::Inside && isClosed(*path);
        QTransform nib = nibOf(*pen);
        if (isInside) {
            nib = QTransform::fromScale(2, 2) * nib;
        }
        const QPainterPath seen = cutLines(*path, canvas_.sheet(), plusLineReach(*pen, nib));
        const PlusLine line = plusLine(seen, *pen, nib, brush, canvas_.budget());
        const double cost = plusLineCost(line, canvas_.sheet());
        canvas_.budget().spendPixels(cost);
        QPainter& painter = prepared();
        if (isInside) {
            const QPainterPath inside = cutArea(*path, canvas_.sheet());
            spend(inside);
            painter.setClipPath(inside, Qt::IntersectClip);
            clipSet_ = false;
        }
        if (pen->lines.size() < 2) {
            paintPlusLine(painter, line);
            return;
        }
        constexpr double kMitres = 3;
        const double reach = kMitres * line.pen.widthF();
        const QRectF touched = path->controlPointRect().adjusted(-reach, -reach, reach, reach);
        const QRect box = touched.toAlignedRect() & canvas_.sheet();
        canvas_.budget().spendPixels(static_cast<double>(pen->lines.size()) *
                                     (cost + double{1} * box.width() * box.height()));
        paintPlusLines(painter, line, pen->lines, box);
    }

    static bool isClosed(const QPainterPath& path) {
        const int count = path.elementCount();
        return count > 2 && QPointF(path.elementAt(0)) == QPointF(path.elementAt(count - 1));
    }

    // ---- Images
    void on(const PlusDrawImage& record) {
        const auto* image = object<PlusImage>(record.image);
        if (image == nullptr) {
            return;
        }
        const QTransform transform = toImage();
        const QPointF corner = transform.map(record.corners[0]);
        const PlusImagePlace place{corner, transform.map(record.corners[1]) - corner,
                                   transform.map(record.corners[2]) - corner};
        prepared();
        drawPlusImage(canvas_, *image, record.part, place, nested_);
    }

    // ---- Text
    double emOf(const PlusFont& font) const {
        const QTransform transform = toImage();
        const double world = std::sqrt(std::abs(transform.determinant()));
        return font.size * plusUnitScale(font.unit, transform, canvas_, dotsPerInch_) /
               std::max(world, 1e-9);
    }

    void fillText(const QPainterPath& outline, const PlusFillWith& with) {
        const auto brush = brushOf(with);
        const QPainterPath whole = toImage().map(outline);
        if (brush && isSensible(whole)) {
            const QPainterPath path = cutArea(whole, canvas_.sheet());
            spend(path);
            prepared().fillPath(path, *brush);
        }
    }

    void on(const PlusDrawString& record) {
        const auto* font = object<PlusFont>(record.font);
        const auto* format = object<PlusStringFormat>(record.format);
        if (font == nullptr) {
            return;
        }
        fillText(plusTextOutline(record, *font, format != nullptr ? *format : PlusStringFormat(),
                                 emOf(*font), canvas_.budget()),
                 record.with);
    }

    void on(const PlusDrawLetters& record) {
        if (const auto* font = object<PlusFont>(record.font)) {
            fillText(plusLettersOutline(record, *font, emOf(*font), canvas_.budget()), record.with);
        }
    }

    Canvas& canvas_;
    const NestedMetafiles& nested_;
    PlusReader reader_;
    std::array<PlusObject, 64> objects_;
    State state_;
    std::vector<SavedState> saved_;
    double dotsPerInch_ = 96;
    bool gettingContext_ = false;
    bool clipSet_ = false; // the painter has the state's clip
};

PlusPlayer::PlusPlayer(Canvas& canvas, const NestedMetafiles& nested)
    : impl_(std::make_unique<Impl>(canvas, nested)) {}

PlusPlayer::~PlusPlayer() = default;

void PlusPlayer::play(std::span<const std::byte> comment) {
    impl_->play(comment);
}

bool PlusPlayer::wantsDeviceRecords() const {
    return impl_->wantsDeviceRecords();
}

} // namespace metafile
