#include "commands/edit_picture.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/command_call.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "compound/error.h"
#include "editing/bitmap_editor/frm_optionen_bmp.h"
#include "editing/frm_optionen_wmf.h"
#include "editing/picture_in_group.h"
#include "store/picture_operations.h"

#include <optional>
#include <utility>

namespace commands {
namespace {

// Not translated.
const QString kVectorFromPopUp =
    QStringLiteral("Bearbeitungsfunktionen für Vektordateien sind noch nicht verfügbar.");

// Nothing after a box has told the failure.
std::optional<QString> readType(const CommandCall& call, const editing::PictureInGroup& picture) {
    const store::Library& library = call.view.library();
    try {
        const auto [type, isThere] = app::resultOfReading(call.view.owner(), [&] {
            return std::pair(store::readPictureType(library, picture.group, picture.name),
                             store::pictureExists(library, picture.group, picture.name));
        });
        // A picture may lack its record; one that another program has removed lacks it, too.
        if (type.empty() && !isThere) {
            throw compound::Error(compound::ErrorCode::NotFound,
                                  store::pathOf(library, picture.group.file),
                                  "the picture is gone");
        }
        return QString::fromStdString(type);
    } catch (const std::exception& failure) {
        app::msgBox(editing::unreadableText(picture, failure), app::Buttons::Ok, app::kProgramTitle,
                    call.view.owner());
        showWhatIsLeft(call.view, failure);
        return std::nullopt;
    }
}

void openVectorWindow(CommandCall& call, const editing::PictureInGroup& picture) {
    keptDialog(call.dialogs.vectorPicture, call.view.owner()).openFor(call.view.library(), picture);
}

void openBitmapEditor(CommandCall& call, const editing::PictureInGroup& picture) {
    using Outcome = editing::frmOptionenBMP::Outcome;
    auto& editor = keptDialog(call.dialogs.bitmapEditor, call.view.owner());
    if (editor.openFor(call.view.library(), picture) == Outcome::ToBeRefreshed) {
        call.view.Aktualisieren();
    }
}

} // namespace

void editPicture(CommandCall& call) {
    const auto picture = call.selection.pictureInGroup();
    if (!picture) {
        return;
    }
    const auto type = readType(call, *picture);
    if (!type) {
        return;
    }
    if (*type != QLatin1String("WMF")) {
        openBitmapEditor(call, *picture);
    } else if (call.origin == Origin::PopUp) {
        app::msgBox(kVectorFromPopUp, app::Buttons::Ok, app::kProgramTitle, call.view.owner());
    } else {
        openVectorWindow(call, *picture);
    }
}

} // namespace commands
