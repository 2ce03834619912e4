// The pictures in an icon or cursor file, side by side: with their sizes, depths and hot spots; the
// one that thumbnails show is marked. Each can be copied as an image, or dragged into another
// program, then as a PNG file too.
#pragma once

#include "app/job.h"
#include "picture/icon_frames.h"
#include "store/picture_operations.h"

#include <QGroupBox>

class QPushButton;

namespace commands {

class FrameStrip : public QGroupBox {
    Q_OBJECT

  public:
    explicit FrameStrip(QWidget* parent);

    // Reads the picture's frames on a worker. A picture whose type is no icon's or cursor's, or
    // that has no frames after all, hides the strip.
    void load(const store::Library& library, const store::GroupAddress& group,
              const store::PictureEntry& picture);

    // Forgets the frames and what is being loaded.
    void clear();

    bool isBusy() const { return job_.isBusy(); }

  signals:
    // The strip was hidden or has its frames now.
    void loaded();

  private:
    class FrameList;

    void makeRoomFor(int lines); // below each frame
    void take();
    void addFrame(const picture::IconFrame& frame);
    void copy();

    FrameList* lvwBilder_;
    QPushButton* cmdKopieren_;
    app::JobFor<std::vector<picture::IconFrame>> job_;
};

} // namespace commands
