// Asks how much one of the four properties of colours is to change.
#pragma once

#include "editing/bitmap_editor/parameter_dialog.h"
#include "imaging/operations/colour_operations.h"

namespace editing {

class AmountField;

class AmountDialog : public ParameterDialog {
    Q_OBJECT

  public:
    struct Texts {
        QString title;
        QString property;
        QString unit; // the caption of the amount
        QString cancel;
    };
    AmountDialog(imaging::operations::ColourProperty property, const Texts& texts, QWidget* owner);

    // In the property's own unit and range.
    void setAmount(int amount);
    int amount() const;

  protected:
    QImage changed(const QImage& picture) const override;

  private:
    imaging::operations::ColourProperty property_;
    AmountField* amount_;
};

} // namespace editing
