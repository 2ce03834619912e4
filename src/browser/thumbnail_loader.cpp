#include "browser/thumbnail_loader.h"

#include "browser/picture_painting.h"
#include "compound/error.h"
#include "picture/picture.h"

#include <QElapsedTimer>

#include <utility>

namespace browser {
namespace {

constexpr int kStepMilliseconds = 12;
constexpr std::size_t kReadAheadBytes = std::size_t{4} << 20U;

} // namespace

ThumbnailLoader::ThumbnailLoader(QObject* parent) : QObject(parent) {
    timer_.setInterval(0);
    connect(&timer_, &QTimer::timeout, this, &ThumbnailLoader::step);
}

void ThumbnailLoader::start(const store::Library& library, ThumbnailPage page) {
    stop();
    library_ = &library;
    page_ = std::move(page);
    timer_.start();
}

void ThumbnailLoader::stop() {
    timer_.stop();
    undecoded_.clear();
    read_ = 0;
    delivered_ = 0;
}

void ThumbnailLoader::step() {
    QElapsedTimer clock;
    clock.start();
    while (timer_.isActive() && clock.elapsed() < kStepMilliseconds) {
        if (!undecoded_.empty()) {
            decodeNext();
        } else if (!readSome()) {
            stop();
            emit finished();
        }
    }
}

// The group's lock is held while reading only, never while decoding.
bool ThumbnailLoader::readSome() {
    if (read_ >= page_.elements.size()) {
        return false;
    }
    QElapsedTimer clock;
    clock.start();
    std::size_t bytes = 0;
    const auto take = [&](const store::StoredPicture& picture) {
        bytes += picture.bytes.size();
        undecoded_.push_back(picture);
        const bool enough = ++read_ == page_.elements.size() || bytes > kReadAheadBytes ||
                            clock.elapsed() >= kStepMilliseconds / 2;
        return enough ? store::TakePicture::Stop : store::TakePicture::Continue;
    };
    try {
        store::walkPictures(*library_, page_.group, page_.elements[read_], take);
    } catch (const std::exception&) {
        read_ = page_.elements.size(); // what was read before is still shown
    }
    return !undecoded_.empty();
}

void ThumbnailLoader::decodeNext() {
    const store::StoredPicture stored = std::move(undecoded_.front());
    undecoded_.pop_front();
    QImage image;
    try {
        image = fitted(picture::decode(stored.bytes), page_.area, page_.screenRatio);
    } catch (const std::exception&) {
        image = {}; // shown as a picture that cannot be decoded
    }
    emit loaded(delivered_++, QString::fromStdU16String(stored.name.text), image);
}

} // namespace browser
