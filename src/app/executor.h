// Where work is done that the window must not wait for.
#pragma once

#include <functional>

namespace app {

class Executor {
  public:
    virtual ~Executor() = default;
    Executor(const Executor&) = delete;
    Executor& operator=(const Executor&) = delete;

    // Does the task later, on another thread; tasks are begun in the order in which they come. A
    // task must not throw.
    virtual void run(std::function<void()> task) = 0;

    // Returns once no task is running or waiting.
    virtual void finish() = 0;

  protected:
    Executor() = default;
};

// The threads of this program for reading and decoding pictures: at least two, at most four. They
// end with the application object, so tasks may use fonts.
Executor& workers();

// Threads for short reading that the user waits for, which must not stand behind the decoding of
// large pictures.
Executor& readers();

// Has workers() be another executor for as long as this lives: tests step through it.
class WorkersReplacement {
  public:
    explicit WorkersReplacement(Executor& replacement);
    ~WorkersReplacement();
    WorkersReplacement(const WorkersReplacement&) = delete;
    WorkersReplacement& operator=(const WorkersReplacement&) = delete;

  private:
    Executor* before_;
};

} // namespace app
