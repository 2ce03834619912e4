#include "browser/library_watch.h"

#include "app/long_operation.h"
#include "platform/shared_volume.h"

#include <QApplication>

#include <chrono>
#include <utility>

namespace browser {
namespace {

using namespace std::chrono_literals;
using Next = groups::LibraryChanges::Next;

constexpr auto kBurst = 250ms;  // what happens in that time is looked at once
constexpr auto kLater = 3500ms; // then a change a moment ago has got another time stamp
constexpr auto kHeld = 50ms;
constexpr auto kPollUntold = 3000ms; // where nobody tells of changes
constexpr auto kPollTold = 60s; // a link may lead to a file elsewhere, a queue may have overflowed

bool isMenuOpen() {
    return QApplication::activePopupWidget() != nullptr;
}

} // namespace

LibraryWatch::LibraryWatch(Noticing noticing, QObject* parent)
    : QObject(parent), noticing_(noticing) {
    for (QTimer* timer : {&soon_, &later_, &poll_}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, &LibraryWatch::look);
    }
    held_.setSingleShot(true);
    held_.setInterval(kHeld);
    connect(&held_, &QTimer::timeout, this, &LibraryWatch::take);
    soon_.setInterval(kBurst);
    later_.setInterval(kLater);
    connect(&job_, &app::Job::done, this, &LibraryWatch::take);
}

void LibraryWatch::start(const store::Library& library,
                         std::function<std::optional<groups::ShownPictures>()> shown) {
    library_ = &library;
    shown_ = std::move(shown);
    if (noticing_ == Noticing::ByItself) {
        folder_ = std::make_unique<platform::FolderWatch>(library.folder, [this] { lookSoon(); });
        later_.start();
    }
}

void LibraryWatch::stop() {
    folder_.reset();
    dropLook();
    for (QTimer* timer : {&soon_, &later_, &poll_}) {
        timer->stop();
    }
    library_ = nullptr;
    isUnfinished_ = false;
}

void LibraryWatch::dropLook() {
    job_.drop();
    held_.stop();
}

void LibraryWatch::remember(const std::vector<groups::GroupFile>& files) {
    dropLook();
    known_ = groups::knownFrom(files);
    if (folder_) {
        later_.start();
    }
    emit remembered(files);
}

void LibraryWatch::lookAnew(const std::optional<store::FileName>& file) {
    if (file) {
        known_.erase(file->text);
    }
    if (job_.isBusy() || held_.isActive() || file) {
        dropLook();
        lookSoon();
    }
}

void LibraryWatch::lookSoon() {
    if (folder_ && !soon_.isActive()) {
        soon_.start();
    }
}

void LibraryWatch::look() {
    if (library_ == nullptr) {
        return;
    }
    // One that runs looks at an older state; a long operation may hold its group's file to its end.
    if (job_.isBusy() || held_.isActive() || isMenuOpen() || app::isLongOperationRunning()) {
        lookSoon();
        return;
    }
    job_.start([library = *library_,
                look = groups::LookAtLibrary{known_, shown_(),
                                             QApplication::activeModalWidget() == nullptr}] {
        return Looked{groups::lookForChanges(library, look),
                      platform::isSharedVolume(library.folder)};
    });
}

void LibraryWatch::take() {
    if (isMenuOpen()) {
        held_.start();
        return;
    }
    const auto [changes, isShared] = std::exchange(job_.result(), {});
    if (changes.isReachable) {
        known_ = changes.known;
    }
    isUnfinished_ = changes.next == Next::AtOnce;
    if (isUnfinished_) {
        QMetaObject::invokeMethod(this, &LibraryWatch::look, Qt::QueuedConnection);
    } else if (folder_) {
        if (changes.next == Next::Later) {
            later_.start();
        }
        poll_.start(folder_->isWatching() && !isShared ? kPollTold : kPollUntold);
    }
    emit changed(changes);
}

} // namespace browser
