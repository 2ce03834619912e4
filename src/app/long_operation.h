// Running what may take long on a thread of its own while the window stays alive.
//
// At first nothing is seen of it: most such work ends before anybody could read a window about it,
// and meanwhile the user's clicks and keys wait. After a moment a modal window, `frmFortschritt`,
// shows what is done, how far it is, and how to stop it where that can be done without a trace.
#pragma once

#include "store/progress.h"

#include <QString>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

class QObject;
class QWidget;

namespace app {

struct LongOperation {
    enum class Stopping { Offered, NotOffered };
    enum class Counting { Bytes, Pieces }; // what the work reports

    QString what; // a sentence without a full stop: "Die Gruppe wird umbenannt"
    Stopping stopping = Stopping::NotOffered;
    Counting counting = Counting::Bytes;
    std::chrono::milliseconds patience{400}; // before the window is shown
};

// Returns when `work` has ended, and throws what it has thrown. `work` may use whatever the caller
// keeps alive and does not touch meanwhile. One at a time: `work` of an operation that is started
// while another one runs is done at once, on the caller's thread.
void runLong(const LongOperation& operation, QWidget* owner,
             const std::function<void(store::Progress&)>& work);

// The same where the caller's own window shows how far the work is: `look` is called at once and
// then every so often, in the caller's thread, with what the work has reported. The caller must
// offer the user nothing but stopLongOperation() meanwhile.
void runLongShown(const std::function<void(std::uint64_t done, std::uint64_t total)>& look,
                  const std::function<void(store::Progress&)>& work);

// Asks the running operation, if there is one, to stop.
void stopLongOperation();

// runLong() for work that gives something.
template <typename Result>
Result resultOfLong(const LongOperation& operation, QWidget* owner,
                    const std::function<Result(store::Progress&)>& work) {
    std::unique_ptr<Result> result;
    runLong(operation, owner,
            [&](store::Progress& progress) { result = std::make_unique<Result>(work(progress)); });
    return std::move(*result);
}

// An operation that only reads, for what the user waits to see.
LongOperation readingLibrary();

// The same for a few pages of group files: a disk may take its time, or another program hold a
// lock.
template <typename Read>
auto resultOfReading(QWidget* owner, const Read& read) {
    return resultOfLong<decltype(read())>(readingLibrary(), owner,
                                          [&](store::Progress&) { return read(); });
}

// Whether one is running. What would wait for its group file is to be put off until it has ended.
bool isLongOperationRunning();

// Has `then` called in the event loop once none is running; asks the running one to stop. Nothing
// is called when `context` has gone by then.
void afterLongOperation(QObject* context, const std::function<void()>& then);

} // namespace app
