// Whatever bytes a group file holds, the tool tells, and goes on.
#include "tool/tool_fixture.h"

#include <random>
#include <sys/resource.h>

namespace tool::testing {
namespace {

constexpr int kMutations = 300;
constexpr long kMaximumGrowth = 200L * 1024; // kilobytes

long peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMemoryIsTold = false; // the sanitizer keeps freed memory
#else
constexpr bool kMemoryIsTold = true;
#endif

class Mutator {
  public:
    // Lies where they hurt: header, tables and directory consist of 32-bit numbers.
    void mutate(std::string& bytes) {
        const int changes = static_cast<int>(below(6)) + 1;
        for (int i = 0; i < changes; ++i) {
            if (below(3) == 0) {
                bytes[below(bytes.size())] = static_cast<char>(below(256));
            } else {
                writeNumber(bytes, below(4) == 0 ? below(512 / 4) : below(bytes.size() / 4));
            }
        }
        if (below(8) == 0) {
            bytes.resize(below(bytes.size()));
        }
    }

  private:
    std::size_t below(std::size_t limit) { return random_() % limit; }

    void writeNumber(std::string& bytes, std::size_t index) {
        const std::uint32_t numbers[] = {0,          1,          0xFFFFFFFF, 0xFFFFFFFE,
                                         0xFFFFFFFD, 0x7FFFFFFF, 0x80000000, 0x00010000};
        const auto number = below(2) == 0 ? static_cast<std::uint32_t>(below(64))
                                          : numbers[below(std::size(numbers))];
        for (std::size_t i = 0; i < 4; ++i) {
            bytes[index * 4 + i] = static_cast<char>((number >> (8 * i)) & 0xFFU);
        }
    }

    std::mt19937 random_{20260621};
};

TEST_F(ToolTest, MutatedGroupFilesEndInAMessage) {
    succeed({"new-group", "Pumps"});
    succeed({"new-group", "Rotary", "--below", "Pumps"});
    std::vector<std::string> words{"add", "Sub1/Pumps"};
    for (int i = 0; i < 30; ++i) {
        words.push_back(picture("p" + std::to_string(i) + ".bmp", i * 3 + 1, i + 1));
    }
    succeed(words);
    const std::filesystem::path file = libraryFolder() / "Pumps.stg";
    const std::string sound = contentOf(file);
    const long before = peakMemory();
    Mutator mutator;
    for (int i = 0; i < kMutations; ++i) {
        std::string bytes = sound;
        mutator.mutate(bytes);
        writeFile(file, bytes);
        const std::vector<std::vector<std::string>> reading{
            {"groups"},
            {"pictures", "Sub1/Pumps"},
            {"extract", "Sub1/Pumps", "p20", "-"},
            {"check", file.string()},
        };
        for (const std::vector<std::string>& command : reading) {
            const Result result = run(command);
            const bool isTold = !result.err.empty() || command.front() == "check";
            EXPECT_TRUE(result.status == ExitStatus::Done || isTold) << command.front();
        }
        EXPECT_EQ(contentOf(file), bytes) << "reading has written";
        // Changing it may fail or succeed; what is left must be readable or refused again.
        run({"add", "Sub1/Pumps", words[2 + static_cast<std::size_t>(i) % 30], "--name", "more"});
        run({"remove-picture", "Sub1/Pumps", "p5"});
        run({"remove-group", "Sub1/Pumps"});
    }
    if (kMemoryIsTold) {
        EXPECT_LT(peakMemory() - before, kMaximumGrowth);
    }
}

} // namespace
} // namespace tool::testing
