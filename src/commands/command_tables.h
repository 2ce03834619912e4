// Every command of the program and the places where it is offered: the two pop-up bands and the
// four menus, with their keys, indexes and captions.
#pragma once

#include "app/texts.h"

#include <span>
#include <string_view>

namespace commands {

enum class Command {
    NewGroup,
    GroupFromFolder,
    ImportGroup,
    RenameGroup,
    DeleteGroup,
    GroupInfo,
    AddPicture,
    ReadPicture, // reads the shown picture's data and drops it; bound to a hidden item
    RenamePicture,
    EditPicture,
    DeletePicture,
    PictureInfo,
    HandOver,
    HandOverAndClose,
    Exit,
    PrintCatalogue,
    GraphicalPreview,
    EditorOptions,
    ThumbnailNames,
    LargerThumbnails,
    SmallerThumbnails,
    NormalThumbnails,
    Find,
    Refresh,
    Help,
    SearchHelp,
    LibraryInfo,
    OpenSamples, // offered by an empty library only
    Undo,
    CutPictures,
    CopyPictures,
    PastePictures,
    SelectAll,
};

inline constexpr int kNoTextId = -1;

// A tool of a pop-up band. The stored caption is what the layout holds; the user sees the text of
// the table.
struct Tool {
    std::string_view key;
    std::u16string_view storedCaption;
    int textId;
    Command command;
};

enum class BandId { Picture, Group };

struct Band {
    BandId id;
    std::string_view name;     // of the layout
    std::string_view category; // under which it is shown
    std::span<const Tool> tools;
};

std::span<const Band> bands();
const Band& band(BandId id);

// Tools that the layout holds without a band and without a command.
struct IdleTool {
    std::string_view key;
    std::u16string_view storedCaption;
};
std::span<const IdleTool> idleTools();

enum class MenuId { Datei, Bearbeiten, Extras, Hilfe };

// A menu item. An index that no item has is a separator. An item with neither a text id nor a
// caption is hidden.
struct MenuItem {
    int index;
    int textId;
    Command command;
    app::TextPair caption{nullptr, nullptr}; // where the table has no text
};

struct Menu {
    MenuId id;
    std::string_view name; // of the item array
    int textId;            // of its title
    std::span<const MenuItem> items;
};

std::span<const Menu> menus();
const Menu& menu(MenuId id);

} // namespace commands
