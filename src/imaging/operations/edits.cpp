#include "imaging/operations/edits.h"

#include "imaging/operations/mirroring.h"

namespace imaging::operations {
namespace {

// The hot spot moves last: it cannot fail, and needs the size that the picture had.
class Editing {
  public:
    explicit Editing(EditedPicture& picture) : picture_(picture), size_(picture.image.size()) {}

    void operator()(const Flip&) {
        flip(picture_.image);
        picture_.hotSpot = flippedPoint(picture_.hotSpot, size_);
    }
    void operator()(const Reverse&) {
        reverse(picture_.image);
        picture_.hotSpot = reversedPoint(picture_.hotSpot, size_);
    }
    void operator()(const Rotation& rotation) {
        rotate(picture_.image, rotation);
        picture_.hotSpot = rotatedPoint(picture_.hotSpot, size_, rotation);
    }
    void operator()(const ColourChange& change) { apply(change, picture_.image); }
    void operator()(const Inversion&) { invert(picture_.image); }

  private:
    EditedPicture& picture_;
    QSize size_;
};

} // namespace

void apply(const Edit& edit, EditedPicture& picture) {
    std::visit(Editing(picture), edit);
}

} // namespace imaging::operations
