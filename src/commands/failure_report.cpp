#include "commands/failure_report.h"

#include "app/message_box.h"
#include "app/texts.h"
#include "commands/library_view.h"
#include "compound/error.h"

namespace commands {
namespace {

constexpr int kGroupPrompt = 904;

// The file's name alone does not tell which of its groups is meant.
QString failureText(const SelectionContext& selection, const std::exception& failure) {
    QString cause = app::errorText(failure);
    if (!selection.hasGroup()) {
        return cause;
    }
    return app::text(kGroupPrompt) + u' ' + selection.groupPath + u'\n' + cause;
}

// A locked file stays on the screen: reading it now would only show its group empty.
void showWhatIsThere(LibraryView& view, const store::GroupAddress& group,
                     compound::ErrorCode code) {
    if (code == compound::ErrorCode::NotFound || code == compound::ErrorCode::OutcomeUnknown) {
        view.FillTreeView();
        view.TreeViewSelectNode(group);
        view.Aktualisieren();
    }
}

} // namespace

void showWhatIsLeft(LibraryView& view, const SelectionContext& selection,
                    const std::exception& failure) {
    const auto* error = dynamic_cast<const compound::Error*>(&failure);
    const auto group = selection.group();
    if (error != nullptr && group) {
        showWhatIsThere(view, *group, error->code());
    }
}

void reportFailure(LibraryView& view, const SelectionContext& selection,
                   const std::exception& failure, const QString& title, QWidget* owner) {
    app::msgBox(failureText(selection, failure), app::Buttons::Ok, title, owner);
    showWhatIsLeft(view, selection, failure);
}

} // namespace commands
