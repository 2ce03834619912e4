// The frame that shows where the keyboard's focus is, for widgets that the toolkit draws without.
#pragma once

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QWidget>

namespace app {

inline void drawFocusFrame(QWidget& widget, const QRect& place) {
    QStyleOptionFocusRect option;
    option.initFrom(&widget);
    option.rect = place;
    QPainter painter(&widget);
    widget.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, &widget);
}

} // namespace app
