#include "browser/picture_row.h"

#include "app/number_text.h"
#include "app/texts.h"

#include <QLocale>

namespace browser {
namespace {

// Nothing is told of a text that stays: its row would be painted anew, and its editor closed.
void put(QTreeWidgetItem& row, int column, const QString& text) {
    if (row.text(column) != text) {
        row.setText(column, text);
    }
}

} // namespace

QCollator nameCollator() {
    QCollator collator(
        QLocale(app::languageCode() == app::kEnglishLocale ? QLocale::English : QLocale::German));
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

PictureRow::PictureRow(const store::PictureEntry& picture, std::size_t position)
    : position_(position) {
    describe(picture, position);
    setFlags(flags() | Qt::ItemIsEditable);
}

void PictureRow::describe(const store::PictureEntry& picture, std::size_t position) {
    const store::PictureRecord& record = picture.record;
    const bool hasRecord = !record.type.empty();
    position_ = position;
    bytes_ = static_cast<double>(picture.bytes);
    height_ = record.height;
    width_ = record.width;
    rename(QString::fromStdU16String(picture.name.text));
    put(*this, 1, kilobytesText(picture.bytes));
    put(*this, 2, hasRecord ? app::numberText(record.height) : QString());
    put(*this, 3, hasRecord ? app::numberText(record.width) : QString());
    type_ = QString::fromStdString(record.type);
    put(*this, 4, type_);
    setToolTip(1, bytesText(picture.bytes));
}

void PictureRow::rename(const QString& name) {
    if (text(0) != name) {
        setText(0, name);
        key_.reset();
    }
}

const QCollatorSortKey& PictureRow::key() const {
    if (!key_) {
        key_ = static_cast<const PictureList*>(treeWidget())->collator().sortKey(text(0));
    }
    return *key_;
}

bool PictureRow::isLess(const PictureRow& other, int column) const {
    switch (column) {
    case 0:
        return key().compare(other.key()) < 0;
    case 1:
        return bytes_ < other.bytes_;
    case 2:
        return height_ < other.height_;
    case 3:
        return width_ < other.width_;
    case 4:
        return type_ < other.type_;
    default:
        return position_ < other.position_;
    }
}

bool PictureRow::operator<(const QTreeWidgetItem& other) const {
    const auto& row = static_cast<const PictureRow&>(other); // the list has no others
    return isLess(row, static_cast<const PictureList*>(treeWidget())->order().column);
}

} // namespace browser
