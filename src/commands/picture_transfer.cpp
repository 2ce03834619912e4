#include "commands/picture_transfer.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "commands/name_conflicts.h"
#include "commands/picture_beside.h"
#include "commands/replaced_pictures.h"
#include "commands/skipped_files.h"
#include "commands/undo_steps.h"
#include "compound/error.h"
#include "platform/desktop_trash.h"
#include "store/names.h"

#include <set>

namespace commands {
namespace {

using store::PassageKind;

constexpr app::TextPair kLooking{u"Die Gruppe wird angesehen", u"The group is being looked at"};
constexpr app::TextPair kCopying{u"Die Bilder werden kopiert", u"The pictures are being copied"};
constexpr app::TextPair kMoving{u"Die Bilder werden verschoben", u"The pictures are being moved"};
constexpr app::TextPair kStepOne{u"Bild \"%1\" verschieben", u"move picture \"%1\""};
constexpr app::TextPair kStepMany{u"%1 Bilder verschieben", u"move %1 pictures"};
constexpr app::TextPair kCopiedOne{u"1 Bild nach %1 kopiert", u"1 picture copied to %1"};
constexpr app::TextPair kCopiedMany{u"%1 Bilder nach %2 kopiert", u"%1 pictures copied to %2"};
constexpr app::TextPair kMovedOne{u"1 Bild nach %1 verschoben", u"1 picture moved to %1"};
constexpr app::TextPair kMovedMany{u"%1 Bilder nach %2 verschoben", u"%1 pictures moved to %2"};
constexpr app::TextPair kGone{u"Das Bild \"%1\" war nicht mehr da.",
                              u"The picture \"%1\" was not there any more."};
constexpr app::TextPair kInBoth{u"Die Bilder sind jetzt in beiden Gruppen:",
                                u"The pictures are in both groups now:"};
constexpr app::TextPair kPerhapsInBoth{u"Die Bilder sind jetzt vielleicht in beiden Gruppen:",
                                       u"The pictures are perhaps in both groups now:"};
constexpr app::TextPair kLeft{u"Nicht alle Bilder konnten übertragen werden:",
                              u"Not all pictures could be transferred:"};

QString textOf(const store::PictureName& name) {
    return QString::fromStdU16String(name.text);
}

std::vector<store::PictureName> newNames(const store::PicturesPassed& result) {
    std::vector<store::PictureName> names;
    for (const store::PassedPicture& picture : result.passed) {
        names.push_back(picture.to);
    }
    return names;
}

std::vector<store::PictureName> namesOf(const std::vector<store::PassingPicture>& passing) {
    std::vector<store::PictureName> names;
    names.reserve(passing.size());
    for (const store::PassingPicture& picture : passing) {
        names.push_back(picture.name);
    }
    return names;
}

QStringList linesAbout(const std::vector<store::PictureName>& gone) {
    QStringList lines;
    for (const store::PictureName& name : gone) {
        lines.append(app::text(kGone).arg(textOf(name)));
    }
    return lines;
}

// Pictures that have arrived although the group where they were cannot do without them.
void tellInBoth(const compound::Error& failure, QWidget* owner) {
    const bool isKnown = failure.code() != compound::ErrorCode::OutcomeUnknown;
    showSummary(app::text(isKnown ? kInBoth : kPerhapsInBoth), {app::errorText(failure)}, owner);
}

// What had been in the way of pictures that have just gone back. It may not be stopped any more,
// and what fails undoes nothing.
std::vector<compound::Error> bringBackReplaced(const store::Library& library,
                                               const store::GroupAddress& group,
                                               const std::vector<store::TrashedPicture>& replaced) {
    if (!isAnyKept(replaced)) {
        return {};
    }
    try {
        platform::DesktopTrash trash;
        return store::restorePictures(library, group, replaced, trash).missing;
    } catch (const compound::Error& failure) {
        return {failure};
    }
}

// They are back, and a further try would bring them once more. What they had replaced can come back
// in place of those that have stayed.
UndoStep::Show showInBoth(const store::GroupAddress& from, const store::GroupAddress& to,
                          const store::PicturesPassed& result,
                          const std::vector<store::TrashedPicture>& replaced) {
    return [from, to, result, replaced](LibraryView& view) {
        if (isAnyKept(replaced)) {
            view.history().add(picturesReplaced(to, replaced));
        }
        view.ShowPictures(from, newNames(result));
        showSummary(app::text(kLeft), linesAbout(result.gone), view.owner());
        tellInBoth(*result.sourceFailure, view.owner());
    };
}

UndoStep stepBack(const store::GroupAddress& from, const store::GroupAddress& to,
                  const store::PicturesPassed& moved) {
    const std::vector<store::PassedPicture>& passed = moved.passed;
    std::vector<store::PassingPicture> back;
    back.reserve(passed.size());
    for (const store::PassedPicture& picture : passed) {
        back.push_back({picture.to, store::IfNameTaken::KeepBoth, picture.from});
    }
    const QString what = passed.size() == 1 ? app::text(kStepOne).arg(textOf(passed[0].from))
                                            : app::text(kStepMany).arg(passed.size());
    return {what,
            [from, to, back = std::move(back), replaced = moved.replaced](
                const store::Library& library, store::Progress& progress) -> UndoStep::Show {
                const auto result =
                    store::passPictures(library, to, from, back, PassageKind::Move, progress);
                if (result.sourceFailure) {
                    return showInBoth(from, to, result, replaced);
                }
                if (result.passed.empty()) {
                    throw compound::Error(compound::ErrorCode::NotFound,
                                          store::pathOf(library, to.file),
                                          "what was moved is not there any more");
                }
                auto missing = bringBackReplaced(library, to, replaced);
                return [from, names = newNames(result), gone = result.gone,
                        missing = std::move(missing)](LibraryView& view) {
                    view.ShowPictures(from, names);
                    showSummary(app::text(kLeft), linesAbout(gone), view.owner());
                    showFailures(missing, view.owner());
                };
            }};
}

class Transfer {
  public:
    Transfer(LibraryView& view, const PicturesOfGroup& pictures, const ArrivalTarget& target,
             PassageKind kind)
        : view_(view), pictures_(pictures), target_(target), kind_(kind) {}

