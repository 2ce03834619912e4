#include "app/job.h"

#include <mutex>

namespace app {

// What the job and its worker share. Whoever of the two comes first to drop or to finish decides.
struct Job::Link {
    std::mutex mutex;
    Job* job = nullptr; // null once the job was dropped
};

Job::Job(QObject* parent) : QObject(parent) {}

Job::~Job() {
    drop();
}

void Job::drop() {
    if (link_) {
        const std::lock_guard lock(link_->mutex);
        link_->job = nullptr;
    }
    link_.reset();
    take_ = {};
    state_ = State::Idle;
}

void Job::startWork(std::function<void()> work, std::function<void()> take) {
    drop();
    link_ = std::make_shared<Link>();
    link_->job = this;
    take_ = std::move(take);
    state_ = State::Waiting;
    workers().run([link = link_, work = std::move(work)] { doWork(link, work); });
}

// On a worker.
void Job::doWork(const std::shared_ptr<Link>& link, const std::function<void()>& work) {
    {
        const std::lock_guard lock(link->mutex);
        if (link->job == nullptr) {
            return;
        }
    }
    work();
    const std::lock_guard lock(link->mutex);
    if (link->job == nullptr) {
        return;
    }
    // An event for an object that goes meanwhile is never delivered; one for a request that was
    // dropped is recognised by its link.
    QMetaObject::invokeMethod(
        link->job,
        [job = link->job, link] {
            if (job->link_ == link) {
                job->end();
            }
        },
        Qt::QueuedConnection);
}

void Job::end() {
    link_.reset();
    state_ = State::Done;
    std::exchange(take_, {})();
    emit done();
}

} // namespace app
