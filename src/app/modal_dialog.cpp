#include "app/modal_dialog.h"

#include <QDialog>

namespace app {

void execModally(QDialog& dialog) {
    dialog.exec();
    // A window manager that hands the focus from a box to the dialog may find it closed by then and
    // leave the focus nowhere.
    if (dialog.parentWidget() != nullptr) {
        dialog.parentWidget()->activateWindow();
    }
}

} // namespace app
