// Editing the shown picture, in the window for its type.
#pragma once

#include <QString>

namespace commands {

struct CommandCall;

// Whether there is a window for pictures of that type code.
bool hasEditor(const QString& pictureType);

// Opens the shown picture in the window for its type; from the pop-up a box tells instead that
// vector pictures cannot be edited. Where there is no window for the type, a box says so, too.
// Without a picture nothing happens.
void editPicture(CommandCall& call);

} // namespace commands
