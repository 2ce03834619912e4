#include "tool/folder_input.h"

#include "app/texts.h"
#include "platform/native_disk.h"

namespace tool {

std::vector<std::filesystem::path> picturesOfFolder(const std::string& folder) {
    std::vector<std::filesystem::path> files =
        store::pictureFilesIn(platform::nativeDisk(), folder);
    if (files.empty()) {
        throw compound::Error(compound::ErrorCode::NotFound, folder,
                              "there are no picture files in the folder");
    }
    return files;
}

std::vector<std::u16string> reservedNames() {
    constexpr int kNoPicture = 7;
    return {app::text(kNoPicture).toStdU16String()};
}

ExitStatus tellSkipped(const store::FilesAdded& added, Console& console) {
    for (const store::SkippedFile& skipped : added.skipped) {
        complain(console, "left out: " + skipped.file.string() + ": " + skipped.failure.cause());
    }
    return added.skipped.empty() ? ExitStatus::Done : ExitStatus::Failed;
}

} // namespace tool
