// The control `Vector`: paints a metafile as large as the control is, its proportions kept, sharp
// on every screen.
//
// The picture is drawn once for each size and each resolution of the screen; painting again takes
// that image. While the control is being resized the last image is stretched, and drawn anew once
// the size has settled: a drawing may have more records than a frame has time.
#pragma once

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

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    QSize deviceSize() const;
    void draw(const picture::Picture& picture);

    std::optional<picture::Picture> picture_;
    QImage drawn_; // null until the picture is painted for the first time
    QTimer settling_;
};

} // namespace editing
