// Asks by which angle a picture is to be turned, whether it grows with that, and which colour its
// uncovered corners get.
#pragma once

#include "editing/bitmap_editor/parameter_dialog.h"

#include <QColor>

class QCheckBox;
class QPushButton;

namespace editing {

class AmountField;

class RotateDialog : public ParameterDialog {
    Q_OBJECT

  public:
    struct Texts {
        QString title;
        QString angle;
        QString resize;
        QString fillColour;
        QString cancel;
    };
    struct Answer {
        int angle; // hundredths of a degree, clockwise
        bool isResizing;
        QColor fillColour;
    };
    RotateDialog(const Texts& texts, QWidget* owner);

    // What is not offered is not asked for: its answer stays as it was set.
    void offer(bool resize, bool fillColour);

    void setAnswer(const Answer& answer);
    Answer answer() const;

  protected:
    QImage changed(const QImage& picture) const override;

  private:
    void askForFillColour();
    void setFillColour(const QColor& colour);

    AmountField* angle_;
    QCheckBox* chkResize_;
    QPushButton* cmdFarbe_;
    QColor fillColour_;
};

} // namespace editing
