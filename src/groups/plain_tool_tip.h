// Tool tips that show names as they are: the toolkit's own guess whether a text is marked up.
#pragma once

#include <QStyledItemDelegate>

namespace groups {

// Shows the text, lines and spaces kept, while the pointer stays in that part of the widget.
void showToolTip(const QPoint& globalPosition, const QString& text, QWidget* widget,
                 const QRect& part);

// The tool tips of a view's cells: the cell's text where it is cut, and below it what the item says
// as its tool tip (plain text).
class ToolTipDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};

} // namespace groups
