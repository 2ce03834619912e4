// The dialog that makes a new group, at the top level or below the selected one.
#pragma once

#include "commands/selection_context.h"
#include "store/address.h"

#include <QDialog>

#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace commands {

class GroupTargetBox;
class LibraryView;

class frmNeueGruppe : public QDialog {
    Q_OBJECT

  public:
    // The view must outlive the dialog.
    frmNeueGruppe(LibraryView& view, QWidget* owner);

    // Shows the dialog, empty, for that selection and returns when it is closed. A name that is
    // missing, taken or invalid is told in a box, and so is what the store throws; both leave the
    // library as it was and the dialog open. A group that was made is shown in the main window.
    void openFor(const SelectionContext& context);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void arrange();
    void create();
    bool isAcceptable(const std::optional<store::GroupAddress>& parent,
                      const store::GroupName& name);
    void tellFailure(const std::exception& failure);
    void showInLibrary(const store::GroupAddress& group);
    void refuse(int textId);

    LibraryView& view_;
    SelectionContext context_;
    QLabel* prompt_;
    QLineEdit* txtNeu_;
    QPushButton* cmdOK_;
    QPushButton* cmdAbbruch_;
    QLabel* targetPrompt_;
    GroupTargetBox* target_;
};

} // namespace commands
