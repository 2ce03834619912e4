#include "browser/picture_carrying.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/settings.h"
#include "app/texts.h"
#include "browser/drag_image.h"
#include "browser/find_panel.h"
#include "browser/main_menus.h"
#include "browser/picture_panel.h"
#include "browser/status_line.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "groups/group_tree.h"

#include <QApplication>
#include <QClipboard>
#include <QDrag>

namespace browser {
namespace {

using commands::ArrivalTarget;
using commands::PicturesOfGroup;
using groups::SelectedGroup;

constexpr app::TextPair kOneOnClipboard{u"1 Bild in der Zwischenablage",
                                        u"1 picture on the clipboard"};
constexpr app::TextPair kManyOnClipboard{u"%1 Bilder in der Zwischenablage",
                                         u"%1 pictures on the clipboard"};

store::PassageKind passageFor(Carrying carrying) {
    return carrying == Carrying::ToMove ? store::PassageKind::Move : store::PassageKind::Copy;
}

} // namespace

PictureCarrying::PictureCarrying(commands::LibraryView& view, groups::GroupTree& tree,
                                 PicturePanel& panel, FindPanel& find, QWidget* owner)
    : QObject(owner), view_(view), tree_(tree), panel_(panel), find_(find) {
    connect(&panel_, &PicturePanel::dragWanted, this, &PictureCarrying::drag);
    watchTree();
    watchPictures(panel_.strip());
    watchPictures(panel_.listArea());
}

void PictureCarrying::offerIn(MainMenus& menus) {
    using commands::Command;
    const auto offerPicture = [this, &menus] {
        const bool any = !toCopy().names.empty();
        menus.setPossible(Command::CutPictures, any);
        menus.setPossible(Command::CopyPictures, any);
    };
    const auto offerAll = [&menus](bool any) { menus.setPossible(Command::SelectAll, any); };
    offerPicture();
    offerAll(false);
    connect(&panel_, &PicturePanel::pictureShown, &menus, offerPicture);
    connect(&find_, &FindPanel::currentChanged, &menus, offerPicture);
    connect(&panel_, &PicturePanel::pagesShown, &menus,
            [offerAll](const ShownPages& pages) { offerAll(pages.pictures > 0); });
    connect(&panel_, &PicturePanel::nothingShown, &menus, [offerAll] { offerAll(false); });
    // What is on the clipboard is another program's matter, which may take its time to answer: it
    // is asked when the user looks. The key does not wait for that.
    connect(&menus, &MainMenus::editMenuOpens, &menus, [&menus] {
        const QMimeData* data = QGuiApplication::clipboard()->mimeData();
        menus.setPossible(Command::PastePictures, data != nullptr && mayHoldPictures(*data));
    });
    connect(&menus, &MainMenus::editMenuCloses, &menus,
            [&menus] { menus.setPossible(Command::PastePictures, true); });
}

void PictureCarrying::watchTree() {
    auto* target = new DropTarget(
        *tree_.viewport(), {[this](const QPoint& at) { return tree_.groupAt(at).has_value(); },
                            [this](const QPoint& at) { tree_.showDropAt(at); },
                            [this](const QPoint& at) { tree_.unfoldAt(at); },
                            [this] { tree_.showDropAt(std::nullopt); }});
    connect(target, &DropTarget::dropped, this,
            [this](const QPoint& at, const QMimeData* data, DropKind kind) {
                if (const auto group = tree_.groupAt(at)) {
                    takeSoon(*group, *data, kind);
                }
            });
}

void PictureCarrying::watchPictures(QWidget* widget) {
    const auto isGroupShown = [this](const QPoint&) {
        return panel_.group() && tree_.find(*panel_.group());
    };
    const auto nothing = [](const QPoint&) {};
    auto* target = new DropTarget(*widget, {isGroupShown, nothing, nothing, [] {}});
    connect(target, &DropTarget::dropped, this,
            [this](const QPoint&, const QMimeData* data, DropKind kind) {
                takeSoon(*tree_.find(*panel_.group()), *data, kind);
            });
}

PicturesOfGroup PictureCarrying::selected() const {
    PicturesOfGroup pictures;
    if (const auto group = view_.selectedGroup()) {
        pictures = {group->address, view_.selectedPictures()};
        if (pictures.names.empty() && view_.shownPicture().name()) {
            pictures.names.push_back(*view_.shownPicture().name());
        }
    }
    return pictures;
}

PicturesOfGroup PictureCarrying::toCopy() const {
    const auto found = find_.current();
    if (!found) {
        return selected();
    }
    PicturesOfGroup pictures{found->group, {}};
    if (found->picture) { // and not a group
        pictures.names.push_back(found->picture->name);
    }
    return pictures;
}

void PictureCarrying::copy(Carrying carrying) {
    const PicturesOfGroup pictures = toCopy();
    if (pictures.names.empty()) {
        return;
    }
    try {
        QGuiApplication::clipboard()->setMimeData(
            carry(view_.library(), pictures, carrying,
                  app::settings().restoredTemporaryFolderPath(), view_.owner())
                .release());
        view_.TellResult(app::counted(pictures.names.size(), kOneOnClipboard, kManyOnClipboard));
    } catch (const std::exception& failure) {
        commands::reportFailure(view_,
                                commands::contextOf(view_.selectedGroup(), view_.shownPicture()),
                                failure, app::kProgramTitle, view_.owner());
    }
}

void PictureCarrying::drag() {
    const PicturesOfGroup pictures = selected();
    if (pictures.names.empty() || app::isLongOperationRunning()) {
        return;
    }
    try {
        auto data = carry(view_.library(), pictures, Carrying::ToCopy,
                          app::settings().restoredTemporaryFolderPath(), view_.owner());
        if (!QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) {
            return; // let go while the files were written
        }
        auto* drag = new QDrag(panel_.strip()); // which deletes itself
        drag->setMimeData(data.release());
        const auto number = static_cast<qsizetype>(pictures.names.size());
        drag->setPixmap(dragImage(panel_.currentThumbnail(), number, *panel_.strip()));
        drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::CopyAction);
    } catch (const std::exception& failure) {
        commands::reportFailure(view_,
                                commands::contextOf(view_.selectedGroup(), view_.shownPicture()),
                                failure, app::kProgramTitle, view_.owner());
    }
}

