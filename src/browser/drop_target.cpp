#include "browser/drop_target.h"

#include "browser/carried_pictures.h"

#include <QWidget>

#include <utility>

namespace browser {
namespace {

constexpr int kRestMilliseconds = 700;

// The library's pictures are moved with Shift held, from another window of it as well; what others
// offer stays theirs.
DropKind kindOf(const QDropEvent& event) {
    return isFromLibrary(*event.mimeData()) && event.modifiers().testFlag(Qt::ShiftModifier)
               ? DropKind::Move
               : DropKind::Copy;
}

} // namespace

DropTarget::DropTarget(QWidget& widget, Owner owner) : QObject(&widget), owner_(std::move(owner)) {
    widget.setAcceptDrops(true);
    widget.installEventFilter(this);
    resting_.setSingleShot(true);
    resting_.setInterval(kRestMilliseconds);
    connect(&resting_, &QTimer::timeout, this, [this] { owner_.rested(position_); });
}

bool DropTarget::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
        dragged(static_cast<QDropEvent&>(*event));
        return true;
    case QEvent::DragLeave:
        leave();
        return true;
    case QEvent::Drop:
        drop(static_cast<QDropEvent&>(*event));
        return true;
    default:
        return false;
    }
}

void DropTarget::dragged(QDropEvent& event) {
    const QPoint position = event.position().toPoint();
    if (position != position_ || !resting_.isActive()) {
        position_ = position;
        resting_.start();
    }
    owner_.hover(position);
    // Asked again while it moves: entering at a place that takes nothing must not end it.
    const bool isEntering = event.type() == QEvent::DragEnter;
    if (mayHoldPictures(*event.mimeData()) && (isEntering || owner_.takesAt(position))) {
        event.setDropAction(kindOf(event) == DropKind::Move ? Qt::MoveAction : Qt::CopyAction);
        event.accept();
    } else {
        event.ignore();
    }
}

void DropTarget::drop(QDropEvent& event) {
    const QPoint position = event.position().toPoint();
    leave();
    if (!mayHoldPictures(*event.mimeData()) || !owner_.takesAt(position)) {
        event.ignore();
        return;
    }
    event.setDropAction(kindOf(event) == DropKind::Move ? Qt::MoveAction : Qt::CopyAction);
    event.accept();
    emit dropped(position, event.mimeData(), kindOf(event));
}

void DropTarget::leave() {
    resting_.stop();
    owner_.left();
}

} // namespace browser
