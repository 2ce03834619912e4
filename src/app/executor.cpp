#include "app/executor.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>

namespace app {
namespace {

// Every thread may have a picture of a hundred megabytes in its hands.
constexpr int kFewestThreads = 2;
constexpr int kMostThreads = 4;
// One may wait for a file that another program has locked.
constexpr int kReadingThreads = 2;

// Tasks are handed over under a mutex of its own: the thread sanitizer cannot see those of Qt.
class Pool final : public Executor {
  public:
    explicit Pool(int threads) {
        pool_.setMaxThreadCount(threads);
        pool_.setExpiryTimeout(-1); // a thread keeps the fonts that it has loaded
    }
    void run(std::function<void()> task) override {
        {
            const std::lock_guard lock(mutex_);
            tasks_.push_back(std::move(task));
        }
        pool_.start([this] { doNext(); });
    }
    void finish() override { pool_.waitForDone(); }

  private:
    void doNext() {
        std::unique_lock lock(mutex_);
        const std::function<void()> task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        task();
    }

    std::mutex mutex_;
    std::deque<std::function<void()>> tasks_;
    QThreadPool pool_; // ends first, with the tasks
};

Executor* replacement = nullptr;

Pool& pool() {
    static Pool threads(std::clamp(QThread::idealThreadCount(), kFewestThreads, kMostThreads));
    // The threads keep fonts, which must be gone before the application is.
    static const bool endsInTime = [] {
        qAddPostRoutine([] { pool().finish(); });
        return true;
    }();
    (void)endsInTime;
    return threads;
}

Pool& readingPool() {
    static Pool threads(kReadingThreads);
    return threads;
}

} // namespace

Executor& workers() {
    return replacement != nullptr ? *replacement : pool();
}

Executor& readers() {
    return readingPool();
}

WorkersReplacement::WorkersReplacement(Executor& other)
    : before_(std::exchange(replacement, &other)) {}

WorkersReplacement::~WorkersReplacement() {
    replacement = before_;
}

} // namespace app
