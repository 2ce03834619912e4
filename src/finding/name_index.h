// The names of a library's groups and pictures, held so that a word is found in a hundred thousand
// of them while it is typed. Nothing here knows windows or files.
//
// Names are compared without regard to case and accents. A picture or group is found when each word
// occurs in its name; a picture also by its type, which must be the whole word ("gif").
//
// A FileNames never changes, so any number of threads may search one; an index is as cheap to copy
// as a list of its files, and a copy may be searched on another thread.
#pragma once

#include "store/address.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace finding {

// Lower case without accents, in UTF-8; every line break is a blank.
std::string folded(const QString& text);

// What is looked for: the words between blanks, longest first. Without words nothing is found.
class Words {
  public:
    explicit Words(const QString& text);
    bool isEmpty() const { return words_.empty(); }
    const std::vector<std::string>& all() const { return words_; }

  private:
    std::vector<std::string> words_;
};

struct NamedPicture {
    store::PictureName name;
    std::string type;
};

struct NamedGroup {
    store::GroupAddress address;
    QString name;
    QString path; // with the groups above it, for reading
    std::vector<NamedPicture> pictures;
};

// A group, or one of its pictures.
struct Match {
    store::GroupAddress group;
    QString path;
    QString name; // of what was found
    std::optional<NamedPicture> picture;
};

class FileNames {
  public:
    explicit FileNames(std::vector<NamedGroup> groups);

    std::size_t entries() const { return entries_.size(); }

    // Appends matches to `into` as long as it holds less than `most`; returns how many there are.
    std::size_t find(const Words& words, std::size_t most, std::vector<Match>& into) const;

  private:
    static constexpr std::uint32_t kGroupItself = UINT32_MAX;
    struct Entry {
        std::uint32_t start = 0; // of its line in text_
        std::uint32_t group = 0;
        std::uint32_t picture = kGroupItself;
    };
    void add(const QString& name, std::string_view type, std::uint32_t group,
             std::uint32_t picture);
    std::size_t entryAt(std::size_t position) const;
    std::string_view lineOf(std::size_t entry) const;
    Match matchOf(const Entry& entry) const;

    std::vector<NamedGroup> groups_;
    std::string text_; // one line for each entry: name, tab, type
    std::vector<Entry> entries_;
};

class NameIndex {
  public:
    struct Result {
        std::vector<Match>
            matches; // in the order of files and groups, at most as many as asked for
        std::size_t total = 0;
    };

    void put(const store::FileName& file, std::shared_ptr<const FileNames> names);
    void remove(const store::FileName& file);

    Result find(const Words& words, std::size_t most) const;

  private:
    struct ByListing {
        bool operator()(const std::u16string& one, const std::u16string& other) const;
    };
    std::map<std::u16string, std::shared_ptr<const FileNames>, ByListing> files_;
};

} // namespace finding
