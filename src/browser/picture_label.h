// The label below the large preview, `lblAktuell`: the name of the shown picture, as plain text,
// with an ellipsis and a tool tip where it does not fit.
#pragma once

#include <QLabel>

namespace browser {

class PictureLabel : public QLabel {
    Q_OBJECT

  public:
    explicit PictureLabel(QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

  private:
    QString fittingText() const;
};

} // namespace browser
