// A compiled HTML help file (.chm): its pages, its table of contents, and the topic of each window.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

struct chmFile;

namespace app {

// One line of the table of contents.
struct HelpEntry {
    QString title;
    QString page; // as read() takes it; empty for a mere heading
    int depth = 0;
};

// Pages are addressed by their absolute path inside the file, "/add-picture.html". The file's bytes
// are not trusted: what points nowhere gives nothing.
class HelpFile {
  public:
    // Throws compound::Error for the file: NotFound, Denied, Damaged for what is no help file.
    explicit HelpFile(const QString& path);

    const QString& path() const { return path_; }

    // What lies at that path; nothing when nothing does, or when it cannot be unpacked.
    std::optional<QByteArray> read(const QString& page) const;

    // The page of the topic with that number; nothing when there is no such page.
    std::optional<QString> topicPage(std::uint32_t number) const;

    // The table of contents in its order; empty when there is none.
    std::vector<HelpEntry> contents() const;

  private:
    bool holds(const QString& page) const;

    struct Close {
        void operator()(chmFile* file) const;
    };
    QString path_;
    std::unique_ptr<chmFile, Close> file_;
};

} // namespace app
