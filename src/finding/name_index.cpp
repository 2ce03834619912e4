#include "finding/name_index.h"

#include "store/names.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace finding {
namespace {

constexpr char kBeforeType = '\t';
constexpr char kEnd = '\n';

bool isPlain(const QString& text) {
    return std::all_of(text.begin(), text.end(),
                       [](QChar unit) { return unit.unicode() >= u' ' && unit.unicode() < 0x7F; });
}

// The first place from `from` on where the word stands; npos for none. The C library's search runs
// over many bytes at a time, which that of strings does not.
std::size_t search(std::string_view text, std::string_view word, std::size_t from) {
    const void* found = ::memmem(text.data() + from, text.size() - from, word.data(), word.size());
    return found == nullptr
               ? std::string_view::npos
               : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

bool isIn(std::string_view line, std::string_view word) {
    const std::size_t tab = line.find(kBeforeType);
    return line.substr(0, tab).find(word) != std::string_view::npos || line.substr(tab + 1) == word;
}

} // namespace

std::string folded(const QString& text) {
    if (isPlain(text)) {
        return text.toLower().toStdString();
    }
    QString plain;
    for (const QChar unit : text.normalized(QString::NormalizationForm_KD).toCaseFolded()) {
        if (unit.isSpace() || unit.category() == QChar::Other_Control) {
            plain += u' ';
        } else if (unit.category() != QChar::Mark_NonSpacing) {
            plain += unit == u'ß' ? QStringLiteral("ss") : QString(unit);
        }
    }
    return plain.toStdString();
}

Words::Words(const QString& text) {
    for (const QString& word : text.simplified().split(u' ', Qt::SkipEmptyParts)) {
        words_.push_back(folded(word));
    }
    std::erase(words_, std::string());
    std::stable_sort(words_.begin(), words_.end(),
                     [](const auto& one, const auto& other) { return one.size() > other.size(); });
}

FileNames::FileNames(std::vector<NamedGroup> groups) : groups_(std::move(groups)) {
    for (std::uint32_t group = 0; group < groups_.size(); ++group) {
        add(groups_[group].name, {}, group, kGroupItself);
        const std::vector<NamedPicture>& pictures = groups_[group].pictures;
        for (std::uint32_t picture = 0; picture < pictures.size(); ++picture) {
            add(QString::fromStdU16String(pictures[picture].name.text), pictures[picture].type,
                group, picture);
        }
    }
}

void FileNames::add(const QString& name, std::string_view type, std::uint32_t group,
                    std::uint32_t picture) {
    entries_.push_back({static_cast<std::uint32_t>(text_.size()), group, picture});
    text_ += folded(name);
    text_ += kBeforeType;
    text_ += folded(QString::fromUtf8(type.data(), static_cast<qsizetype>(type.size())));
    text_ += kEnd;
}

std::size_t FileNames::entryAt(std::size_t position) const {
    const auto behind =
        std::upper_bound(entries_.begin(), entries_.end(), position,
                         [](std::size_t place, const Entry& entry) { return place < entry.start; });
    return static_cast<std::size_t>(behind - entries_.begin()) - 1;
}

std::string_view FileNames::lineOf(std::size_t entry) const {
    const std::size_t start = entries_[entry].start;
    const std::size_t end = entry + 1 < entries_.size() ? entries_[entry + 1].start : text_.size();
    return std::string_view(text_).substr(start, end - start - 1);
}

Match FileNames::matchOf(const Entry& entry) const {
    const NamedGroup& group = groups_[entry.group];
    if (entry.picture == kGroupItself) {
        return {group.address, group.path, group.name, std::nullopt};
    }
    const NamedPicture& picture = group.pictures[entry.picture];
    return {group.address, group.path, QString::fromStdU16String(picture.name.text), picture};
}

std::size_t FileNames::find(const Words& words, std::size_t most, std::vector<Match>& into) const {
    if (words.isEmpty()) {
        return 0;
    }
    std::size_t count = 0;
    const std::string_view longest = words.all().front();
    for (std::size_t at = search(text_, longest, 0); at != std::string_view::npos;) {
        const std::size_t entry = entryAt(at);
        const std::string_view line = lineOf(entry);
        if (std::all_of(words.all().begin(), words.all().end(),
                        [&](const std::string& word) { return isIn(line, word); })) {
            ++count;
            if (into.size() < most) {
                into.push_back(matchOf(entries_[entry]));
            }
        }
        at = search(text_, longest, entries_[entry].start + line.size() + 1);
    }
    return count;
}

bool NameIndex::ByListing::operator()(const std::u16string& one,
                                      const std::u16string& other) const {
    return store::listsBefore(one, other);
}

void NameIndex::put(const store::FileName& file, std::shared_ptr<const FileNames> names) {
    files_.insert_or_assign(file.text, std::move(names));
}

void NameIndex::remove(const store::FileName& file) {
    files_.erase(file.text);
}

NameIndex::Result NameIndex::find(const Words& words, std::size_t most) const {
    Result result;
    for (const auto& [file, names] : files_) {
        result.total += names->find(words, most, result.matches);
    }
    return result;
}

} // namespace finding
