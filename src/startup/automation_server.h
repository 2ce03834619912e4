// The start mode in which another program drives the library.
#pragma once

namespace startup {

// Shows nothing and serves calls on the session bus until one of them, the system or the end of the
// bus ends the program. The application object must exist and the language be chosen. Returns the
// exit status only when serving cannot begin; stderr says why. The end itself runs no more code of
// the program.
int runAutomationServer();

} // namespace startup
