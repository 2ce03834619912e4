// The thumbnails of what was found: pictures of many groups, brought for those rows that are seen.
#pragma once

#include "browser/thumbnail_loader.h"
#include "finding/name_index.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>

#include <optional>
#include <vector>

namespace browser {

// Tells a found picture from every other of the library.
QString keyOf(const finding::Match& match);

class FoundThumbnails : public QObject {
    Q_OBJECT

  public:
    explicit FoundThumbnails(QObject* parent = nullptr);

    // The library must outlive stop().
    void setLibrary(const store::Library& library) { library_ = &library; }
    void stop();

    // Brings those that are not there yet, one group after the other; what was wanted before and
    // not begun is forgotten. Groups have no thumbnail.
    void want(std::vector<finding::Match> seen, double screenRatio);

    // Nothing: not there yet. A null image: the picture cannot be decoded.
    std::optional<QImage> find(const finding::Match& match) const;

  signals:
    void loaded();

  private:
    void loadNext();

    const store::Library* library_ = nullptr;
    std::vector<finding::Match> wanted_;
    double screenRatio_ = 1;
    std::vector<QString> page_; // keys of the pictures that the loader has in hand
    QHash<QString, QImage> images_;
    QSet<QString> tried_;
    ThumbnailLoader loader_;
};

} // namespace browser
