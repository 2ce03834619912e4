// A box that shows a picture stretched to its own size, whatever the picture's proportions; the
// caller gives the box the proportions that it wants. Where the picture is see-through, paper
// shows; without a picture the box is empty.
#pragma once

#include "picture/picture.h"

#include <QImage>
#include <QWidget>

namespace editing {

class PictureBox : public QWidget {
    Q_OBJECT

  public:
    explicit PictureBox(QWidget* parent);

    // Draws the picture for the size that the box has now: what is resized afterwards is stretched.
    // The picture itself is not kept. Throws nothing but for want of memory.
    void setPicture(const picture::Picture& picture);
    void clear();
    bool isEmpty() const { return scaled_.isNull(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QImage scaled_; // no larger than the screen shows: the picture itself may be huge
};

} // namespace editing
