#include "app/unattended.h"

#include "app/message_box.h"

#include <cstdio>

namespace app {

void tell(const QString& text) {
    std::fprintf(stderr, "txsgraphicslib: %s\n", qPrintable(text));
}

void answerBoxesAlone() {
    setMsgBoxHandler([](const QString& text, Buttons, const QString&, QWidget*) -> int {
        tell(text);
        return kAnswerNo;
    });
}

} // namespace app
