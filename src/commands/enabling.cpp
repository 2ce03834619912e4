#include "commands/enabling.h"

#include "commands/dispatcher.h"

namespace commands {
namespace {

bool needsGroup(Command command) {
    switch (command) {
    case Command::HandOver:
    case Command::HandOverAndClose:
    case Command::RenamePicture:
    case Command::EditPicture:
    case Command::DeletePicture:
    case Command::AddPicture:
    case Command::DeleteGroup:
    case Command::PrintCatalogue:
    case Command::CutPictures:
    case Command::CopyPictures:
    case Command::PastePictures:
        return true;
    default:
        return false;
    }
}

} // namespace

bool isOffered(Command command, Selection selection) {
    return hasHandler(command) && (selection == Selection::Group || !needsGroup(command));
}

bool allowsEditing(const QString& pictureType, EditItemCause cause) {
    if (pictureType == QLatin1String("WMF")) {
        return cause == EditItemCause::Thumbnail;
    }
    return pictureType != QLatin1String("GIF");
}

} // namespace commands
