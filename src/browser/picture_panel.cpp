#include "browser/picture_panel.h"

#include "app/focus_frame.h"
#include "app/long_operation.h"
#include "app/texts.h"
#include "browser/large_preview.h"
#include "browser/picture_label.h"
#include "browser/picture_list.h"
#include "browser/picture_renaming.h"
#include "browser/status_line.h"
#include "browser/thumbnail_strip.h"
#include "browser/thumbnail_tool_tip.h"
#include "compound/error.h"
#include "store/picture_operations.h"

#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace browser {
namespace {

constexpr int kLayoutDelayMilliseconds = 150;
constexpr app::TextPair kPicturesName{u"Bilder", u"Pictures"};
constexpr app::TextPair kPageName{u"Seite", u"Page"};
constexpr app::TextPair kPreviewName{u"Vorschau", u"Preview"};

// "640 × 480, 12 KB"; without the first part for a picture whose record is missing.
QString sizesOf(const store::PictureEntry& picture) {
    QString bytes = kilobytesRoundedUp(picture.bytes);
    const store::PictureRecord& record = picture.record;
    if (!(record.width > 0) || !(record.height > 0)) {
        return bytes;
    }
    return QStringLiteral("%1 \u00d7 %2, %3")
        .arg(std::lround(record.width))
        .arg(std::lround(record.height))
        .arg(bytes);
}

// Styles do not show that a scroll bar has the keyboard's focus.
class PageBar : public QScrollBar {
  public:
    using QScrollBar::QScrollBar;

  protected:
    void paintEvent(QPaintEvent* event) override {
        QScrollBar::paintEvent(event);
        if (hasFocus()) {
            app::drawFocusFrame(*this, rect());
        }
    }
};

} // namespace

PicturePanel::PicturePanel(QWidget* surface)
    : QObject(surface),
      surface_(surface),
      strip_(new ThumbnailStrip(surface)),
      imgScroll_(new PageBar(Qt::Vertical, surface)),
      lvwInfo_(new PictureList(surface)),
      imgVorschau_(new LargePreview(surface)),
      lblAktuell_(new PictureLabel(surface)),
      txtName_(new ThumbnailToolTip(surface)),
      Timer1_(new QTimer(this)) {
    imgScroll_->setObjectName(QStringLiteral("imgScroll"));
    imgScroll_->setRange(1, 1);
    imgScroll_->setPageStep(1);
    imgScroll_->setFocusPolicy(Qt::TabFocus);
    lvwInfo_->hide();
    Timer1_->setObjectName(QStringLiteral("Timer1"));
    Timer1_->setSingleShot(true);
    Timer1_->setInterval(kLayoutDelayMilliseconds);
    connect(Timer1_, &QTimer::timeout, this, &PicturePanel::onTimer);
    connect(imgScroll_, &QScrollBar::valueChanged, this, &PicturePanel::onScrollChanged);
    connect(&loader_, &ThumbnailLoader::loaded, strip_, &ThumbnailStrip::showPicture);
    connect(imgVorschau_, &LargePreview::activated, this, &PicturePanel::editWanted);
    connectStrip();
    connectList();
    connectReading();
}

void PicturePanel::connectStrip() {
    connect(strip_, &ThumbnailStrip::chosen, this, &PicturePanel::chosenInStrip);
    connect(strip_, &ThumbnailStrip::banded, this, &PicturePanel::banded);
    connect(strip_, &ThumbnailStrip::dragWanted, this, &PicturePanel::dragWanted);
    connect(strip_, &ThumbnailStrip::activated, this, &PicturePanel::editWanted);
    connect(strip_, &ThumbnailStrip::activatedByKey, this, &PicturePanel::editWantedByKey);
    connect(strip_, &ThumbnailStrip::popUpWanted, this, &PicturePanel::picturePopUpWanted);
    connect(strip_, &ThumbnailStrip::pointerOver, txtName_, &ThumbnailToolTip::pointerOver);
    connect(strip_, &ThumbnailStrip::pagesWanted, this, &PicturePanel::turnPages);
    connect(strip_, &ThumbnailStrip::sizesWanted, this, &PicturePanel::resizeThumbnails);
    connect(strip_, &ThumbnailStrip::rowsWanted, this, &PicturePanel::scrollRows);
    connect(strip_, &ThumbnailStrip::pictureWanted, this, &PicturePanel::showPageOf);
}

void PicturePanel::connectList() {
    connect(lvwInfo_, &PictureList::rowClicked, this, [this](const QString& name) {
        if (name != shownPicture_.nameText()) {
            choose(pictureNamed(name), commands::EditItemCause::Group);
        }
    });
    connect(lvwInfo_, &PictureList::mouseReleased, this,
            [this](Qt::MouseButton button, const QPoint& position) {
                if (lvwInfo_->isEmpty()) {
                    return;
                }
                emit editItemWanted(commands::EditItemCause::Group);
                if (button == Qt::RightButton) {
                    emit picturePopUpWanted(position);
                }
            });
    connect(lvwInfo_, &PictureList::itemSelectionChanged, this, &PicturePanel::describeSelection);
    connect(&selectedBytes_, &app::Job::done, this, &PicturePanel::describeSelectedBytes);
    connect(lvwInfo_, &PictureList::dragWanted, this, &PicturePanel::dragWanted);
    connect(lvwInfo_, &PictureList::activatedByKey, this, &PicturePanel::editWantedByKey);
    connect(lvwInfo_, &PictureList::renameWanted, this, &PicturePanel::renamed);
    connect(lvwInfo_, &PictureList::pointerMoved, this, &PicturePanel::hideToolTip);
}

