#include "editing/screen_place.h"

#include <QScreen>
#include <QWidget>

namespace editing {

void centreOnScreen(QWidget& window) {
    const QWidget* owner = window.parentWidget() != nullptr ? window.parentWidget() : &window;
    const QRect area = owner->screen()->geometry();
    window.move(area.left() + (area.width() - window.width()) / 2,
                area.top() + (area.height() - window.height()) / 2);
}

} // namespace editing
