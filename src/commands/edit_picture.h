// Editing the shown picture, in the window for its type.
#pragma once

namespace commands {

struct CommandCall;

// Opens the shown picture: WMF pictures in the vector window, all others in the bitmap editor. From
// the pop-up a box tells instead that vector pictures cannot be edited. Without a picture nothing
// happens.
void editPicture(CommandCall& call);

} // namespace commands
