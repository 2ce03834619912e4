#include "browser/picture_label.h"

#include "groups/plain_tool_tip.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>

namespace browser {

PictureLabel::PictureLabel(QWidget* parent) : QLabel(parent) {
    setObjectName(QStringLiteral("lblAktuell"));
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
}

void PictureLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    style()->drawItemText(&painter, rect(), static_cast<int>(alignment()), palette(), isEnabled(),
                          fittingText(), QPalette::WindowText);
}

bool PictureLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QLabel::event(event);
    }
    const bool isCut = fittingText() != text();
    groups::showToolTip(static_cast<QHelpEvent*>(event)->globalPos(), isCut ? text() : QString(),
                        this, rect());
    return true;
}

QString PictureLabel::fittingText() const {
    return fontMetrics().elidedText(text(), Qt::ElideMiddle, width() - 4);
}

} // namespace browser
