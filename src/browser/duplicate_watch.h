// Looks, whenever pictures have come into the library, which of them it had already. On a worker:
// adding never waits for it, and what it finds is only told.
#pragma once

#include "app/job.h"
#include "store/same_pictures.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace browser {

class DuplicateWatch : public QObject {
    Q_OBJECT

  public:
    explicit DuplicateWatch(QObject* parent);
    ~DuplicateWatch() override;

    // `arrived` is called on the worker; what it throws means that nothing is told. What was still
    // being looked for is looked for again, together with it.
    using Arrived = std::function<std::vector<store::PictureAddress>()>;
    void look(const store::Library& library, Arrived arrived);

    void stop();
    bool isBusy() const { return job_.isBusy(); }

  signals:
    // How many have come, which of them the library has elsewhere, and what to tell of them.
    void looked(const QString& result, const QStringList& details);

  private:
    struct Found {
        std::size_t arrived = 0;
        QStringList same;   // "NAME = GROUP / NAME, ..." of those that were there already
        QStringList unread; // why some could not be compared
    };

    static Found findAmong(const store::Library& library,
                           const std::vector<store::PictureAddress>& pictures,
                           store::Progress& progress);
    void take();

    std::vector<Arrived> pending_; // nothing was told of yet
    std::shared_ptr<std::atomic<bool>> stop_;
    app::JobFor<Found> job_;
};

} // namespace browser
