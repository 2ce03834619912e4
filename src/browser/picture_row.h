// A row of the list of pictures.
#pragma once

#include "browser/picture_list.h"

#include <QCollator>
#include <QTreeWidgetItem>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace browser {

// Compares names as the window's language does: numbers in them by their value, without regard to
// case.
QCollator nameCollator();

class PictureRow : public QTreeWidgetItem {
  public:
    // `position`: of the picture in its group.
    PictureRow(const store::PictureEntry& picture, std::size_t position);

    // What stays is not touched: a row that is being edited goes on being so.
    void describe(const store::PictureEntry& picture, std::size_t position);
    void rename(const QString& name);

    std::size_t position() const { return position_; }

    // Makes what comparing names needs, which otherwise is made when it is first asked for.
    void prepareToSort(const QCollator& collator) { key_ = collator.sortKey(values_.name); }

    // Whether it stands above the other row in a list sorted by that column, ascending.
    bool isLess(const PictureRow& other, int column) const;

    // Texts are made when they are shown: most rows of a large group never are.
    QVariant data(int column, int role) const override;

    // Whether it stands above the other row of its list, were the order an ascending one.
    bool operator<(const QTreeWidgetItem& other) const override;

  private:
    struct Values {
        QString name;
        bool hasRecord = false;
        std::uint64_t bytes = 0;
        float height = 0; // pixels, as is the width
        float width = 0;
        std::string type;

        QString text(int column) const;
    };

    static Values valuesOf(const store::PictureEntry& picture);
    void tellChange(int column);
    const QCollatorSortKey& key() const;

    std::size_t position_;
    Values values_;
    mutable std::optional<QCollatorSortKey> key_; // of the name; not before it is asked for
};

} // namespace browser
