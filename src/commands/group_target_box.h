// The drop-down by which a dialog that makes groups lets the user choose where: at the top level
// (shown as the program's title) or below the selected group (shown by its path).
#pragma once

#include "commands/selection_context.h"

#include <QComboBox>

namespace commands {

enum class GroupTarget { TopLevel, BelowSelected };

// What is preset: a new group stands beside a top-level group and below a sub-group.
GroupTarget defaultTarget(const SelectionContext& context);

class GroupTargetBox : public QComboBox {
    Q_OBJECT

  public:
    explicit GroupTargetBox(QWidget* parent = nullptr);

    // Offers what the context allows; without a selected group that is the top level alone.
    void offer(const SelectionContext& context, GroupTarget preset);

    GroupTarget target() const;

    // Keeps it at that place in a window without a layout, instead of being as wide as its entries.
    void place(const QRect& geometry);

    // The chosen parent; nothing for the top level.
    std::optional<store::GroupAddress> parentGroup() const;

  private:
    std::optional<store::GroupAddress> selected_;
    int widestPath_ = 420;
};

} // namespace commands
