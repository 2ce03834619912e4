// Pictures on the clipboard or under way by drag and drop: what the program hands out, and what it
// takes.
//
// Handed out are copies of the pictures' files, which lie in a folder of their own in the temporary
// folder and are named like the pictures as far as files can be; of a single picture also the image
// with its alpha (a metafile drawn at its own size); and, for windows of this program on the same
// library, which pictures they are.
#pragma once

#include "commands/picture_transfer.h"
#include "store/library.h"

#include <QMimeData>

#include <filesystem>
#include <memory>
#include <optional>

class QWidget;

namespace browser {

// What a window of this program does with its own pictures.
enum class Carrying { ToCopy, ToMove };

// The pictures for others, and for ourselves. Throws compound::Error when one cannot be read or
// written; one that cannot be decoded comes as a file alone. Takes a progress window of `owner`'s
// when it takes long, and throws Cancelled when it was stopped.
std::unique_ptr<QMimeData> carry(const store::Library& library,
                                 const commands::PicturesOfGroup& pictures, Carrying carrying,
                                 const std::filesystem::path& temporaryFolder, QWidget* owner);

// What a drop or the clipboard offers.
struct OfferedPictures {
    std::optional<commands::PicturesOfGroup> ours; // of the same library
    Carrying carrying = Carrying::ToCopy;
    commands::IncomingPictures incoming; // if they are not ours
};

// Whether a window of this program offers the data, with the pictures of whatever library.
bool isFromLibrary(const QMimeData& data);

// Whether there may be pictures in the data, without looking at them.
bool mayHoldPictures(const QMimeData& data);

// Asks whoever offers the data for it.
OfferedPictures picturesIn(const QMimeData& data, const store::Library& library);

} // namespace browser
