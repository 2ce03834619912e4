#include "browser/picture_label.h"

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
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, width() - 4);
    style()->drawItemText(&painter, rect(), static_cast<int>(alignment()), palette(), isEnabled(),
                          shown, QPalette::WindowText);
}

} // namespace browser
