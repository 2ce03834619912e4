// The system's requests that the program end: of a user at a terminal or of a terminal that goes
// away, of a service manager or of a machine that is shut down.
#pragma once

#include <functional>
#include <memory>

namespace platform {

// While the object lives, such a request calls `onRequest`, instead of ending the process, in the
// event loop of the thread that has made the object. Each request calls it again. Requests that the
// program was started to ignore (nohup) stay ignored. One object at a time. Throws compound::Error
// when the system has no room for it.
class TerminationRequests {
  public:
    explicit TerminationRequests(std::function<void()> onRequest);
    ~TerminationRequests(); // then a request ends the process again
    TerminationRequests(const TerminationRequests&) = delete;
    TerminationRequests& operator=(const TerminationRequests&) = delete;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace platform
