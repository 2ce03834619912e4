// The index of a whole library: read in the background, a few group files at a time, kept up to
// date with what changes, and searched on a worker.
#pragma once

#include "app/job.h"
#include "finding/name_index.h"
#include "groups/library_reading.h"

#include <QObject>
#include <QString>

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <vector>

namespace finding {

class LibraryIndex : public QObject {
    Q_OBJECT

  public:
    explicit LibraryIndex(QObject* parent = nullptr);

    // Begins to read the library, which must outlive the index until stop(). Once it has begun,
    // only what could not be read before is read again.
    void start(const store::Library& library);
    void stop();

    // The library has these files now, of which `read` were read anew. Nothing before start().
    void takeChanges(std::span<const store::FileName> files,
                     std::span<const groups::GroupFile> read);

    // Looks for what was typed among what is read by now; found() brings the result, unless another
    // text is looked for before. It comes again whenever more was read, until findNothing().
    void find(const QString& text);
    void findNothing();

    bool isReading() const { return !unread_.empty() || reader_.isBusy(); }
    bool isBusy() const { return isReading() || search_.isBusy() || isSearchWanted_; }
    std::size_t filesRead() const { return states_.size(); }
    std::size_t filesInAll() const { return states_.size() + unread_.size(); }

  signals:
    void found(const finding::NameIndex::Result& result);
    void progressed(); // filesRead() or isReading() is another

  private:
    struct FileReading {
        store::FileName file;
        std::optional<compound::FileIdentity> state;
        std::shared_ptr<const FileNames> names; // null for what cannot be read
    };
    static FileReading readFile(const store::Library& library, const store::FileName& file);
    bool isIndexed(const groups::GroupFile& file) const;
    void readOn();
    void takeRead();
    void search();

    const store::Library* library_ = nullptr;
    NameIndex index_;
    // How the files looked when they were read.
    std::map<std::u16string, std::optional<compound::FileIdentity>> states_;
    std::deque<store::FileName> unread_;
    std::set<std::u16string> failed_; // locked, or gone meanwhile
    std::size_t inHand_ = 0;
    QString wanted_;
    bool isSearchWanted_ = false;
    app::JobFor<std::vector<FileReading>> reader_;
    app::JobFor<NameIndex::Result> search_;
};

} // namespace finding
