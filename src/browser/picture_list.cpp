#include "browser/picture_list.h"

#include "app/number_text.h"
#include "app/texts.h"
#include "app/twips.h"
#include "browser/picture_row.h"
#include "groups/plain_tool_tip.h"

#include <QContextMenuEvent>
#include <QHash>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

namespace browser {
namespace {

constexpr int kNewName = 403;
constexpr std::array<app::TextPair, kListColumns> kCaptions{{
    {u"Name", u"Name"},
    {u"Größe", u"Size"},
    {u"Höhe", u"Height"},
    {u"Breite", u"Width"},
    {u"Typ", u"Type"},
}};
constexpr app::TextPair kSortHint{u"Sortieren: Strg+%1", u"Sort: Ctrl+%1"};

// Edits names only, and leaves the row as it is: the store decides on the new name.
class NameDelegate : public groups::ToolTipDelegate {
  public:
    explicit NameDelegate(PictureList* list) : groups::ToolTipDelegate(list), list_(list) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        if (index.column() != 0) {
            return nullptr;
        }
        QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
        editor->setAccessibleName(app::text(kNewName));
        return editor;
    }

    void setModelData(QWidget* editor, QAbstractItemModel*,
                      const QModelIndex& index) const override {
        const auto* field = qobject_cast<QLineEdit*>(editor);
        const QString before = index.data().toString();
        const auto& shown = list_->group();
        if (field == nullptr || field->text() == before || !shown) {
            return;
        }
        // A box now would take the focus from the editor and end the editing a second time.
        QMetaObject::invokeMethod(
            list_,
            [list = list_, group = *shown, before, after = field->text()] {
                emit list->renameWanted(group, before, after);
            },
            Qt::QueuedConnection);
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        constexpr int kRowPadding = 4;
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, kRowPadding);
    }

  private:
    PictureList* list_;
};

} // namespace

std::array<double, kListColumns> columnWidths(double listWidth) {
    const double name = listWidth / 3;
    const double rest = listWidth - name;
    return {name, rest / 5.6, rest / 3, rest / 5, rest / 5};
}

QString kilobytesText(std::uint64_t bytes) {
    return app::cutBehindComma(app::numberText(static_cast<double>(bytes) / 1024), 0) +
           QLatin1String(" KB");
}

QString bytesText(std::uint64_t bytes) {
    constexpr app::TextPair kOne{u"1 Byte", u"1 byte"};
    constexpr app::TextPair kSeveral{u"%1 Bytes", u"%1 bytes"};
    return bytes == 1 ? app::text(kOne) : app::text(kSeveral).arg(bytes);
}

PictureRows makeRows(std::span<const store::PictureEntry> pictures, const ListOrder& order) {
    const QCollator collator = nameCollator();
    PictureRows rows;
    rows.reserve(pictures.size());
    for (const store::PictureEntry& picture : pictures) {
        auto row = std::make_unique<PictureRow>(picture, rows.size());
        if (order.column == 0) {
            row->prepareToSort(collator);
        }
        rows.push_back(std::move(row));
    }
    const auto isAbove = [&](const auto& one, const auto& other) {
        const auto& first = static_cast<const PictureRow&>(*one);
        const auto& second = static_cast<const PictureRow&>(*other);
        return order.direction == Qt::AscendingOrder ? first.isLess(second, order.column)
                                                     : second.isLess(first, order.column);
    };
    if (order != ListOrder()) { // they come in the group's
        std::stable_sort(rows.begin(), rows.end(), isAbove);
    }
    return rows;
}

PictureList::PictureList(QWidget* parent) : QTreeWidget(parent) {
    setObjectName(QStringLiteral("lvwInfo"));
    setColumnCount(static_cast<int>(kListColumns));
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    header()->setSectionsClickable(true);
    header()->setSortIndicator(order_.column, order_.direction);
    header()->setSortIndicatorShown(true);
    header()->setSortIndicatorClearable(true);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragEnabled(true);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    setItemDelegate(new NameDelegate(this));
    setMouseTracking(true);
    connect(header(), &QHeaderView::sortIndicatorChanged, this,
            [this](int column, Qt::SortOrder direction) {
                order_ = {column, direction};
                sortRows();
                scrollToItem(currentItem());
            });
    connect(this, &QTreeWidget::itemSelectionChanged, this, [this] {
        if (!selectingByProgram_ && !selectedName().isEmpty()) {
            reportedDuringPress_ = true;
            emit rowClicked(selectedName());
        }
    });
}

