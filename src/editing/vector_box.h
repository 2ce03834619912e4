// The control `Vector`: paints a metafile as large as the control is, its proportions kept, sharp
// on every screen.
//
// The picture is drawn once for each size and each resolution of the screen, on a worker thread: a
// drawing may have more records than a frame has time. Painting again takes that image. While the
// control is being resized the last image is stretched, and drawn anew once the size has settled.
#pragma once

#include "app/job.h"
#include "picture/picture.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <optional>

namespace editing {

class VectorBox : public QWidget {
    Q_OBJECT

  public:
    explicit VectorBox(QWidget* parent);

    void setPicture(picture::Picture picture);
    void clear();

    // Whether the picture is being drawn, or will be once the size has settled.
    bool isBusy() const { return drawing_.isBusy() || settling_.isActive(); }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QSize deviceSize() const;
    void draw();

    std::optional<picture::Picture> picture_;
    QImage drawn_;   // null until the picture is there for the first time
    QSize drawnFor_; // the size at which it was drawn last, or is being drawn; device pixels
    app::JobFor<QImage> drawing_;
    QTimer settling_;
};

} // namespace editing
