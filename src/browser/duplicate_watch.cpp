#include "browser/duplicate_watch.h"

#include "app/message_box.h"
#include "app/texts.h"
#include "groups/group_paths.h"
#include "store/group_operations.h"

#include <chrono>
#include <map>
#include <set>
#include <utility>

namespace browser {
namespace {

constexpr std::chrono::milliseconds kLockWait{500};
constexpr app::TextPair kOneAdded{u"1 Bild hinzugefügt", u"1 picture added"};
constexpr app::TextPair kManyAdded{u"%1 Bilder hinzugefügt", u"%1 pictures added"};
constexpr app::TextPair kOneSame{u"schon vorhanden: %1", u"already there: %1"};
constexpr app::TextPair kManySame{u"%1 davon schon vorhanden", u"%1 of them already there"};
constexpr app::TextPair kUnread{u"nicht alles verglichen", u"not everything was compared"};

class Stoppable : public store::Progress {
  public:
    explicit Stoppable(std::shared_ptr<std::atomic<bool>> stop) : stop_(std::move(stop)) {}
    void report(std::uint64_t /*done*/, std::uint64_t /*total*/) override {}
    bool isStopWanted() override { return *stop_; }

  private:
    std::shared_ptr<std::atomic<bool>> stop_;
};

// What pictures are called together with all groups above them; each file is read once.
class FullNames {
  public:
    explicit FullNames(const store::Library& library) : library_(library) {}

    QString of(const store::PictureAddress& picture) {
        const groups::GroupPaths& paths = pathsIn(picture.group.file);
        const auto path = paths.find(picture.group.storage.text);
        const QString name = QString::fromStdU16String(picture.name.text);
        // Gone or locked meanwhile: the picture's name alone.
        return path == paths.end() ? name : path->second + QStringLiteral(" / ") + name;
    }

  private:
    const groups::GroupPaths& pathsIn(const store::FileName& file) {
        const auto [place, isNew] = files_.try_emplace(file.text);
        if (isNew) {
            place->second = groups::pathsOf(
                store::readGroupFile(library_, file, store::LockBudget(kLockWait)).groups);
        }
        return place->second;
    }

    const store::Library& library_;
    std::map<std::u16string, groups::GroupPaths> files_;
};

} // namespace

DuplicateWatch::DuplicateWatch(QObject* parent)
    : QObject(parent), stop_(std::make_shared<std::atomic<bool>>(false)) {
    connect(&job_, &app::Job::done, this, &DuplicateWatch::take);
}

DuplicateWatch::~DuplicateWatch() {
    stop();
}

void DuplicateWatch::stop() {
    *stop_ = true;
    job_.drop();
}

void DuplicateWatch::look(const store::Library& library, Arrived arrived) {
    stop();
    pending_.push_back(std::move(arrived));
    stop_ = std::make_shared<std::atomic<bool>>(false);
    job_.start([library, pending = pending_, stop = stop_] {
        Found found;
        try {
            Stoppable progress(stop);
            std::vector<store::PictureAddress> pictures;
            for (const Arrived& each : pending) {
                const auto some = each();
                pictures.insert(pictures.end(), some.begin(), some.end());
            }
            found = findAmong(library, pictures, progress);
        } catch (const std::exception&) {
            found = {}; // stopped, or what has come is gone again
        }
        return found;
    });
}

// Those that have come together may well be the same: the library did not have them.
DuplicateWatch::Found DuplicateWatch::findAmong(const store::Library& library,
                                                const std::vector<store::PictureAddress>& pictures,
                                                store::Progress& progress) {
    Found found;
    found.arrived = pictures.size();
    FullNames names(library);
    const std::set<store::PictureAddress> arrived(pictures.begin(), pictures.end());
    for (const store::SamePictures& same : store::findSamePictures(
             library, pictures, progress, [&found](const compound::Error& error) {
                 found.unread.append(app::errorText(error));
             })) {
        QStringList others;
        for (const store::PictureAddress& other : same.others) {
            if (!arrived.contains(other)) {
                others.append(names.of(other));
            }
        }
        if (!others.isEmpty()) {
            found.same.append(QString::fromStdU16String(same.picture.name.text) +
                              QStringLiteral(" = ") + others.join(QStringLiteral(", ")));
        }
    }
    return found;
}

void DuplicateWatch::take() {
    pending_.clear();
    const Found found = std::exchange(job_.result(), {});
    if (found.arrived == 0) {
        return;
    }
    QString result = app::counted(found.arrived, kOneAdded, kManyAdded);
    if (!found.same.isEmpty()) {
        result += QStringLiteral("; ") + (found.same.size() == 1
                                              ? app::text(kOneSame).arg(found.same.front())
                                              : app::text(kManySame).arg(found.same.size()));
    }
    if (!found.unread.isEmpty()) {
        result += QStringLiteral("; ") + app::text(kUnread);
    }
    emit looked(result, found.same + found.unread);
}

} // namespace browser
