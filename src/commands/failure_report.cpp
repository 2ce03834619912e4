#include "commands/failure_report.h"

#include "app/message_box.h"
#include "app/texts.h"
#include "commands/library_view.h"
#include "compound/error.h"

namespace commands {
namespace {

constexpr app::TextPair kDelete{
    u"In den Papierkorb kann nichts gelegt werden:\n%1\n\nEndgültig löschen?",
    u"Nothing can be put into the trash:\n%1\n\nDelete for good?"};
constexpr app::TextPair kReplace{
    u"In den Papierkorb kann nichts gelegt werden:\n%1\n\nEndgültig ersetzen?",
    u"Nothing can be put into the trash:\n%1\n\nReplace for good?"};

bool isConfirmed(const app::TextPair& question, const compound::TrashFailure& failure,
                 QWidget* owner) {
    return app::msgBox(app::text(question).arg(app::errorText(failure)),
                       app::Buttons::YesNoWithCare, app::kProgramTitle, owner) == app::kAnswerYes;
}

} // namespace

// A locked file stays on the screen: reading it now would only show its group empty.
void showWhatIsLeft(LibraryView& view, const std::exception& failure) {
    const auto* error = dynamic_cast<const compound::Error*>(&failure);
    if (error == nullptr || (error->code() != compound::ErrorCode::NotFound &&
                             error->code() != compound::ErrorCode::OutcomeUnknown)) {
        return;
    }
    const std::optional<SelectedGroup> selected = view.selectedGroup();
    view.FillTreeView();
    if (selected) {
        view.TreeViewSelectNode(selected->address);
    }
    view.Aktualisieren();
}

bool hasVanished(const LibraryView& view, const SelectionContext& selection) {
    const std::optional<SelectedGroup> selected = view.selectedGroup();
    return selection.hasGroup() && (!selected || selected->address != *selection.group());
}

bool isDeletionForGoodConfirmed(const compound::TrashFailure& failure, QWidget* owner) {
    return isConfirmed(kDelete, failure, owner);
}

bool isReplacingForGoodConfirmed(const compound::TrashFailure& failure, QWidget* owner) {
    return isConfirmed(kReplace, failure, owner);
}

void reportFailure(LibraryView& view, const SelectionContext& selection,
                   const std::exception& failure, const QString& title, QWidget* owner) {
    const auto* error = dynamic_cast<const compound::Error*>(&failure);
    if (error != nullptr && error->code() == compound::ErrorCode::Cancelled) {
        return;
    }
    app::msgBox(app::groupFailureText(selection.groupPath, failure), app::Buttons::Ok, title,
                owner);
    showWhatIsLeft(view, failure);
}

} // namespace commands
