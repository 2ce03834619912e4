#include "app/texts.h"

#include "app/texts_table.h"

#include <QHash>

namespace app {

namespace {

constexpr int kEnglishOffset = 10000;

QString keyOf(int id, int offset) {
    return QString::number(id + offset) + u'R';
}

// Built once with both languages; the offset alone selects at look-up.
QHash<QString, QString> buildTable() {
    QHash<QString, QString> table;
    for (const TextEntry& entry : textEntries()) {
        table.insert(keyOf(entry.id, 0), QString::fromUtf16(entry.german));
        table.insert(keyOf(entry.id, kEnglishOffset), QString::fromUtf16(entry.english));
    }
    return table;
}

const QHash<QString, QString>& table() {
    static const QHash<QString, QString> texts = buildTable();
    return texts;
}

std::int32_t chosenLocale = kGermanLocale;

} // namespace

void setLanguage(std::int32_t localeNumber) {
    chosenLocale = localeNumber;
    (void)table();
}

std::int32_t languageCode() {
    return chosenLocale;
}

int languageOffset() {
    return chosenLocale == kEnglishLocale ? kEnglishOffset : 0;
}

QString text(int id) {
    const auto found = table().constFind(keyOf(id, languageOffset()));
    if (found != table().constEnd()) {
        return *found;
    }
    return QStringLiteral("Resource ") + QString::number(id) + QStringLiteral(" not found");
}

QString text(const TextPair& pair) {
    return QString::fromUtf16(languageOffset() == 0 ? pair.german : pair.english);
}

QString counted(std::size_t count, const TextPair& one, const TextPair& many) {
    return count == 1 ? text(one) : text(many).arg(count);
}

} // namespace app
