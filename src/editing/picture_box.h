// A box that shows a picture stretched to its own size, whatever the picture's proportions; the
// caller gives the box the proportions that it wants. Where the picture is see-through, paper
// shows; without a picture the box is empty. Reading, decoding and scaling are done on worker
// threads.
#pragma once

#include "app/job.h"
#include "base/bytes.h"
#include "picture/picture.h"

#include <QImage>
#include <QWidget>

#include <cstddef>
#include <functional>
#include <optional>

namespace editing {

class PictureBox : public QWidget {
    Q_OBJECT

  public:
    explicit PictureBox(QWidget* parent);

    // Empties the box and shows the picture of these bytes as soon as they are read. Both functions
    // are called on a worker: `read` may throw whatever keeps it from reading, `sizeFor` tells how
    // large the box will be for that picture, in device-independent pixels.
    void load(std::function<base::Bytes()> read,
              std::function<QSize(const picture::PictureFacts&)> sizeFor);

    // Shows nothing and forgets what is being loaded.
    void clear();

    bool isEmpty() const { return scaled_.isNull(); }
    bool isBusy() const { return job_.isBusy(); }

  signals:
    // The picture is about to be shown: the box is to be given the size that it was scaled for.
    void loaded(const picture::PictureFacts& facts);

    // It cannot be read or decoded; the box stays empty.
    void failed();

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    struct Scaled {
        std::optional<picture::PictureFacts> facts; // nothing if it cannot be shown
        QImage image;
    };

    void takeScaled();

    QImage scaled_; // no larger than the screen shows: the picture itself may be huge
    app::JobFor<Scaled> job_;
};

} // namespace editing
