// Workers whose every task waits for the test, so that nothing depends on who is faster.
#pragma once

#include "app/executor.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstddef>
#include <deque>
#include <functional>
#include <thread>
#include <utility>

class SteppedExecutor : public app::Executor {
  public:
    void run(std::function<void()> task) override { tasks_.push_back(std::move(task)); }
    void finish() override {
        while (!tasks_.empty()) {
            doNext();
        }
    }

    std::size_t waiting() const { return tasks_.size(); }

    // Does the task that has waited longest, on another thread, and has its result delivered.
    // False: there is none.
    bool step() {
        if (tasks_.empty()) {
            return false;
        }
        doNext();
        QCoreApplication::processEvents();
        return true;
    }

    // The same with the task that came last, as if another worker had the others in hand.
    bool stepLatest() {
        std::rotate(tasks_.begin(), tasks_.end() - (tasks_.empty() ? 0 : 1), tasks_.end());
        return step();
    }

    // Returns how many tasks there were, those that came meanwhile included.
    int stepAll() {
        int steps = 0;
        while (step()) {
            ++steps;
        }
        return steps;
    }

  private:
    void doNext() {
        auto task = std::move(tasks_.front());
        tasks_.pop_front();
        std::thread(task).join();
    }

    std::deque<std::function<void()>> tasks_;
};
