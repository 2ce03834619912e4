#include "browser/status_line.h"

#include "app/focus_frame.h"
#include "app/named_control.h"
#include "app/texts.h"
#include "commands/skipped_files.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>

#include <functional>

namespace browser {
namespace {

constexpr app::TextPair kNone{u"Keine Bilder", u"No pictures"};
constexpr app::TextPair kOne{u"1 Bild", u"1 picture"};
constexpr app::TextPair kMany{u"%1 Bilder", u"%1 pictures"};
constexpr app::TextPair kPage{u"Seite %1 von %2", u"page %1 of %2"};
constexpr int kSpacing = 16;
constexpr int kMostTipLines = 30;

} // namespace

// The result; while there is more to be read than what is seen, a place among what Tab goes to.
class StatusLine::ResultLabel : public QLabel {
  public:
    using QLabel::QLabel;

    std::function<void()> chosen; // by Enter, the space bar or a click

    void setMore(bool isMore) {
        setFocusPolicy(isMore ? Qt::TabFocus : Qt::NoFocus);
        setCursor(isMore ? Qt::PointingHandCursor : Qt::ArrowCursor);
    }

    void showTip() { QToolTip::showText(mapToGlobal(QPoint(0, 0)), toolTip(), this); }

  protected:
    void focusInEvent(QFocusEvent* event) override {
        QLabel::focusInEvent(event);
        // Later, since tips go when the focus comes.
        if (event->reason() != Qt::ActiveWindowFocusReason) {
            QMetaObject::invokeMethod(this, &ResultLabel::showTip, Qt::QueuedConnection);
        }
        update();
    }

    void focusOutEvent(QFocusEvent* event) override {
        QLabel::focusOutEvent(event);
        QToolTip::hideText();
        update();
    }

    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
            chosen();
        } else {
            QLabel::keyPressEvent(event);
        }
    }

    void mousePressEvent(QMouseEvent* event) override {
        if (focusPolicy() != Qt::NoFocus && event->button() == Qt::LeftButton) {
            chosen();
        }
    }

    void paintEvent(QPaintEvent* event) override {
        QLabel::paintEvent(event);
        if (hasFocus()) {
            app::drawFocusFrame(*this, rect());
        }
    }
};

QString kilobytesRoundedUp(std::uint64_t bytes) {
    constexpr std::uint64_t kKilobyte = 1024;
    return QStringLiteral("%1 KB").arg((bytes + kKilobyte - 1) / kKilobyte);
}

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent),
      lblErgebnis_(new ResultLabel(this)),
      lblSeiten_(app::makePlainLabel("lblSeiten", this)) {
    setObjectName(QStringLiteral("staZeile"));
    lblErgebnis_->setObjectName(QStringLiteral("lblErgebnis"));
    lblErgebnis_->setTextFormat(Qt::PlainText);
    lblErgebnis_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    lblErgebnis_->chosen = [this] {
        QToolTip::hideText();
        commands::showSummary(result_, details_, window());
    };
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(kSpacing);
    row->addWidget(lblErgebnis_, 1);
    row->addWidget(lblSeiten_);
}

void StatusLine::tell(const QString& result, const QStringList& details) {
    result_ = result;
    details_ = details;
    const QStringList all = QStringList(result) + details;
    QStringList tip = all.mid(0, kMostTipLines);
    if (tip.size() < all.size()) {
        tip.append(QStringLiteral("..."));
    }
    // A text that looks marked up would be shown so.
    lblErgebnis_->setToolTip(QStringLiteral("<p style='white-space:pre'>") +
                             tip.join(u'\n').toHtmlEscaped() + QStringLiteral("</p>"));
    lblErgebnis_->setAccessibleDescription(all.join(u'\n'));
    cut();
}

void StatusLine::cut() {
    lblErgebnis_->setText(
        lblErgebnis_->fontMetrics().elidedText(result_, Qt::ElideRight, lblErgebnis_->width()));
    lblErgebnis_->setMore(!details_.isEmpty() || lblErgebnis_->text() != result_);
}

void StatusLine::showPages(const ShownPages& pages) {
    QString text =
        pages.pictures == 0 ? app::text(kNone) : app::counted(pages.pictures, kOne, kMany);
    if (pages.pages > 1) {
        text += QStringLiteral(", ") + app::text(kPage).arg(pages.page).arg(pages.pages);
    }
    pages_ = text;
    showNumbers();
}

void StatusLine::showNoGroup() {
    pages_.clear();
    showNumbers();
}

void StatusLine::showSelection(const QString& text) {
    selection_ = text;
    showNumbers();
}

void StatusLine::showNumbers() {
    const bool both = !pages_.isEmpty() && !selection_.isEmpty();
    lblSeiten_->setText(selection_ + (both ? QStringLiteral("   |   ") : QString()) + pages_);
}

void StatusLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    cut();
}

} // namespace browser
