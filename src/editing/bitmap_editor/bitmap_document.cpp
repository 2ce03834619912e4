#include "editing/bitmap_editor/bitmap_document.h"

#include "editing/bitmap_editor/imaging_error.h"
#include "imaging/encoding/encoders.h"
#include "imaging/operations/editable_image.h"
#include "picture/picture.h"

#include <utility>

namespace editing {

using imaging::PictureKind;

namespace {

struct Loaded {
    BitmapDocument::EditedPicture picture;
    PictureKind format;
};

Loaded load(const base::Bytes& bytes) {
    try {
        const picture::Picture decoded = picture::decode(bytes);
        const picture::PictureFacts& facts = decoded.facts();
        if (qint64{facts.pixels.width()} * facts.pixels.height() > picture::kMaximumPixels) {
            throw picture::DecodeError("the picture has too many pixels");
        }
        const QImage image = decoded.scaledTo(facts.pixels);
        if (image.isNull()) {
            throw picture::DecodeError("the picture cannot be drawn");
        }
        return {{imaging::operations::editable(image), facts.hotSpot}, facts.kind};
    } catch (const picture::DecodeError& error) {
        throw ImagingError(ImagingError::kCorrupt, error.what());
    }
}

bool hasFrames(PictureKind kind) {
    return kind == PictureKind::Ico || kind == PictureKind::Cur;
}

std::string extensionOf(const std::filesystem::path& file) {
    return file.extension().string().substr(1);
}

} // namespace

BitmapDocument::BitmapDocument(const store::Library& library, const store::StoredPicture& picture,
                               std::filesystem::path folder)
    : disk_(library.disk),
      folder_(std::move(folder)),
      editFile_(store::exportPicture(library, picture, folder_, "EditPicture")),
      extension_(extensionOf(editFile_)),
      undo_(disk_, folder_, "Undo", extension_),
      redo_(disk_, folder_, "Redo", extension_) {
    Loaded loaded = load(picture.bytes);
    picture_ = std::move(loaded.picture);
    format_ = loaded.format;
    if (hasFrames(format_)) {
        frames_ = picture.bytes;
    }
}

void BitmapDocument::change(const Edit& edit) {
    EditedPicture changed = picture_;
    imaging::operations::apply(edit, changed);
    undo_.push(picture_);
    redo_.clear();
    picture_ = std::move(changed);
}

void BitmapDocument::undo() {
    step(undo_, redo_, picture_);
}

void BitmapDocument::redo() {
    step(redo_, undo_, picture_);
}

void BitmapDocument::step(HistoryStack& from, HistoryStack& to, EditedPicture& picture) {
    if (from.count() == 0) {
        return;
    }
    std::optional<EditedPicture> other = from.top();
    to.push(picture);
    from.pop();
    if (other) {
        picture = std::move(*other);
    }
}

void BitmapDocument::startHistoryAfresh() {
    undo_.forget();
    redo_.hide();
}

void BitmapDocument::removeHistory() {
    undo_.clear();
    redo_.clear();
}

std::filesystem::path BitmapDocument::write() const {
    std::filesystem::path file = folder_ / ("Picture." + extension_);
    disk_.removeTemporary(file); // nobody is to take the picture before for this one
    try {
        const imaging::Kept kept{frames_, picture_.hotSpot};
        store::writePictureFile(disk_, file, imaging::encode(picture_.image, format_, kept));
    } catch (const imaging::EncodeError& error) {
        throw compound::Error(compound::ErrorCode::Failed, file, error.what());
    }
    return file;
}

} // namespace editing
