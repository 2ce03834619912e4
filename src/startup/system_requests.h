// What the system wants of the program: to end, or to be ready for the end of the session.
#pragma once

#include "platform/termination.h"

#include <QObject>

#include <functional>

namespace startup {

// While it lives, a request to end leaves the program as its Exit command does, whatever dialog is
// open: their question is answered as by Escape. At the end of the desktop's session what the next
// run remembers is saved first, since another program may still keep the session; then the desktop
// closes the window. Boxes of that time are told on stderr.
class SystemRequests : public QObject {
  public:
    // `leave` ends the program, `save` saves what the next run remembers.
    SystemRequests(std::function<void()> leave, std::function<void()> save);

  private:
    void prepareForSessionEnd();

    std::function<void()> save_;
    platform::TerminationRequests termination_;
};

} // namespace startup
