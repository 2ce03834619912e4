// Paints the pages of a catalogue, one after the other, on any device that has pages.
#pragma once

#include "catalogue/contents.h"
#include "catalogue/page_layout.h"
#include "picture/picture.h"

#include <QFont>

#include <functional>

class QPagedPaintDevice;
class QPainter;

namespace catalogue {

// The picture, or nothing when it cannot be shown.
using Fetch = std::function<std::optional<picture::Picture>(const Section& section,
                                                            const store::PictureEntry& entry)>;

class PagePainter {
  public:
    // The painter is on the device, whose coordinates begin at the corner of the sheet; `perPoint`
    // of its units are a point. What is referred to must outlive it.
    PagePainter(QPainter& painter, double perPoint, const std::vector<Section>& contents,
                QSizeF sheet);

    // The page with that number, from 0, of so many.
    void paint(const Page& page, std::size_t number, std::size_t count, const Fetch& fetch);

  private:
    void paintTitle();
    void paintHeader(const Page& page);
    void paintFooter(std::size_t number, std::size_t count);
    void paintHeading(const PlacedHeading& heading);
    void paintCell(const PlacedPicture& cell, const Fetch& fetch);
    void paintPicture(const QRectF& box, const picture::Picture& picture);
    void paintMissing(const QRectF& box);
    void writeLine(const QRectF& place, const QString& text, const QFont& font,
                   const QColor& colour, Qt::Alignment side = Qt::AlignLeft);

    QRectF toDevice(const QRectF& points) const;
    QFont fontOf(double points, QFont::Weight weight = QFont::Normal) const;

    QPainter& painter_;
    double perPoint_;
    const std::vector<Section>& contents_;
    PageFrame frame_;
};

} // namespace catalogue
