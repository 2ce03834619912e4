// Where a window stands when it opens.
#pragma once

class QWidget;

namespace editing {

// In the middle of its owner's screen, or of its own if nobody owns it.
void centreOnScreen(QWidget& window);

} // namespace editing
