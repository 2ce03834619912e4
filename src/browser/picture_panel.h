// The pictures of the current group: thumbnails or list, large preview, label, tool tip and scroll
// bar, and how they follow each other.
//
// Reading is silent: a group or picture that cannot be read leaves its view empty. It is done
// beside the window: what a routine shows of the group is there when isReading() ends, in the order
// in which the routines were called.
#pragma once

#include "app/job.h"
#include "browser/main_layout.h"
#include "browser/picture_selection.h"
#include "browser/thumbnail_loader.h"
#include "browser/view_choices.h"
#include "commands/enabling.h"
#include "commands/library_view.h"
#include "commands/shown_picture.h"
#include "groups/library_changes.h"
#include "store/library.h"

#include <QObject>
#include <QTimer>
#include <QTreeWidgetItem>

#include <memory>
#include <optional>
#include <vector>

class QScrollBar;
class QWidget;

namespace browser {

struct ShownPages;

class LargePreview;
class PictureLabel;
class PictureList;
class ThumbnailStrip;
class ThumbnailToolTip;

// Whether they are known to be the same.
bool isSameState(const store::PictureNames& one, const store::PictureNames& other);

class PicturePanel : public QObject {
    Q_OBJECT

  public:
    // The widgets become children of the surface.
    explicit PicturePanel(QWidget* surface);

    // Must be called before anything that reads; the library must outlive the panel.
    void setLibrary(const store::Library& library);

    // Sets what depends on the language.
    void setCaptions();

    void setChoices(const ViewChoices& choices);
    ViewChoices choices() const;

    // Changes the thumbnails' size, as far as there is another, or shows or hides their names. What
    // is selected stays in sight, or else what comes first there.
    void changeThumbnails(commands::ViewChange change);

    void place(const MainLayout& layout);

    // Starts the deferred layout of the thumbnails, if they are the view.
    void layOutSoon();

    // Lays the thumbnails out without filling them.
    void layOutGrid();

    // Which group is shown. Changes nothing on the screen.
    void setGroup(const std::optional<store::GroupAddress>& group);
    const std::optional<store::GroupAddress>& group() const { return group_; }

    // Shows the group's pictures from the beginning, and its first picture.
    void showGroup();

    // No group is shown: everything is empty, the label too.
    void showNothing();

    // The same as showGroup without going through the scroll bar's handler: for groups chosen by
    // commands.
    void showGroupAnew();

    // Shows the group's pictures with that one selected and in sight; the first one without it.
    void showGroupAt(const store::PictureName& picture);

    const commands::ShownPicture& shownPicture() const { return shownPicture_; }
    const QString& shownType() const { return shownType_; } // of the picture; may be empty

    // The selected pictures that the group holds, in its order; the shown one is among them.
    std::vector<store::PictureName> selectedPictures() const;
    void selectAll();
    // Shows the group's pictures anew, with these selected; the first of them is the shown one.
    void select(const std::vector<store::PictureName>& pictures);

    QImage currentThumbnail() const; // null when it is not on the screen

    bool GraphicalPreview() const { return GraphicalPreview_; }
    void setGraphicalPreview(bool on) { GraphicalPreview_ = on; }
    bool isSettled() const; // nothing is being laid out, read or loaded
    bool isReading() const; // names, order or records; not the pictures themselves

    // Returns when nothing is being read; the window paints meanwhile, keys and clicks wait. What
    // acts on selected pictures begins with it.
    void awaitShown();

    // What a look at the library is to read anew; nothing while no group is shown.
    std::optional<groups::ShownPictures> shownPictures();

    // Shows what others have changed in the group, whose page, selected picture and rows stay where
    // they are. False, with nothing done, when the panel shows something else by now.
    bool takeChanges(const groups::GroupContent& content);

    // Gives up whatever is being loaded: the window ends.
    void stopLoading();

    void Aktualisieren();
    void PictureRenamed(const store::GroupAddress& group, const QString& name);
    void PictureDeleted(const store::GroupAddress& group,
                        const std::optional<store::PictureName>& beside);
    void FillListView(const store::GroupAddress& group);
    void MiniVorschau(std::size_t startIndex);
    void SelectPicture();
    void SetImgScrollProperties();
    void ClearVorschau();
    void NoPictures();
    void NoToolTip();
    void ShowNoPicture();
    void VorschauAktiviert();
    void VorschauDeaktiviert();

    void pointerOnFreeSurface();
    void hideToolTip();

    // What has the focus when the user is among the pictures.
    QWidget* pictures() const; // the view that is shown
    QWidget* strip() const;
    QWidget* list() const;
    QWidget* listArea() const; // on which its rows stand

    // Whether Tab comes to the thumbnails and their scroll bar; not while something covers them.
    void setReachable(bool isReachable);

    // Tab order: what comes before and after.
    void setTabOrderAfter(QWidget* before);

