// How the picture panel takes over what other programs have changed in its group.
#include "browser/large_preview.h"
#include "browser/picture_list.h"
#include "browser/picture_panel.h"
#include "browser/status_line.h"
#include "browser/thumbnail_layout.h"
#include "browser/thumbnail_strip.h"

#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace browser {
std::optional<groups::ShownPictures> PicturePanel::shownPictures() {
    using Want = groups::ShownPictures::Want;
    if (!group_) {
        return std::nullopt;
    }
    askedListing_ = listing_;
    groups::ShownPictures shown{*group_, shownPicture_.name()};
    shown.count = listed_.names.size();
    shown.want = GraphicalPreview_ ? Want::Names : Want::Entries;
    if (!GraphicalPreview_) {
        shown.position = lvwInfo_->selectedPosition();
    } else if (shown.picture) {
        const auto& names = listed_.names;
        const auto found = std::find(names.begin(), names.end(), *shown.picture);
        shown.position = found == names.end() ? 0 : static_cast<std::size_t>(found - names.begin());
    }
    return shown;
}

bool PicturePanel::takeChanges(const groups::GroupContent& content) {
    const bool wantedEntries = content.asked.want == groups::ShownPictures::Want::Entries;
    if (isReading() || listing_ != askedListing_ || group_ != content.asked.group ||
        shownPicture_.name() != content.asked.picture || wantedEntries == GraphicalPreview_) {
        return false;
    }
    if (isSameState(listed_, content.names)) {
        return true;
    }
    listed_ = content.names;
    orderedListing_ = -1;
    if (GraphicalPreview_) {
        updatePage();
    } else {
        lvwInfo_->update(content.entries);
    }
    takeSelected(content.selected);
    emit pagesShown({listed_.names.size(), GraphicalPreview_ ? imgScroll_->value() : 1,
                     GraphicalPreview_ ? imgScroll_->maximum() : 1});
    emit menuStateWanted();
    return true;
}

// What is on the screen stays as long as there is any picture on it.
void PicturePanel::updatePage() {
    if (strip_->cells() == 0) {
        return;
    }
    setPageRange();
    if (listed_.elements.empty()) {
        strip_->clear();
    } else {
        loadPage(pageStart());
    }
}

void PicturePanel::takeSelected(const std::optional<store::PictureEntry>& selected) {
    if (shownPicture_.isUnchosen()) {
        return;
    }
    if (!selected) {
        ShowNoPicture();
        return;
    }
    if (shownPicture_.name() != selected->name) {
        setShownPicture(commands::ShownPicture(selected->name));
        lvwInfo_->select(shownPicture_.nameText());
    }
    showStored(*selected);
}

} // namespace browser
