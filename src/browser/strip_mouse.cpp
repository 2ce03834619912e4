#include "browser/strip_mouse.h"

#include "browser/thumbnail_strip.h"

#include <QApplication>
#include <QMouseEvent>
#include <QRubberBand>

#include <utility>

namespace browser {

Selecting selectingFor(Qt::KeyboardModifiers modifiers) {
    const bool isRange = modifiers.testFlag(Qt::ShiftModifier);
    const bool isToo = modifiers.testFlag(Qt::ControlModifier);
    if (isRange) {
        return isToo ? Selecting::RangeToo : Selecting::Range;
    }
    return isToo ? Selecting::Toggle : Selecting::Alone;
}

StripMouse::StripMouse(ThumbnailStrip& strip) : QObject(&strip), strip_(strip) {}

StripMouse::~StripMouse() = default;

void StripMouse::pressed(const QMouseEvent& event) {
    forget();
    const QPoint position = event.position().toPoint();
    const QString name = strip_.nameAt(position);
    if (event.button() == Qt::LeftButton) {
        pressedAt_ = position;
        pressedOn_ = name;
    }
    if (!name.isEmpty()) {
        pressedOn(name, event);
    } else if (event.modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) {
        beforeBand_ = strip_.selected();
    }
}

void StripMouse::pressedOn(const QString& name, const QMouseEvent& event) {
    const Selecting how =
        event.button() == Qt::LeftButton ? selectingFor(event.modifiers()) : Selecting::Alone;
    const bool isOneOfMany = strip_.selected().size() > 1 && strip_.selected().contains(name);
    if (!isOneOfMany) {
        emit chosen(name, how);
        return;
    }
    // The others go at the release only: until then it may become a drag of all of them, which
    // Shift, held from the beginning, makes a move.
    if (event.button() == Qt::LeftButton) {
        atRelease_ = Pressed{name, how};
    }
    if (how == Selecting::Alone) {
        emit chosen(name, Selecting::Beside);
    }
}

void StripMouse::moved(const QMouseEvent& event) {
    const QPoint position = event.position().toPoint();
    if (!pressedAt_ || !event.buttons().testFlag(Qt::LeftButton)) {
        return;
    }
    if (band_ == nullptr &&
        (position - *pressedAt_).manhattanLength() < QApplication::startDragDistance()) {
        return;
    }
    if (pressedOn_.isEmpty()) {
        drawBand(position);
        return;
    }
    const bool isSelected = strip_.selected().contains(pressedOn_);
    forget();
    if (isSelected) {
        emit dragWanted();
    }
}

void StripMouse::drawBand(const QPoint& position) {
    if (band_ == nullptr) {
        band_ = std::make_unique<QRubberBand>(QRubberBand::Rectangle, &strip_);
        band_->setObjectName(QStringLiteral("shpAuswahl"));
    }
    const QRect area = QRect(*pressedAt_, position).normalized() & strip_.rect();
    band_->setGeometry(area);
    band_->show();
    emit banded(strip_.namesIn(area), beforeBand_);
}

void StripMouse::released(const QMouseEvent& event) {
    if (event.button() != Qt::LeftButton) {
        return;
    }
    const std::optional<Pressed> pressed = atRelease_;
    forget();
    if (pressed) {
        emit chosen(pressed->name, pressed->how);
    }
}

void StripMouse::forget() {
    pressedAt_.reset();
    pressedOn_.clear();
    atRelease_.reset();
    beforeBand_.clear();
    band_.reset();
}

} // namespace browser
