#include "catalogue/page_painter.h"

#include "app/texts.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>

namespace catalogue {
namespace {

constexpr app::TextPair kNoPictures{u"keine Bilder", u"no pictures"};
constexpr app::TextPair kOnePicture{u"1 Bild", u"1 picture"};
constexpr app::TextPair kManyPictures{u"%1 Bilder", u"%1 pictures"};
constexpr app::TextPair kInGroups{u"%1 in %2 Gruppen", u"%1 in %2 groups"};
constexpr app::TextPair kPage{u"Seite %1 von %2", u"Page %1 of %2"};
constexpr app::TextPair kUnshowable{u"nicht darstellbar", u"cannot be shown"};

constexpr double kTitleSize = 20; // points, as all sizes here
constexpr double kHeadingSize = 12;
constexpr double kNameSize = 8.5;
constexpr double kSmallSize = 7.5;
constexpr double kPadding = 5; // between a picture and its frame
constexpr double kHairline = 0.5;
constexpr double kPixelsPerInch = 96; // of a raster picture in its own size
constexpr double kFineness = 300;     // dots to an inch of what is kept as dots

constexpr QColor kInk{0x20, 0x20, 0x20};
constexpr QColor kQuietInk{0x70, 0x70, 0x70};
constexpr QColor kFrame{0xC8, 0xC8, 0xC8};

QString countText(std::size_t pictures) {
    return pictures == 0   ? app::text(kNoPictures)
           : pictures == 1 ? app::text(kOnePicture)
                           : app::text(kManyPictures).arg(pictures);
}

QString factsOf(const store::PictureEntry& picture) {
    const store::PictureRecord& record = picture.record;
    const QString type = QString::fromStdString(record.type);
    if (!(record.width > 0) || !(record.height > 0)) {
        return type;
    }
    return QStringLiteral("%1 \u00d7 %2  %3")
        .arg(std::lround(record.width))
        .arg(std::lround(record.height))
        .arg(type);
}

} // namespace

PagePainter::PagePainter(QPainter& painter, double perPoint, const std::vector<Section>& contents,
                         QSizeF sheet)
    : painter_(painter), perPoint_(perPoint), contents_(contents), frame_(frameOf(sheet)) {}

QRectF PagePainter::toDevice(const QRectF& points) const {
    return {points.x() * perPoint_, points.y() * perPoint_, points.width() * perPoint_,
            points.height() * perPoint_};
}

// In the device's own units, in which letters stand as finely as it can place them.
QFont PagePainter::fontOf(double points, QFont::Weight weight) const {
    QFont font = QFont();
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(points * perPoint_))));
    font.setWeight(weight);
    return font;
}

void PagePainter::writeLine(const QRectF& place, const QString& text, const QFont& font,
                            const QColor& colour, Qt::Alignment side) {
    const QRectF target = toDevice(place);
    painter_.setFont(font);
    painter_.setPen(colour);
    const QString shown =
        QFontMetricsF(font, painter_.device())
            .elidedText(QString(text).replace(u'\n', u' '), Qt::ElideMiddle, target.width());
    painter_.drawText(target, static_cast<int>(side | Qt::AlignVCenter) | Qt::TextSingleLine,
                      shown);
}

void PagePainter::paint(const Page& page, std::size_t number, std::size_t count,
                        const Fetch& fetch) {
    if (number == 0) {
        paintTitle();
    } else {
        paintHeader(page);
    }
    for (const PlacedHeading& heading : page.headings) {
        paintHeading(heading);
    }
    for (const PlacedPicture& cell : page.pictures) {
        paintCell(cell, fetch);
    }
    paintFooter(number, count);
}

void PagePainter::paintTitle() {
    std::size_t pictures = 0;
    for (const Section& section : contents_) {
        pictures += section.pictures.size();
    }
    const QString count = contents_.size() == 1
                              ? countText(pictures)
                              : app::text(kInGroups).arg(countText(pictures)).arg(contents_.size());
    const QRectF& place = frame_.title;
    writeLine({place.left(), place.top(), place.width(), 26}, contents_.front().path,
              fontOf(kTitleSize, QFont::DemiBold), kInk);
    writeLine({place.left(), place.top() + 26, place.width(), 14}, count, fontOf(kNameSize),
              kQuietInk);
}

void PagePainter::paintHeader(const Page& page) {
    const QRectF line(frame_.header.left(), frame_.header.top(), frame_.header.width(),
                      kLineHeight);
    writeLine(line, contents_[page.firstSection].path, fontOf(kSmallSize), kQuietInk);
}

void PagePainter::paintFooter(std::size_t number, std::size_t count) {
    writeLine(frame_.footer, app::text(kPage).arg(number + 1).arg(count), fontOf(kSmallSize),
              kQuietInk, Qt::AlignRight);
}

void PagePainter::paintHeading(const PlacedHeading& heading) {
    constexpr double kCountWidth = 90;
    const Section& section = contents_[heading.section];
    const QRectF line = heading.place.adjusted(0, 0, 0, -8);
    writeLine(line.adjusted(0, 0, -kCountWidth, 0), section.below,
              fontOf(kHeadingSize, QFont::DemiBold), kInk);
    writeLine(line, countText(section.pictures.size()), fontOf(kSmallSize), kQuietInk,
              Qt::AlignRight);
    painter_.setPen(QPen(kFrame, kHairline * perPoint_));
    const QRectF target = toDevice(line);
    painter_.drawLine(target.bottomLeft(), target.bottomRight());
}

void PagePainter::paintCell(const PlacedPicture& cell, const Fetch& fetch) {
    const Section& section = contents_[cell.section];
    const store::PictureEntry& entry = section.pictures[cell.picture];
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(QPen(kFrame, kHairline * perPoint_));
    painter_.drawRect(toDevice(cell.place));
    const QRectF box = cell.place.adjusted(kPadding, kPadding, -kPadding, -kPadding);
    if (const auto picture = fetch(section, entry)) {
        paintPicture(box, *picture);
    } else {
        paintMissing(box);
    }
    const QRectF name(cell.place.left(), cell.place.bottom() + 1, cell.place.width(), kLineHeight);
    writeLine(name, QString::fromStdU16String(entry.name.text), fontOf(kNameSize), kInk);
    writeLine(name.translated(0, kLineHeight - 1), factsOf(entry), fontOf(kSmallSize), kQuietInk);
}

// Fitted into the box; a raster picture is not enlarged.
void PagePainter::paintPicture(const QRectF& box, const picture::Picture& picture) {
    QSizeF size = QSizeF(picture.facts().pixels) * (kPointsPerInch / kPixelsPerInch);
    const bool fits = size.width() <= box.width() && size.height() <= box.height();
    if (!fits || picture.image().isNull()) {
        size.scale(box.size(), Qt::KeepAspectRatio);
    }
    QRectF place(QPointF(0, 0), size);
    place.moveCenter(box.center());
    picture.print(painter_, toDevice(place), (size * (kFineness / kPointsPerInch)).toSize());
}

void PagePainter::paintMissing(const QRectF& box) {
    const QRectF line(box.left(), box.center().y() - kLineHeight / 2, box.width(), kLineHeight);
    writeLine(line, app::text(kUnshowable), fontOf(kSmallSize), kQuietInk, Qt::AlignHCenter);
}

} // namespace catalogue
