#include "startup/system_requests.h"

#include "app/message_box.h"
#include "browser/frm_main.h"
#include "startup/unattended.h"

#include <QGuiApplication>

namespace startup {

SystemRequests::SystemRequests(browser::frmMain& window)
    : window_(window), termination_([this] { leave(); }) {
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { prepareForSessionEnd(); },
        Qt::DirectConnection); // it is over when the desktop has its answer
}

void SystemRequests::leave() {
    answerBoxesAlone();
    window_.close();
    QCoreApplication::exit(); // also out of open dialogs
}

void SystemRequests::prepareForSessionEnd() {
    const app::MsgBoxHandler before = app::setMsgBoxHandler({});
    answerBoxesAlone();
    window_.saveSettings();
    app::setMsgBoxHandler(before);
}

} // namespace startup
