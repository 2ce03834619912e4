// Where dialogs open that do not open over their owner.
#pragma once

class QWidget;

namespace commands {

// Puts a window that is not shown yet in the middle of its owner's screen, at the size that its
// content asks for.
void centreOnScreen(QWidget& window);

} // namespace commands
