// The icons of the group tree, drawn by the program in the colours of the palette, so that they are
// sharp at every scale and fit light and dark desktops.
#pragma once

#include <QIcon>

namespace groups {

enum class GroupMark {
    None,
    Locked,     // another program holds the group's file
    Unreadable, // the file cannot be read
};

// A folder with a picture in it; a mark stands in its lower right corner.
QIcon groupIcon(GroupMark mark);

// The program's own icon, for window frames and task bars.
QIcon programIcon();

} // namespace groups
