#include "app/colours.h"

#include <QPalette>

namespace app {

QColor between(const QColor& first, const QColor& second, double share) {
    const auto channel = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return QColor(channel(first.red(), second.red()), channel(first.green(), second.green()),
                  channel(first.blue(), second.blue()));
}

QColor paperColor(const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    return base.lightness() >= text.lightness() ? base : between(text, base, 0.1);
}

} // namespace app
