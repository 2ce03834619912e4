#include "commands/undo_history.h"

#include "app/long_operation.h"
#include "app/message_box.h"
#include "app/texts.h"
#include "commands/failure_report.h"
#include "commands/library_view.h"
#include "compound/error.h"

#include <utility>

namespace commands {
namespace {

constexpr std::size_t kMostSteps = 100;
constexpr app::TextPair kUndoing{u"Wird rückgängig gemacht: %1", u"Undoing: %1"};
constexpr app::TextPair kUndone{u"Rückgängig gemacht: %1", u"Undone: %1"};
constexpr app::TextPair kFailed{u"%1 kann nicht rückgängig gemacht werden.", u"Cannot undo: %1."};

bool maySucceedLater(const UndoStep& step, const std::exception& failure) {
    using compound::ErrorCode;
    const auto* error = dynamic_cast<const compound::Error*>(&failure);
    return error == nullptr || error->code() == ErrorCode::Locked ||
           error->code() == ErrorCode::Denied || error->code() == ErrorCode::NoSpace ||
           error->code() == ErrorCode::Cancelled || error->code() == ErrorCode::Failed ||
           (error->code() == ErrorCode::Exists && !step.isForgottenIfNameTaken);
}

} // namespace

void UndoHistory::add(UndoStep step) {
    steps_.push_back(std::move(step));
    if (steps_.size() > kMostSteps) {
        steps_.erase(steps_.begin());
    }
    if (steps_.size() == 1 && availabilityChanged) {
        availabilityChanged(true);
    }
}

void UndoHistory::drop() {
    steps_.pop_back();
    if (steps_.empty() && availabilityChanged) {
        availabilityChanged(false);
    }
}

void UndoHistory::undoLast(LibraryView& view) {
    if (steps_.empty()) {
        return;
    }
    const UndoStep& step = steps_.back();
    UndoStep::Show show;
    try {
        show = app::resultOfLong<UndoStep::Show>(
            {app::text(kUndoing).arg(step.what), app::LongOperation::Stopping::Offered},
            view.owner(),
            [&](store::Progress& progress) { return step.undo(view.library(), progress); });
    } catch (const std::exception& failure) {
        const QString what = step.what;
        const auto* error = dynamic_cast<const compound::Error*>(&failure);
        if (!maySucceedLater(step, failure)) {
            drop();
        }
        if (error == nullptr || error->code() != compound::ErrorCode::Cancelled) {
            app::msgBox(app::text(kFailed).arg(what) + QStringLiteral("\n\n") +
                            app::errorText(failure),
                        app::Buttons::Ok, app::kProgramTitle, view.owner());
            showWhatIsLeft(view, failure);
        }
        return;
    }
    const QString what = step.what;
    drop();
    if (show) {
        show(view);
    }
    view.TellResult(app::text(kUndone).arg(what));
}

} // namespace commands
