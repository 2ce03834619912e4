// Text records: characters to outlines, placed as the record and the context tell.
#pragma once

#include "metafile/drawing/device_context.h"
#include "metafile/drawing/shape_painter.h"

#include <QFont>

namespace metafile {

// A font record, looked up among the installed fonts.
struct ChosenFont {
    Font record;
    QFont painterFont;
    bool translatesSymbols = false; // the codes of a symbol font that is not installed
};

ChosenFont chosenFont(const Font& record);

struct PlacedText {
    QPainterPath outline;    // letters and lines, image pixels
    QPainterPath background; // the box behind them
    QPointF advance;         // from the reference point to the text's end, logical units
};

// The reference point is the current position when the alignment says so. Spends work before.
PlacedText placeText(const Text& text, const ChosenFont& font, const DeviceContext& context,
                     WorkBudget& budget);

} // namespace metafile