  signals:
    void pagesShown(const browser::ShownPages& pages); // of the shown group
    void nothingShown();                               // no group is shown
    void pictureShown(bool any);                       // another one, or none
    void pictureDescribed(const QString& sizes);       // of what is selected; empty for nothing
    void thumbnailsChanged(); // their size or names, or whether there are any
    void menuStateWanted();
    void editItemWanted(commands::EditItemCause cause);
    void picturePopUpWanted(const QPoint& globalPosition);
    void editWanted();      // a picture was double-clicked
    void editWantedByKey(); // Enter was pressed on one
    void dragWanted();      // of the selected pictures
    void pictureRenamed(const store::GroupAddress& group, const store::PictureName& from,
                        const store::PictureName& to); // by editing it in place
    void renameFailed(const store::GroupAddress& group, const std::exception& failure);

  private:
    // What is to be shown when the group has been read.
    struct Awaited {
        enum class Choice {
            None,  // of a picture: the shown one stays
            First, // as the view stands
            Shown, // the same once more; the first one if it is gone
        } choice = Choice::None;
        enum class Page {
            None,     // only how many there are
            AsListed, // is on the screen, unless others have changed the group
            Stay,     // the one on the screen anew
            Start,    // the one that begins with `start`
            OfShown,  // the one with the shown picture
        } page = Page::None;
        std::size_t start = 0;
        bool rows = false; // the list's
        QStringList selectedRows;
    };

    struct Reading {
        std::optional<groups::GroupContent> content; // nothing: it cannot be read
        std::vector<std::unique_ptr<QTreeWidgetItem>> rows;
    };

    void connectReading();
    void stopReading();
    void leaveOtherGroup();
    void awaitFirstPicture();
    void awaitShownPicture();
    void awaitPicture(const store::PictureName& picture);
    void awaitPage(Awaited::Page page, std::size_t start = 0);
    void awaitRows(const QStringList& selected);
    void read();
    void takeReading();
    void takeChoice(const Awaited& awaited, const std::optional<store::PictureEntry>& selected);
    void takeRows(const Awaited& awaited, std::vector<std::unique_ptr<QTreeWidgetItem>> rows);
    void takePage(const Awaited& awaited);
    void setPageRange();
    void showPageFrom(std::size_t startIndex);
    void showFromStart();
    void showShown();
    void describe(const store::PictureName& picture);
    void loadPreview(const store::PictureName& picture);
    void takeDescription(const store::PictureEntry& picture);

    void connectStrip();
    void connectList();
    void onScrollChanged();
    void onTimer();
    std::size_t pageStart() const; // the element with which the screen begins
    void showPage(int page);
    void showPageNumber();
    void turnPages(int pages);
    void resizeThumbnails(int steps);
    void layOutAgain();
    bool isShownPictureInSight() const;
    void scrollRows(int rows);
    void showPageOf(int position);
    void choose(const store::PictureName& picture, commands::EditItemCause cause);
    void chosenInStrip(const QString& name, Selecting how);
    void banded(const QStringList& covered, const QSet<QString>& before);
    void showSelection();             // of the strip
    const QStringList& order() const; // of the group's pictures
    void showStored(const store::PictureEntry& picture);
    void setShownPicture(const commands::ShownPicture& picture);
    void setShownName(const store::PictureName& name); // another one of the same picture
    void showListRow();
    QStringList selectedNames() const; // as far as they are listed
    void describeSelection();
    void describeSelectedBytes();
    void turnToShownPicture();
    void renamed(const store::GroupAddress& group, const QString& from, const QString& to);
    void loadPage(std::size_t startIndex);
    void updatePage();
    void takeSelected(const std::optional<store::PictureEntry>& selected);

    QWidget* surface_;
    ThumbnailStrip* strip_;
    QScrollBar* imgScroll_;
    PictureList* lvwInfo_;
    LargePreview* imgVorschau_;
    PictureLabel* lblAktuell_;
    ThumbnailToolTip* txtName_;
    QTimer* Timer1_;
    ThumbnailLoader loader_;
    const store::Library* library_ = nullptr;
    std::optional<store::GroupAddress> group_;
    app::JobFor<Reading> reading_{nullptr, app::readers};
    Awaited awaited_;
    app::JobFor<std::optional<store::PictureEntry>> describing_{nullptr, app::readers};
    commands::EditItemCause describedFor_ = commands::EditItemCause::Group;
    store::PictureNames listed_; // the group's pictures when they were read last
    std::optional<store::GroupAddress> listedGroup_; // whose
    std::size_t start_ = 0;                          // with which the thumbnails began last
    bool turnsToShown_ = false;                      // when the thumbnails are laid out
    int listing_ = 0;                                // counts how often they were read or shown
    mutable QStringList order_;
    mutable int orderedListing_ = -1; // for which order_ was made
    int askedListing_ = -1;           // of the last look's question
    app::TwipRect area_;
    std::optional<std::size_t> keptInSight_; // the element to begin with when they are laid out
    ViewChoices choices_;                    // but for the list's order
    commands::ShownPicture shownPicture_;
    PictureSelection selection_; // among the thumbnails
    QString shownType_;
    QString shownSizes_;
    app::JobFor<std::uint64_t> selectedBytes_; // of several pictures; 0 if that is not to be found
    bool GraphicalPreview_ = true;
};

} // namespace browser
