#include "ui/event_meter.h"

#include <QEvent>
#include <QThread>

#include <ctime>
#include <utility>

namespace {

std::chrono::nanoseconds threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

EventMeter::Costly EventMeter::takeCostliest() {
    return std::exchange(costliest_, {});
}

void EventMeter::count(const Running& running) {
    const auto time = threadTime() - running.since;
    if (time > costliest_.time) {
        costliest_ = {time, running.event};
    }
}

// An event that another one sends is a part of it; one that comes while the other one waits in a
// loop of its own interrupts it.
bool EventMeter::notify(QObject* receiver, QEvent* event) {
    const bool isOurs = QThread::currentThread() == thread();
    const int level = isOurs ? QThread::currentThread()->loopLevel() : 0;
    if (!isOurs || (!running_.empty() && running_.back().loopLevel == level)) {
        return QApplication::notify(receiver, event);
    }
    if (!running_.empty()) {
        count(running_.back());
    }
    running_.push_back(
        {level, threadTime(),
         QStringLiteral("%1 to %2 %3")
             .arg(QString::number(event->type()),
                  QLatin1String(receiver->metaObject()->className()), receiver->objectName())});
    const bool isTaken = QApplication::notify(receiver, event);
    count(running_.back());
    running_.pop_back();
    if (!running_.empty()) {
        running_.back().since = threadTime();
    }
    return isTaken;
}
