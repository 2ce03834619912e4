#include "tool/library_arguments.h"

#include "app/number_text.h"
#include "app/settings.h"
#include "base/utf8.h"
#include "compound/error.h"
#include "picture/picture.h"
#include "platform/native_disk.h"
#include "store/group_operations.h"

#include <chrono>

namespace tool {
namespace {

using compound::Error;
using compound::ErrorCode;

// A picture counts as one when it can be shown, so the whole of it is decoded.
store::TwipSize measure(std::span<const std::byte> bytes) {
    const picture::Picture picture = picture::decode(bytes);
    return {picture.facts().twips.height, picture.facts().twips.width};
}

// A script had rather wait for another program, or another machine, than fail; nobody watches it.
constexpr std::chrono::seconds kLockWait{5};

store::Library libraryIn(std::filesystem::path folder) {
    store::Library library{platform::nativeDisk(), std::move(folder), measure};
    library.lockWait = kLockWait;
    library.decimalSeparator = app::decimalSeparator().unicode();
    return library;
}

// The top-level group of a file whose name may go on behind the group's.
store::GroupAddress topOf(const store::Library& library, const store::GroupAddress& group) {
    const store::GroupFileReading reading =
        store::readGroupFile(library, group.file, store::LockBudget(library.lockWait));
    return reading.groups.empty() ? group : reading.groups.front().address;
}

std::filesystem::path settingsFolder() {
    app::settings().readPaths();
    return app::settings().storagesFolderPath();
}

} // namespace

store::Library libraryOf(const Arguments& arguments) {
    if (!arguments.has(Option::Library)) {
        return libraryIn(settingsFolder());
    }
    const std::string folder = arguments.valueOf(Option::Library);
    if (folder.empty()) {
        throw UsageError("--library wants a folder");
    }
    return libraryIn(folder);
}

store::Library libraryAround(const std::filesystem::path& path) {
    return libraryIn(store::folderOf(path));
}

store::GroupAddress groupOf(const store::Library& library, const std::string& key) {
    store::GroupAddress group = store::addressOf(base::fromUtf8(key));
    // The file lies in the library and nowhere else, whatever the key tries.
    const bool isKey = !group.file.text.empty() && !group.storage.text.empty() &&
                       !base::toPath(group.file.text).has_parent_path();
    if (!isKey) {
        throw Error(ErrorCode::NotFound, library.folder, "\"" + key + "\" is no group's key");
    }
    const bool isFileAlone = key.find('/') == std::string::npos;
    return isFileAlone && key.find('.') != std::string::npos ? topOf(library, group) : group;
}

store::PictureName pictureOf(const store::Library& library, const store::GroupAddress& group,
                             const std::string& name) {
    if (name.empty()) {
        throw Error(ErrorCode::NotFound, store::pathOf(library, group.file),
                    "there is no picture without a name");
    }
    return {base::fromUtf8(name)};
}

store::IfPictureExists ifPictureExists(const Arguments& arguments) {
    return arguments.has(Option::Replace) ? store::IfPictureExists::Replace
                                          : store::IfPictureExists::Refuse;
}

} // namespace tool
