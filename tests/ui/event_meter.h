// The program's events with a meter on them: how much of the processor's time the window's thread
// takes for a single one. While the thread waits for the processor, the disk or a lock the meter
// stands still, so that a busy machine changes nothing.
#pragma once

#include <QApplication>
#include <QString>

#include <chrono>
#include <vector>

class EventMeter : public QApplication {
  public:
    using QApplication::QApplication;

    struct Costly {
        std::chrono::nanoseconds time{0};
        QString event; // its type and its receiver
    };
    // The costliest event, or part of one between those that it waited for in a loop of its own,
    // since the last call.
    Costly takeCostliest();

    bool notify(QObject* receiver, QEvent* event) override;

  private:
    struct Running {
        int loopLevel;
        std::chrono::nanoseconds since; // on the thread's clock
        QString event;
    };
    void count(const Running& running);

    std::vector<Running> running_;
    Costly costliest_;
};
