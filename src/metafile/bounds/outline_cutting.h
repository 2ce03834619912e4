// Outlines that reach far beyond the sheet, cut off near it: the painter goes along all of every
// edge again and again, so that a triangle with its corners a million pixels away takes seconds.
#pragma once

#include <QPainterPath>
#include <QRect>

namespace metafile {

// An outline with the same inside on the sheet, by either fill rule; the same outline unless it
// reaches far beyond.
QPainterPath cutArea(const QPainterPath& outline, const QRect& sheet);

// Lines that look the same on the sheet when they are stroked, joins and ends included, `reach`
// pixels to either side at most. Where a dash begins may change.
QPainterPath cutLines(const QPainterPath& outline, const QRect& sheet, double reach);

} // namespace metafile
