#include "browser/found_thumbnails.h"

#include "browser/thumbnail_strip.h"

#include <utility>

namespace browser {
namespace {

constexpr qsizetype kMostImages = 2000;

} // namespace

QString keyOf(const finding::Match& match) {
    return QString::fromStdU16String(store::keyOf(match.group)) + u'\n' + match.name;
}

FoundThumbnails::FoundThumbnails(QObject* parent) : QObject(parent) {
    connect(&loader_, &ThumbnailLoader::loaded, this,
            [this](int position, const QString&, const QImage& image) {
                images_.insert(page_[static_cast<std::size_t>(position)], image);
                emit loaded();
            });
    connect(&loader_, &ThumbnailLoader::finished, this, &FoundThumbnails::loadNext);
}

void FoundThumbnails::stop() {
    loader_.stop();
    wanted_.clear();
    page_.clear();
    images_.clear();
    tried_.clear();
}

std::optional<QImage> FoundThumbnails::find(const finding::Match& match) const {
    const auto image = images_.find(keyOf(match));
    return image == images_.end() ? std::nullopt : std::optional(*image);
}

void FoundThumbnails::want(std::vector<finding::Match> seen, double screenRatio) {
    if (images_.size() > kMostImages || screenRatio != screenRatio_) {
        stop();
    }
    screenRatio_ = screenRatio;
    wanted_ = std::move(seen);
    if (!loader_.isBusy()) {
        loadNext();
    }
}

// A page of the loader is of one group.
void FoundThumbnails::loadNext() {
    page_.clear();
    ThumbnailPage page;
    for (const finding::Match& match : wanted_) {
        const QString key = keyOf(match);
        const bool isOfPage = page.pictures.empty() || page.group == match.group;
        if (match.picture && isOfPage && !tried_.contains(key)) {
            tried_.insert(key);
            page_.push_back(key);
            page.group = match.group;
            page.pictures.push_back(match.picture->name);
        }
    }
    if (library_ == nullptr || page.pictures.empty()) {
        return;
    }
    page.area = ThumbnailStrip::pictureArea();
    page.screenRatio = screenRatio_;
    loader_.start(*library_, std::move(page));
}

} // namespace browser
