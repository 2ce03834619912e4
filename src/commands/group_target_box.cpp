#include "commands/group_target_box.h"

#include "app/texts.h"

namespace commands {

GroupTarget defaultTarget(const SelectionContext& context) {
    return context.TopLevelSelected ? GroupTarget::TopLevel : GroupTarget::BelowSelected;
}

GroupTargetBox::GroupTargetBox(QWidget* parent) : QComboBox(parent) {
    setObjectName(QStringLiteral("cboGruppe"));
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
    setMinimumContentsLength(24);
}

void GroupTargetBox::place(const QRect& geometry) {
    constexpr int kArrowAndFrame = 40;
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setGeometry(geometry);
    widestPath_ = geometry.width() - kArrowAndFrame;
}

void GroupTargetBox::offer(const SelectionContext& context, GroupTarget preset) {
    clear();
    selected_ = context.group();
    addItem(app::kProgramTitle, static_cast<int>(GroupTarget::TopLevel));
    if (selected_) {
        // Of a long path the group's own name matters most, and it stands at the end.
        addItem(fontMetrics().elidedText(context.groupPath, Qt::ElideLeft, widestPath_),
                static_cast<int>(GroupTarget::BelowSelected));
    }
    setCurrentIndex(std::max(0, findData(static_cast<int>(preset))));
}

GroupTarget GroupTargetBox::target() const {
    return static_cast<GroupTarget>(currentData().toInt());
}

std::optional<store::GroupAddress> GroupTargetBox::parentGroup() const {
    return target() == GroupTarget::BelowSelected ? selected_ : std::nullopt;
}

} // namespace commands
