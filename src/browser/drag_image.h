// What the pointer carries while pictures are dragged: the current one, on others if there are
// more, and their number.
#pragma once

#include <QImage>
#include <QPixmap>

class QWidget;

namespace browser {

// `thumbnail` may be null: a sheet without a picture. In the widget's colours and resolution.
QPixmap dragImage(const QImage& thumbnail, qsizetype pictures, const QWidget& widget);

} // namespace browser
