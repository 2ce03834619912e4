// pictures, add, extract, rename-picture, remove-picture.
#include "base/utf8.h"
#include "compound/error.h"
#include "store/names.h"
#include "store/picture_operations.h"
#include "tool/command.h"
#include "tool/folder_input.h"
#include "tool/library_arguments.h"
#include "tool/output.h"
#include "tool/output_file.h"
#include "tool/terminal_progress.h"

#include <ostream>

namespace tool {
namespace {

store::PictureName nameOf(const Invocation& invocation, const std::string& file) {
    if (invocation.arguments.has(Option::Name)) {
        return {base::fromUtf8(invocation.arguments.valueOf(Option::Name))};
    }
    const std::u16string fileName = base::fromPath(std::filesystem::path(file).filename());
    store::PictureName name{std::u16string(store::cutAtFirstDot(fileName))};
    if (!store::isValidPictureName(name.text)) {
        throw compound::Error(compound::ErrorCode::InvalidName, file,
                              "the file's name gives no name for a picture (see --name)");
    }
    return name;
}

ExitStatus addFolder(const Invocation& invocation) {
    const Arguments& arguments = invocation.arguments;
    if (arguments.words.size() > 2 || arguments.has(Option::Name)) {
        throw UsageError("--folder takes no files and no --name");
    }
    const auto files = picturesOfFolder(arguments.valueOf(Option::Folder));
    const store::Library library = libraryOf(arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    TerminalProgress progress(invocation.console, "adding");
    return tellSkipped(store::addFiles(library, group, files, ifPictureExists(arguments),
                                       reservedNames(), progress),
                       invocation.console);
}

} // namespace

ExitStatus listPictures(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    Table table({"name", "bytes", "height", "width", "type"});
    for (const store::PictureEntry& picture : store::listPictures(library, group)) {
        const bool hasRecord = !picture.record.type.empty();
        table.addRow({Cell::text(picture.name.text), Cell::number(picture.bytes),
                      hasRecord ? Cell::number(picture.record.height) : Cell::missing(),
                      hasRecord ? Cell::number(picture.record.width) : Cell::missing(),
                      hasRecord ? Cell::text(picture.record.type) : Cell::missing()});
    }
    table.print(invocation.console.out, invocation.arguments);
    return ExitStatus::Done;
}

ExitStatus addPictures(const Invocation& invocation) {
    if (invocation.arguments.has(Option::Folder)) {
        return addFolder(invocation);
    }
    const std::vector<std::string>& words = invocation.arguments.words;
    if (words.size() < 3) {
        throw UsageError("add wants picture files, or --folder");
    }
    const std::vector<std::string> files(words.begin() + 2, words.end());
    if (files.size() > 1 && invocation.arguments.has(Option::Name)) {
        throw UsageError("--name names one picture, but there are " + std::to_string(files.size()) +
                         " files");
    }
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    store::PictureBatch batch(library, group);
    TerminalProgress progress(invocation.console, "adding");
    for (std::size_t i = 0; i < files.size(); ++i) {
        progress.report(i, files.size());
        batch.add(nameOf(invocation, files[i]), files[i], ifPictureExists(invocation.arguments));
    }
    batch.commit();
    return ExitStatus::Done;
}

ExitStatus extractPicture(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    const store::StoredPicture picture =
        store::readPicture(library, group, pictureOf(library, group, invocation.argument(1)));
    if (invocation.argument(2) == "-") {
        invocation.console.out.write(reinterpret_cast<const char*>(picture.bytes.data()),
                                     static_cast<std::streamsize>(picture.bytes.size()));
        return ExitStatus::Done;
    }
    writeOutputFile(invocation.argument(2), invocation, picture.bytes);
    return ExitStatus::Done;
}

ExitStatus renamePicture(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    const store::PictureName from = pictureOf(library, group, invocation.argument(1));
    store::renamePicture(library, group, from, {base::fromUtf8(invocation.argument(2))});
    return ExitStatus::Done;
}

ExitStatus removePicture(const Invocation& invocation) {
    const store::Library library = libraryOf(invocation.arguments);
    const store::GroupAddress group = groupOf(library, invocation.argument(0));
    store::deletePicture(library, group, pictureOf(library, group, invocation.argument(1)));
    return ExitStatus::Done;
}

} // namespace tool
