#include "editing/bitmap_editor/history_stack.h"

#include "imaging/encoding/encoders.h"
#include "picture/picture.h"
#include "store/picture_operations.h"

#include <utility>

namespace editing {

using compound::Error;
using compound::ErrorCode;
using imaging::PictureKind;

HistoryStack::HistoryStack(compound::Disk& disk, std::filesystem::path folder, std::string baseName,
                           std::string extension)
    : disk_(disk),
      folder_(std::move(folder)),
      baseName_(std::move(baseName)),
      extension_(std::move(extension)) {}

std::filesystem::path HistoryStack::fileOf(int number) const {
    return folder_ / (baseName_ + std::to_string(number) + "." + extension_);
}

void HistoryStack::push(const EditedPicture& picture) {
    if (count() == kMost) {
        throw HistoryOverflow("the history has no room for another step");
    }
    const QImage& image = picture.image;
    const std::filesystem::path file = fileOf(count() + 1);
    steps_.push_back(
        {picture.hotSpot, image.dotsPerMeterX(), image.dotsPerMeterY(), image.colorSpace()});
    try {
        store::writePictureFile(disk_, file, imaging::encode(image, PictureKind::Bmp));
    } catch (const imaging::EncodeError& error) {
        steps_.pop_back();
        throw Error(ErrorCode::Failed, file, error.what());
    } catch (...) {
        steps_.pop_back();
        throw;
    }
    if (count() == 1) {
        isOffered_ = true;
    }
}

std::optional<HistoryStack::EditedPicture> HistoryStack::top() const {
    if (steps_.empty()) {
        return std::nullopt;
    }
    const Step& step = steps_.back();
    try {
        EditedPicture picture{
            picture::decode(store::readPictureFile(disk_, fileOf(count()))).image(), step.hotSpot};
        if (picture.image.isNull()) {
            return std::nullopt;
        }
        picture.image.setDotsPerMeterX(step.dotsPerMeterX);
        picture.image.setDotsPerMeterY(step.dotsPerMeterY);
        picture.image.setColorSpace(step.colours);
        return picture;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

void HistoryStack::pop() {
    if (steps_.empty()) {
        return;
    }
    try {
        disk_.removeTemporary(fileOf(count()));
    } catch (const Error&) {
        // The file stays for the folder's end; the next one of that number takes its place.
    }
    steps_.pop_back();
    isOffered_ = isOffered_ && !steps_.empty();
}

void HistoryStack::clear() {
    while (!steps_.empty()) {
        pop();
    }
    hide();
}

void HistoryStack::forget() {
    steps_.clear();
    hide();
}

void HistoryStack::hide() {
    isOffered_ = false;
}

} // namespace editing
