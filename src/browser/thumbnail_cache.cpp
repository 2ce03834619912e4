#include "browser/thumbnail_cache.h"

#include "base/utf8.h"

#include <QHash>

namespace browser {
namespace {

constexpr qsizetype kMostPlaces = 20'000;
constexpr qsizetype kOverhead = 200; // of a kept image, in bytes

QByteArray keyOf(const Fingerprint& bytes, QSize size) {
    return QByteArray::number(qulonglong{bytes.hash}) + '/' +
           QByteArray::number(qulonglong{bytes.size}) + '/' + QByteArray::number(size.width()) +
           'x' + QByteArray::number(size.height());
}

// Neither a storage's nor a picture's name can hold a slash.
QByteArray keyOf(const ThumbnailCache::Place& place) {
    const compound::FileIdentity& file = place.stamp.identity;
    QByteArray key;
    for (const std::uint64_t number :
         {file.device, file.number, file.size, static_cast<std::uint64_t>(file.modified),
          static_cast<std::uint64_t>(file.changed), std::uint64_t{place.stamp.transaction}}) {
        key += QByteArray::number(qulonglong{number}) + '/';
    }
    return key + QByteArray::fromStdString(base::toUtf8(place.group.text)) + '/' +
           QByteArray::fromStdString(base::toUtf8(place.picture.text));
}

} // namespace

// The seed differs from run to run, so that nobody can make two pictures of one fingerprint.
Fingerprint fingerprintOf(std::span<const std::byte> bytes) {
    return {qHashBits(bytes.data(), bytes.size(), QHashSeed::globalSeed()), bytes.size()};
}

ThumbnailCache::ThumbnailCache(qsizetype mostBytes) : images_(mostBytes), places_(kMostPlaces) {}

std::optional<QImage> ThumbnailCache::find(const Place& place, QSize size) const {
    const Fingerprint* bytes = places_.object(keyOf(place));
    return bytes == nullptr ? std::nullopt : find(*bytes, size);
}

std::optional<QImage> ThumbnailCache::find(const Fingerprint& bytes, QSize size) const {
    const QImage* image = images_.object(keyOf(bytes, size));
    return image == nullptr ? std::nullopt : std::optional(*image);
}

void ThumbnailCache::insert(const Fingerprint& bytes, QSize size, const QImage& thumbnail) {
    images_.insert(keyOf(bytes, size), new QImage(thumbnail), // the cache owns it
                   thumbnail.sizeInBytes() + kOverhead);
}

void ThumbnailCache::remember(const Place& place, const Fingerprint& bytes) {
    places_.insert(keyOf(place), new Fingerprint(bytes)); // the cache owns it
}

} // namespace browser
