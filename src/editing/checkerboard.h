// What see-through pictures lie on where the user is to see that they are.
#pragma once

class QPainter;
class QPalette;
class QRect;

namespace editing {

// Fills the rectangle with squares in two light colours of the palette, the first one in its upper
// left corner.
void fillWithCheckerboard(QPainter& painter, const QRect& area, const QPalette& palette);

} // namespace editing
