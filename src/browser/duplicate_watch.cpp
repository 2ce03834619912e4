#include "browser/duplicate_watch.h"

#include "app/message_box.h"
#include "app/texts.h"
#include "store/group_operations.h"

#include <set>
#include <utility>

namespace browser {
namespace {

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

QString nameOf(const store::Library& library, const store::PictureAddress& picture) {
    QString group = QString::fromStdU16String(picture.group.storage.text);
    try {
        group = QString::fromStdU16String(store::readGroupName(library, picture.group).text);
    } catch (const std::exception&) {
        group.clear(); // gone meanwhile: the picture's name alone
    }
    const QString name = QString::fromStdU16String(picture.name.text);
    return group.isEmpty() ? name : group + QStringLiteral(" / ") + name;
}

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
    const std::set<store::PictureAddress> arrived(pictures.begin(), pictures.end());
    for (const store::SamePictures& same : store::findSamePictures(
             library, pictures, progress, [&found](const compound::Error& error) {
                 found.unread.append(app::errorText(error));
             })) {
        QStringList others;
        for (const store::PictureAddress& other : same.others) {
            if (!arrived.contains(other)) {
                others.append(nameOf(library, other));
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
    emit looked(result, (found.same + found.unread).join(u'\n'));
}

} // namespace browser
