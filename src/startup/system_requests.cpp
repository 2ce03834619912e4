#include "startup/system_requests.h"

#include "app/message_box.h"
#include "app/unattended.h"

#include <QGuiApplication>

#include <utility>

namespace startup {

SystemRequests::SystemRequests(std::function<void()> leave, std::function<void()> save)
    : save_(std::move(save)), termination_([leaveNow = std::move(leave)] {
          app::answerBoxesAlone();
          leaveNow();
      }) {
    connect(
        qApp, &QGuiApplication::commitDataRequest, this, [this] { prepareForSessionEnd(); },
        Qt::DirectConnection); // it is over when the desktop has its answer
}

void SystemRequests::prepareForSessionEnd() {
    const app::MsgBoxHandler before = app::setMsgBoxHandler({});
    app::answerBoxesAlone();
    save_();
    app::setMsgBoxHandler(before);
}

} // namespace startup
