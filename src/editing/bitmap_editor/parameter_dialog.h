// What the dialogs for an operation's parameters have in common: the preview at the top, the fields
// below it, and the buttons.
#pragma once

#include <QDialog>
#include <QImage>

class QPushButton;
class QVBoxLayout;

namespace editing {

class ChangePreview;

class ParameterDialog : public QDialog {
    Q_OBJECT

  public:
    // Shows the picture before and after; without it the dialog has no preview.
    void showPreview(const QImage& picture);

  protected:
    ParameterDialog(const QString& cancelCaption, QWidget* owner);

    // Fields are added from top to bottom.
    void addField(QWidget* field);

    // What the operation gives for the answers as they are. Called with few pixels.
    virtual QImage changed(const QImage& picture) const = 0;

    // The answers are others now.
    void refreshPreview();

  private:
    ChangePreview* preview_;
    QVBoxLayout* fields_;
    QPushButton* cmdOK_;
    QPushButton* cmdAbbruch_;
};

} // namespace editing
