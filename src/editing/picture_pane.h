// A frame that shows a picture as large as it fits, in its middle and over a checkerboard. Small
// pictures are enlarged to a whole number of times their size, so that their pixels can be seen.
#pragma once

#include "app/job.h"

#include <QFrame>
#include <QImage>

namespace editing {

class PicturePane : public QFrame {
    Q_OBJECT

  public:
    explicit PicturePane(QWidget* parent);

    // Has a picture of any size shrunk, on a worker, to what the pane can show of it; it is shown
    // when that is done. Pixels are shared meanwhile. The pane keeps what it showed before until
    // then. A null image empties the pane at once.
    void setPicture(const QImage& picture);

    // Shows an image that is no larger than need be.
    void setImage(const QImage& image);

    // What is shown, in the format that operations work on; null for nothing.
    const QImage& image() const { return image_; }
    bool isBusy() const { return shrinking_.isBusy(); }

  signals:
    void pictureShown(); // after setPicture()

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QRect placeOf(const QSize& image) const;

    QImage image_;
    app::JobFor<QImage> shrinking_;
};

} // namespace editing
