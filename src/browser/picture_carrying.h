// Dragging pictures out of the window and within it, dropping on tree, thumbnails and list, and the
// clipboard.
#pragma once

#include "browser/carried_pictures.h"
#include "browser/drop_target.h"

#include <QObject>

namespace commands {
class LibraryView;
}
namespace groups {
class GroupTree;
struct SelectedGroup;
} // namespace groups

namespace browser {

class FindPanel;
class MainMenus;
class PicturePanel;

class PictureCarrying : public QObject {
    Q_OBJECT

  public:
    // All must outlive it.
    PictureCarrying(commands::LibraryView& view, groups::GroupTree& tree, PicturePanel& panel,
                    FindPanel& find, QWidget* owner);

    // Offers in the menus what can be done, from now on.
    void offerIn(MainMenus& menus);

    // The picture that is selected among what was found, else the selected pictures or the shown
    // one go to the clipboard; nothing without any. With ToMove pasting takes them away from their
    // group.
    void copy(Carrying carrying);

    // What the clipboard holds goes to the selected group, which is shown instead of what was
    // found. What was to be moved stays on the clipboard until something of it was.
    void paste();

  private:
    commands::PicturesOfGroup selected() const;
    commands::PicturesOfGroup toCopy() const;
    void drag();
    void watchTree();
    void watchPictures(QWidget* widget);
    // Whether something has come.
    bool take(const groups::SelectedGroup& target, const OfferedPictures& offered,
              store::PassageKind kind);
    void takeSoon(const groups::SelectedGroup& target, const QMimeData& data, DropKind kind);

    commands::LibraryView& view_;
    groups::GroupTree& tree_;
    PicturePanel& panel_;
    FindPanel& find_;
};

} // namespace browser
