// A WMF or EMF picture, drawn at any size.
#pragma once

#include "imaging/metafile/work_budget.h"

#include <QImage>

#include <cstddef>
#include <span>

namespace imaging::metafile {

enum class Completeness { Whole, Part };

struct Drawing {
    QImage image; // opaque, on white paper
    Completeness completeness = Completeness::Whole;
};

// The whole picture, by its own frame, stretched to `size` pixels. A record that cannot be read is
// left out; a file that is cut short, or that asks for more work than any honest one, is drawn as
// far as it goes (Part). Needs a QGuiApplication. Throws DecodeError when the header cannot be read
// or there is no memory.
Drawing draw(std::span<const std::byte> bytes, QSize size);

// The same for a metafile inside another, which lives on that one's budget.
QImage drawNested(std::span<const std::byte> bytes, QSize size, WorkBudget& budget);

} // namespace imaging::metafile
