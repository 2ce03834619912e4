#include "commands/delete_pictures.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/command_call.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "commands/picture_beside.h"
#include "commands/replaced_pictures.h"
#include "commands/undo_steps.h"
#include "store/picture_trash.h"

namespace commands {
namespace {

constexpr int kDeleteBefore = 300;
constexpr int kDeleteBetween = 301;
constexpr int kDeleteAfter = 302;
constexpr app::TextPair kDeleteMany{
    u"Sind Sie sicher, dass Sie %1 Bilder aus der Gruppe \"%2\" löschen möchten?",
    u"Are you sure that you want to delete %1 pictures from group \"%2\" ?"};
constexpr app::TextPair kDeletingOne{u"Das Bild wird gelöscht", u"The picture is being deleted"};
constexpr app::TextPair kDeletingMany{u"Die Bilder werden gelöscht",
                                      u"The pictures are being deleted"};
constexpr app::TextPair kDeletedOne{u"1 Bild gelöscht", u"1 picture deleted"};
constexpr app::TextPair kDeletedMany{u"%1 Bilder gelöscht", u"%1 pictures deleted"};

using Names = std::vector<store::PictureName>;

QString textOf(const store::PictureName& name) {
    return QString::fromStdU16String(name.text);
}

bool isDeletionConfirmed(const CommandCall& call, const Names& pictures) {
    const QString question =
        pictures.size() == 1
            ? app::text(kDeleteBefore) + textOf(pictures.front()) + app::text(kDeleteBetween) +
                  call.selection.groupName + app::text(kDeleteAfter)
            : app::text(kDeleteMany)
                  .arg(QString::number(pictures.size()), call.selection.groupName);
    return app::msgBox(question, app::Buttons::YesNo, app::kProgramTitle, call.view.owner()) ==
           app::kAnswerYes;
}

enum class Trash { Used, LeftAlone };

struct Deletion {
    std::optional<store::PictureName> beside; // what is shown afterwards
    std::vector<store::TrashedPicture> deleted;
};

Deletion deleteBeside(const CommandCall& call, const store::GroupAddress& group,
                      const Names& pictures, Trash use) {
    const store::Library& library = call.view.library();
    const store::PictureName shown = call.selection.picture.name().value_or(pictures.front());
    const bool isOne = pictures.size() == 1;
    return app::resultOfLong<Deletion>(
        {app::text(isOne ? kDeletingOne : kDeletingMany),
         isOne ? app::LongOperation::Stopping::NotOffered : app::LongOperation::Stopping::Offered,
         app::LongOperation::Counting::Pieces},
        call.view.owner(), [&](store::Progress& progress) {
            const auto trash = use == Trash::Used ? call.view.makeTrash() : nullptr;
            auto beside = besideThese(library, group, pictures, shown);
            return Deletion{std::move(beside),
                            store::deletePictures(library, group, pictures, trash.get(), progress)};
        });
}

void deleteConfirmed(const CommandCall& call, const store::GroupAddress& group,
                     const Names& pictures) {
    Deletion deletion;
    try {
        deletion = deleteBeside(call, group, pictures, Trash::Used);
    } catch (const compound::TrashFailure& failure) {
        if (!isDeletionForGoodConfirmed(failure, call.view.owner())) {
            return;
        }
        deletion = deleteBeside(call, group, pictures, Trash::LeftAlone);
    }
    const std::size_t count = deletion.deleted.size();
    if (isAnyKept(deletion.deleted)) {
        call.view.history().add(picturesDeleted(group, std::move(deletion.deleted)));
    }
    call.view.PictureDeleted(group, deletion.beside);
    call.view.TellResult(app::counted(count, kDeletedOne, kDeletedMany));
}

// The selected pictures that are there; one that went behind the window's back is taken off the
// screen.
Names picturesToDelete(const CommandCall& call, const store::GroupAddress& group) {
    Names pictures = call.view.selectedPictures();
    if (pictures.size() > 1) {
        return pictures;
    }
    pictures.clear();
    if (const auto shown = call.selection.pictureInGroup()) {
        if (app::resultOfReading(call.view.owner(), [&] {
                return store::pictureExists(call.view.library(), group, shown->name);
            })) {
            pictures.push_back(shown->name);
        } else {
            call.view.Aktualisieren();
        }
    }
    return pictures;
}

} // namespace

void deletePicture(CommandCall& call) {
    const auto group = call.selection.group();
    if (!group || (call.origin == Origin::Menu && call.selection.picture.isNone())) {
        return;
    }
    try {
        const Names pictures = picturesToDelete(call, *group);
        if (!pictures.empty() && isDeletionConfirmed(call, pictures)) {
            deleteConfirmed(call, *group, pictures);
        }
    } catch (const std::exception& error) {
        reportFailure(call.view, call.selection, error, app::kProgramTitle, call.view.owner());
    }
}

} // namespace commands
