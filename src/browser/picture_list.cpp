#include "browser/picture_list.h"

#include "app/number_text.h"
#include "app/texts.h"
#include "app/twips.h"
#include "groups/plain_tool_tip.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScopedValueRollback>

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

// Nothing is told of a text that stays: its row would be painted anew, and its editor closed.
void setText(QTreeWidgetItem& row, int column, const QString& text) {
    if (row.text(column) != text) {
        row.setText(column, text);
    }
}

void describe(QTreeWidgetItem& row, const store::PictureEntry& picture) {
    const store::PictureRecord& record = picture.record;
    const bool hasRecord = !record.type.empty();
    setText(row, 0, QString::fromStdU16String(picture.name.text));
    setText(row, 1, kilobytesText(picture.bytes));
    setText(row, 2, hasRecord ? app::numberText(record.height) : QString());
    setText(row, 3, hasRecord ? app::numberText(record.width) : QString());
    setText(row, 4, QString::fromStdString(record.type));
    row.setToolTip(1, bytesText(picture.bytes));
}

QTreeWidgetItem* newRow(const store::PictureEntry& picture) {
    auto* row = new QTreeWidgetItem;
    describe(*row, picture);
    row->setFlags(row->flags() | Qt::ItemIsEditable);
    return row;
}

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

PictureList::PictureList(QWidget* parent) : QTreeWidget(parent) {
    setObjectName(QStringLiteral("lvwInfo"));
    setColumnCount(static_cast<int>(kListColumns));
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    setItemDelegate(new NameDelegate(this));
    setMouseTracking(true);
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
}

void PictureList::fill(const std::optional<store::GroupAddress>& group,
                       std::span<const store::PictureEntry> pictures) {
    const QScopedValueRollback guard(selectingByProgram_, true);
    clear();
    group_ = group;
    const auto widths = columnWidths(app::toTwips(width()));
    for (std::size_t column = 0; column < kListColumns; ++column) {
        setColumnWidth(static_cast<int>(column), app::toPixels(widths.at(column)));
    }
    QList<QTreeWidgetItem*> rows;
    rows.reserve(static_cast<qsizetype>(pictures.size()));
    for (const store::PictureEntry& picture : pictures) {
        rows.append(newRow(picture));
    }
    addTopLevelItems(rows);
}

void PictureList::update(std::span<const store::PictureEntry> pictures) {
    const QScopedValueRollback guard(selectingByProgram_, true);
    QSet<QString> present;
    for (const store::PictureEntry& picture : pictures) {
        present.insert(QString::fromStdU16String(picture.name.text));
    }
    for (int i = topLevelItemCount() - 1; i >= 0; --i) {
        if (!present.contains(topLevelItem(i)->text(0))) {
            delete takeTopLevelItem(i);
        }
    }
    int position = 0;
    for (const store::PictureEntry& picture : pictures) {
        QTreeWidgetItem* row = topLevelItem(position);
        if (row == nullptr || row->text(0) != QString::fromStdU16String(picture.name.text)) {
            insertTopLevelItem(position, newRow(picture));
        } else {
            describe(*row, picture);
        }
        ++position;
    }
    while (topLevelItemCount() > position) { // rows that stood in another order
        delete takeTopLevelItem(position);
    }
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

std::size_t PictureList::selectedRow() const {
    const QList<QTreeWidgetItem*> rows = selectedItems();
    return rows.isEmpty() ? 0 : static_cast<std::size_t>(indexOfTopLevelItem(rows.front()));
}

QString PictureList::selectedName() const {
    const QList<QTreeWidgetItem*> rows = selectedItems();
    return rows.isEmpty() ? QString() : rows.front()->text(0);
}

void PictureList::rename(const QString& from, const QString& to) {
    const QList<QTreeWidgetItem*> rows =
        findItems(from, Qt::MatchFixedString | Qt::MatchCaseSensitive);
    if (!rows.isEmpty()) {
        rows.front()->setText(0, to);
    }
}

void PictureList::mousePressEvent(QMouseEvent* event) {
    reportedDuringPress_ = false;
    QTreeWidget::mousePressEvent(event);
    const QTreeWidgetItem* row = itemAt(event->position().toPoint());
    if (!reportedDuringPress_ && row != nullptr && row->isSelected()) {
        emit rowClicked(row->text(0));
    }
}

void PictureList::mouseReleaseEvent(QMouseEvent* event) {
    QTreeWidget::mouseReleaseEvent(event);
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
    scrollToItem(selectedItems().front()); // the band stands below its row, not beside the list
    const QRect row = visualItemRect(selectedItems().front());
    emit mouseReleased(Qt::RightButton, viewport()->mapToGlobal(row.bottomLeft()));
}

void PictureList::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && state() != QAbstractItemView::EditingState && !selectedName().isEmpty()) {
        emit activatedByKey(selectedName());
        return;
    }
    QTreeWidget::keyPressEvent(event);
}

} // namespace browser
