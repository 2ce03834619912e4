// Renaming a picture in place.
#pragma once

#include "store/library.h"

#include <QString>

class QWidget;

namespace browser {

// Checks the new name and renames the picture in the store. A refusal is told in a box; then false,
// and nothing has changed. Throws compound::Error when the store fails; see store::renamePicture.
bool renameInPlace(const store::Library& library, const store::GroupAddress& group,
                   const QString& from, const QString& to, QWidget* owner);

} // namespace browser
