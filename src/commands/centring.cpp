#include "commands/centring.h"

#include <QScreen>
#include <QWidget>

namespace commands {

void centreOnScreen(QWidget& window) {
    window.ensurePolished();
    window.adjustSize();
    const QWidget* owner = window.parentWidget();
    const QRect screen = (owner != nullptr ? owner : &window)->screen()->geometry();
    window.move(screen.left() + screen.width() / 2 - window.width() / 2,
                screen.top() + screen.height() / 2 - window.height() / 2);
}

} // namespace commands
