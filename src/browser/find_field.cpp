#include "browser/find_field.h"

#include "app/colours.h"
#include "app/texts.h"
#include "browser/main_layout.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenuBar>

#include <algorithm>

namespace browser {
namespace {

constexpr app::TextPair kPlaceholder{u"Suchen (Strg+F)", u"Find (Ctrl+F)"};
constexpr app::TextPair kName{u"Bilder und Gruppen suchen", u"Find pictures and groups"};
constexpr int kNarrowest = 48; // pixels
constexpr int kWidest = 220;
constexpr int kBesideTitle = 26; // that a menu takes besides its words, with any style
constexpr int kFrame = 2;        // above and below the field's words

} // namespace

FindField::FindField(QMenuBar* bar) : bar_(bar), corner_(new QWidget(bar)) {
    auto* beside = new QHBoxLayout(corner_);
    beside->setContentsMargins(0, 0, app::toPixels(kMargin), 0);
    beside->addWidget(this);
    setObjectName(QStringLiteral("txtFind"));
    setClearButtonEnabled(true);
    setFocusPolicy(Qt::ClickFocus); // beside its key: Tab goes round in the window as ever
    colourHint();
    fit(bar->width());
}

void FindField::setCaptions() {
    setPlaceholderText(app::text(kPlaceholder));
    setAccessibleName(app::text(kName));
}

void FindField::fit(int barWidth) {
    int menus = 0;
    for (const QAction* menu : bar_->actions()) {
        menus += bar_->fontMetrics().horizontalAdvance(menu->text()) + kBesideTitle;
    }
    const int margin = app::toPixels(kMargin);
    const QSize fitting(std::clamp(barWidth - menus - margin, kNarrowest, kWidest),
                        fontMetrics().height() + 2 * kFrame);
    if (fitting != size_) {
        size_ = fitting;
        setFixedSize(fitting);
        corner_->layout()->activate();
        // Else the bar keeps the place for the former size.
        bar_->setCornerWidget(corner_, Qt::TopRightCorner);
    }
}

// Not every theme chooses a colour for such hints that stands out from a dark field.
void FindField::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        colourHint();
    }
}

void FindField::colourHint() {
    QPalette colours = palette();
    const QColor hint =
        app::between(colours.color(QPalette::Text), colours.color(QPalette::Base), 0.4);
    if (colours.color(QPalette::PlaceholderText) != hint) {
        colours.setColor(QPalette::PlaceholderText, hint);
        setPalette(colours);
    }
}

void FindField::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Down:
        emit resultsWanted();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit chosen();
        return;
    case Qt::Key_Escape:
        emit left();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

} // namespace browser