    bool run() {
        auto passing = askForNames();
        if (!passing || passing->empty()) {
            return false;
        }
        std::optional<store::PictureName> beside; // what is moved
        const auto result = pass(*passing, beside);
        if (!result) {
            return false;
        }
        remember(*result);
        bringUpToDate(newNames(*result), beside);
        if (!result->passed.empty() && !result->sourceFailure) {
            const bool isMove = kind_ == PassageKind::Move;
            view_.TellResult(app::counted(result->passed.size(), isMove ? kMovedOne : kCopiedOne,
                                          isMove ? kMovedMany : kCopiedMany)
                                 .arg(target_.name));
        }
        tell(*result);
        return !result->passed.empty();
    }

  private:
    // Nothing when the user does not want it without the trash.
    std::optional<store::PicturesPassed> pass(const std::vector<store::PassingPicture>& passing,
                                              std::optional<store::PictureName>& beside) const {
        const store::PictureName shown =
            view_.shownPicture().name().value_or(pictures_.names.front());
        const auto run = [&](KeepReplaced keep) {
            return app::resultOfLong<store::PicturesPassed>(
                {app::text(kind_ == PassageKind::Move ? kMoving : kCopying),
                 app::LongOperation::Stopping::Offered, app::LongOperation::Counting::Pieces},
                view_.owner(), [&](store::Progress& progress) {
                    const auto trash = keep == KeepReplaced::InTrash ? view_.makeTrash() : nullptr;
                    if (kind_ == PassageKind::Move) {
                        beside =
                            besideThese(view_.library(), pictures_.group, namesOf(passing), shown);
                    }
                    return store::passPictures(view_.library(), pictures_.group, target_.group,
                                               passing, kind_, progress, trash.get());
                });
        };
        return keepingReplaced<store::PicturesPassed>(run, view_.owner());
    }

