#include "app/long_operation.h"

#include "app/progress_window.h"
#include "app/texts.h"
#include "app/wait_cursor.h"

#include <QEventLoop>
#include <QPointer>
#include <QTimer>

#include <atomic>
#include <exception>
#include <thread>
#include <vector>

namespace app {
namespace {

// What the operation's thread writes and the window reads.
class SharedProgress final : public store::Progress {
  public:
    void report(std::uint64_t done, std::uint64_t total) override {
        total_ = total;
        done_ = done;
    }
    bool isStopWanted() override { return stop_; }

    void stop() { stop_ = true; }
    std::uint64_t done() const { return done_; }
    std::uint64_t total() const { return total_; }

  private:
    std::atomic<std::uint64_t> done_ = 0;
    std::atomic<std::uint64_t> total_ = 0;
    std::atomic<bool> stop_ = false;
};

struct Waiting {
    QPointer<QObject> context;
    std::function<void()> then;
};

SharedProgress* running = nullptr;
std::vector<Waiting> waiting;

// Marks the time of the running operation.
class Running {
  public:
    explicit Running(SharedProgress& progress) { running = &progress; }
    ~Running() {
        running = nullptr;
        for (const Waiting& next : std::exchange(waiting, {})) {
            if (next.context) {
                QMetaObject::invokeMethod(next.context, next.then, Qt::QueuedConnection);
            }
        }
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
};

void waitWithoutWindow(QEventLoop& loop, std::chrono::milliseconds patience) {
    const WaitCursor waits;
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

constexpr std::chrono::milliseconds kLookInterval{50};

using Look = std::function<void(std::uint64_t, std::uint64_t)>;

void waitLooking(QEventLoop& loop, const SharedProgress& progress, const Look& look) {
    const auto lookNow = [&] { look(progress.done(), progress.total()); };
    QTimer looking;
    QObject::connect(&looking, &QTimer::timeout, lookNow);
    lookNow();
    looking.start(kLookInterval);
    loop.exec();
}

void waitWithWindow(QEventLoop& loop, const LongOperation& operation, QWidget* owner,
                    SharedProgress& progress) {
    const bool canStop = operation.stopping == LongOperation::Stopping::Offered;
    const bool countsBytes = operation.counting == LongOperation::Counting::Bytes;
    ProgressWindow window(
        operation.what, canStop,
        countsBytes ? ProgressWindow::Amounts::Megabytes : ProgressWindow::Amounts::Pieces, owner);
    QObject::connect(&window, &ProgressWindow::stopWanted, &window, [&] { progress.stop(); });
    window.show();
    waitLooking(loop, progress,
                [&](std::uint64_t done, std::uint64_t total) { window.showProgress(done, total); });
}

// Runs `work` on a thread of its own while `wait` keeps the caller's one busy: until the loop is
// quit, or the flag set, which says that the work has ended.
void runBeside(
    const std::function<void(store::Progress&)>& work,
    const std::function<void(QEventLoop&, const std::atomic<bool>&, SharedProgress&)>& wait) {
    if (isLongOperationRunning()) {
        work(store::noProgress());
        return;
    }
    SharedProgress progress;
    const Running mark(progress);
    QEventLoop loop;
    std::atomic<bool> hasEnded = false;
    std::exception_ptr failure;
    std::thread thread([&] {
        try {
            work(progress);
        } catch (...) {
            failure = std::current_exception();
        }
        hasEnded = true;
        QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
    });
    wait(loop, hasEnded, progress);
    thread.join();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace

LongOperation readingLibrary() {
    constexpr app::TextPair kReading{u"Die Bibliothek wird gelesen", u"The library is being read"};
    return {text(kReading)};
}

void runLong(const LongOperation& operation, QWidget* owner,
             const std::function<void(store::Progress&)>& work) {
    runBeside(work,
              [&](QEventLoop& loop, const std::atomic<bool>& hasEnded, SharedProgress& progress) {
                  waitWithoutWindow(loop, operation.patience);
                  if (!hasEnded) {
                      waitWithWindow(loop, operation, owner, progress);
                  }
              });
}

void runLongShown(const Look& look, const std::function<void(store::Progress&)>& work) {
    runBeside(work, [&](QEventLoop& loop, const std::atomic<bool>&, SharedProgress& progress) {
        waitLooking(loop, progress, look);
    });
}

void stopLongOperation() {
    if (running != nullptr) {
        running->stop();
    }
}

bool isLongOperationRunning() {
    return running != nullptr;
}

void afterLongOperation(QObject* context, const std::function<void()>& then) {
    if (running == nullptr) {
        QMetaObject::invokeMethod(context, then, Qt::QueuedConnection);
        return;
    }
    running->stop();
    waiting.push_back({context, then});
}

} // namespace app