void PicturePanel::setLibrary(const store::Library& library) {
    library_ = &library;
}

void PicturePanel::setCaptions() {
    lvwInfo_->setCaptions();
    lvwInfo_->setAccessibleName(app::text(kPicturesName));
    strip_->setAccessibleName(app::text(kPicturesName));
    imgScroll_->setAccessibleName(app::text(kPageName));
    imgVorschau_->setAccessibleName(app::text(kPreviewName));
}

void PicturePanel::setChoices(const ViewChoices& choices) {
    choices_ = choices;
    lvwInfo_->setOrder(choices.order);
    emit thumbnailsChanged();
}

ViewChoices PicturePanel::choices() const {
    ViewChoices choices = choices_;
    choices.order = lvwInfo_->order();
    return choices;
}

void PicturePanel::place(const MainLayout& layout) {
    area_ = layout.thumbnailArea;
    strip_->setGeometry(app::toPixels(layout.thumbnailArea));
    imgScroll_->setGeometry(app::toPixels(layout.imgScroll));
    lvwInfo_->setGeometry(app::toPixels(layout.lvwInfo));
    imgVorschau_->setGeometry(app::toPixels(layout.imgVorschau));
    lblAktuell_->setGeometry(app::toPixels(layout.lblAktuell));
}

void PicturePanel::setTabOrderAfter(QWidget* before) {
    QWidget::setTabOrder(before, strip_);
    QWidget::setTabOrder(strip_, imgScroll_);
    QWidget::setTabOrder(imgScroll_, lvwInfo_);
}

void PicturePanel::setReachable(bool isReachable) {
    strip_->setFocusPolicy(isReachable ? Qt::StrongFocus : Qt::NoFocus);
    imgScroll_->setFocusPolicy(isReachable ? Qt::TabFocus : Qt::NoFocus);
}

bool PicturePanel::isSettled() const {
    return !Timer1_->isActive() && !isReading() && !loader_.isBusy() && !imgVorschau_->isBusy() &&
           !selectedBytes_.isBusy();
}

void PicturePanel::stopLoading() {
    Timer1_->stop();
    stopReading();
    loader_.stop();
    selectedBytes_.drop();
    imgVorschau_->showNothing();
}

// --- The group's pictures

void PicturePanel::showGroup() {
    if (!GraphicalPreview_) {
        showGroupAnew();
        return;
    }
    awaitFirstPicture();
    showFromStart();
}

// The thumbnails, when they come back, begin where the list does.
void PicturePanel::showFromStart() {
    const QSignalBlocker quiet(imgScroll_);
    imgScroll_->setValue(1);
    awaitPage(Awaited::Page::Start, 0);
    read();
}

void PicturePanel::showGroupAnew() {
    awaitFirstPicture();
    if (GraphicalPreview_) {
        showFromStart();
    } else {
        strip_->clear(); // and do not show another group when they come back
        awaitRows({});
        showFromStart();
    }
    emit menuStateWanted();
}

void PicturePanel::showGroupAt(const store::PictureName& picture) {
    awaitPicture(picture);
    showShown();
    emit menuStateWanted();
}

void PicturePanel::showShown() {
    if (GraphicalPreview_) {
        awaitPage(Awaited::Page::OfShown);
    } else {
        awaitRows({shownPicture_.nameText()});
    }
    read();
}

void PicturePanel::showNothing() {
    group_.reset();
    stopReading();
    loader_.stop();
    leaveOtherGroup();
    strip_->clear();
    hideToolTip();
    lvwInfo_->fill(group_, {});
    setPageRange();
    setShownPicture({});
    ClearVorschau();
    emit nothingShown();
    emit menuStateWanted();
}

void PicturePanel::Aktualisieren() {
    if (!group_) { // as little is to be seen as before
        emit menuStateWanted();
        return;
    }
    if (!GraphicalPreview_) {
        showGroupAnew();
        return;
    }
    // The chosen picture may have got other bytes or another spelling, or be gone; or the group has
    // its first pictures now.
    awaitShownPicture();
    awaitPage(Awaited::Page::Stay);
    hideToolTip(); // it names what was below the pointer until now
    read();
    emit menuStateWanted();
}

void PicturePanel::PictureRenamed(const store::GroupAddress& group, const QString& name) {
    if (group_ != group) {
        return;
    }
    selection_.rename(shownPicture_.nameText(), name);
    setShownName(pictureNamed(name));
    if (GraphicalPreview_) {
        awaitPage(Awaited::Page::Stay);
    } else {
        awaitRows({name});
    }
    read();
}