void PictureList::setCaptions() {
    QStringList captions;
    for (const app::TextPair& caption : kCaptions) {
        captions.append(app::text(caption));
    }
    setHeaderLabels(captions);
    for (int column = 0; column < captions.size(); ++column) {
        headerItem()->setToolTip(column, app::text(kSortHint).arg(column + 1));
    }
    collator_ = nameCollator();
}

void PictureList::setOrder(const ListOrder& order) {
    header()->setSortIndicator(order.column, order.direction);
}

// What a click on the column's header does.
void PictureList::sortBy(int column) {
    ListOrder order{column, Qt::AscendingOrder};
    if (order_.column == column) {
        order = order_.direction == Qt::AscendingOrder ? ListOrder{column, Qt::DescendingOrder}
                                                       : ListOrder();
    }
    setOrder(order);
}

PictureRow* PictureList::row(int index) const {
    return static_cast<PictureRow*>(topLevelItem(index)); // there are no others
}

void PictureList::sortRows() {
    const auto isAbove = [this](int one, int other) {
        return order_.direction == Qt::AscendingOrder ? *row(one) < *row(other)
                                                      : *row(other) < *row(one);
    };
    for (int i = 1; i < topLevelItemCount(); ++i) {
        if (isAbove(i, i - 1)) {
            model()->sort(0, order_.direction); // the rows know by what
            return;
        }
    }
}

void PictureList::fill(const std::optional<store::GroupAddress>& group, PictureRows made) {
    const QScopedValueRollback guard(selectingByProgram_, true);
    clear();
    group_ = group;
    const auto widths = columnWidths(app::toTwips(width()));
    for (std::size_t column = 0; column < kListColumns; ++column) {
        setColumnWidth(static_cast<int>(column), app::toPixels(widths.at(column)));
    }
    QList<QTreeWidgetItem*> rows;
    rows.reserve(static_cast<qsizetype>(made.size()));
    for (auto& row : made) {
        rows.append(row.release());
    }
    addTopLevelItems(rows);
    sortRows(); // in case the order was changed meanwhile
}

void PictureList::update(std::span<const store::PictureEntry> pictures) {
    const QScopedValueRollback guard(selectingByProgram_, true);
    QHash<QString, std::size_t> unseen;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        unseen.insert(QString::fromStdU16String(pictures[i].name.text), i);
    }
    for (int i = topLevelItemCount() - 1; i >= 0; --i) {
        const auto found = unseen.constFind(row(i)->text(0));
        if (found == unseen.constEnd()) {
            delete takeTopLevelItem(i);
        } else {
            row(i)->describe(pictures[*found], *found);
            unseen.erase(found);
        }
    }
    QList<QTreeWidgetItem*> rows;
    for (std::size_t i = 0; i < pictures.size() && !unseen.isEmpty(); ++i) {
        if (unseen.remove(QString::fromStdU16String(pictures[i].name.text)) > 0) {
            rows.append(new PictureRow(pictures[i], i));
        }
    }
    addTopLevelItems(rows);
    sortRows();
}