void PictureCarrying::paste() {
    const auto target = view_.selectedGroup();
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    if (!target || data == nullptr || !mayHoldPictures(*data)) {
        return;
    }
    const OfferedPictures offered = picturesIn(*data, view_.library());
    find_.leave();
    const bool hasCome = take(*target, offered, passageFor(offered.carrying));
    if (hasCome && offered.ours && offered.carrying == Carrying::ToMove) {
        QGuiApplication::clipboard()->clear(); // they are not where they were any more
    }
}

void PictureCarrying::takeSoon(const SelectedGroup& target, const QMimeData& data, DropKind kind) {
    const OfferedPictures offered = picturesIn(data, view_.library());
    if (offered.ours && offered.ours->group == target.address) {
        return; // let go where they were taken
    }
    const auto passage =
        kind == DropKind::Move ? store::PassageKind::Move : store::PassageKind::Copy;
    QMetaObject::invokeMethod(
        this, [this, target, offered, passage] { take(target, offered, passage); },
        Qt::QueuedConnection);
}

bool PictureCarrying::take(const SelectedGroup& target, const OfferedPictures& offered,
                           store::PassageKind kind) {
    if (app::isLongOperationRunning()) {
        return false;
    }
    const ArrivalTarget arrival{target.address, target.name};
    if (offered.ours) {
        return commands::transferPictures(view_, *offered.ours, arrival, kind);
    }
    try {
        const auto names = commands::takeIncoming(view_, arrival, offered.incoming, view_.owner());
        const auto selected = view_.selectedGroup();
        if (!names.empty() && selected && selected->address == target.address) {
            view_.ShowPictures(target.address, names);
        }
        commands::tellArrived(view_, target.address, names);
        return !names.empty();
    } catch (const std::exception& failure) {
        commands::reportFailure(view_, commands::contextOf(target, {}), failure, app::kProgramTitle,
                                view_.owner());
    }
    return false;
}

} // namespace browser
