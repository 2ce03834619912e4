// How many pixels the objects of one metafile may hold together: a few bytes of a compressed
// picture become a hundred megabytes, and a file has room for thousands of such objects.
#pragma once

#include <QImage>

#include <cstdint>
#include <memory>

namespace metafile {

class KeptPictures {
  public:
    // The same 32-bit picture, counted until its last copy is gone, which may be after this object.
    // Null when too many pixels are kept already; a picture alone is never too large.
    QImage keep(const QImage& picture);

    // Whether there was no room for some picture.
    bool haveRefused() const { return haveRefused_; }

  private:
    bool haveRefused_ = false;
    std::shared_ptr<std::int64_t> pixels_ = std::make_shared<std::int64_t>(0);
};

} // namespace metafile
