// The sheet that a metafile is drawn on: an opaque image that begins as white paper, since a
// metafile has no ground of its own and its raster operations suppose one. Or a recording of what
// is painted, for a printer's white paper; then there are no pixels.
//
// Three kinds of coordinates meet here:
//   device units  of the reference device that the file was recorded for (its pixels), or of the
//                 page that a file without such a device is laid out on;
//   image pixels  of this sheet; deviceToImage() maps the one to the other and never changes;
//   logical units are the players' own business.
#pragma once

#include "metafile/bounds/work_budget.h"
#include "metafile/records/records.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPicture>
#include <QRegion>
#include <QTransform>

#include <optional>
#include <span>
#include <vector>

namespace metafile {

// What may be drawn on, in image pixels: a region of whole pixels, cut down by paths with smooth
// edges. A fresh one lets everything through.
class Clip {
  public:
    bool isEverything() const { return !bounded_ && paths_.empty(); }

    void intersect(const QRegion& region, const QRect& sheet);
    void intersect(const QPainterPath& path, const QRect& sheet);
    void combine(const QRegion& region, ClipMode mode, const QRect& sheet);
    void translate(QPointF offset);

    // Everything that this and the other let through.
    void intersect(const Clip& other, const QRect& sheet);

    // The same as whole pixels of the sheet.
    QRegion toRegion(const QRect& sheet) const;

    void applyTo(QPainter& painter, const QRect& sheet) const;

    // What applying it takes, or turning it into pixels: in pixels filled, as the budget counts.
    double cost(const QRect& sheet) const;

    // How many rectangles and path elements it keeps in memory.
    std::size_t weight() const;

    // Of the clips of all saved states together; tens of megabytes.
    static constexpr std::size_t kMostSavedWeight = 2'000'000;

  private:
    void become(QRegion region);
    bool isCrowded() const;

    bool bounded_ = false;
    QRegion region_;                  // meaningful when bounded_
    std::vector<QPainterPath> paths_; // all of them apply
};

// The whole pixels whose middle lies in the path.
QRegion regionOf(const QPainterPath& path, const QRect& sheet);

// The rectangles together. Spends work as it goes: a few thousand that cross each other make
// millions.
QRegion unionOf(std::span<const QRect> rectangles, WorkBudget& budget);

// The region as an outline to fill. WorkExhausted for one of more rectangles than a painter can
// fill at once.
QPainterPath pathOf(const QRegion& region);

// Thin lines along the axes are moved to the middle of pixels, where they are sharp; the others
// stay.
QPainterPath sharpened(const QPainterPath& outline);

// The rectangle with sides along the axes that the outline is, if it is one, in whole pixels and at
// least one of them. Rectangles painted so meet their neighbours without a seam.
std::optional<QRect> rectangleOf(const QPainterPath& outline);

enum class Surface { Pixels, Recording };

// Something is to be drawn that needs the pixels beneath, and the surface has none.
struct PixelsNeeded {};

class Canvas {
  public:
    // A white sheet. DecodeError when there is no memory for it. The budget must outlive it.
    Canvas(QSize size, const QTransform& deviceToImage, WorkBudget& budget,
           Surface surface = Surface::Pixels);
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    // Paints in image pixels. Whoever draws sets transform, clip, hints, pen, brush and composition
    // mode before; nothing of them is promised to stay from one record to the next.
    QPainter& painter() { return painter_; }

    // How the painter is to combine what it paints next with what is there. PixelsNeeded.
    void setMode(QPainter::CompositionMode mode);

    // Lets the painter paint where both clips allow it, in image pixels. Spends work before.
    void clipTo(const Clip& clip, const Clip& besides = {});

    // Lets go of the pictures that were painted with, which the painter holds on to. Of what was
    // set only its hints stay.
    void renewPainter();

    const QTransform& deviceToImage() const { return deviceToImage_; }

    // Image pixels to one device unit, the mean of both directions.
    double scale() const { return scale_; }

    QRect sheet() const { return {QPoint(0, 0), size_}; }
    WorkBudget& budget() { return budget_; }

    // For operations that the painter cannot do: the pixels themselves, always opaque RGB32. The
    // painter must not be in use meanwhile; clips do not apply. PixelsNeeded.
    QImage& pixels();

    // End the painting and hand the sheet over: the one that the surface is.
    QImage take();
    QPicture takeRecording();

  private:
    QSize size_;
    Surface surface_;
    QImage image_;
    QPicture recording_;
    QPainter painter_;
    QTransform deviceToImage_;
    double scale_;
    WorkBudget& budget_;
};

} // namespace metafile
