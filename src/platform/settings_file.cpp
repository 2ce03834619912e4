#include "platform/settings_file.h"

#include <QStringDecoder>
#include <QStringList>

#include <algorithm>

namespace platform {

namespace {

const QString kHexPrefix = QStringLiteral("hex(1):");
constexpr int kHexDigits = 4;
constexpr int kHexBase = 16;

bool isSame(const QString& left, const QString& right) {
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

// Whether a line of text can hold the character, so that reading gives it back.
bool fitsLine(const QString& text, qsizetype index) {
    const QChar character = text.at(index);
    if (character.isHighSurrogate()) {
        return index + 1 < text.size() && text.at(index + 1).isLowSurrogate();
    }
    if (character.isLowSurrogate()) {
        return index > 0 && text.at(index - 1).isHighSurrogate();
    }
    const QChar::Category category = character.category();
    return category != QChar::Other_Control && category != QChar::Separator_Line &&
           category != QChar::Separator_Paragraph && category != QChar::Other_Format;
}

QString encodeHex(const QString& value) {
    QString result = kHexPrefix;
    for (const QChar character : value) {
        result += QString::number(character.unicode(), kHexBase).rightJustified(kHexDigits, u'0');
    }
    return result;
}

std::optional<QString> decodeHex(const QString& digits) {
    if (digits.size() % kHexDigits != 0) {
        return std::nullopt;
    }
    QString result;
    for (qsizetype start = 0; start < digits.size(); start += kHexDigits) {
        bool isNumber = false;
        const ushort unit = digits.mid(start, kHexDigits).toUShort(&isNumber, kHexBase);
        if (!isNumber) {
            return std::nullopt;
        }
        result += QChar(unit);
    }
    return result;
}

QString encodeValue(const QString& value) {
    for (qsizetype index = 0; index < value.size(); ++index) {
        if (!fitsLine(value, index)) {
            return encodeHex(value);
        }
    }
    const bool needsQuotes =
        value != value.trimmed() || value.startsWith(u'"') || value.startsWith(kHexPrefix);
    return needsQuotes ? u'"' + value + u'"' : value;
}

std::optional<QString> decodeValue(const QString& text) {
    if (text.startsWith(kHexPrefix)) {
        return decodeHex(text.mid(kHexPrefix.size()));
    }
    if (text.size() >= 2 && text.startsWith(u'"') && text.endsWith(u'"')) {
        return text.mid(1, text.size() - 2);
    }
    return text.isNull() ? QStringLiteral("") : text;
}

} // namespace

std::optional<SettingsFile> SettingsFile::parse(const QByteArray& bytes) {
    if (bytes.contains('\0')) {
        return std::nullopt;
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(bytes);
    if (decoder.hasError()) {
        return std::nullopt;
    }
    SettingsFile file;
    QString key;
    QStringList lines = text.split(u'\n');
    if (lines.last().isEmpty()) {
        lines.removeLast();
    }
    for (QString& line : lines) {
        while (line.endsWith(u'\r')) {
            line.chop(1);
        }
        file.addLine(line, key);
    }
    return file;
}

void SettingsFile::addLine(const QString& text, QString& key) {
    const QString trimmed = text.trimmed();
    const bool isComment =
        trimmed.isEmpty() || trimmed.startsWith(u'#') || trimmed.startsWith(u';');
    const bool isHeader = trimmed.startsWith(u'[') && trimmed.endsWith(u']');
    if (isHeader) {
        key = trimmed.mid(1, trimmed.size() - 2).trimmed();
    }
    Line line{text, key, QString(), std::nullopt};
    if (!isComment && !isHeader) {
        const qsizetype equals = trimmed.indexOf(u'=');
        if (equals > 0) {
            line.name = trimmed.left(equals).trimmed();
            line.value = decodeValue(trimmed.mid(equals + 1).trimmed());
        }
        if (!line.value) {
            oddLines_.push_back(static_cast<int>(lines_.size()) + 1);
        }
    }
    lines_.push_back(line);
}

const SettingsFile::Line* SettingsFile::find(const QString& key, const QString& name) const {
    for (const Line& line : lines_) {
        if (!line.name.isEmpty() && isSame(line.key, key) && isSame(line.name, name)) {
            return &line;
        }
    }
    return nullptr;
}

std::optional<QString> SettingsFile::value(const QString& key, const QString& name) const {
    const Line* line = find(key, name);
    return line == nullptr ? std::nullopt : line->value;
}

void SettingsFile::setValue(const QString& key, const QString& name, const QString& value) {
    const Line changed{name + u'=' + encodeValue(value), key, name, value};
    if (const Line* line = find(key, name)) {
        lines_[static_cast<std::size_t>(line - lines_.data())] = changed;
        return;
    }
    const auto last = std::find_if(lines_.rbegin(), lines_.rend(), [&](const Line& line) {
        return isSame(line.key, key) && !line.text.trimmed().isEmpty();
    });
    if (last != lines_.rend()) {
        lines_.insert(last.base(), changed);
        return;
    }
    lines_.push_back({u'[' + key + u']', key, QString(), std::nullopt});
    lines_.push_back(changed);
}

QByteArray SettingsFile::toBytes() const {
    QString text;
    for (const Line& line : lines_) {
        text += line.text + u'\n';
    }
    return text.toUtf8();
}

} // namespace platform
