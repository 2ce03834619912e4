#include "browser/thumbnail_tool_tip.h"

#include "app/colours.h"

#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace browser {
namespace {

constexpr std::uint8_t kTicksToWait = 40;
constexpr int kTickMilliseconds = 10;
constexpr QPoint kBesidePointer(14, 18);

} // namespace

ThumbnailToolTip::ThumbnailToolTip(QWidget* surface)
    : QLineEdit(surface), ToolTipCounter_(kTicksToWait) {
    setObjectName(QStringLiteral("txtName"));
    setReadOnly(true);
    setFrame(false);
    setFocusPolicy(Qt::NoFocus);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setTextMargins(6, 3, 6, 3);
    QPalette colors = QToolTip::palette();
    colors.setColor(QPalette::Base, colors.color(QPalette::ToolTipBase));
    colors.setColor(QPalette::Text, colors.color(QPalette::ToolTipText));
    setPalette(colors);
    hide();
    timer_.setInterval(kTickMilliseconds);
    connect(&timer_, &QTimer::timeout, this, &ThumbnailToolTip::tick);
}

void ThumbnailToolTip::pointerOver(const QString& name, const QPoint& globalPosition) {
    name_ = name;
    position_ = parentWidget()->mapFromGlobal(globalPosition);
    if (name.isEmpty()) {
        timer_.stop();
        hide();
    } else if (ToolTipCounter_ == 0) {
        present();
    } else {
        timer_.start();
    }
}

void ThumbnailToolTip::pointerOnFreeSurface() {
    pointerOver({}, {});
    ToolTipCounter_ = kTicksToWait;
}

void ThumbnailToolTip::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    painter.setPen(
        app::between(palette().color(QPalette::Text), palette().color(QPalette::Base), 0.5));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void ThumbnailToolTip::tick() {
    if (--ToolTipCounter_ == 0) {
        timer_.stop();
        present();
    }
}

void ThumbnailToolTip::present() {
    setText(name_);
    setCursorPosition(0);
    constexpr int kSpare = 16; // text margins and the cursor's width
    const int width =
        std::min(fontMetrics().horizontalAdvance(name_) + kSpare, parentWidget()->width() - 2);
    resize(width, sizeHint().height());
    const QRect free = parentWidget()->rect().adjusted(0, 0, -this->width(), -height());
    const QPoint wanted = position_ + kBesidePointer;
    move(std::clamp(wanted.x(), 0, std::max(0, free.right())),
         std::clamp(wanted.y(), 0, std::max(0, free.bottom())));
    raise();
    show();
}

} // namespace browser
