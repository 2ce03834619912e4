#include "app/job.h"

#include <QCoreApplication>
#include <QEvent>

#include <mutex>

namespace app {

// What the job and its workers share. Whoever of them comes first to drop or to finish decides.
struct Job::Link {
    std::mutex mutex;
    Job* job = nullptr;        // null once it has gone
    std::uint64_t wanted = 0;  // the number of the latest request
    std::uint64_t doneOne = 0; // of the one whose work was done last
};

Job::Job(QObject* parent, Executor& (*by)())
    : QObject(parent), executor_(by), link_(std::make_shared<Link>()) {
    link_->job = this;
}

Job::~Job() {
    const std::lock_guard lock(link_->mutex);
    link_->job = nullptr;
}

void Job::drop() {
    {
        const std::lock_guard lock(link_->mutex);
        ++link_->wanted;
    }
    take_ = {};
    state_ = State::Idle;
}

void Job::startWork(std::function<void()> work, std::function<void()> take) {
    drop();
    take_ = std::move(take);
    state_ = State::Waiting;
    executor_().run([link = link_, request = link_->wanted, work = std::move(work)] {
        doWork(*link, request, work);
    });
}

// On a worker.
void Job::doWork(Link& link, std::uint64_t request, const std::function<void()>& work) {
    const auto isWanted = [&] { return link.job != nullptr && link.wanted == request; };
    {
        const std::lock_guard lock(link.mutex);
        if (!isWanted()) {
            return;
        }
    }
    work();
    const std::lock_guard lock(link.mutex);
    if (isWanted()) {
        link.doneOne = request;
        // An event for an object that goes meanwhile is never delivered.
        QCoreApplication::postEvent(link.job, new QEvent(QEvent::User));
    }
}

// Something was done, which may have been dropped since.
void Job::customEvent(QEvent* /*event*/) {
    {
        const std::lock_guard lock(link_->mutex);
        if (state_ != State::Waiting || link_->doneOne != link_->wanted) {
            return;
        }
    }
    state_ = State::Done;
    std::exchange(take_, {})();
    emit done();
}

} // namespace app
