#include "browser/thumbnail_strip.h"

#include "app/colours.h"
#include "app/focus_frame.h"
#include "browser/picture_painting.h"
#include "browser/strip_mouse.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <map>
#include <optional>

namespace browser {
namespace {

constexpr double kPadding = 5; // pixels between a cell's edge and its picture
constexpr double kCorner = 4;
constexpr double kNamePadding = 3;

} // namespace

ThumbnailCell::ThumbnailCell(int index, QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("img_%1").arg(index));
    setMouseTracking(true);
}

void ThumbnailCell::showPicture(const QString& name, const QImage& image) {
    tag_ = name;
    image_ = image;
    isFilled_ = true;
    setAccessibleName(name);
    update();
}

void ThumbnailCell::clear() {
    image_ = {};
    isFilled_ = false;
    emphasis_ = Emphasis::None;
    clearTag();
    update();
}

void ThumbnailCell::clearTag() {
    tag_.clear();
    setAccessibleName({});
}

void ThumbnailCell::setEmphasis(Emphasis emphasis) {
    if (emphasis_ != emphasis) {
        emphasis_ = emphasis;
        update();
    }
}

void ThumbnailCell::setNameHeight(int height) {
    if (nameHeight_ != height) {
        nameHeight_ = height;
        update();
    }
}

void ThumbnailCell::paintEvent(QPaintEvent*) {
    if (!isFilled_) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QColor base = palette().color(QPalette::Base);
    const QColor highlight = palette().color(QPalette::Highlight);
    QColor border = app::between(palette().color(QPalette::Text), base, 0.78);
    QColor fill = base;
    if (emphasis_ != Emphasis::None) {
        border = emphasis_ == Emphasis::CurrentWithFocus ? highlight
                                                         : app::between(highlight, base, 0.35);
        fill = app::between(highlight, base, 0.72);
    }
    const double pen =
        emphasis_ == Emphasis::Current || emphasis_ == Emphasis::CurrentWithFocus ? 2 : 1;
    const QRectF frame = QRectF(rect()).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2);
    painter.setPen(QPen(border, pen));
    painter.setBrush(fill);
    painter.drawRoundedRect(frame, kCorner, kCorner);
    const QRectF area =
        QRectF(rect()).adjusted(kPadding, kPadding, -kPadding, -kPadding - nameHeight_);
    if (nameHeight_ > 0) {
        const QRectF below(kNamePadding, height() - nameHeight_, width() - 2 * kNamePadding,
                           nameHeight_);
        painter.setPen(palette().color(QPalette::Text));
        paintName(painter, below, tag_);
    }
    if (image_.isNull()) {
        paintUndecodable(painter, area, palette());
    } else {
        paintCentred(painter, image_, area, palette());
    }
}

ThumbnailStrip::ThumbnailStrip(QWidget* parent) : QFrame(parent), mouse_(new StripMouse(*this)) {
    setObjectName(QStringLiteral("shpVorschau"));
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    connect(mouse_, &StripMouse::chosen, this, [this](const QString& name, Selecting how) {
        chooseWhenShown_ = -1;
        emit chosen(name, how);
    });
    connect(mouse_, &StripMouse::banded, this, &ThumbnailStrip::banded);
    connect(mouse_, &StripMouse::dragWanted, this, &ThumbnailStrip::dragWanted);
}

QSizeF ThumbnailStrip::pictureArea(double side) {
    const double inner = app::toPixels(side) - 2 * kPadding;
    return {inner, inner};
}

double ThumbnailStrip::nameHeight() const {
    return app::toTwips(kNameLines * fontMetrics().lineSpacing() + kNamePadding);
}

void ThumbnailStrip::setGrid(const GridSize& grid, const CellSize& cell) {
    grid_ = grid;
    cell_ = cell;
    const auto wanted = static_cast<std::size_t>(thumbnailCount(grid) + 1);
    while (cells_.size() > wanted) {
        delete cells_.back();
        cells_.pop_back();
    }
    while (cells_.size() < wanted) {
        cells_.push_back(new ThumbnailCell(static_cast<int>(cells_.size()), this));
        cells_.back()->setVisible(areCellsVisible_);
    }
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        cells_[i]->setGeometry(app::toPixels(cellRect({}, grid, static_cast<int>(i), cell)));
        cells_[i]->setNameHeight(app::toPixels(cell.nameHeight));
    }
}

