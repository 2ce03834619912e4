// Several processes change one library at random and are killed at random moments: whatever one of
// them was told to be done is there, nothing is half done, nothing is found damaged, and no lock is
// left behind.
//
// Each of them does many operations with what it remembers of the files, so that a page from before
// another's change would show. TXS_STRESS_OPERATIONS sets how many operations each of them does.
#include "compound/compound_file.h"
#include "compound/error.h"
#include "platform/native_disk.h"
#include "platform/own_home.h"
#include "stress/library_state.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <iostream>
#include <optional>
#include <poll.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace stress {
namespace {

constexpr std::uint32_t kWorkers = 4;

std::size_t operationsOfEach() {
    const char* text = std::getenv("TXS_STRESS_OPERATIONS");
    return text == nullptr ? 60 : std::strtoul(text, nullptr, 10);
}

// What a worker tells: that it begins, that it is done, and at last what is wrong.
struct Message {
    enum class Kind : std::uint8_t { Begin, Done, Fault };
    Kind kind = Kind::Begin;
    Operation operation;
    char fault[400] = {};
};
static_assert(sizeof(Message) <= PIPE_BUF, "it arrives in one piece");

// In the child: works until it has done its part, or is killed.
class Worker {
  public:
    Worker(const Share& share, int pipe) : share_(share), pipe_(pipe) {}

    [[noreturn]] void work(State state, std::size_t operations, std::uint32_t seed) {
        std::mt19937 random(seed);
        try {
            for (std::size_t i = 0; i < operations; ++i) {
                const Operation operation = Share::choose(state, random);
                tell({Message::Kind::Begin, operation});
                share_.run(operation);
                Share::apply(operation, state);
                if (operation.action == Action::Look && share_.read() != state) {
                    throw std::runtime_error("the library is not as this process has left it");
                }
                tell({Message::Kind::Done, operation});
            }
        } catch (const std::exception& error) {
            Message message{Message::Kind::Fault, {}};
            std::strncpy(message.fault, error.what(), sizeof message.fault - 1);
            tell(message);
        }
        ::_exit(0);
    }

  private:
    void tell(const Message& message) const {
        if (::write(pipe_, &message, sizeof message) != sizeof message) {
            ::_exit(1);
        }
    }

    const Share& share_;
    int pipe_;
};

// In the parent: one worker after the other, each going on where the one before was killed.
class Line {
  public:
    Line(Share share, std::uint32_t number)
        : share_(std::move(share)), random_(number), left_(operationsOfEach()) {}

    void start() {
        int ends[2] = {};
        ASSERT_EQ(::pipe(ends), 0);
        messagesLeft_ = 1 + random_() % 30;
        const auto seed = static_cast<std::uint32_t>(random_());
        process_ = ::fork();
        ASSERT_GE(process_, 0);
        if (process_ == 0) {
            ::close(ends[0]);
            Worker(share_, ends[1]).work(state_, left_, seed);
        }
        ::close(ends[1]);
        pipe_ = ends[0];
    }

    // Takes the next message; kills the worker when its time has come, and starts another one.
    void listen() {
        Message message;
        if (::read(pipe_, &message, sizeof message) != sizeof message) {
            end();
            return;
        }
        if (message.kind == Message::Kind::Begin) {
            pending_ = message.operation;
        } else if (message.kind == Message::Kind::Done) {
            finish(message.operation);
        } else {
            ADD_FAILURE() << message.fault;
        }
        if (--messagesLeft_ == 0 && left_ > 1) {
            waste(random_() % 50000); // so that it is killed anywhere in an operation
            ::kill(process_, SIGKILL);
        }
    }

    bool isAtWork() const { return pipe_ >= 0; }
    int pipe() const { return pipe_; }
    std::size_t kills() const { return kills_; }

  private:
    // Calls to the system, that are not optimised away.
    static void waste(std::size_t calls) {
        for (std::size_t i = 0; i < calls; ++i) {
            ::getppid();
        }
    }

