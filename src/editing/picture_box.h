// A picture stretched to the box's own size, whatever its proportions.
#pragma once

#include "picture/picture.h"

#include <QImage>
#include <QWidget>

namespace editing {

class PictureBox : public QWidget {
    Q_OBJECT

  public:
    explicit PictureBox(QWidget* parent);

    void setPicture(const picture::Picture& picture);
    void clear();
    bool isEmpty() const { return scaled_.isNull(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QImage scaled_; // no larger than the screen shows: the picture itself may be huge
};

} // namespace editing