void ThumbnailStrip::clear() {
    chooseWhenShown_ = -1;
    mouse_->forget();
    expect({});
    for (ThumbnailCell* cell : cells_) {
        cell->clear();
    }
}

void ThumbnailStrip::clearTags() {
    for (ThumbnailCell* cell : cells_) {
        cell->clearTag();
    }
}

void ThumbnailStrip::showPicture(int index, const QString& name, const QImage& image) {
    if (index < 0 || index >= static_cast<int>(cells_.size())) {
        return;
    }
    cells_[static_cast<std::size_t>(index)]->showPicture(name, image);
    refreshEmphasis();
    if (chooseWhenShown_ == index) {
        choose(index, howWhenShown_);
    }
}

void ThumbnailStrip::keep(std::span<const QString> names) {
    for (std::size_t i = 0; i < cells_.size(); ++i) {
        if (i >= names.size() || cells_[i]->tag() != names[i]) {
            cells_[i]->clear();
        }
    }
    refreshEmphasis();
}

void ThumbnailStrip::mark(const QString& current, const QSet<QString>& selected) {
    marked_ = current;
    selected_ = selected;
    refreshEmphasis();
}

void ThumbnailStrip::refreshEmphasis() {
    using Emphasis = ThumbnailCell::Emphasis;
    for (ThumbnailCell* cell : cells_) {
        const bool isCurrent = !marked_.isEmpty() && cell->tag() == marked_;
        cell->setEmphasis(isCurrent ? hasFocus() ? Emphasis::CurrentWithFocus : Emphasis::Current
                          : selected_.contains(cell->tag()) ? Emphasis::Selected
                                                            : Emphasis::None);
    }
    if (const bool isFramed = hasFocus() && isCurrentElsewhere(); isFramed != isFramed_) {
        isFramed_ = isFramed;
        update();
    }
}

// Not while the pictures of the page are still to come.
bool ThumbnailStrip::isCurrentElsewhere() const {
    const auto filled = std::count_if(cells_.begin(), cells_.end(), [](const ThumbnailCell* cell) {
        return !cell->tag().isEmpty();
    });
    return markedCell() < 0 && (marked_.isEmpty() || filled >= shown_.count);
}

void ThumbnailStrip::setCellsVisible(bool visible) {
    areCellsVisible_ = visible;
    for (ThumbnailCell* cell : cells_) {
        cell->setVisible(visible);
    }
}

int ThumbnailStrip::cellAt(const QPoint& position) const {
    const auto found = std::find_if(cells_.begin(), cells_.end(), [&](const ThumbnailCell* cell) {
        return cell->geometry().contains(position) && !cell->tag().isEmpty();
    });
    return found == cells_.end() ? -1 : static_cast<int>(found - cells_.begin());
}

QString ThumbnailStrip::nameAt(const QPoint& position) const {
    const int index = cellAt(position);
    return index < 0 ? QString() : cells_[static_cast<std::size_t>(index)]->tag();
}

QStringList ThumbnailStrip::namesIn(const QRect& area) const {
    QStringList names;
    for (const ThumbnailCell* cell : cells_) {
        if (!cell->tag().isEmpty() && cell->geometry().intersects(area)) {
            names.append(cell->tag());
        }
    }
    return names;
}

int ThumbnailStrip::markedCell() const {
    const auto found = std::find_if(cells_.begin(), cells_.end(), [&](const ThumbnailCell* cell) {
        return !marked_.isEmpty() && cell->tag() == marked_;
    });
    return found == cells_.end() ? -1 : static_cast<int>(found - cells_.begin());
}

QImage ThumbnailStrip::currentImage() const {
    const int index = markedCell();
    return index < 0 ? QImage() : cells_[static_cast<std::size_t>(index)]->image();
}

void ThumbnailStrip::choose(int index, Selecting how) {
    chooseWhenShown_ = -1;
    emit chosen(cells_[static_cast<std::size_t>(index)]->tag(), how);
}

void ThumbnailStrip::chooseSoon(int index, Selecting how) {
    const bool isThere = index >= 0 && !cells_[static_cast<std::size_t>(index)]->tag().isEmpty();
    if (isThere) {
        choose(index, how);
    } else {
        chooseWhenShown_ = index;
        howWhenShown_ = how;
    }
}

