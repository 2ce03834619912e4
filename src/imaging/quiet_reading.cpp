#include "imaging/quiet_reading.h"

#include <QtGlobal>

#include <atomic>

namespace imaging {

namespace {

thread_local int quietDepth = 0;
std::atomic<QtMessageHandler> otherwise = nullptr;

void handle(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const bool isDropped = quietDepth > 0 && type != QtCriticalMsg && type != QtFatalMsg;
    const QtMessageHandler next = otherwise;
    if (!isDropped && next != nullptr) {
        next(type, context, message);
    }
}

} // namespace

QuietReading::QuietReading() {
    // Once; whoever installs a handler later is asked first and decides alone.
    static const bool installed = [] {
        otherwise = qInstallMessageHandler(handle);
        return true;
    }();
    static_cast<void>(installed);
    ++quietDepth;
}

QuietReading::~QuietReading() {
    --quietDepth;
}

} // namespace imaging
