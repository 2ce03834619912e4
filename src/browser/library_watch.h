// Notices what other programs and machines change in the library: the folder tells of a change on
// this machine, and where nobody tells, the watch looks every few seconds. Looks are made on a
// worker; a burst of changes makes one of them. Under an open menu nothing changes: what it was
// opened for must not become another group or picture before the user has chosen.
#pragma once

#include "app/job.h"
#include "groups/library_changes.h"
#include "platform/folder_watch.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace browser {

enum class Noticing {
    ByItself,
    WhenAsked, // by look(), and not otherwise
};

class LibraryWatch : public QObject {
    Q_OBJECT

  public:
    explicit LibraryWatch(Noticing noticing, QObject* parent = nullptr);

    // Begins to watch. The library must outlive the watch; `shown` is asked at every look.
    void start(const store::Library& library,
               std::function<std::optional<groups::ShownPictures>()> shown);
    void stop();

    // The window shows these files now, all of the library: what was looked at before is forgotten.
    void remember(const std::vector<groups::GroupFile>& files);

    // The window itself has changed what it shows: a look that is under way does not count, and
    // another one is made. With a file, this is read again in any case.
    void lookAnew(const std::optional<store::FileName>& file = {});

    // Looks at once.
    void look();

    bool isLooking() const { return job_.isBusy() || isUnfinished_; }

  signals:
    void changed(const groups::LibraryChanges& changes);
    void remembered(const std::vector<groups::GroupFile>& files);

  private:
    struct Looked {
        groups::LibraryChanges changes;
        bool isShared = false; // what other machines do to the volume nobody tells
    };

    void lookSoon();
    void take();
    void dropLook();

    Noticing noticing_;
    const store::Library* library_ = nullptr;
    std::function<std::optional<groups::ShownPictures>()> shown_;
    groups::KnownFiles known_;
    std::unique_ptr<platform::FolderWatch> folder_;
    app::JobFor<Looked> job_;
    bool isUnfinished_ = false; // more than one look can read has changed
    QTimer soon_;
    QTimer later_;
    QTimer poll_;
    QTimer held_; // runs while what a look has found waits for a menu to be closed
};

} // namespace browser
