// Reads and decodes one page of thumbnails in short steps between the window's events, so that the
// window stays alive however large the pictures are. Everything happens on the caller's thread.
#pragma once

#include "store/picture_operations.h"

#include <QImage>
#include <QObject>
#include <QSizeF>
#include <QTimer>

#include <cstddef>
#include <deque>
#include <optional>
#include <vector>

namespace browser {

struct ThumbnailPage {
    store::GroupAddress group;
    std::vector<std::size_t> elements; // element indexes of the page's pictures, ascending
    QSizeF area;                       // of one thumbnail, device-independent pixels
    double screenRatio = 1;
};

class ThumbnailLoader : public QObject {
    Q_OBJECT

  public:
    explicit ThumbnailLoader(QObject* parent = nullptr);

    // Forgets the page in work and starts this one. The library must live until the page is done
    // or stopped. A group that cannot be read any further ends the page.
    void start(const store::Library& library, ThumbnailPage page);
    void stop();

    bool isBusy() const { return timer_.isActive(); }

  signals:
    // `position` counts the page's pictures from 0. A null image: the picture cannot be decoded.
    void loaded(int position, const QString& name, const QImage& image);
    void finished();

  private:
    void step();
    bool readSome();
    void decodeNext();

    QTimer timer_;
    const store::Library* library_ = nullptr;
    ThumbnailPage page_;
    std::deque<store::StoredPicture> undecoded_;
    std::size_t read_ = 0;
    int delivered_ = 0;
};

} // namespace browser