    void bringUpToDate(const std::vector<store::PictureName>& names,
                       const std::optional<store::PictureName>& beside) const {
        const auto selected = view_.selectedGroup();
        if (selected && selected->address == target_.group && !names.empty()) {
            view_.ShowPictures(target_.group, names);
        } else if (kind_ == PassageKind::Move) {
            view_.PictureDeleted(pictures_.group, beside);
        }
    }

    void remember(const store::PicturesPassed& result) const {
        if (kind_ == PassageKind::Move && !result.passed.empty() && !result.sourceFailure) {
            view_.history().add(stepBack(pictures_.group, target_.group, result));
        } else if (isAnyKept(result.replaced)) {
            view_.history().add(picturesReplaced(target_.group, result.replaced));
        }
    }

    // Whether each picture's name is taken in the target by another one.
    std::vector<bool> lookForNames() const {
        if (pictures_.group == target_.group) {
            return std::vector<bool>(pictures_.names.size());
        }
        return app::resultOfLong<std::vector<bool>>(
            {app::text(kLooking)}, view_.owner(), [this](store::Progress&) {
                std::set<std::u16string, store::ByName> taken;
                for (auto& name : store::listPictureNames(view_.library(), target_.group).names) {
                    taken.insert(std::move(name.text));
                }
                std::vector<bool> isTaken;
                for (const store::PictureName& name : pictures_.names) {
                    isTaken.push_back(taken.contains(name.text));
                }
                return isTaken;
            });
    }

    // Nothing when the user wants nothing of it.
    std::optional<std::vector<store::PassingPicture>> askForNames() const {
        const std::vector<bool> isTaken = lookForNames();
        std::vector<store::PictureName> conflicts;
        for (std::size_t i = 0; i < isTaken.size(); ++i) {
            if (isTaken[i]) {
                conflicts.push_back(pictures_.names[i]);
            }
        }
        const auto answers = askForTakenNames(conflicts, target_.name, view_.owner());
        if (!answers) {
            return std::nullopt;
        }
        std::vector<store::PassingPicture> passing;
        auto answer = answers->begin();
        for (std::size_t i = 0; i < isTaken.size(); ++i) {
            const auto ifTaken = isTaken[i] ? *answer++ : store::IfNameTaken::KeepBoth;
            if (ifTaken != store::IfNameTaken::Skip) {
                passing.push_back({pictures_.names[i], ifTaken});
            }
        }
        return passing;
    }

    void tell(const store::PicturesPassed& result) const {
        showSummary(app::text(kLeft), linesAbout(result.gone), view_.owner());
        if (result.sourceFailure) {
            tellInBoth(*result.sourceFailure, view_.owner());
        }
    }

    LibraryView& view_;
    const PicturesOfGroup& pictures_;
    const ArrivalTarget& target_;
    PassageKind kind_;
};

} // namespace

bool transferPictures(LibraryView& view, const PicturesOfGroup& pictures,
                      const ArrivalTarget& target, PassageKind kind) {
    if (pictures.group == target.group && kind == PassageKind::Move) {
        return false;
    }
    try {
        return Transfer(view, pictures, target, kind).run();
    } catch (const std::exception& failure) {
        const auto* error = dynamic_cast<const compound::Error*>(&failure);
        if (error == nullptr || error->code() != compound::ErrorCode::Cancelled) {
            app::msgBox(app::errorText(failure), app::Buttons::Ok, app::kProgramTitle,
                        view.owner());
            showWhatIsLeft(view, failure);
        }
    }
    return false;
}

} // namespace commands
