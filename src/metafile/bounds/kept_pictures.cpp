#include "metafile/bounds/kept_pictures.h"

namespace metafile {

namespace {

constexpr std::int64_t kMostPixels = 16'000'000;

struct Share {
    QImage picture;
    std::shared_ptr<std::int64_t> pixels;

    std::int64_t count() const { return std::int64_t{picture.width()} * picture.height(); }
};

void giveBack(void* pointer) {
    const std::unique_ptr<Share> share(static_cast<Share*>(pointer));
    *share->pixels -= share->count();
}

} // namespace

QImage KeptPictures::keep(const QImage& picture) {
    auto share = std::make_unique<Share>(Share{picture, pixels_});
    if (picture.isNull()) {
        return {};
    }
    if (*pixels_ > 0 && *pixels_ + share->count() > kMostPixels) {
        haveRefused_ = true;
        return {};
    }
    *pixels_ += share->count();
    const QImage& held = share->picture;
    QImage kept(held.constBits(), held.width(), held.height(), held.bytesPerLine(), held.format(),
                giveBack, share.get());
    // Qt calls giveBack for a picture that it has made only.
    if (!kept.isNull()) {
        (void)share.release();
    } else {
        *pixels_ -= share->count();
    }
    return kept;
}

} // namespace metafile