    void finish(const Operation& operation) {
        Share::apply(operation, state_);
        pending_.reset();
        left_ -= 1;
    }

    void end() {
        ::close(pipe_);
        pipe_ = -1;
        int status = 0;
        ASSERT_EQ(::waitpid(process_, &status, 0), process_);
        compare();
        if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) {
            ++kills_;
            if (!::testing::Test::HasFailure()) {
                start();
            }
            return;
        }
        EXPECT_EQ(status, 0);
        EXPECT_EQ(left_, 0U);
    }

    // What was going on when it was killed is done, or not at all.
    void compare() {
        const State now = share_.read();
        State after = state_;
        if (pending_) {
            Share::apply(*pending_, after);
        }
        EXPECT_TRUE(now == state_ || now == after) << difference(now);
        state_ = now;
        pending_.reset();
    }

    std::string difference(const State& now) const {
        std::ostringstream out;
        if (pending_) {
            out << "action " << static_cast<int>(pending_->action) << " in group "
                << pending_->group << ", picture " << pending_->picture << '\n';
        }
        for (const auto& [key, version] : state_) {
            const auto found = now.find(key);
            if (found == now.end() || found->second != version) {
                out << "- " << key << ": " << version << '\n';
            }
        }
        for (const auto& [key, version] : now) {
            const auto found = state_.find(key);
            if (found == state_.end() || found->second != version) {
                out << "+ " << key << ": " << version << '\n';
            }
        }
        return out.str();
    }

    Share share_;
    std::mt19937 random_;
    State state_; // as told
    std::optional<Operation> pending_;
    std::size_t left_;
    std::size_t messagesLeft_ = 0; // until it is killed
    std::size_t kills_ = 0;
    pid_t process_ = 0;
    int pipe_ = -1;
};

void expectSoundAndFree(const std::filesystem::path& folder) {
    store::Library library = libraryIn(folder);
    for (const store::FileName& file : store::groupFiles(library)) {
        const auto path = store::pathOf(library, file);
        auto disk = library.disk.open(path, compound::Access::Read);
        EXPECT_TRUE(disk->lock(std::chrono::milliseconds{0})) << path << " is locked";
        auto compound = compound::CompoundFile::open(std::move(disk), compound::Access::Read);
        for (const compound::Finding& finding : compound.check()) {
            EXPECT_EQ(finding.severity, compound::Severity::Remark)
                << path << ": " << finding.where << ": " << finding.what;
        }
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        EXPECT_EQ(entry.path().extension(), ".stg") << "something is left behind";
    }
}

TEST(Stress, ProcessesThatAreKilledLoseNothingOfEachOther) {
    const OwnHome home;
    const std::filesystem::path sources = home.at("sources").toStdString();
    const std::filesystem::path folder = home.at("library").toStdString();
    std::filesystem::create_directory(sources);
    std::filesystem::create_directory(folder);
    prepare(libraryIn(folder));
    std::vector<Line> lines;
    for (std::uint32_t i = 0; i < kWorkers; ++i) {
        lines.emplace_back(Share(libraryIn(folder), sources, i), i);
        lines.back().start();
    }
    while (
        std::any_of(lines.begin(), lines.end(), [](const Line& line) { return line.isAtWork(); })) {
        std::vector<struct pollfd> waiting;
        for (const Line& line : lines) {
            waiting.push_back({line.pipe(), POLLIN, 0}); // one without a pipe is passed over
        }
        ASSERT_TRUE(::poll(waiting.data(), waiting.size(), -1) > 0 || errno == EINTR);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (waiting[i].revents != 0) {
                lines[i].listen();
            }
        }
    }
    expectSoundAndFree(folder);
    std::size_t kills = 0;
    for (const Line& line : lines) {
        kills += line.kills();
    }
    std::cout << kWorkers * operationsOfEach() << " operations of " << kWorkers
              << " processes, killed " << kills << " times\n";
}

} // namespace
} // namespace stress
