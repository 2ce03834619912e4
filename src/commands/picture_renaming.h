// What the dialog and the in-place edit share when they rename a picture: the refusals, as the
// texts of a box. An empty text is no refusal.
//
// Names count as they are written, until the store, to which case does not matter, has the last
// word.
#pragma once

#include "store/library.h"

#include <QString>

namespace commands {

// What the new name alone forbids.
QString refusalOf(const QString& newName);

// What the name alone forbids, or what the group refuses; otherwise the picture is renamed. Throws
// compound::Error when the store fails for another reason; see store::renamePicture.
QString renameOrRefuse(const store::Library& library, const store::GroupAddress& group,
                       const store::PictureName& from, const QString& newName);

} // namespace commands
