// WMF and EMF pictures, EMF+ included: recognised, measured, and drawn at any size.
//
// Thread-safe: any number of threads may call these functions at once.
#pragma once

#include "imaging/picture_facts.h"
#include "metafile/bounds/work_budget.h"
#include "platform/thread_time.h"

#include <QImage>
#include <QPicture>

#include <cstddef>
#include <optional>
#include <span>

namespace metafile {

// Wmf, Emf or nothing: what the bytes begin like.
std::optional<imaging::PictureKind> sniff(std::span<const std::byte> bytes);

// The size from the headers. DecodeError when they cannot be read.
imaging::PictureFacts measure(std::span<const std::byte> bytes);

enum class Completeness { Whole, Part };

struct Drawing {
    QImage image; // opaque, on white paper
    Completeness completeness = Completeness::Whole;
};

// The whole picture, by its own frame, stretched to `size` pixels. A record that cannot be read is
// left out; a file that is cut short, or that asks for more work than any honest one, is drawn as
// far as it goes (Part). How much is too much is counted in steps; `clock` tells of those that took
// longer than they count. Needs a QGuiApplication. Throws DecodeError when the header cannot be
// read or there is no memory.
Drawing draw(std::span<const std::byte> bytes, QSize size,
             WorkClock clock = platform::processorSecondsOfThisThread);

// The same as what a painter paints, in the pixels of a sheet of that size and without the paper:
// on paper its lines, areas and letters stay what they are, however large the sheet is shown.
// Nothing when something in the file combines pixels with those beneath: only draw() can do that.
std::optional<QPicture> record(std::span<const std::byte> bytes, QSize size,
                               WorkClock clock = platform::processorSecondsOfThisThread);

} // namespace metafile
