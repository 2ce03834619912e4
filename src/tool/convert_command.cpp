// convert: a picture file of any of the seven types, edited, in another type or its own.
#include "compound/error.h"
#include "imaging/encoding/encoders.h"
#include "tool/command.h"
#include "tool/edit_steps.h"
#include "tool/output_file.h"
#include "tool/picture_input.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace tool {
namespace {

using compound::Error;
using compound::ErrorCode;
using imaging::PictureKind;
namespace operations = imaging::operations;

PictureKind kindByName(const std::filesystem::path& path) {
    constexpr std::array<std::pair<std::string_view, PictureKind>, 7> kKinds{{
        {".bmp", PictureKind::Bmp},
        {".gif", PictureKind::Gif},
        {".jpg", PictureKind::Jpg},
        {".jpeg", PictureKind::Jpg},
        {".ico", PictureKind::Ico},
        {".cur", PictureKind::Cur},
        {".emf", PictureKind::Emf},
    }};
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    const auto* const found = std::find_if(
        kKinds.begin(), kKinds.end(), [&](const auto& kind) { return kind.first == extension; });
    if (found == kKinds.end()) {
        throw UsageError("convert writes .bmp, .gif, .jpg, .ico, .cur and .emf files, not \"" +
                         path.filename().string() + "\"");
    }
    return found->second;
}

// The hot spot of a picture that may have been made smaller.
QPoint hotSpotOf(const InputPicture& input) {
    const QSize before = input.facts.pixels;
    return {input.facts.hotSpot.x() * input.image.width() / before.width(),
            input.facts.hotSpot.y() * input.image.height() / before.height()};
}

std::vector<std::byte> edited(const InputPicture& input, const std::vector<operations::Edit>& steps,
                              PictureKind kind) {
    operations::EditedPicture picture{input.image, hotSpotOf(input)};
    for (const operations::Edit& step : steps) {
        operations::apply(step, picture);
    }
    imaging::Kept kept;
    kept.hotSpot = picture.hotSpot;
    // A picture that was made smaller is an icon of its own: beside the old frames nobody saw it.
    if (input.image.size() == input.facts.pixels) {
        kept.file = input.file;
    }
    return imaging::encode(picture.image, kind, kept);
}

} // namespace

ExitStatus convertPicture(const Invocation& invocation) {
    const std::filesystem::path source = invocation.argument(0);
    const std::filesystem::path target = invocation.argument(1);
    if (source == "-" || target == "-") {
        throw UsageError("convert reads and writes files; - is none here");
    }
    const PictureKind kind = kindByName(target);
    const std::vector<operations::Edit> steps = editSteps(invocation.arguments);
    const InputPicture input = readPicture(source, target, invocation);
    try {
        writeOutputFile(target, invocation, edited(input, steps, kind));
    } catch (const imaging::EncodeError& error) {
        throw Error(ErrorCode::Failed, target, error.what());
    } catch (const std::length_error& error) {
        throw Error(ErrorCode::TooLarge, target, error.what());
    }
    return ExitStatus::Done;
}

} // namespace tool
