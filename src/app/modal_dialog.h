// Running a dialog.
#pragma once

class QDialog;

namespace app {

// Shows the dialog modally and returns when it is closed, with its owner active again.
void execModally(QDialog& dialog);

} // namespace app
