#include "commands/failure_report.h"

#include "app/message_box.h"
#include "commands/library_view.h"
#include "compound/error.h"

namespace commands {

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
