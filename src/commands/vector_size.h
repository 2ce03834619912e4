// The window `frmGroesse`: how large a picture without a size of its own is to be.
#pragma once

#include <optional>

class QWidget;

namespace commands {

// The pixels of the longer side; nothing when the user wants no picture.
std::optional<int> askForLongerSide(int suggested, QWidget* owner);

} // namespace commands
