// The panel's part that deals with several selected pictures.
#include "app/texts.h"
#include "browser/picture_list.h"
#include "browser/picture_panel.h"
#include "browser/status_line.h"
#include "browser/thumbnail_strip.h"
#include "store/picture_operations.h"

#include <QSet>

namespace browser {
namespace {

constexpr app::TextPair kSelected{u"%1 ausgewählt", u"%1 selected"};

} // namespace

// Made once for every listing, and not before it is asked for.
const QStringList& PicturePanel::order() const {
    if (orderedListing_ != listing_) {
        order_.clear();
        for (const store::PictureName& name : listed_.names) {
            order_.append(QString::fromStdU16String(name.text));
        }
        orderedListing_ = listing_;
    }
    return order_;
}

void PicturePanel::chosenInStrip(const QString& name, Selecting how) {
    selection_.choose(name, how, how == Selecting::Alone ? QStringList() : order());
    choose(pictureNamed(selection_.current()), commands::EditItemCause::Thumbnail);
}

void PicturePanel::banded(const QStringList& covered, const QSet<QString>& before) {
    selection_.chooseBanded(covered, before);
    showSelection();
}

void PicturePanel::showSelection() {
    if (selection_.current() != shownPicture_.nameText()) {
        choose(pictureNamed(selection_.current()), commands::EditItemCause::Thumbnail);
    } else {
        strip_->mark(selection_.current(), selection_.all());
        describeSelection();
    }
}

std::vector<store::PictureName> PicturePanel::selectedPictures() const {
    const QStringList names =
        GraphicalPreview_ ? selection_.among(order()) : lvwInfo_->selectedNames();
    std::vector<store::PictureName> pictures;
    for (const QString& name : names) {
        pictures.push_back(pictureNamed(name));
    }
    return pictures;
}

QImage PicturePanel::currentThumbnail() const {
    return strip_->currentImage();
}

void PicturePanel::selectAll() {
    if (!GraphicalPreview_) {
        lvwInfo_->selectAll();
        return;
    }
    selection_.chooseAll(order());
    showSelection(); // of which one is the current one, if none was yet
}

void PicturePanel::select(const std::vector<store::PictureName>& pictures) {
    QStringList names;
    for (const store::PictureName& picture : pictures) {
        names.append(QString::fromStdU16String(picture.text));
    }
    if (names.isEmpty() || !group_) {
        Aktualisieren();
        return;
    }
    selection_.chooseAlone(names.first());
    selection_.chooseBanded(names, {});
    awaitPicture(pictures.front());
    if (GraphicalPreview_) {
        awaitPage(Awaited::Page::OfShown);
    } else {
        awaitRows(names);
    }
    read();
}

QStringList PicturePanel::selectedNames() const {
    if (!GraphicalPreview_) {
        return lvwInfo_->selectedNames();
    }
    if (selection_.all().size() < 2) {
        return {selection_.current()};
    }
    return selection_.among(order());
}

void PicturePanel::describeSelection() {
    selectedBytes_.drop();
    const QStringList names = selectedNames();
    strip_->setAccessibleDescription(shownPicture_.caption());
    if (names.size() < 2 || library_ == nullptr || !group_) {
        emit pictureDescribed(shownSizes_);
        return;
    }
    const QString count = app::text(kSelected).arg(names.size());
    strip_->setAccessibleDescription(shownPicture_.caption() + QStringLiteral(", ") + count);
    emit pictureDescribed(count);
    selectedBytes_.start([library = *library_, group = *group_, names] {
        const QSet<QString> selected(names.begin(), names.end());
        std::uint64_t bytes = 0;
        try {
            for (const store::PictureEntry& picture : store::listPictures(library, group)) {
                const bool isSelected =
                    selected.contains(QString::fromStdU16String(picture.name.text));
                bytes += isSelected ? picture.bytes : 0;
            }
        } catch (const std::exception&) {
            bytes = 0;
        }
        return bytes;
    });
}

void PicturePanel::describeSelectedBytes() {
    if (const std::uint64_t bytes = selectedBytes_.result(); bytes > 0) {
        emit pictureDescribed(app::text(kSelected).arg(selectedNames().size()) +
                              QStringLiteral(", ") + kilobytesRoundedUp(bytes));
    }
}

} // namespace browser
