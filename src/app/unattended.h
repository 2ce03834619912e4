// Running without anybody who could answer a box.
#pragma once

#include <QString>

namespace app {

// One line on stderr, after the program's name.
void tell(const QString& text);

// From now on boxes are told on stderr and answered with No, so that nothing waits and nothing is
// changed.
void answerBoxesAlone();

} // namespace app
