// The options of the editor: two boxes to tick, whose only effect is a sentence each when the user
// saves. Nothing is stored.
#pragma once

#include <QDialog>

class QCheckBox;
class QPushButton;

namespace commands {

class frmEditorOptionen : public QDialog {
    Q_OBJECT

  public:
    explicit frmEditorOptionen(QWidget* owner);

    // Shows the dialog with nothing ticked and returns when it is closed.
    void openAfresh();

  private:
    void save();

    QCheckBox* chkGrafik_;
    QCheckBox* chkGruppe_;
    QPushButton* cmdSpeichern_;
};

} // namespace commands
