#include "commands/picture_commands.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/settings.h"
#include "app/texts.h"
#include "commands/command_call.h"
#include "commands/failure_report.h"
#include "commands/frm_edit_symbol.h"
#include "commands/frm_infos.h"
#include "commands/library_view.h"
#include "commands/picture_arrival.h"
#include "editing/frm_open.h"
#include "platform/paths.h"
#include "store/picture_operations.h"

#include <QCoreApplication>

namespace commands {
namespace {

constexpr int kNothingChosen = 303;
constexpr app::TextPair kCopying{u"Das Bild wird kopiert", u"The picture is being copied"};

const std::string kReadName = "Picture";
const std::string kHandOverName = "CopiedPicture";

// The shown picture, if the selected group holds it. One that went behind the window's back is
// taken off the screen as well.
std::optional<editing::PictureInGroup> storedPicture(const CommandCall& call) {
    auto picture = call.selection.pictureInGroup();
    const auto isThere = [&] {
        return store::pictureExists(call.view.library(), picture->group, picture->name);
    };
    if (picture && !app::resultOfReading(call.view.owner(), isThere)) {
        call.view.Aktualisieren();
        picture.reset();
    }
    return picture;
}

// Runs what needs the shown picture's group; a failure is told with the group's path.
template <typename Action>
void withGroupNamed(const CommandCall& call, Action action) {
    try {
        action();
    } catch (const std::exception& error) {
        reportFailure(call.view, call.selection, error, app::kProgramTitle, call.view.owner());
    }
}

// Copies the shown picture to a file of that base name in the temporary folder; nothing when there
// is no picture of that name.
std::optional<std::filesystem::path> copyToFile(const CommandCall& call,
                                                const std::string& baseName) {
    const auto picture = storedPicture(call);
    if (!picture) {
        return std::nullopt;
    }
    const std::filesystem::path folder = app::settings().restoredTemporaryFolderPath();
    return app::resultOfLong<std::filesystem::path>(
        {app::text(kCopying)}, call.view.owner(), [&](store::Progress&) {
            return store::exportPicture(call.view.library(), picture->group, picture->name, folder,
                                        baseName);
        });
}

// False when there is no such picture.
bool handOverShownPicture(const CommandCall& call) {
    const auto path = copyToFile(call, kHandOverName);
    if (path) {
        call.view.HandOver(platform::fromFilePath(*path));
    }
    return path.has_value();
}

} // namespace

void addPicture(CommandCall& call) {
    LibraryView& view = call.view;
    editing::frmOpen& dialog = keptDialog(
        call.dialogs.addPicture, view.owner(),
        editing::frmOpen::Listener{
            [&view] { view.Aktualisieren(); },
            [&view](const std::exception& error) { showWhatIsLeft(view, error); },
            [&view](const store::GroupAddress& group, const store::PictureName& name) {
                tellArrived(view, group, {name});
            },
            [&view](const editing::TargetGroup& target, const auto& files, QWidget* owner) {
                const auto names =
                    takeIncoming(view, {*target.address, target.path}, {files, {}, {}}, owner);
                tellArrived(view, *target.address, names);
            }});
    dialog.openFor(view.library(), {call.selection.group(), call.selection.groupPath});
}

void readPicture(CommandCall& call) {
    if (call.selection.picture.isNone()) {
        return;
    }
    withGroupNamed(call, [&call] { copyToFile(call, kReadName); });
}

void handOver(CommandCall& call) {
    withGroupNamed(call, [&call] { handOverShownPicture(call); });
}

void handOverAndClose(CommandCall& call) {
    withGroupNamed(call, [&call] {
        const bool wasShown = call.selection.pictureInGroup().has_value();
        if (handOverShownPicture(call) || !wasShown) { // the user has yet to see that it is gone
            call.view.ExitAfterHandOver();
        }
    });
}

void renamePicture(CommandCall& call) {
    if (call.origin == Origin::Menu && call.selection.picture.isNone()) {
        return;
    }
    keptDialog(call.dialogs.renamePicture, call.view, call.view.owner()).openFor(call.selection);
}

void showPictureInfo(CommandCall& call) {
    if (call.selection.picture.isUnchosen()) {
        app::msgBox(app::text(kNothingChosen), app::Buttons::Ok, app::kProgramTitle,
                    call.view.owner());
        return;
    }
    // What the click has set off is painted before the dialog covers it.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    withGroupNamed(call, [&call] {
        const auto picture = storedPicture(call);
        if (!picture) {
            return;
        }
        keptDialog(call.dialogs.pictureInfo, call.view.owner())
            .openFor(call.view.library(), picture->group, picture->name);
    });
}

} // namespace commands
