// The keys of the main window, as its menus show them. Each runs the menu's item, and does nothing
// while that one is disabled. What else a view does with keys is its own matter.
//
//   F2       renames: the group in the tree, the picture in the thumbnails (a list edits in place)
//   Delete   deletes: the group in the tree, the picture in thumbnails and list
//   Ctrl+Z   takes the last change back
//   Ctrl+X   Ctrl+C   Ctrl+V   the clipboard
//   Ctrl+A   selects all pictures of the group
//   Ctrl+F   goes to the field for finding pictures and groups
//   F5       reads the library again
//   Ctrl++   Ctrl+-   Ctrl+0   larger, smaller thumbnails, and of the size that they have at first
#pragma once

class QWidget;

namespace browser {

class MainMenus;

struct KeyTargets {
    QWidget* tree = nullptr;
    QWidget* strip = nullptr;
    QWidget* list = nullptr;
    MainMenus* menus = nullptr;
};

// Binds the keys; what the targets name must live as long as the menus.
void bindKeys(const KeyTargets& targets);

} // namespace browser
