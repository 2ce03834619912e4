#include "app/help_file.h"

#include "compound/error.h"
#include "platform/paths.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringDecoder>
#include <QTextDocumentFragment>
#include <QUrl>
#include <QtEndian>

#include <algorithm>
#include <chm_lib.h>

namespace app {

namespace {

using compound::Error;
using compound::ErrorCode;

constexpr qsizetype kMaximumPageBytes = qsizetype{16} << 20;
constexpr int kMaximumDepth = 64; // of the table of contents
constexpr qsizetype kTopicHeaderBytes = 4;
constexpr qsizetype kTopicEntryBytes = 8; // a number, and where its page's name stands

// Older compilers write the system's code page, of which Latin-1 is the common part.
QString decoded(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

std::uint32_t numberAt(const QByteArray& bytes, qsizetype offset) {
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

// The text that ends with the next zero byte.
QString textAt(const QByteArray& bytes, std::uint32_t offset) {
    if (offset >= static_cast<std::size_t>(bytes.size())) {
        return {};
    }
    const QByteArray rest = bytes.mid(static_cast<qsizetype>(offset));
    return decoded(rest.left(rest.indexOf('\0')));
}

int keepContentsName(chmFile*, chmUnitInfo* unit, void* name) {
    const QString path = QString::fromUtf8(unit->path);
    if (!path.endsWith(QLatin1String(".hhc"), Qt::CaseInsensitive)) {
        return CHM_ENUMERATOR_CONTINUE;
    }
    *static_cast<QString*>(name) = path;
    return CHM_ENUMERATOR_SUCCESS;
}

// The value of one of an entry's parameters.
QString parameter(const QString& entry, const QString& name) {
    const QRegularExpression form(
        QStringLiteral("<param\\s+name=\"%1\"\\s+value=\"([^\"]*)\"").arg(name),
        QRegularExpression::CaseInsensitiveOption);
    return QTextDocumentFragment::fromHtml(form.match(entry).captured(1)).toPlainText();
}

QString pageOf(const QString& local) {
    return local.isEmpty() ? QString() : QUrl(QStringLiteral("/")).resolved(QUrl(local)).path();
}

} // namespace

void HelpFile::Close::operator()(chmFile* file) const {
    chm_close(file);
}

HelpFile::HelpFile(const QString& path) : path_(path) {
    const QFileInfo info(path);
    const std::filesystem::path file = platform::toFilePath(path);
    if (!info.exists()) {
        throw Error(ErrorCode::NotFound, file, "there is no such help file");
    }
    if (!info.isReadable()) {
        throw Error(ErrorCode::Denied, file, "the help file cannot be read");
    }
    if (info.isFile()) { // opening anything else might wait
        file_.reset(chm_open(QFile::encodeName(path).constData()));
    }
    if (!file_) {
        throw Error(ErrorCode::Damaged, file, "not a compiled help file");
    }
}

bool HelpFile::holds(const QString& page) const {
    chmUnitInfo unit{};
    return chm_resolve_object(file_.get(), page.toUtf8().constData(), &unit) == CHM_RESOLVE_SUCCESS;
}

std::optional<QByteArray> HelpFile::read(const QString& page) const {
    chmUnitInfo unit{};
    if (chm_resolve_object(file_.get(), page.toUtf8().constData(), &unit) != CHM_RESOLVE_SUCCESS ||
        unit.length > static_cast<LONGUINT64>(kMaximumPageBytes)) {
        return std::nullopt;
    }
    QByteArray bytes(static_cast<qsizetype>(unit.length), '\0');
    const LONGINT64 count =
        chm_retrieve_object(file_.get(), &unit, reinterpret_cast<unsigned char*>(bytes.data()), 0,
                            static_cast<LONGINT64>(bytes.size()));
    if (count != static_cast<LONGINT64>(bytes.size())) {
        return std::nullopt;
    }
    return bytes;
}

std::optional<QString> HelpFile::topicPage(std::uint32_t number) const {
    const QByteArray topics = read(QStringLiteral("/#IVB")).value_or(QByteArray());
    const QByteArray texts = read(QStringLiteral("/#STRINGS")).value_or(QByteArray());
    for (qsizetype at = kTopicHeaderBytes; at + kTopicEntryBytes <= topics.size();
         at += kTopicEntryBytes) {
        if (numberAt(topics, at) != number) {
            continue;
        }
        // A compiler may have put the whole path of its source there: what counts is its end.
        QString page = textAt(texts, numberAt(topics, at + 4)).replace(u'\\', u'/');
        page.prepend(u'/');
        for (qsizetype slash = 0; slash >= 0; slash = page.indexOf(u'/', slash + 1)) {
            if (slash + 1 < page.size() && holds(page.mid(slash))) {
                return page.mid(slash);
            }
        }
        return std::nullopt;
    }
    return std::nullopt;
}

std::vector<HelpEntry> HelpFile::contents() const {
    QString name;
    chm_enumerate(file_.get(), CHM_ENUMERATE_NORMAL | CHM_ENUMERATE_FILES, keepContentsName, &name);
    const QString text = decoded(read(name).value_or(QByteArray()));
    static const QRegularExpression kPart(
        QStringLiteral("<ul\\b[^>]*>|</ul\\s*>|<object\\b[^>]*sitemap[^>]*>(.*?)</object\\s*>"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    std::vector<HelpEntry> entries;
    int depth = -1;
    for (auto parts = kPart.globalMatch(text); parts.hasNext();) {
        const QRegularExpressionMatch part = parts.next();
        if (part.captured(0).startsWith(QLatin1String("</"))) {
            depth = std::max(depth - 1, -1);
        } else if (part.captured(0).startsWith(QLatin1String("<ul"), Qt::CaseInsensitive)) {
            depth = std::min(depth + 1, kMaximumDepth);
        } else {
            entries.push_back({parameter(part.captured(1), QStringLiteral("Name")),
                               pageOf(parameter(part.captured(1), QStringLiteral("Local"))),
                               std::max(depth, 0)});
        }
    }
    return entries;
}

} // namespace app
