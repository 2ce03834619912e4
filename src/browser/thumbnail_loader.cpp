#include "browser/thumbnail_loader.h"

#include "browser/picture_painting.h"
#include "imaging/image_scaling.h"
#include "picture/picture.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace browser {
namespace {

constexpr std::size_t kReadAtOnce = std::size_t{4} << 20U; // bytes
// So many undecoded pictures are enough for every worker to find the next one.
constexpr std::size_t kMostUndecodedPictures = 6;

// Only one huge picture is decoded at a time: each may take some hundred megabytes. JPGs do not, as
// they are decoded at a fraction of their size.
class HugePictureTurn {
  public:
    explicit HugePictureTurn(std::span<const std::byte> bytes) {
        const picture::PictureFacts facts = picture::measure(bytes);
        if (facts.kind != picture::PictureKind::Jpg && imaging::isVeryLarge(facts.pixels)) {
            static std::mutex mutex;
            lock_ = std::unique_lock(mutex);
        }
    }

  private:
    std::unique_lock<std::mutex> lock_;
};

// Null for what cannot be decoded.
QImage thumbnailOf(std::span<const std::byte> bytes, const QSizeF& area, double screenRatio) {
    try {
        const HugePictureTurn turn(bytes);
        const QSize box = (area * screenRatio).toSize();
        return fitted(picture::decodeFor(bytes, box), area, screenRatio);
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

struct ThumbnailLoader::Bytes {
    base::Bytes bytes;
    Fingerprint fingerprint;
};

struct ThumbnailLoader::Reading {
    std::vector<Bytes> pictures; // the next ones in their order
    bool hasFailed = false;      // and there will be no more
};

class ThumbnailLoader::Decoding : public app::JobFor<QImage> {
  public:
    int position = 0;
    Fingerprint fingerprint;
};

ThumbnailLoader::ThumbnailLoader(std::size_t mostUndecoded)
    : mostUndecoded_(mostUndecoded), reader_(std::make_unique<app::JobFor<Reading>>()) {
    connect(reader_.get(), &app::Job::done, this, &ThumbnailLoader::takeRead);
}

ThumbnailLoader::~ThumbnailLoader() = default;

bool ThumbnailLoader::isBusy() const {
    return reader_->isBusy() || !decodings_.empty();
}

void ThumbnailLoader::stop() {
    reader_->drop();
    decodings_.clear();
    unread_.clear();
}

void ThumbnailLoader::start(const store::Library& library, ThumbnailPage page) {
    stop();
    library_.emplace(library);
    page_ = std::move(page);
    ++pageNumber_;
    std::vector<Thumbnail> known;
    for (int position = 0; position < static_cast<int>(page_.pictures.size()); ++position) {
        const auto place = placeOf(position);
        if (const auto image = place ? known_.find(*place, deviceArea()) : std::nullopt) {
            known.push_back({position, *image});
        } else {
            unread_.push_back(position);
        }
    }
    readOn();
    deliver(known);
}

QSize ThumbnailLoader::deviceArea() const {
    return (page_.area * page_.screenRatio).toSize();
}

std::optional<ThumbnailCache::Place> ThumbnailLoader::placeOf(int position) const {
    if (!page_.stamp) {
        return std::nullopt;
    }
    return ThumbnailCache::Place{*page_.stamp, page_.group.storage,
                                 page_.pictures[static_cast<std::size_t>(position)]};
}

std::size_t ThumbnailLoader::undecoded() const {
    std::size_t bytes = 0;
    for (const auto& decoding : decodings_) {
        bytes += decoding->fingerprint.size;
    }
    return bytes;
}

// The group's lock is held while reading only, never while decoding.
void ThumbnailLoader::readOn() {
    const std::size_t waiting = undecoded();
    if (unread_.empty() || reader_->isBusy() || decodings_.size() >= kMostUndecodedPictures ||
        waiting >= mostUndecoded_) {
        return;
    }
    std::vector<store::PictureName> names;
    for (const int position : unread_) {
        names.push_back(page_.pictures[static_cast<std::size_t>(position)]);
    }
    const std::size_t room = mostUndecoded_ - waiting;
    reader_->start([library = *library_, group = page_.group, names = std::move(names), room,
                    isAlone = waiting == 0] {
        Reading reading;
        std::size_t read = 0;
        const auto wanted = [&](std::uint64_t size) {
            const bool isFirst = reading.pictures.empty();
            const bool fits = read + size <= (isFirst ? room : std::min(room, kReadAtOnce));
            return fits || (isFirst && isAlone) ? store::TakePicture::Continue
                                                : store::TakePicture::Stop;
        };
        const auto take = [&](base::Bytes bytes) {
            read += bytes.size();
            reading.pictures.push_back({std::move(bytes), {}});
        };
        try {
            store::readPictures(library, group, names, wanted, take);
        } catch (const std::exception&) {
            reading.hasFailed = true; // what was read before is still shown
        }
        for (Bytes& picture : reading.pictures) {
            picture.fingerprint = fingerprintOf(picture.bytes);
        }
        return reading;
    });
}

void ThumbnailLoader::takeRead() {
    Reading reading = std::exchange(reader_->result(), {});
    const auto count = static_cast<std::ptrdiff_t>(reading.pictures.size());
    const std::vector<int> positions(unread_.begin(), unread_.begin() + count);
    unread_.erase(unread_.begin(), unread_.begin() + count);
    if (reading.hasFailed) {
        unread_.clear();
    }
    std::vector<Thumbnail> known;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        Bytes& picture = reading.pictures[i];
        if (const auto place = placeOf(positions[i])) {
            known_.remember(*place, picture.fingerprint);
        }
        if (const auto image = known_.find(picture.fingerprint, deviceArea())) {
            known.push_back({positions[i], *image});
        } else {
            decode(positions[i], std::move(picture));
        }
    }
    if (!positions.empty() || decodings_.empty()) {
        readOn();
    } // else the next one has no room before another one is decoded
    deliver(known);
    tellIfFinished();
}

void ThumbnailLoader::decode(int position, Bytes bytes) {
    decodings_.push_back(std::make_unique<Decoding>());
    Decoding& decoding = *decodings_.back();
    decoding.position = position;
    decoding.fingerprint = bytes.fingerprint;
    connect(&decoding, &app::Job::done, this, [this, &decoding] { takeDecoded(decoding); });
    decoding.start([picture = std::move(bytes.bytes), area = page_.area,
                    ratio = page_.screenRatio] { return thumbnailOf(picture, area, ratio); });
}

void ThumbnailLoader::takeDecoded(Decoding& decoding) {
    const Thumbnail thumbnail{decoding.position, decoding.result()};
    known_.insert(decoding.fingerprint, deviceArea(), thumbnail.image);
    const auto done = std::find_if(decodings_.begin(), decodings_.end(),
                                   [&](const auto& other) { return other.get() == &decoding; });
    done->release()->deleteLater(); // it stands in the signal that has brought us here
    decodings_.erase(done);
    readOn();
    deliver({thumbnail});
    tellIfFinished();
}

void ThumbnailLoader::tellIfFinished() {
    if (!isBusy() && unread_.empty()) {
        emit finished();
    }
}

// Whoever takes a thumbnail may ask for another page.
void ThumbnailLoader::deliver(const std::vector<Thumbnail>& thumbnails) {
    const int page = pageNumber_;
    for (const Thumbnail& thumbnail : thumbnails) {
        if (page != pageNumber_) {
            return;
        }
        const auto position = static_cast<std::size_t>(thumbnail.position);
        emit loaded(thumbnail.position, QString::fromStdU16String(page_.pictures[position].text),
                    thumbnail.image);
    }
}

} // namespace browser
