#include "startup/unattended.h"

#include "app/message_box.h"

#include <cstdio>

namespace startup {

void tell(const QString& text) {
    std::fprintf(stderr, "txsgraphicslib: %s\n", qPrintable(text));
}

void answerBoxesAlone() {
    app::setMsgBoxHandler([](const QString& text, app::Buttons, const QString&, QWidget*) -> int {
        tell(text);
        return app::kAnswerNo;
    });
}

} // namespace startup
