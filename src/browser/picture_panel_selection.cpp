// The panel's part that deals with several selected pictures.
#include "browser/picture_list.h"
#include "browser/picture_panel.h"
#include "browser/thumbnail_strip.h"

namespace browser {

QStringList PicturePanel::order() const {
    QStringList names;
    for (const store::PictureName& name : readNames().names) {
        names.append(QString::fromStdU16String(name.text));
    }
    return names;
}

void PicturePanel::chosenInStrip(const QString& name, Selecting how) {
    selection_.choose(name, how, how == Selecting::Alone ? QStringList() : order());
    choose(pictureNamed(selection_.current()));
    emit editItemWanted(commands::EditItemCause::Thumbnail);
}

void PicturePanel::banded(const QStringList& covered, const QSet<QString>& before) {
    selection_.chooseBanded(covered, before);
    if (selection_.current() != shownPicture_.nameText()) {
        choose(pictureNamed(selection_.current()));
        emit editItemWanted(commands::EditItemCause::Thumbnail);
    } else {
        strip_->mark(selection_.current(), selection_.all());
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

void PicturePanel::selectAll() {
    if (!GraphicalPreview_) {
        lvwInfo_->selectAll();
        return;
    }
    selection_.chooseAll(order());
    strip_->mark(selection_.current(), selection_.all());
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
    setShownPicture(commands::ShownPicture(pictures.front()));
    if (GraphicalPreview_) {
        SetImgScrollProperties();
        turnToShownPicture();
        Aktualisieren();
    } else {
        FillListView(*group_);
        lvwInfo_->select(names);
        choose(pictures.front());
    }
}

} // namespace browser
