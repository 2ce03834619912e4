// Telling the user of group files that were set aside, and clearing them away.
#pragma once

#include "store/library.h"

class QWidget;

namespace browser {

// Counts the files set aside; if there are any, asks, moves them to the trash and reports how many
// went. They go whichever button of the question is pressed: only the answer No, which it does not
// offer, would keep them. Without such files, or without a readable folder, nothing happens.
void reportDamagedFiles(const store::Library& library, QWidget* owner);

} // namespace browser
