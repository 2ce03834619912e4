// One request whose work is done on a worker thread, and whose result comes back as a signal in the
// thread of the object that asked.
//
// A job that is dropped (drop(), or destruction, or starting it anew) is not waited for: if its
// work has not begun it never does, otherwise its result is thrown away. Nothing that the work uses
// may belong to the one who asks: it takes copies, and what it only refers to must live until
// Executor::finish().
#pragma once

#include "app/executor.h"

#include <QObject>

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace app {

class Job : public QObject {
    Q_OBJECT

  public:
    enum class State {
        Idle,    // never started, or dropped
        Waiting, // for a worker, or for its work to end
        Done,    // the result is there
    };

    // The work is done by workers(), or by the executor that `by` gives.
    explicit Job(QObject* parent = nullptr, Executor& (*by)() = workers);
    ~Job() override;

    State state() const { return state_; }
    bool isBusy() const { return state_ == State::Waiting; }
    void drop();

  signals:
    void done();

  protected:
    // `work` is run on a worker; `take` brings what it has found here, just before done().
    void startWork(std::function<void()> work, std::function<void()> take);

    void customEvent(QEvent* event) override;

  private:
    struct Link;
    static void doWork(Link& link, std::uint64_t request, const std::function<void()>& work);

    Executor& (*executor_)();
    std::shared_ptr<Link> link_; // to the workers
    std::function<void()> take_;
    State state_ = State::Idle;
};

// A job with a result, which is valid from done() until the job is started anew.
template <typename Result>
class JobFor : public Job {
  public:
    using Job::Job;

    // `work` gives the result; it must not throw.
    void start(std::function<Result()> work) {
        auto found = std::make_shared<Result>();
        startWork([found, work = std::move(work)] { *found = work(); },
                  [this, found] { result_ = std::move(*found); });
    }

    Result& result() { return result_; }

  private:
    Result result_{};
};

} // namespace app
