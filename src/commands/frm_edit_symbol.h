// The dialog that gives the shown picture another name.
#pragma once

#include "commands/selection_context.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace commands {

class LibraryView;

class frmEditSymbol : public QDialog {
    Q_OBJECT

  public:
    // The view must outlive the dialog.
    frmEditSymbol(LibraryView& view, QWidget* owner);

    // Shows the dialog, with the old name selected, for the picture of that selection and returns
    // when it is closed.
    // Every refused name is told in a box, changes nothing and leaves the dialog open.
    void openFor(const SelectionContext& context);

  private:
    void connectControls();
    void rename();
    QString renameOrRefuse(const QString& name);

    LibraryView& view_;
    SelectionContext context_;
    QLabel* prompt_;
    QLineEdit* txtName_;
    QPushButton* cmdOK_;
    QPushButton* cmdCancel_;
    QPushButton* cmdHilfe_;
};

} // namespace commands
