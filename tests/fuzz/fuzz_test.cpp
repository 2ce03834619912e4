// Every target with its seeds and with so many changed seeds, the same ones every time.
#include "fuzz/target.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace fuzz {
namespace {

constexpr int kChangedSeeds = 400;

class Mutator {
  public:
    explicit Mutator(const Target& target) : words_(target.words) {
        for (const auto& [name, bytes] : target.seeds()) {
            seeds_.push_back(bytes);
        }
    }

    Bytes next() {
        Bytes bytes = seeds_[below(seeds_.size())];
        for (std::size_t left = 1 + below(4); left > 0 && !bytes.empty(); --left) {
            changeOnce(bytes);
        }
        return bytes;
    }

  private:
    std::size_t below(std::size_t end) { return random_() % end; }

    void changeOnce(Bytes& bytes) {
        const std::size_t at = below(bytes.size());
        const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const std::size_t length = std::min(below(64), bytes.size() - at);
        const auto end = place + static_cast<std::ptrdiff_t>(length);
        switch (below(6)) {
        case 0:
            *place ^= static_cast<std::byte>(1U << below(8));
            break;
        case 1:
            *place = static_cast<std::byte>(below(256));
            break;
        case 2:
            bytes.erase(place, end);
            break;
        case 3: {
            const Bytes copied(place, end);
            bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(below(bytes.size())),
                         copied.begin(), copied.end());
            break;
        }
        case 4:
            std::fill(place, place + static_cast<std::ptrdiff_t>(std::min<std::size_t>(length, 4)),
                      static_cast<std::byte>(below(2) * 0xFF));
            break;
        default: {
            const std::string& word = words_[below(words_.size())];
            const std::size_t fits = std::min(word.size(), bytes.size() - at);
            std::copy_n(std::as_bytes(std::span(word)).begin(), fits, place);
        }
        }
    }

    std::vector<Bytes> seeds_;
    std::vector<std::string> words_;
    std::mt19937 random_{1};
};

class FuzzTest : public testing::TestWithParam<Target> {};

TEST_P(FuzzTest, SurvivesSeedsAndChangedSeeds) {
    const auto seeds = GetParam().seeds();
    ASSERT_FALSE(seeds.empty());
    for (const auto& [name, bytes] : seeds) {
        EXPECT_NO_THROW(GetParam().use(bytes)) << name;
    }
    Mutator mutator(GetParam());
    for (int i = 0; i < kChangedSeeds; ++i) {
        const Bytes bytes = mutator.next();
        ASSERT_NO_THROW(GetParam().use(bytes)) << "changed seed " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Every, FuzzTest, testing::ValuesIn(allTargets()), [](const auto& each) {
    std::string name = each.param.name;
    std::erase(name, '-'); // which no test's name may have
    return name;
});

} // namespace
} // namespace fuzz
