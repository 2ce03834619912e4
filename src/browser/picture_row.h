// A row of the list of pictures.
#pragma once

#include "browser/picture_list.h"

#include <QCollator>
#include <QTreeWidgetItem>

#include <cstddef>
#include <optional>

namespace browser {

// Compares names as the window's language does: numbers in them by their value, without regard to
// case.
QCollator nameCollator();

class PictureRow : public QTreeWidgetItem {
  public:
    // `position`: of the picture in its group.
    PictureRow(const store::PictureEntry& picture, std::size_t position);

    // Texts that stay are not touched: a row that is being edited goes on being so.
    void describe(const store::PictureEntry& picture, std::size_t position);
    void rename(const QString& name);

    std::size_t position() const { return position_; }

    // Whether it stands above the other row of its list, were the order an ascending one.
    bool operator<(const QTreeWidgetItem& other) const override;

  private:
    bool isLess(const PictureRow& other, int column) const;
    const QCollatorSortKey& key() const;

    std::size_t position_;
    double bytes_ = 0;
    double height_ = 0;
    double width_ = 0;
    QString type_;
    mutable std::optional<QCollatorSortKey> key_; // of the name; not before it is asked for
};

} // namespace browser
