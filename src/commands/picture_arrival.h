// Pictures that come into a group from outside: files that were dropped, pasted or chosen, and an
// image from another program.
#pragma once

#include "store/picture_operations.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <vector>

class QWidget;

namespace commands {

class LibraryView;

struct IncomingPictures {
    std::vector<std::filesystem::path> files;
    QImage image;        // without files
    QStringList refused; // what is known already not to be a picture, as lines of the summary
};

struct ArrivalTarget {
    store::GroupAddress group;
    QString name; // of the group
};

// Stores the pictures in one transaction, beside the window, with progress and a way to stop. Asks
// before: whether pictures of other types are to be taken as BMP, how large one without a size is
// to be, and what becomes of names that are taken. Tells afterwards, in one window, what was left
// out and why, and which pictures are called otherwise than their files. Returns what the pictures
// that came are called now. What they replaced can be taken back. Throws what concerns the group as
// a whole; then, and when the user stops it, nothing has changed.
std::vector<store::PictureName> takeIncoming(LibraryView& view, const ArrivalTarget& target,
                                             const IncomingPictures& incoming, QWidget* owner);

// Has the window tell, some time later, of pictures that came.
void tellArrived(LibraryView& view, const store::GroupAddress& group,
                 const std::vector<store::PictureName>& names);

} // namespace commands
