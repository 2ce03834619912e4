#include "browser/picture_row.h"

#include "app/number_text.h"
#include "app/texts.h"

#include <QLocale>

#include <utility>

namespace browser {
QCollator nameCollator() {
    QCollator collator(
        QLocale(app::languageCode() == app::kEnglishLocale ? QLocale::English : QLocale::German));
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

PictureRow::PictureRow(const store::PictureEntry& picture, std::size_t position)
    : position_(position), values_(valuesOf(picture)) {
    setFlags(flags() | Qt::ItemIsEditable);
}

PictureRow::Values PictureRow::valuesOf(const store::PictureEntry& picture) {
    const store::PictureRecord& record = picture.record;
    return {QString::fromStdU16String(picture.name.text),
            !record.type.empty(),
            picture.bytes,
            record.height,
            record.width,
            record.type};
}

void PictureRow::describe(const store::PictureEntry& picture, std::size_t position) {
    position_ = position;
    Values described = valuesOf(picture);
    rename(described.name);
    const Values before = std::exchange(values_, std::move(described));
    for (int column = 1; column < static_cast<int>(kListColumns); ++column) {
        const bool hasNewToolTip = column == 1 && before.bytes != values_.bytes;
        if (hasNewToolTip || before.text(column) != values_.text(column)) {
            tellChange(column);
        }
    }
}

void PictureRow::rename(const QString& name) {
    if (values_.name != name) {
        values_.name = name;
        key_.reset();
        tellChange(0);
    }
}

// The list learns of a change when it is given something.
void PictureRow::tellChange(int column) {
    constexpr int kChanges = Qt::UserRole;
    setData(column, kChanges, QTreeWidgetItem::data(column, kChanges).toInt() + 1);
}

QVariant PictureRow::data(int column, int role) const {
    if (role == Qt::DisplayRole || role == Qt::EditRole) {
        return values_.text(column);
    }
    if (role == Qt::ToolTipRole && column == 1) {
        return bytesText(values_.bytes);
    }
    return QTreeWidgetItem::data(column, role);
}

QString PictureRow::Values::text(int column) const {
    switch (column) {
    case 0:
        return name;
    case 1:
        return kilobytesText(bytes);
    case 2:
        return hasRecord ? app::numberText(height) : QString();
    case 3:
        return hasRecord ? app::numberText(width) : QString();
    default:
        return QString::fromStdString(type);
    }
}

const QCollatorSortKey& PictureRow::key() const {
    if (!key_) {
        key_ = static_cast<const PictureList*>(treeWidget())->collator().sortKey(values_.name);
    }
    return *key_;
}

bool PictureRow::isLess(const PictureRow& other, int column) const {
    switch (column) {
    case 0:
        return key().compare(other.key()) < 0;
    case 1:
        return values_.bytes < other.values_.bytes;
    case 2:
        return values_.height < other.values_.height;
    case 3:
        return values_.width < other.values_.width;
    case 4:
        return values_.type < other.values_.type;
    default:
        return position_ < other.position_;
    }
}

bool PictureRow::operator<(const QTreeWidgetItem& other) const {
    const auto& row = static_cast<const PictureRow&>(other); // the list has no others
    return isLess(row, static_cast<const PictureList*>(treeWidget())->order().column);
}

} // namespace browser
