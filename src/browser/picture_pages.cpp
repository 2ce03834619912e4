// Which part of its group the picture panel shows as thumbnails: pages, and rows between them.
//
// The scroll bar counts pages. Whoever turns the wheel sees rows of two of them.
#include "app/long_operation.h"
#include "browser/picture_panel.h"
#include "browser/status_line.h"
#include "browser/thumbnail_layout.h"
#include "browser/thumbnail_strip.h"

#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace browser {

void PicturePanel::layOutSoon() {
    if (GraphicalPreview_) {
        Timer1_->start();
    }
}

void PicturePanel::layOutGrid() {
    Timer1_->stop();
    const double width = qRound(area_.width);
    const double height = qRound(area_.height);
    const CellSize wanted{app::toTwips(choices_.thumbnailSide),
                          choices_.hasNames ? strip_->nameHeight() : 0};
    const CellSize cell = fittingCell(wanted, width, height);
    strip_->setGrid(gridFor(width, height, cell), cell);
}

void PicturePanel::changeThumbnails(commands::ViewChange change) {
    using commands::ViewChange;
    if (change == ViewChange::ThumbnailNames) {
        choices_.hasNames = !choices_.hasNames;
        layOutAgain();
    } else if (change == ViewChange::NormalThumbnails) {
        resizeThumbnails(0);
    } else {
        resizeThumbnails(change == ViewChange::LargerThumbnails ? 1 : -1);
    }
}

// Larger by so many steps, smaller if negative; 0: as at first.
void PicturePanel::resizeThumbnails(int steps) {
    const int side = steps == 0 ? kDefaultThumbnailSide : sideBeside(choices_.thumbnailSide, steps);
    if (side != choices_.thumbnailSide) {
        choices_.thumbnailSide = side;
        layOutAgain();
    }
}

void PicturePanel::layOutAgain() {
    const auto first = static_cast<std::size_t>(strip_->shown().first);
    turnsToShown_ = isShownPictureInSight() || first >= listed_.elements.size();
    keptInSight_.reset();
    if (!turnsToShown_) {
        keptInSight_ = listed_.elements[first];
    }
    layOutSoon();
    emit thumbnailsChanged();
}

bool PicturePanel::isShownPictureInSight() const {
    const ShownRange& shown = strip_->shown();
    const auto begin = listed_.names.begin();
    const auto end = std::min(listed_.names.end(), begin + shown.first + shown.count);
    return shownPicture_.name() &&
           std::find(std::min(end, begin + shown.first), end, *shownPicture_.name()) != end;
}

// The list may have become the view while the timer ran.
void PicturePanel::onTimer() {
    if (!GraphicalPreview_) {
        return;
    }
    if (app::isLongOperationRunning()) { // which may hold the group's file until it ends
        Timer1_->start();
        return;
    }
    layOutGrid();
    setPageRange();
    if (const auto kept = std::exchange(keptInSight_, {})) {
        MiniVorschau(*kept);
        return;
    }
    const bool turns = std::exchange(turnsToShown_, false);
    if (listedGroup_ != group_ || reading_.isBusy()) {
        awaitPage(turns ? Awaited::Page::OfShown : Awaited::Page::Stay);
        read();
        return;
    }
    if (turns) {
        start_ = startIndexOf(imgScroll_->value(), strip_->cells());
        turnToShownPicture();
    }
    onScrollChanged();
}

void PicturePanel::setPageRange() {
    const QSignalBlocker quiet(imgScroll_);
    imgScroll_->setRange(1, lastPage(listed_.elements, strip_->cells()));
}

void PicturePanel::SetImgScrollProperties() {
    setPageRange();
    read();
}

void PicturePanel::onScrollChanged() {
    MiniVorschau(startIndexOf(imgScroll_->value(), strip_->cells()));
}

std::size_t PicturePanel::pageStart() const {
    const std::size_t cells = strip_->cells();
    const bool isBetween = cells > 0 && start_ % cells != 0 && !listed_.elements.empty() &&
                           start_ <= listed_.elements.back();
    return isBetween ? start_ : startIndexOf(imgScroll_->value(), cells);
}

void PicturePanel::showPage(int page) {
    MiniVorschau(startIndexOf(std::clamp(page, 1, imgScroll_->maximum()), strip_->cells()));
}

