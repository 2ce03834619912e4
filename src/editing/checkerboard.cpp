#include "editing/checkerboard.h"

#include "app/colours.h"

#include <QPainter>
#include <QPalette>

namespace editing {

void fillWithCheckerboard(QPainter& painter, const QRect& area, const QPalette& palette) {
    constexpr int kSquare = 8; // device-independent pixels
    constexpr double kContrast = 0.16;
    const QColor paper = app::paperColor(palette);
    const QColor second = app::between(paper, Qt::black, kContrast);
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.fillRect(area, paper);
    for (int y = area.top(), row = 0; y <= area.bottom(); y += kSquare, ++row) {
        const int first = area.left() + (row % 2 == 0 ? kSquare : 0);
        for (int x = first; x <= area.right(); x += 2 * kSquare) {
            painter.fillRect(x, y, kSquare, kSquare, second);
        }
    }
    painter.restore();
}

} // namespace editing
