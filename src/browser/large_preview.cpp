#include "browser/large_preview.h"

#include "browser/picture_painting.h"

#include <QMouseEvent>
#include <QPainter>

#include <chrono>
#include <utility>

namespace browser {
namespace {

constexpr int kPadding = 10;  // pixels between frame and picture
constexpr int kMostRatio = 4; // device pixels a pixel, on the finest screens
constexpr std::chrono::milliseconds kPatience{150};

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
    patience_.setSingleShot(true);
    patience_.setInterval(kPatience);
    connect(&patience_, &QTimer::timeout, this, [this] { show(Content::Nothing); });
    connect(&job_, &app::Job::done, this, &LargePreview::takeFitted);
}

LargePreview::Fit LargePreview::presentFit() const {
    const QRect area = contentsRect().marginsRemoved({kPadding, kPadding, kPadding, kPadding});
    return {area.size().expandedTo({1, 1}), devicePixelRatioF()};
}

void LargePreview::load(std::function<base::Bytes()> read) {
    if (!patience_.isActive()) {
        patience_.start();
    }
    job_.start([read = std::move(read), most = size() * kMostRatio, fit = presentFit()] {
        Fitted result;
        try {
            result.picture = reduced(picture::decodeFor(read(), most), most);
            result.image = fitted(*result.picture, fit.area, fit.screenRatio);
            result.fit = fit;
        } catch (const std::exception&) {
            result.picture.reset();
        }
        return result;
    });
}

// The frame or the screen is another one than the shown picture was fitted to.
void LargePreview::fitAnew() {
    job_.start([picture = *shown_.picture, fit = presentFit()] {
        try {
            return Fitted{picture, fitted(picture, fit.area, fit.screenRatio), fit};
        } catch (const std::exception&) {
            return Fitted{};
        }
    });
}

void LargePreview::takeFitted() {
    patience_.stop();
    shown_ = std::exchange(job_.result(), {});
    show(shown_.picture ? Content::Picture : Content::Undecodable);
}

void LargePreview::showUndecodable() {
    job_.drop();
    patience_.stop();
    show(Content::Undecodable);
}

void LargePreview::showNothing() {
    job_.drop();
    patience_.stop();
    show(Content::Nothing);
}

void LargePreview::show(Content content) {
    content_ = content;
    if (content != Content::Picture) {
        shown_ = {};
    }
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
            if (shown_.fit != presentFit() && !job_.isBusy()) {
                fitAnew();
            }
            painter.setClipRect(inside);
            paintCentred(painter, shown_.image, area, palette());
        }
    }
    QFrame::paintEvent(event);
}

void LargePreview::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        emit activated();
    }
}

} // namespace browser
