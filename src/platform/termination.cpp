#include "platform/termination.h"

#include "compound/error.h"
#include "platform/file_descriptor.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace platform {
namespace {

constexpr std::array kSignals{SIGTERM, SIGHUP, SIGINT};

// All that a signal's handler may touch.
std::atomic<int> writeEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void passOn(int) {
    const int before = errno;
    const char byte = 0;
    (void)!::write(writeEnd.load(), &byte, 1); // a full pipe has said it already
    errno = before;
}

std::array<FileDescriptor, 2> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        throw compound::systemError(errno, {}, "listen for the system's signals");
    }
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

// A shell gives its background commands an ignored interrupt, which is no wish of the user's.
bool shallStayIgnored(int signal) {
    struct sigaction present {};
    return signal == SIGHUP && ::sigaction(signal, nullptr, &present) == 0 &&
           present.sa_handler == SIG_IGN;
}

} // namespace

struct TerminationRequests::State {
    explicit State(std::function<void()> action)
        : onRequest(std::move(action)), notifier(pipe[0].get(), QSocketNotifier::Read) {}

    void drain() const {
        std::array<char, 16> bytes{};
        while (::read(pipe[0].get(), bytes.data(), bytes.size()) > 0) {
        }
    }

    std::function<void()> onRequest;
    std::array<FileDescriptor, 2> pipe = makePipe();
    QSocketNotifier notifier;
    std::array<struct sigaction, kSignals.size()> before{};
};

TerminationRequests::TerminationRequests(std::function<void()> onRequest)
    : state_(std::make_unique<State>(std::move(onRequest))) {
    QObject::connect(&state_->notifier, &QSocketNotifier::activated, &state_->notifier,
                     [state = state_.get()] {
                         state->drain();
                         state->onRequest();
                     });
    writeEnd = state_->pipe[1].get();
    struct sigaction action {};
    action.sa_handler = passOn;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        const bool isKept = shallStayIgnored(kSignals.at(i));
        ::sigaction(kSignals.at(i), isKept ? nullptr : &action, &state_->before.at(i));
    }
}

TerminationRequests::~TerminationRequests() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals.at(i), &state_->before.at(i), nullptr);
    }
    writeEnd = -1;
}

} // namespace platform
