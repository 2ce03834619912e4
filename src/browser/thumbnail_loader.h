// Brings the thumbnails of one page: what this session has shown before at once, the others as fast
// as the worker threads read and decode them. The window's thread only starts jobs and takes their
// results.
//
// One job at a time reads, so that the group file is locked by no more than one of them, and never
// for longer than a few megabytes take. It reads no further as long as what it has read fills the
// memory that is meant for undecoded pictures.
#pragma once

#include "app/job.h"
#include "browser/thumbnail_cache.h"
#include "store/picture_operations.h"

#include <QImage>
#include <QObject>
#include <QSizeF>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace browser {

struct ThumbnailPage {
    store::GroupAddress group;
    std::vector<store::PictureName> pictures; // in the order of the cells
    std::optional<store::FileStamp> stamp;    // of the file when they were listed
    QSizeF area;                              // of one thumbnail, device-independent pixels
    double screenRatio = 1;
};

class ThumbnailLoader : public QObject {
    Q_OBJECT

  public:
    // No more than `mostUndecoded` bytes of pictures of one page wait to be decoded, or one picture
    // that alone is larger.
    explicit ThumbnailLoader(std::size_t mostUndecoded = std::size_t{64} << 20U);
    ~ThumbnailLoader() override;

    // Forgets the page in work and starts this one; loaded() may come before this returns. A group
    // that cannot be read any further ends the page.
    void start(const store::Library& library, ThumbnailPage page);
    void stop();

    bool isBusy() const;

  signals:
    // `position` counts the page's pictures from 0; they come in any order. A null image: the
    // picture cannot be decoded.
    void loaded(int position, const QString& name, const QImage& image);
    // Nothing more comes of the page, which may have ended early. Not told where stop() ends it,
    // nor where all its pictures were known.
    void finished();

  private:
    struct Bytes;   // of one picture
    struct Reading; // the result of one job that reads
    class Decoding; // one job that decodes
    struct Thumbnail {
        int position = 0;
        QImage image;
    };

    std::size_t undecoded() const; // bytes
    void readOn();
    void takeRead();
    void tellIfFinished();
    void decode(int position, Bytes bytes);
    void takeDecoded(Decoding& decoding);
    void deliver(const std::vector<Thumbnail>& thumbnails);
    std::optional<ThumbnailCache::Place> placeOf(int position) const;
    QSize deviceArea() const;

    std::size_t mostUndecoded_;
    ThumbnailCache known_;
    std::optional<store::Library> library_;
    ThumbnailPage page_;
    int pageNumber_ = 0;      // counts the pages of this loader
    std::vector<int> unread_; // positions of what is left to be read, the next one first
    std::unique_ptr<app::JobFor<Reading>> reader_;
    std::vector<std::unique_ptr<Decoding>> decodings_;
};

} // namespace browser
