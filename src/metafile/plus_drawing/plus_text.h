// EMF+ text: characters to outlines.
#pragma once

#include "metafile/bounds/work_budget.h"
#include "metafile/plus/plus_records.h"

namespace metafile {

// The outlines of a text in world units. `em` is the font's size in them. A layout rectangle with
// sides breaks lines at spaces, if the format wraps, and is where the lines are aligned.
QPainterPath plusTextOutline(const PlusDrawString& string, const PlusFont& font,
                             const PlusStringFormat& format, double em, WorkBudget& budget);

// The outlines of letters that stand each at its own place.
QPainterPath plusLettersOutline(const PlusDrawLetters& letters, const PlusFont& font, double em,
                                WorkBudget& budget);

} // namespace metafile