void PicturePanel::PictureDeleted(const store::GroupAddress& group,
                                  const std::optional<store::PictureName>& beside) {
    if (GraphicalPreview_ && group_ == group && beside) {
        awaitPicture(*beside);
        awaitPage(Awaited::Page::OfShown);
    }
    Aktualisieren();
}

void PicturePanel::FillListView(const store::GroupAddress& group) {
    setGroup(group);
    awaitRows({});
    read();
}

void PicturePanel::showListRow() {
    const QString name = lvwInfo_->selectedName();
    if (name.isEmpty()) {
        ShowNoPicture();
    } else {
        choose(pictureNamed(name), commands::EditItemCause::Group);
    }
}

void PicturePanel::VorschauAktiviert() {
    GraphicalPreview_ = true;
    lvwInfo_->hide();
    strip_->show();
    imgScroll_->show();
    turnsToShown_ = true; // once it is known how many stand on a page
    Timer1_->start();
    strip_->setCellsVisible(true);
    emit thumbnailsChanged();
}

void PicturePanel::VorschauDeaktiviert() {
    GraphicalPreview_ = false;
    imgScroll_->hide();
    lvwInfo_->show();
    if (group_) {
        awaitRows(shownPicture_.name() ? QStringList(shownPicture_.nameText()) : QStringList());
        read();
    } else {
        lvwInfo_->fill(group_, {});
    }
    loader_.stop();
    strip_->setCellsVisible(false);
    strip_->hide();
    emit thumbnailsChanged();
}

// --- The shown picture

void PicturePanel::setShownPicture(const commands::ShownPicture& picture) {
    describing_.drop(); // of another one
    shownPicture_ = picture;
    lblAktuell_->setText(picture.caption());
    selection_.setCurrent(picture.nameText());
    strip_->mark(selection_.current(), selection_.all());
    strip_->setAccessibleDescription(picture.caption());
    emit pictureShown(picture.name().has_value());
}

// What is still being read would not be found under the name of before.
void PicturePanel::setShownName(const store::PictureName& name) {
    const bool isDescribed = !describing_.isBusy() && !shownType_.isEmpty();
    setShownPicture(commands::ShownPicture(name));
    if (!isDescribed) {
        describe(name);
    }
    loadPreview(name);
}

void PicturePanel::SelectPicture() {
    awaitFirstPicture();
    read();
}

void PicturePanel::choose(const store::PictureName& picture, commands::EditItemCause cause) {
    awaited_.choice = Awaited::Choice::None;
    setShownPicture(commands::ShownPicture(picture));
    describeSelection();
    describedFor_ = cause;
    describe(picture);
    loadPreview(picture);
}

void PicturePanel::showStored(const store::PictureEntry& picture) {
    takeDescription(picture);
    loadPreview(picture.name);
}

void PicturePanel::takeDescription(const store::PictureEntry& picture) {
    shownType_ = QString::fromStdString(picture.record.type);
    shownSizes_ = sizesOf(picture);
    describeSelection();
}

void PicturePanel::loadPreview(const store::PictureName& picture) {
    if (library_ != nullptr && group_) {
        imgVorschau_->load([library = *library_, group = *group_, picture] {
            return store::readPicture(library, group, picture).bytes;
        });
    }
}

QWidget* PicturePanel::pictures() const {
    return GraphicalPreview_ ? static_cast<QWidget*>(strip_) : lvwInfo_;
}

QWidget* PicturePanel::strip() const {
    return strip_;
}

QWidget* PicturePanel::list() const {
    return lvwInfo_;
}

QWidget* PicturePanel::listArea() const {
    return lvwInfo_->viewport();
}

void PicturePanel::ClearVorschau() {
    imgVorschau_->showNothing();
    shownType_.clear();
    shownSizes_.clear();
    describeSelection();
}

void PicturePanel::NoPictures() {
    ClearVorschau();
    strip_->clearTags();
}

void PicturePanel::NoToolTip() {
    hideToolTip();
    strip_->clearTags();
}

void PicturePanel::ShowNoPicture() {
    awaited_.choice = Awaited::Choice::None;
    setShownPicture(commands::ShownPicture::none());
    ClearVorschau();
}

void PicturePanel::renamed(const store::GroupAddress& group, const QString& from,
                           const QString& to) {
    if (library_ == nullptr) {
        return;
    }
    try {
        const bool isRenamed = renameInPlace(*library_, group, from, to, surface_->window());
        if (isRenamed) {
            emit pictureRenamed(group, pictureNamed(from), pictureNamed(to));
        }
        if (isRenamed && group_ == group) { // not if a click on another group ended the editing
            ++listing_;
            lvwInfo_->rename(from, to);
            setShownName(pictureNamed(to));
            read();
        }
    } catch (const std::exception& failure) {
        emit renameFailed(group, failure);
    }
}

// --- Tool tip

void PicturePanel::pointerOnFreeSurface() {
    txtName_->pointerOnFreeSurface();
}

void PicturePanel::hideToolTip() {
    txtName_->pointerOver({}, {});
}

} // namespace browser
