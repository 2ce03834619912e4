#include "browser/large_preview.h"

#include "browser/picture_painting.h"

#include <QMouseEvent>
#include <QPainter>

#include <utility>

namespace browser {
namespace {

constexpr int kPadding = 10;  // pixels between frame and picture
constexpr int kMostRatio = 4; // device pixels a pixel, on the finest screens

// A huge picture need not stay in memory while the next ones are decoded.
picture::Picture reduced(picture::Picture picture, const QSize& most) {
    const QSize size = picture.image().size();
    if (size.width() <= most.width() && size.height() <= most.height()) {
        return picture;
    }
    return {picture.facts(), picture.scaledTo(most)};
}

} // namespace

LargePreview::LargePreview(QWidget* parent) : QFrame(parent) {
    setObjectName(QStringLiteral("imgVorschau"));
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
}

void LargePreview::showPicture(picture::Picture picture) {
    content_ = Content::Picture;
    picture_ = reduced(std::move(picture), size() * kMostRatio);
    fitted_ = {};
    update();
}

void LargePreview::showUndecodable() {
    content_ = Content::Undecodable;
    picture_.reset();
    update();
}

void LargePreview::showNothing() {
    content_ = Content::Nothing;
    picture_.reset();
    update();
}

void LargePreview::paintEvent(QPaintEvent* event) {
    const QRect inside = contentsRect();
    {
        QPainter painter(this);
        painter.fillRect(inside, palette().color(QPalette::Base));
        const QRect area = inside.marginsRemoved({kPadding, kPadding, kPadding, kPadding});
        if (content_ == Content::Undecodable) {
            paintUndecodable(painter, area, palette());
        } else if (content_ == Content::Picture && !area.isEmpty()) {
            if (fitted_.isNull() || fittedRatio_ != devicePixelRatioF()) {
                fittedRatio_ = devicePixelRatioF();
                fitted_ = fitted(*picture_, area.size(), fittedRatio_);
            }
            paintCentred(painter, fitted_, area, palette());
        }
    }
    QFrame::paintEvent(event);
}

void LargePreview::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    fitted_ = {};
}

void LargePreview::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        emit activated();
    }
}

} // namespace browser