// From between two pages the nearer one in that direction is the first to be turned to.
void PicturePanel::turnPages(int pages) {
    const std::size_t cells = strip_->cells();
    if (cells == 0) {
        return;
    }
    const std::size_t start = pageStart();
    const int page = pageOf(start, cells);
    const int target = page + pages + (pages < 0 && start % cells != 0 ? 1 : 0);
    if (startIndexOf(std::clamp(target, 1, imgScroll_->maximum()), cells) != start) {
        showPage(target);
    }
}

void PicturePanel::scrollRows(int rows) {
    const ShownRange& shown = strip_->shown();
    const int first = scrolledFirst(shown, strip_->grid(), rows);
    const auto& all = listed_.elements;
    if (first != shown.first && first < static_cast<int>(all.size())) {
        MiniVorschau(first == 0 ? 0 : all[static_cast<std::size_t>(first)]);
    }
}

void PicturePanel::showPageOf(int position) {
    const auto& all = listed_.elements;
    if (position >= 0 && position < static_cast<int>(all.size())) {
        showPage(pageOf(all[static_cast<std::size_t>(position)], strip_->cells()));
    }
}

// What is listed is shown at once.
void PicturePanel::MiniVorschau(std::size_t startIndex) {
    if (!GraphicalPreview_) {
        loader_.stop();
        strip_->clear();
        return;
    }
    const bool isListed = group_ && listedGroup_ == group_;
    if (isListed && !reading_.isBusy()) {
        strip_->clear();
        showPageFrom(startIndex);
        awaitPage(Awaited::Page::AsListed);
    } else {
        awaitPage(Awaited::Page::Start, startIndex);
    }
    read();
}

void PicturePanel::showPageFrom(std::size_t startIndex) {
    ++listing_;
    loader_.stop();
    hideToolTip(); // it names what was below the pointer until now
    const std::size_t cells = strip_->cells();
    if (cells == 0) {
        return;
    }
    const std::vector<std::size_t>& all = listed_.elements;
    if (!all.empty() && all.back() < startIndex) { // others have removed what stood on that page
        startIndex = startIndexOf(imgScroll_->maximum(), cells);
    }
    start_ = startIndex;
    showPageNumber();
    emit pagesShown({all.size(), imgScroll_->value(), lastPage(all, cells)});
    if (all.empty()) {
        strip_->clear();
        ShowNoPicture();
        return;
    }
    loadPage(startIndex);
}

// Between two pages it is the one before, unless the end is in sight.
void PicturePanel::showPageNumber() {
    const std::size_t cells = strip_->cells();
    const auto& all = listed_.elements;
    const auto left = all.end() - std::lower_bound(all.begin(), all.end(), start_);
    const bool isAtEnd = start_ % cells != 0 && left <= static_cast<std::ptrdiff_t>(cells);
    const QSignalBlocker quiet(imgScroll_);
    imgScroll_->setValue(isAtEnd ? imgScroll_->maximum() : pageOf(start_, cells));
}

// Cells that show their picture already keep it until it comes anew.
void PicturePanel::loadPage(std::size_t startIndex) {
    const std::vector<std::size_t>& all = listed_.elements;
    const auto first = std::lower_bound(all.begin(), all.end(), startIndex);
    const auto count =
        std::min<std::ptrdiff_t>(all.end() - first, static_cast<std::ptrdiff_t>(strip_->cells()));
    const auto firstName = listed_.names.begin() + (first - all.begin());
    std::vector<QString> names;
    for (auto name = firstName; name != firstName + count; ++name) {
        names.push_back(QString::fromStdU16String(name->text));
    }
    strip_->keep(names);
    strip_->expect({static_cast<int>(first - all.begin()), static_cast<int>(count),
                    static_cast<int>(all.size())});
    loader_.start(*library_, {*group_,
                              {firstName, firstName + count},
                              listed_.stamp,
                              strip_->shownPictureArea(),
                              strip_->devicePixelRatioF()});
}

// What a key acts on next must not stand on a page that nobody sees. The page is not filled yet.
void PicturePanel::turnToShownPicture() {
    const std::size_t cells = strip_->cells();
    if (!shownPicture_.name() || cells == 0) {
        return;
    }
    const auto& names = listed_.names;
    const auto found = std::find_if(names.begin(), names.end(), [&](const auto& name) {
        return store::sameName(name.text, shownPicture_.name()->text);
    });
    if (found == names.end()) {
        return;
    }
    const std::size_t element = listed_.elements[static_cast<std::size_t>(found - names.begin())];
    if (!isOnPage(listed_.elements, pageStart(), cells, element)) {
        start_ = startIndexOf(pageOf(element, cells), cells);
        showPageNumber();
    }
}

} // namespace browser
