// The list of pictures, `lvwInfo`: name, size, height, width and type of each, with renaming in
// place. It knows rows, but no files.
#pragma once

#include "store/picture_operations.h"

#include <QCollator>
#include <QPersistentModelIndex>
#include <QTreeWidget>

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace browser {

inline constexpr std::size_t kListColumns = 5;

// The columns' widths for a list of that width (both in twips). They do not add up to it.
std::array<double, kListColumns> columnWidths(double listWidth);

// A stored size as the list shows it: kilobytes, cut at a decimal comma (a decimal point is kept).
QString kilobytesText(std::uint64_t bytes);

// The same exactly, in the window's language.
QString bytesText(std::uint64_t bytes);

// By which column the rows stand, and which way round. Without a column they stand as the group
// holds them.
struct ListOrder {
    int column = -1;
    Qt::SortOrder direction = Qt::AscendingOrder;

    bool operator==(const ListOrder&) const = default;
};

class PictureRow;
using PictureRows = std::vector<std::unique_ptr<QTreeWidgetItem>>;

// Rows for those pictures, which come in the group's order, as they stand in a list of that order.
// May be called on any thread.
PictureRows makeRows(std::span<const store::PictureEntry> pictures, const ListOrder& order);

class PictureList : public QTreeWidget {
    Q_OBJECT

  public:
    explicit PictureList(QWidget* parent = nullptr);

    void setCaptions();

    // The user changes it by a click on a column's header, or Ctrl and its number: ascending,
    // descending, as the group holds them. Equal rows stand as the group holds them.
    const ListOrder& order() const { return order_; }
    void setOrder(const ListOrder& order);
    const QCollator& collator() const { return collator_; } // for names

    // Replaces all rows by those of `group`, and sets the columns' widths.
    void fill(const std::optional<store::GroupAddress>& group, PictureRows made);

    // The same group's pictures have changed: rows of those that are still there stay as they are,
    // selected and in their place on the screen.
    void update(std::span<const store::PictureEntry> pictures);

    // The group whose pictures are shown.
    const std::optional<store::GroupAddress>& group() const { return group_; }

    bool isEmpty() const { return topLevelItemCount() == 0; }

    // Selects the first row, if there is one, without reporting it; returns its name.
    QString selectFirst();

    // Selects the row of that name, if there is one, without reporting it.
    void select(const QString& name);

    // The same for several; the first one becomes current.
    void select(const QStringList& names);

    // The current row's name if it is selected, else that of the first selected one; empty when no
    // row is selected.
    QString selectedName() const;
    // Where the group holds that picture; 0 when no row is selected.
    std::size_t selectedPosition() const;
    QStringList selectedNames() const; // from the top

    // Gives the row of that name another one.
    void rename(const QString& from, const QString& to);

  signals:
    // The user chose the row that is selected now.
    void rowClicked(const QString& name);
    // A mouse button was released over the list.
    void mouseReleased(Qt::MouseButton button, const QPoint& globalPosition);
    // Editing a name of `group` ended with another one; the row still shows the old. By now another
    // group may be shown.
    void renameWanted(const store::GroupAddress& group, const QString& from, const QString& to);
    void activatedByKey(const QString& name); // Enter
    void pointerMoved();
    void dragWanted(); // of the selected rows

  protected:
    void startDrag(Qt::DropActions actions) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void sortBy(int column);
    void sortRows();
    PictureRow* row(int index) const;
    const QTreeWidgetItem* selectedRow() const; // none: null

    std::optional<store::GroupAddress> group_;
    ListOrder order_;
    QCollator collator_;
    QPersistentModelIndex deselectAtRelease_; // pressed with Ctrl; it may become a drag
    bool selectingByProgram_ = false;
    bool reportedDuringPress_ = false;
};

} // namespace browser
