// A picture of the library as the windows that show or edit one are given it.
#pragma once

#include "store/address.h"

#include <QString>

#include <exception>

namespace editing {

struct PictureInGroup {
    store::GroupAddress group;
    QString groupPath; // the names from the top level down, for reading
    store::PictureName name;
};

// What a box says when the picture cannot be read or decoded: picture, group, and the failure in
// the program's language.
QString unreadableText(const PictureInGroup& picture, const std::exception& failure);

} // namespace editing
