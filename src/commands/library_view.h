// The main window as commands and dialogs see it: what is selected, and the routines that bring the
// window up to date after a change. The main window implements it; tests may implement their own.
//
// None of the routines throws for the library's sake: what cannot be read is not shown.
#pragma once

#include "commands/selection_context.h"
#include "compound/trash.h"
#include "store/library.h"
#include "store/same_pictures.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QWidget;

namespace commands {

class UndoHistory;

// What the user can change of the window that is no command on groups and pictures.
enum class ViewChange {
    ThumbnailNames, // shown or not
    LargerThumbnails,
    SmallerThumbnails,
    NormalThumbnails,
    Find,      // goes to the field for finding
    ReadAgain, // the library
};

class LibraryView {
  public:
    virtual ~LibraryView() = default;
    LibraryView(const LibraryView&) = delete;
    LibraryView& operator=(const LibraryView&) = delete;

    // The window that owns dialogs and boxes.
    virtual QWidget* owner() = 0;

    // Valid from the first showing of the window on.
    virtual const store::Library& library() const = 0;

    // Where deleted things go.
    virtual std::unique_ptr<compound::Trash> makeTrash() const = 0;

    // What can be taken back.
    virtual UndoHistory& history() = 0;

    virtual std::optional<SelectedGroup> selectedGroup() const = 0;

    virtual const ShownPicture& shownPicture() const = 0;

    // Returns when what has been asked to be shown of the group is shown; keys and clicks wait.
    // Every command begins with it, so that it acts on what the user was going to see.
    virtual void awaitShown() {}

    // The selected pictures of the selected group, in its order; the shown one is among them.
    virtual std::vector<store::PictureName> selectedPictures() const = 0;
    virtual void selectAll() = 0;

    // Clipboard: the selected pictures go there, or come to the selected group from there.
    virtual void copyPictures() = 0;
    virtual void cutPictures() = 0; // pasting moves them
    virtual void pastePictures() = 0;

    // Shows the group, as when its node is chosen, with these of its pictures selected.
    virtual void ShowPictures(const store::GroupAddress& group,
                              const std::vector<store::PictureName>& pictures) = 0;

    // Reads all group files and rebuilds the tree. Nothing is selected afterwards.
    virtual void FillTreeView() = 0;

    // Makes a group the one whose pictures are shown, without touching the tree's selection.
    virtual void SetCurrentGroup(const store::GroupAddress& group) = 0;

    // Selects the group's node and shows its first picture. With a missing node nothing is selected
    // nor shown.
    virtual void TreeViewSelectNode(const store::GroupAddress& group) = 0;

    // Adds a top-level node without reading any file, selects it and shows its pictures.
    virtual void TreeViewAdd(const store::GroupName& name) = 0;

    // Takes the group's node, and those below it, out of the tree without reading any file; a
    // missing node is no error.
    virtual void TreeViewRemove(const store::GroupAddress& group) = 0;

    // Selects the tree's first node and shows its pictures from the beginning; with an empty tree
    // nothing is selected nor shown.
    virtual void SelectFirstGroup() = 0;

    // Shows the current group's pictures anew after a command has changed them.
    virtual void Aktualisieren() = 0;

    // Shows that a picture of the group, the one shown, has another name now.
    virtual void PictureRenamed(const store::GroupAddress& group, const QString& name) = 0;

    // Shows that the shown picture is no longer in the group. Among the thumbnails the one beside
    // it, if there is one, is the shown picture then, on the page that holds it; a list begins
    // anew.
    virtual void PictureDeleted(const store::GroupAddress& group,
                                const std::optional<store::PictureName>& beside) = 0;

    // Tells, some time later, how many pictures have come into the library and which of them it had
    // already. `arrived` is called on a worker and may read files.
    virtual void
    PicturesArrived(const std::function<std::vector<store::PictureAddress>()>& /*arrived*/) {}

    virtual void FillListView(const store::GroupAddress& group) = 0;

    // Fills the thumbnails with the current group's pictures from that element index on.
    virtual void MiniVorschau(std::size_t startIndex) = 0;

    // Empties the large preview.
    virtual void ClearVorschau() = 0;

    // Empties the large preview and the thumbnails.
    virtual void NoPictures() = 0;

    // Lets the window say that there is no picture, and empties the large preview.
    virtual void ShowNoPicture() = 0;

    // Whether the thumbnails, and not the list, show the pictures.
    virtual bool GraphicalPreview() const = 0;

    virtual void VorschauAktiviert() = 0;
    virtual void VorschauDeaktiviert() = 0;

    // Says in a line of the window, to whoever looks there, what a command has done.
    virtual void TellResult(const QString& /*result*/) {}

    virtual void changeView(ViewChange /*change*/) {}

    // Keeps the path of a copied picture as the hand-over value and lets whoever drives the program
    // know; started alone, nobody does.
    virtual void HandOver(const QString& path) = 0;

    // Ends the window: started alone the program ends with it, as a server it only hides and
    // forgets the hand-over value.
    virtual void Exit() = 0;

    // The same after a hand-over, whose value stays for who is to fetch the picture.
    virtual void ExitAfterHandOver() = 0;

  protected:
    LibraryView() = default;
};

} // namespace commands
