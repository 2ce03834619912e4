// The dialogs of the commands, kept from one use to the next.
#pragma once

#include <QPointer>

#include <utility>

namespace editing {
class frmOpen;
class frmOptionenBMP;
class frmOptionenWMF;
} // namespace editing

namespace commands {

class frmCreate;
class frmEditGruppe;
class frmEditorOptionen;
class frmEditSymbol;
class frmGroupInfo;
class frmImport;
class frmInfo;
class frmInfos;
class frmKatalog;
class frmNeueGruppe;

// Each is made on its first use and owned by the main window.
struct Dialogs {
    QPointer<frmNeueGruppe> newGroup;
    QPointer<frmCreate> groupFromFolder;
    QPointer<frmImport> importGroup;
    QPointer<frmEditGruppe> renameGroup;
    QPointer<frmGroupInfo> groupInfo;
    QPointer<editing::frmOpen> addPicture;
    QPointer<editing::frmOptionenBMP> bitmapEditor;
    QPointer<editing::frmOptionenWMF> vectorPicture;
    QPointer<frmEditSymbol> renamePicture;
    QPointer<frmInfos> pictureInfo;
    QPointer<frmEditorOptionen> editorOptions;
    QPointer<frmInfo> libraryInfo;
    QPointer<frmKatalog> catalogue;
};

// The dialog kept there; made on its first use.
template <typename Dialog, typename... Arguments>
Dialog& keptDialog(QPointer<Dialog>& kept, Arguments&&... arguments) {
    if (!kept) {
        kept = new Dialog(std::forward<Arguments>(arguments)...);
    }
    return *kept;
}

} // namespace commands
