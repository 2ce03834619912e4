#include "editing/bitmap_editor/lead_control.h"

#include "editing/checkerboard.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace editing {

namespace {

constexpr double kMostEnlarged = 64;
constexpr double kShortest = 8;      // pixels of the longer side on the screen
constexpr double kLongest = 1 << 30; // the same; what scroll bars can count
constexpr int kScrollStep = 20;

// Whole pixels of a side. Fitted to the room it must not be longer by what numbers are rounded.
int lengthOf(double side) {
    constexpr double kRounding = 1e-6;
    return static_cast<int>(std::ceil(side - kRounding));
}

// The squares of the board stay in their place while the picture is scrolled.
void paintBoard(QPainter& painter, const QRect& place, const QRect& visible,
                const QPalette& palette) {
    constexpr int kPeriod = 16;
    const QPoint from = visible.topLeft() - place.topLeft();
    const QPoint inPhase(from.x() - from.x() % kPeriod, from.y() - from.y() % kPeriod);
    painter.save();
    painter.setClipRect(visible, Qt::IntersectClip);
    fillWithCheckerboard(painter, QRect(place.topLeft() + inPhase, visible.bottomRight()), palette);
    painter.restore();
}

} // namespace

LeadControl::LeadControl(QWidget* parent) : QAbstractScrollArea(parent) {
    setObjectName(QStringLiteral("LeadControl"));
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Mid);
    viewport()->setAutoFillBackground(true);
    horizontalScrollBar()->setSingleStep(kScrollStep);
    verticalScrollBar()->setSingleStep(kScrollStep);
    QSizePolicy policy = sizePolicy();
    policy.setRetainSizeWhenHidden(true); // it is hidden while the picture is turned
    setSizePolicy(policy);
}

void LeadControl::setPicture(const DisplayLevels& picture) {
    picture_ = picture;
    updateScrollBars();
    viewport()->update();
}

void LeadControl::showWhole() {
    if (picture_.isEmpty()) {
        return;
    }
    const QSize room = maximumViewportSize();
    const QSize size = picture_.size();
    const double fitting = std::min(static_cast<double>(room.width()) / size.width(),
                                    static_cast<double>(room.height()) / size.height());
    const double least = kShortest / std::max(size.width(), size.height());
    factor_ = std::min(1.0, std::max(fitting, least));
    updateScrollBars();
    viewport()->update();
    emit zoomed(factor_);
}

void LeadControl::zoomIn() {
    zoomTo(factor_ * kZoomStep, middle());
}

void LeadControl::zoomOut() {
    zoomTo(factor_ / kZoomStep, middle());
}

// A step back from beyond the ends is, one further out is not.
bool LeadControl::isSensible(double factor) const {
    const double side = std::max(picture_.size().width(), picture_.size().height()) * factor;
    return factor > factor_ ? factor <= kMostEnlarged && side <= kLongest : side >= kShortest;
}

void LeadControl::zoomTo(double factor, const QPointF& anchor) {
    if (picture_.isEmpty() || !isSensible(factor)) {
        return;
    }
    const QRectF before = placeOfPicture();
    const QPointF inside(std::clamp(anchor.x(), before.left(), before.right()),
                         std::clamp(anchor.y(), before.top(), before.bottom()));
    const QPointF point = (inside - before.topLeft()) / factor_;
    factor_ = factor;
    updateScrollBars();
    scrollTo(point * factor - inside);
    viewport()->update();
    emit zoomed(factor_);
}

QRectF LeadControl::placeOfPicture() const {
    const QSizeF size = QSizeF(picture_.size()) * factor_;
    const auto start = [](double side, int room, int scrolled) {
        return lengthOf(side) <= room ? std::floor((room - side) / 2)
                                      : -static_cast<double>(scrolled);
    };
    return {QPointF(start(size.width(), viewport()->width(), scrolled().x()),
                    start(size.height(), viewport()->height(), scrolled().y())),
            size};
}

