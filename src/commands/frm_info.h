// What the whole library holds: how many groups and how many pictures.
#pragma once

#include "store/library.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace commands {

class frmInfo : public QDialog {
    Q_OBJECT

  public:
    explicit frmInfo(QWidget* owner);

    // Counts afresh, shows the dialog and returns when it is closed. A group file counts as one
    // group, and one that cannot be read as none. Throws compound::Error, and shows nothing, when
    // the library's folder cannot be listed.
    void openFor(const store::Library& library);

  private:
    void count(const store::Library& library);

    QLabel* Label1_; // the program's name
    QLabel* Label2_;
    QLabel* Label3_;
    QPushButton* cmdZur_ck_;
};

} // namespace commands
