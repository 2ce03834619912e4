#include "groups/plain_tool_tip.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

namespace groups {

void showToolTip(const QPoint& globalPosition, const QString& text, QWidget* widget,
                 const QRect& part) {
    const QString markup = QStringLiteral("<p style='white-space:pre-wrap'>%1</p>");
    QToolTip::showText(globalPosition, text.isEmpty() ? text : markup.arg(text.toHtmlEscaped()),
                       widget, part);
}

bool ToolTipDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    QStringList lines;
    if (sizeHint(option, index).width() > option.rect.width()) {
        lines.append(index.data(Qt::DisplayRole).toString());
    }
    lines.append(index.data(Qt::ToolTipRole).toString());
    lines.removeAll(QString());
    showToolTip(event->globalPos(), lines.join(u'\n'), view->viewport(), option.rect);
    return !lines.isEmpty();
}

} // namespace groups
