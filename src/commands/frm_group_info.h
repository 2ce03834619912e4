// What there is to know about one group: its name, how many pictures it holds and how large it is.
// Groups below it do not count.
#pragma once

#include "commands/selection_context.h"

#include <QDialog>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace commands {

class LibraryView;

class frmGroupInfo : public QDialog {
    Q_OBJECT

  public:
    // The view must outlive the dialog.
    frmGroupInfo(LibraryView& view, QWidget* owner);

    // Reads the group of that selection, shows the dialog and returns when it is closed. Needs a
    // selected group. When the group cannot be read a box says so instead.
    void openFor(const SelectionContext& context);

  private:
    QLabel* addFact(QVBoxLayout* facts, const char* frameName, const char* valueName,
                    int captionId);
    void arrange();
    void connectControls();
    bool read(const SelectionContext& context);

    LibraryView& view_;
    QLabel* lblName2_ = nullptr;
    QLabel* lblBilder2_ = nullptr;
    QLabel* lblGr_e2_ = nullptr;
    QPushButton* cmdOK_;
    QPushButton* cmdHelp_;
};

} // namespace commands
