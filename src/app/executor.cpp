#include "app/executor.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <utility>

namespace app {
namespace {

// Every thread may have a picture of a hundred megabytes in its hands.
constexpr int kFewestThreads = 2;
constexpr int kMostThreads = 4;

class Pool final : public Executor {
  public:
    Pool() {
        pool_.setMaxThreadCount(
            std::clamp(QThread::idealThreadCount(), kFewestThreads, kMostThreads));
        pool_.setExpiryTimeout(-1); // a thread keeps the fonts that it has loaded
    }
    void run(std::function<void()> task) override { pool_.start(std::move(task)); }
    void finish() override { pool_.waitForDone(); }

  private:
    QThreadPool pool_;
};

Executor* replacement = nullptr;

Pool& pool() {
    static Pool threads;
    // The threads keep fonts, which must be gone before the application is.
    static const bool endsInTime = [] {
        qAddPostRoutine([] { pool().finish(); });
        return true;
    }();
    (void)endsInTime;
    return threads;
}

} // namespace

Executor& workers() {
    return replacement != nullptr ? *replacement : pool();
}

WorkersReplacement::WorkersReplacement(Executor& other)
    : before_(std::exchange(replacement, &other)) {}

WorkersReplacement::~WorkersReplacement() {
    replacement = before_;
}

} // namespace app