QString PictureList::selectFirst() {
    const QScopedValueRollback guard(selectingByProgram_, true);
    if (isEmpty()) {
        return {};
    }
    setCurrentItem(topLevelItem(0), 0,
                   QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    return selectedName();
}

void PictureList::select(const QString& name) {
    const QScopedValueRollback guard(selectingByProgram_, true);
    const auto rows = findItems(name, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (!rows.isEmpty()) {
        setCurrentItem(rows.first(), 0,
                       QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
}

void PictureList::select(const QStringList& names) {
    select(names.first());
    const QScopedValueRollback guard(selectingByProgram_, true);
    const QSet<QString> wanted(names.begin(), names.end());
    QItemSelection rows; // of neighbours together: what it costs grows with their square
    const auto isWanted = [&](int row) { return wanted.contains(topLevelItem(row)->text(0)); };
    for (int first = 0; first < topLevelItemCount(); ++first) {
        int end = first;
        while (end < topLevelItemCount() && isWanted(end)) {
            ++end;
        }
        if (end > first) {
            rows.append(QItemSelectionRange(indexFromItem(topLevelItem(first)),
                                            indexFromItem(topLevelItem(end - 1))));
            first = end;
        }
    }
    selectionModel()->select(rows, QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

const QTreeWidgetItem* PictureList::selectedRow() const {
    const QTreeWidgetItem* current = currentItem();
    if (current != nullptr && current->isSelected()) {
        return current;
    }
    const QModelIndexList rows = selectionModel()->selectedRows();
    const auto first = std::min_element(rows.begin(), rows.end());
    return first == rows.end() ? nullptr : itemFromIndex(*first);
}

QString PictureList::selectedName() const {
    const QTreeWidgetItem* row = selectedRow();
    return row == nullptr ? QString() : row->text(0);
}

std::size_t PictureList::selectedPosition() const {
    const QTreeWidgetItem* row = selectedRow();
    return row == nullptr ? 0 : static_cast<const PictureRow*>(row)->position();
}

QStringList PictureList::selectedNames() const {
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList names;
    for (const QModelIndex& row : rows) {
        names.append(row.data().toString());
    }
    return names;
}

void PictureList::startDrag(Qt::DropActions) {
    deselectAtRelease_ = QModelIndex();
    emit dragWanted();
}

void PictureList::rename(const QString& from, const QString& to) {
    const QList<QTreeWidgetItem*> rows =
        findItems(from, Qt::MatchFixedString | Qt::MatchCaseSensitive);
    if (!rows.isEmpty()) {
        static_cast<PictureRow*>(rows.front())->rename(to);
        sortRows();
        scrollToItem(currentItem());
    }
}

void PictureList::mousePressEvent(QMouseEvent* event) {
    reportedDuringPress_ = false;
    const QModelIndex pressed = indexAt(event->position().toPoint());
    const bool isCtrlClick =
        event->button() == Qt::LeftButton && event->modifiers() == Qt::ControlModifier;
    deselectAtRelease_ =
        isCtrlClick && selectionModel()->isSelected(pressed) ? pressed : QModelIndex();
    QTreeWidget::mousePressEvent(event);
    const QTreeWidgetItem* row = itemAt(event->position().toPoint());
    if (!reportedDuringPress_ && row != nullptr && row->isSelected()) {
        emit rowClicked(row->text(0));
    }
}

void PictureList::mouseReleaseEvent(QMouseEvent* event) {
    QTreeWidget::mouseReleaseEvent(event);
    if (deselectAtRelease_.isValid() && selectedNames().size() > 1) {
        selectionModel()->select(deselectAtRelease_,
                                 QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    }
    deselectAtRelease_ = QModelIndex();
    emit mouseReleased(event->button(), event->globalPosition().toPoint());
}

void PictureList::mouseMoveEvent(QMouseEvent* event) {
    QTreeWidget::mouseMoveEvent(event);
    emit pointerMoved();
}

// With the mouse the release shows the band; here only the keyboard's request is left.
void PictureList::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Mouse || selectedItems().isEmpty()) {
        return;
    }
    const QTreeWidgetItem* shown = currentItem() != nullptr && currentItem()->isSelected()
                                       ? currentItem()
                                       : selectedItems().front();
    scrollToItem(shown); // the band stands below its row, not beside the list
    const QRect row = visualItemRect(shown);
    emit mouseReleased(Qt::RightButton, viewport()->mapToGlobal(row.bottomLeft()));
}

void PictureList::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && state() != QAbstractItemView::EditingState && !selectedName().isEmpty()) {
        emit activatedByKey(selectedName());
        return;
    }
    const int column = event->key() - Qt::Key_1;
    if (event->modifiers() == Qt::ControlModifier && column >= 0 &&
        column < static_cast<int>(kListColumns)) {
        sortBy(column);
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

} // namespace browser
