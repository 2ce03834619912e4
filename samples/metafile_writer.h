#pragma once

#include "shapes.h"

#include <QByteArray>

/// Windows metafiles of drawings, record by record. Both kinds use one logical unit per twip and
/// show the drawing so that `width` twips (1/1440 inch) lie between its left and right edge.
/// Formats: [MS-WMF] and [MS-EMF], Microsoft Open Specifications.
namespace samples {

/// A placeable WMF. Throws std::length_error when the drawing is too tall for the format's 16-bit
/// coordinates.
QByteArray wmfOf(const Drawing& drawing, int width);

/// An EMF; the bounds in its header are those of the whole sheet. Throws like wmfOf(), since the
/// records used have 16-bit points.
QByteArray emfOf(const Drawing& drawing, int width);

} // namespace samples