void ThumbnailStrip::step(Step wanted, Selecting how) {
    if (shown_.count == 0) {
        return;
    }
    const int marked = markedCell();
    const int target =
        moveFrom(marked < 0 ? -1 : shown_.first + marked, shown_, grid_.columns, wanted);
    if (target < shown_.first || target >= shown_.first + shown_.count) {
        emit pictureWanted(target);
    }
    // Others may have changed the group meanwhile.
    if (shown_.count > 0) {
        chooseSoon(std::clamp(target - shown_.first, 0, shown_.count - 1), how);
    }
}

// With Shift a range is selected, with Ctrl the current one moves while what is selected stays.
bool ThumbnailStrip::stepByKey(const QKeyEvent& event) {
    static const std::map<int, Step> kSteps{
        {Qt::Key_Left, Step::Left}, {Qt::Key_Right, Step::Right}, {Qt::Key_Up, Step::Up},
        {Qt::Key_Down, Step::Down}, {Qt::Key_Home, Step::First},  {Qt::Key_End, Step::Last},
    };
    const auto found = kSteps.find(event.key());
    if (found == kSteps.end()) {
        return false;
    }
    const Selecting how = selectingFor(event.modifiers());
    step(found->second, how == Selecting::Toggle ? Selecting::Beside : how);
    return true;
}

void ThumbnailStrip::keyPressEvent(QKeyEvent* event) {
    if (stepByKey(*event)) {
        return;
    }
    switch (event->key()) {
    case Qt::Key_Space:
        if (markedCell() >= 0) {
            choose(markedCell(), Selecting::Toggle);
        }
        return;
    case Qt::Key_PageUp:
        emit pagesWanted(-1);
        return;
    case Qt::Key_PageDown:
        emit pagesWanted(1);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (markedCell() >= 0) {
            emit activatedByKey(marked_);
        }
        return;
    default:
        QFrame::keyPressEvent(event);
    }
}

void ThumbnailStrip::mousePressEvent(QMouseEvent* event) {
    setFocus(Qt::MouseFocusReason);
    mouse_->pressed(*event);
}

void ThumbnailStrip::mouseReleaseEvent(QMouseEvent* event) {
    mouse_->released(*event);
}

void ThumbnailStrip::mouseDoubleClickEvent(QMouseEvent* event) {
    const int index = cellAt(event->position().toPoint());
    if (index >= 0 && event->button() == Qt::LeftButton) {
        emit activated(cells_[static_cast<std::size_t>(index)]->tag());
    }
}

void ThumbnailStrip::mouseMoveEvent(QMouseEvent* event) {
    const bool isHeld = event->buttons() != Qt::NoButton; // a band is drawn, or a drag begins
    emit pointerOver(isHeld ? QString() : nameAt(event->position().toPoint()),
                     event->globalPosition().toPoint());
    mouse_->moved(*event);
}

void ThumbnailStrip::leaveEvent(QEvent* event) {
    QFrame::leaveEvent(event);
    emit pointerOver({}, {});
}

void ThumbnailStrip::contextMenuEvent(QContextMenuEvent* event) {
    const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
    const int index = byMouse ? cellAt(event->pos()) : markedCell();
    if (index < 0) {
        return;
    }
    emit popUpWanted(
        byMouse ? event->globalPos()
                : mapToGlobal(cells_[static_cast<std::size_t>(index)]->geometry().center()));
}

void ThumbnailStrip::wheelEvent(QWheelEvent* event) {
    constexpr int kNotch = 120;
    wheelRest_ += event->angleDelta().y();
    const int notches = wheelRest_ / kNotch;
    wheelRest_ %= kNotch;
    if (notches != 0 && event->modifiers().testFlag(Qt::ControlModifier)) {
        emit sizesWanted(notches);
    } else if (notches != 0) {
        emit rowsWanted(-notches);
    }
    event->accept();
}

// The keyboard's place is the current picture's cell; without one on the page it is the whole
// strip.
void ThumbnailStrip::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    if (isFramed_) {
        app::drawFocusFrame(*this, contentsRect());
    }
}

void ThumbnailStrip::focusInEvent(QFocusEvent* event) {
    QFrame::focusInEvent(event);
    refreshEmphasis();
}

void ThumbnailStrip::focusOutEvent(QFocusEvent* event) {
    QFrame::focusOutEvent(event);
    refreshEmphasis();
}

} // namespace browser
