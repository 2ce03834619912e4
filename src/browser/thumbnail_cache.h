// The thumbnails of this session, so that no picture is decoded twice at one size: not when a page
// or a group is shown again, not when its picture or its group was renamed.
//
// A thumbnail belongs to a picture's bytes, whose fingerprint is its key. Which bytes a picture has
// is known without reading them as long as its group file is in the very state in which they were
// read.
#pragma once

#include "store/picture_operations.h"

#include <QByteArray>
#include <QCache>
#include <QImage>
#include <QSize>

#include <cstddef>
#include <optional>
#include <span>

namespace browser {

// Of a picture's bytes, in this run of the program only.
struct Fingerprint {
    std::size_t hash = 0;
    std::size_t size = 0;
};
Fingerprint fingerprintOf(std::span<const std::byte> bytes);

class ThumbnailCache {
  public:
    explicit ThumbnailCache(qsizetype mostBytes = qsizetype{64} << 20);

    // One picture of a group file in one state.
    struct Place {
        store::FileStamp stamp;
        store::StorageName group;
        store::PictureName picture;
    };

    // A null image is the thumbnail of what cannot be decoded; nothing: not known. `size` is that
    // of the area, in device pixels.
    std::optional<QImage> find(const Place& place, QSize size) const;
    std::optional<QImage> find(const Fingerprint& bytes, QSize size) const;

    void insert(const Fingerprint& bytes, QSize size, const QImage& thumbnail);

    // The picture at that place has these bytes.
    void remember(const Place& place, const Fingerprint& bytes);

  private:
    // Both forget what was not asked for the longest time.
    QCache<QByteArray, QImage> images_;
    QCache<QByteArray, Fingerprint> places_;
};

} // namespace browser