QPointF LeadControl::middle() const {
    return QRectF(viewport()->rect()).center();
}

QPoint LeadControl::scrolled() const {
    return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

// The bars keep to their ranges.
void LeadControl::scrollTo(const QPointF& topLeft) {
    horizontalScrollBar()->setValue(qRound(topLeft.x()));
    verticalScrollBar()->setValue(qRound(topLeft.y()));
}

void LeadControl::updateScrollBars() {
    const QSizeF size = QSizeF(picture_.size()) * factor_;
    const QSize room = roomForPicture();
    const auto set = [](QScrollBar& bar, double side, int shown) {
        bar.setRange(0, std::max(0, lengthOf(side) - shown));
        bar.setPageStep(shown);
    };
    set(*horizontalScrollBar(), size.width(), room.width());
    set(*verticalScrollBar(), size.height(), room.height());
    updatePointer();
}

// Without the bars, if the picture just fits then: they go, or come, a little later.
QSize LeadControl::roomForPicture() const {
    const QSizeF size = QSizeF(picture_.size()) * factor_;
    const QSize most = maximumViewportSize();
    const bool fits =
        lengthOf(size.width()) <= most.width() && lengthOf(size.height()) <= most.height();
    return fits ? most : viewport()->size();
}

void LeadControl::updatePointer() {
    const bool canMove = horizontalScrollBar()->maximum() + verticalScrollBar()->maximum() > 0;
    viewport()->setCursor(press_.isDrag ? Qt::ClosedHandCursor
                                        : (canMove ? Qt::OpenHandCursor : Qt::ArrowCursor));
}

void LeadControl::paintEvent(QPaintEvent* event) {
    const QRectF place = placeOfPicture();
    const QRect visible = place.toAlignedRect() & event->rect();
    if (picture_.isEmpty() || visible.isEmpty()) {
        return;
    }
    QPainter painter(viewport());
    if (picture_.hasAlpha()) {
        paintBoard(painter, place.toAlignedRect(), visible, palette());
    }
    picture_.paint(painter, place, visible);
}

void LeadControl::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
    viewport()->update();
}

void LeadControl::mousePressEvent(QMouseEvent* event) {
    if (press_.button == Qt::NoButton) {
        press_ = {event->button(), event->pos(), scrolled()};
    }
}

void LeadControl::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event); // two quick clicks are two clicks
}

void LeadControl::mouseMoveEvent(QMouseEvent* event) {
    if (press_.button == Qt::NoButton) {
        return;
    }
    const QPoint way = event->pos() - press_.pointer;
    if (!press_.isDrag && way.manhattanLength() >= QApplication::startDragDistance()) {
        press_.isDrag = true;
        updatePointer();
    }
    if (press_.isDrag) {
        scrollTo(press_.scrolled - way);
    }
}

void LeadControl::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != press_.button) {
        return;
    }
    const bool isClick = !press_.isDrag;
    press_ = {};
    updatePointer();
    if (isClick) {
        const bool isLeft = event->button() == Qt::LeftButton;
        zoomTo(isLeft ? factor_ * kZoomStep : factor_ / kZoomStep, event->position());
    }
}

void LeadControl::wheelEvent(QWheelEvent* event) {
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    wheel_ += event->angleDelta().y();
    for (; wheel_ >= QWheelEvent::DefaultDeltasPerStep;
         wheel_ -= QWheelEvent::DefaultDeltasPerStep) {
        zoomTo(factor_ * kZoomStep, event->position());
    }
    for (; wheel_ <= -QWheelEvent::DefaultDeltasPerStep;
         wheel_ += QWheelEvent::DefaultDeltasPerStep) {
        zoomTo(factor_ / kZoomStep, event->position());
    }
    event->accept();
}

void LeadControl::scrollContentsBy(int, int) {
    viewport()->update();
}

} // namespace editing
