#include "commands/dispatcher.h"

#include "app/message_box.h"
#include "commands/delete_pictures.h"
#include "commands/edit_picture.h"
#include "commands/frm_create.h"
#include "commands/frm_edit_gruppe.h"
#include "commands/frm_edit_symbol.h"
#include "commands/frm_editor_optionen.h"
#include "commands/frm_group_info.h"
#include "commands/frm_import.h"
#include "commands/frm_info.h"
#include "commands/frm_infos.h"
#include "commands/frm_katalog.h"
#include "commands/frm_neue_gruppe.h"
#include "commands/group_commands.h"
#include "commands/library_view.h"
#include "commands/picture_commands.h"
#include "commands/program_commands.h"
#include "commands/sample_library.h"
#include "editing/frm_open.h"
#include "editing/frm_optionen_wmf.h"

#include <algorithm>
#include <array>
#include <exception>

namespace commands {
namespace {

using Handler = void (*)(CommandCall&);

struct Binding {
    Command command;
    Handler handler;
};

template <ViewChange change>
void changeView(CommandCall& call) {
    call.view.changeView(change);
}

constexpr std::array kBindings{
    Binding{Command::NewGroup, newGroup},
    Binding{Command::GroupFromFolder, createGroupFromFolder},
    Binding{Command::ImportGroup, importGroup},
    Binding{Command::RenameGroup, renameGroup},
    Binding{Command::DeleteGroup, deleteGroup},
    Binding{Command::GroupInfo, showGroupInfo},
    Binding{Command::AddPicture, addPicture},
    Binding{Command::EditPicture, editPicture},
    Binding{Command::ReadPicture, readPicture},
    Binding{Command::RenamePicture, renamePicture},
    Binding{Command::DeletePicture, deletePicture},
    Binding{Command::PictureInfo, showPictureInfo},
    Binding{Command::HandOver, handOver},
    Binding{Command::HandOverAndClose, handOverAndClose},
    Binding{Command::GraphicalPreview, toggleGraphicalPreview},
    Binding{Command::EditorOptions, showEditorOptions},
    Binding{Command::ThumbnailNames, changeView<ViewChange::ThumbnailNames>},
    Binding{Command::LargerThumbnails, changeView<ViewChange::LargerThumbnails>},
    Binding{Command::SmallerThumbnails, changeView<ViewChange::SmallerThumbnails>},
    Binding{Command::NormalThumbnails, changeView<ViewChange::NormalThumbnails>},
    Binding{Command::Find, changeView<ViewChange::Find>},
    Binding{Command::Refresh, changeView<ViewChange::ReadAgain>},
    Binding{Command::Undo, undo},
    Binding{Command::CutPictures, cutPictures},
    Binding{Command::CopyPictures, copyPictures},
    Binding{Command::PastePictures, pastePictures},
    Binding{Command::SelectAll, selectAll},
    Binding{Command::Exit, exitProgram},
    Binding{Command::PrintCatalogue, printCatalogue},
    Binding{Command::Help, showMainHelp},
    Binding{Command::SearchHelp, searchHelp},
    Binding{Command::LibraryInfo, showLibraryInfo},
    Binding{Command::OpenSamples, openSamples},
};

Handler handlerOf(Command command) {
    const auto* found =
        std::find_if(kBindings.begin(), kBindings.end(),
                     [command](const Binding& binding) { return binding.command == command; });
    return found == kBindings.end() ? nullptr : found->handler;
}

} // namespace

bool hasHandler(Command command) {
    return handlerOf(command) != nullptr;
}

Dispatcher::Dispatcher(LibraryView& view) : view_(view) {}

void Dispatcher::toolClick(const QString& key) {
    for (const Band& band : bands()) {
        for (const Tool& tool : band.tools) {
            if (key == QLatin1String(tool.key.data(), static_cast<qsizetype>(tool.key.size()))) {
                run(tool.command, Origin::PopUp);
                return;
            }
        }
    }
}

void Dispatcher::menuClick(MenuId menuId, int index) {
    for (const MenuItem& item : menu(menuId).items) {
        if (item.index == index) {
            run(item.command, Origin::Menu);
            return;
        }
    }
}

void Dispatcher::run(Command command, Origin origin) {
    const Handler handler = handlerOf(command);
    if (handler == nullptr) {
        return;
    }
    view_.awaitShown();
    CommandCall call{view_, dialogs_, contextOf(view_.selectedGroup(), view_.shownPicture()),
                     origin};
    try {
        handler(call);
    } catch (const std::exception& error) {
        app::msgBox(app::errorText(error), app::Buttons::Ok, app::kProgramTitle, view_.owner());
    }
}

} // namespace commands
