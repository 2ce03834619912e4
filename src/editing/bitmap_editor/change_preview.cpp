#include "editing/bitmap_editor/change_preview.h"

#include "app/named_control.h"
#include "app/texts.h"
#include "editing/picture_pane.h"

#include <QGridLayout>
#include <QLabel>

#include <utility>

namespace editing {
namespace {

constexpr app::TextPair kBefore{u"Vorher", u"Before"};
constexpr app::TextPair kAfter{u"Nachher", u"After"};
constexpr QSize kPaneSize{250, 210};

PicturePane* addPane(QGridLayout& layout, int column, const app::TextPair& caption,
                     const char* name, QWidget* parent) {
    auto* label = new QLabel(app::text(caption), parent);
    auto* pane = app::makeNamed<PicturePane>(name, parent);
    pane->setFixedSize(kPaneSize);
    pane->setAccessibleName(app::text(caption));
    layout.addWidget(label, 0, column);
    layout.addWidget(pane, 1, column);
    return pane;
}

} // namespace

ChangePreview::ChangePreview(QWidget* parent) : QWidget(parent) {
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setHorizontalSpacing(12);
    layout->setVerticalSpacing(4);
    before_ = addPane(*layout, 0, kBefore, "picVorher", this);
    after_ = addPane(*layout, 1, kAfter, "picNachher", this);
    connect(before_, &PicturePane::pictureShown, this, &ChangePreview::showAfter);
}

void ChangePreview::setPicture(const QImage& picture) {
    before_->setPicture(picture);
    if (picture.isNull()) {
        after_->setImage({});
    }
}

void ChangePreview::setChange(Change change) {
    change_ = std::move(change);
    showAfter();
}

void ChangePreview::showAfter() {
    const QImage& before = before_->image();
    after_->setImage(before.isNull() || !change_ ? before : change_(before));
}

} // namespace editing
