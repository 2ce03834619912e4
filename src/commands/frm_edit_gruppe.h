// The dialog that gives the selected group another name.
#pragma once

#include "commands/selection_context.h"
#include "store/address.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace commands {

class LibraryView;

class frmEditGruppe : public QDialog {
    Q_OBJECT

  public:
    // The view must outlive the dialog.
    frmEditGruppe(LibraryView& view, QWidget* owner);

    // Shows the dialog, with the old name selected, for the group of that selection and returns
    // when it is closed. A name that is refused or a failure of the store is told in a box, changes
    // nothing and leaves the dialog open; it closes when the group has vanished. Without a selected
    // group every name is refused.
    void openFor(const SelectionContext& context);

  private:
    void connectControls();
    void rename();
    QString refusalOf(const store::GroupName& name);
    bool isTaken(const store::GroupName& name) const;
    bool isValid(const store::GroupName& name) const;
    void closeIfGroupIsGone();
    store::GroupAddress renamedTo(const store::GroupName& name) const;
    void showInLibrary(const store::GroupName& name);

    LibraryView& view_;
    SelectionContext context_;
    QLabel* prompt_;
    QLineEdit* txtNeu_;
    QPushButton* cmdOK_;
    QPushButton* cmdAbbruch_;
    QPushButton* cmdHilfe_;
};

} // namespace commands
