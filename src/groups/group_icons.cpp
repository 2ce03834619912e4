#include "groups/group_icons.h"

#include "app/colours.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <array>
#include <cstddef>

namespace groups {
namespace {

// All drawing happens in a square of 16 x 16 units.
constexpr double kUnits = 16;

void drawFolder(QPainter& painter, const QPalette& palette, QPalette::ColorGroup group) {
    const QColor paper = palette.color(group, QPalette::Base);
    const QColor ink = app::between(palette.color(group, QPalette::Text), paper, 0.35);
    const QColor accent = app::between(palette.color(group, QPalette::Highlight), paper, 0.25);

    QPainterPath back;
    back.moveTo(1.5, 12.5);
    back.lineTo(1.5, 3.5);
    back.lineTo(6, 3.5);
    back.lineTo(7.5, 5);
    back.lineTo(14.5, 5);
    back.lineTo(14.5, 12.5);
    back.closeSubpath();
    painter.setPen(QPen(ink, 1, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
    painter.setBrush(app::between(accent, paper, 0.55));
    painter.drawPath(back);

    // The picture on the folder: a horizon and a sun.
    QPainterPath hills;
    hills.moveTo(3.5, 11.5);
    hills.lineTo(6.5, 8);
    hills.lineTo(8.7, 10.3);
    hills.lineTo(10.2, 9);
    hills.lineTo(12.5, 11.5);
    hills.closeSubpath();
    painter.setPen(Qt::NoPen);
    painter.setBrush(app::between(accent, ink, 0.45));
    painter.drawPath(hills);
    painter.drawEllipse(QPointF(11.2, 7.3), 0.9, 0.9);
}

void drawPadlock(QPainter& painter, const QPalette& palette) {
    const QColor paper = palette.color(QPalette::Base);
    const QColor body(0xd8, 0x9a, 0x1c);
    painter.setPen(Qt::NoPen);
    painter.setBrush(paper);
    painter.drawRoundedRect(QRectF(7.5, 6, 8.5, 10), 2, 2);
    painter.setPen(QPen(body.darker(140), 1.4));
    painter.setBrush(Qt::NoBrush);
    painter.drawArc(QRectF(9.6, 7, 4.3, 6), 0, 180 * 16);
    painter.setPen(Qt::NoPen);
    painter.setBrush(body);
    painter.drawRoundedRect(QRectF(8.5, 10, 6.5, 5), 1, 1);
}

void drawWarning(QPainter& painter, const QPalette& palette) {
    QPainterPath triangle;
    triangle.moveTo(11.5, 6.5);
    triangle.lineTo(15.6, 15);
    triangle.lineTo(7.4, 15);
    triangle.closeSubpath();
    painter.setPen(
        QPen(palette.color(QPalette::Base), 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(0xd1, 0x43, 0x3a));
    painter.drawPath(triangle);
    painter.setPen(QPen(Qt::white, 1.2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(11.5, 9.6), QPointF(11.5, 12));
    painter.drawPoint(QPointF(11.5, 13.7));
}

class GroupIconEngine : public QIconEngine {
  public:
    explicit GroupIconEngine(GroupMark mark) : mark_(mark) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette palette = QGuiApplication::palette();
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / kUnits, rect.height() / kUnits);
        drawFolder(*painter, palette,
                   mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active);
        if (mark_ == GroupMark::Locked) {
            drawPadlock(*painter, palette);
        } else if (mark_ == GroupMark::Unreadable) {
            drawWarning(*painter, palette);
        }
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect({}, size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new GroupIconEngine(*this); }

  private:
    GroupMark mark_;
};

} // namespace

QIcon groupIcon(GroupMark mark) {
    // One icon for all nodes: a library may have thousands.
    static const std::array<QIcon, 3> icons{QIcon(new GroupIconEngine(GroupMark::None)),
                                            QIcon(new GroupIconEngine(GroupMark::Locked)),
                                            QIcon(new GroupIconEngine(GroupMark::Unreadable))};
    return icons.at(static_cast<std::size_t>(mark));
}

QIcon programIcon() {
    return groupIcon(GroupMark::None);
}

} // namespace groups
