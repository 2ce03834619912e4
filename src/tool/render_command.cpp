// render and thumbnail: a picture file, or the first picture of a group file, as PNG.
#include "compound/error.h"
#include "store/group_operations.h"
#include "store/picture_operations.h"
#include "tool/command.h"
#include "tool/library_arguments.h"
#include "tool/output_file.h"
#include "tool/picture_input.h"

namespace tool {
namespace {

using compound::Error;
using compound::ErrorCode;

void writePng(const QImage& image, const std::filesystem::path& target,
              const Invocation& invocation) {
    writeOutputFile(target, invocation, toPng(image, target));
}

// The bytes of the first picture that has any: of the top-level group, else of those below it.
base::Bytes firstPictureIn(const std::filesystem::path& path) {
    const store::Library library = libraryAround(path);
    const store::GroupFileReading reading =
        store::readGroupFile(library, store::fileNameOf(path), store::LockBudget(library.lockWait));
    if (reading.failure) {
        throw *reading.failure;
    }
    base::Bytes bytes;
    for (const store::GroupEntry& group : reading.groups) {
        store::walkPictures(library, group.address, 0, [&](const store::StoredPicture& picture) {
            bytes = picture.bytes;
            return bytes.empty() ? store::TakePicture::Continue : store::TakePicture::Stop;
        });
        if (!bytes.empty()) {
            return bytes;
        }
    }
    throw Error(ErrorCode::NotFound, path, "there is no picture in it");
}

} // namespace

ExitStatus renderPicture(const Invocation& invocation) {
    const std::filesystem::path target = invocation.argument(1);
    writePng(readPicture(invocation.argument(0), target, invocation).image, target, invocation);
    return ExitStatus::Done;
}

ExitStatus makeThumbnail(const Invocation& invocation) {
    const std::filesystem::path source = invocation.argument(0);
    const std::filesystem::path target = invocation.argument(1);
    writePng(readPicture(firstPictureIn(source), source, target, invocation).image, target,
             invocation);
    return ExitStatus::Done;
}

} // namespace tool
