#include "commands/command_tables.h"

#include <array>
#include <cstddef>

namespace commands {
namespace {

constexpr std::array kPictureTools{
    Tool{"bRename", u"Bild umbenennen", 210, Command::RenamePicture},
    Tool{"bEdit", u"Bild bearbeiten", 211, Command::EditPicture},
    Tool{"bDelete", u"Bild löschen", 212, Command::DeletePicture},
    Tool{"bInfo", u"Bild-Info", 213, Command::PictureInfo},
    Tool{"bCopy", u"Übernehmen", 207, Command::HandOver},
    Tool{"bCopyEnd", u"Übernehmen und Beenden", 208, Command::HandOverAndClose},
};

constexpr std::array kGroupTools{
    Tool{"gNew", u"Neue Gruppe erstellen", 204, Command::NewGroup},
    Tool{"gRename", u"Gruppe umbenennen", 215, Command::RenameGroup},
    Tool{"gDelete", u"Gruppe löschen", 216, Command::DeleteGroup},
    Tool{"gInfo", u"Gruppen-Info", 217, Command::GroupInfo},
    Tool{"gOpen", u"Bild hinzufügen", 214, Command::AddPicture},
    Tool{"gCreate", u"Gruppe aus Verzeichniß erstellen...", 205, Command::GroupFromFolder},
    Tool{"gImport", u"Gruppe importieren...", 206, Command::ImportGroup},
};

constexpr std::array kBands{
    Band{BandId::Picture, "Band1", "Picture", kPictureTools},
    Band{BandId::Group, "Band2", "Group", kGroupTools},
};

constexpr std::array kIdleTools{
    IdleTool{"gEdit", u"Gruppe umbenennen"},
    IdleTool{"Tool14", u""},
    IdleTool{"Tool15", u""},
    IdleTool{"Tool16", u""},
    IdleTool{"Tool17", u""},
};

constexpr std::array kFileItems{
    MenuItem{0, 204, Command::NewGroup},
    MenuItem{1, 205, Command::GroupFromFolder},
    MenuItem{2, 206, Command::ImportGroup},
    MenuItem{4, 207, Command::HandOver},
    MenuItem{5, 208, Command::HandOverAndClose},
    MenuItem{6, 209, Command::Exit},
    MenuItem{
        8, kNoTextId, Command::PrintCatalogue, {u"&Katalog drucken...", u"&Print catalogue..."}},
};

constexpr std::array kEditItems{
    MenuItem{0, kNoTextId, Command::ReadPicture},
    MenuItem{1, 210, Command::RenamePicture},
    MenuItem{2, 211, Command::EditPicture},
    MenuItem{3, 212, Command::DeletePicture},
    MenuItem{4, 213, Command::PictureInfo},
    MenuItem{6, 214, Command::AddPicture},
    MenuItem{7, 215, Command::RenameGroup},
    MenuItem{8, 216, Command::DeleteGroup},
    MenuItem{9, 217, Command::GroupInfo},
    MenuItem{11, kNoTextId, Command::Undo, {u"&Rückgängig", u"&Undo"}},
    MenuItem{12, kNoTextId, Command::CutPictures, {u"Auss&chneiden", u"Cu&t"}},
    MenuItem{13, kNoTextId, Command::CopyPictures, {u"&Kopieren", u"&Copy"}},
    MenuItem{14, kNoTextId, Command::PastePictures, {u"&Einfügen", u"&Paste"}},
    MenuItem{15, kNoTextId, Command::SelectAll, {u"&Alles auswählen", u"&Select all"}},
};

constexpr std::array kExtrasItems{
    MenuItem{0, 220, Command::GraphicalPreview},
    MenuItem{1, kNoTextId, Command::EditorOptions, {u"&Editoroptionen...", u"&Editor options..."}},
    MenuItem{3,
             kNoTextId,
             Command::ThumbnailNames,
             {u"&Namen unter den Miniaturen", u"&Names below the thumbnails"}},
    MenuItem{
        4, kNoTextId, Command::LargerThumbnails, {u"G&rößere Miniaturen", u"&Larger thumbnails"}},
    MenuItem{5,
             kNoTextId,
             Command::SmallerThumbnails,
             {u"&Kleinere Miniaturen", u"&Smaller thumbnails"}},
    MenuItem{6,
             kNoTextId,
             Command::NormalThumbnails,
             {u"Miniaturen in n&ormaler Größe", u"Thumbnails in n&ormal size"}},
    MenuItem{8, kNoTextId, Command::Find, {u"&Suchen", u"&Find"}},
    MenuItem{9, kNoTextId, Command::Refresh, {u"&Aktualisieren", u"&Refresh"}},
};

constexpr std::array kHelpItems{
    MenuItem{0, 230, Command::Help},
    MenuItem{1, 231, Command::SearchHelp},
    MenuItem{3, 232, Command::LibraryInfo},
};

constexpr std::array kMenus{
    Menu{MenuId::Datei, "Men_Datei", 200, kFileItems},
    Menu{MenuId::Bearbeiten, "Men_Bearbeiten", 201, kEditItems},
    Menu{MenuId::Extras, "Men_Extras", 202, kExtrasItems},
    Menu{MenuId::Hilfe, "Men_Hilfe", 203, kHelpItems},
};

} // namespace

std::span<const Band> bands() {
    return kBands;
}

const Band& band(BandId id) {
    return kBands.at(static_cast<std::size_t>(id));
}

std::span<const IdleTool> idleTools() {
    return kIdleTools;
}

std::span<const Menu> menus() {
    return kMenus;
}

const Menu& menu(MenuId id) {
    return kMenus.at(static_cast<std::size_t>(id));
}

} // namespace commands
