// Numbers at the edges of words and of the whole set, against a set that looks at each one.
#include "compound/sector_bits.h"
#include "compound/sector_set.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace {

using compound::SectorBits;
using compound::SectorSet;

std::uint32_t below(std::uint32_t end, std::mt19937& random) {
    return static_cast<std::uint32_t>(random() % end);
}

// Runs of members and of gaps, some of them longer than a word.
SectorBits randomBits(std::mt19937& random, std::set<std::uint32_t>& numbers) {
    SectorBits bits;
    bool isIn = false;
    for (std::uint32_t at = 0; at < SectorBits::kCapacity; isIn = !isIn) {
        for (std::uint32_t left = 1 + below(below(3, random) == 0 ? 150 : 9, random);
             left > 0 && at < SectorBits::kCapacity; --left, ++at) {
            if (isIn) {
                EXPECT_TRUE(bits.insert(at));
                numbers.insert(at);
            }
        }
    }
    return bits;
}

SectorBits::Run runByLooking(const SectorBits& bits, std::uint32_t end, std::uint32_t enough) {
    SectorBits::Run longest;
    for (std::uint32_t at = 0, length = 0; at < end && longest.length < enough; ++at) {
        length = bits.contains(at) ? length + 1 : 0;
        if (length > longest.length) {
            longest = {at + 1 - length, length};
        }
    }
    return longest;
}

TEST(SectorBitsTest, WholeWordsTellWhatSingleBitsTell) {
    std::mt19937 random(5);
    for (int round = 0; round < 15; ++round) {
        std::set<std::uint32_t> numbers;
        SectorBits bits = randomBits(random, numbers);
        ASSERT_EQ(bits.size(), numbers.size());
        for (std::uint32_t at = 0; at <= SectorBits::kCapacity; ++at) {
            const auto next = numbers.lower_bound(at);
            ASSERT_EQ(bits.next(at), next == numbers.end() ? SectorBits::kCapacity : *next);
            ASSERT_EQ(bits.countBefore(at), std::distance(numbers.begin(), next));
            std::uint32_t gap = at;
            while (gap < SectorBits::kCapacity && numbers.contains(gap)) {
                ++gap;
            }
            ASSERT_EQ(bits.nextGap(at), gap);
        }
        for (const std::uint32_t enough : {1U, 16U, 63U, 64U, 65U, 200U}) {
            const std::uint32_t end = below(SectorBits::kCapacity + 1, random);
            const SectorBits::Run run = bits.runBefore(end, enough);
            const SectorBits::Run expected = runByLooking(bits, end, enough);
            ASSERT_EQ(run.length, expected.length);
            ASSERT_EQ(run.start, expected.start);
        }
        for (const std::uint32_t number : numbers) {
            ASSERT_TRUE(bits.erase(number));
            ASSERT_FALSE(bits.erase(number));
        }
        ASSERT_EQ(bits.size(), 0U);
    }
}

TEST(SectorBitsTest, ASetOfSectorsFindsTheNextOneBeforeAnEnd) {
    SectorSet sectors;
    for (const std::uint32_t sector : {5U, 1023U, 1024U, 5000U}) {
        sectors.insert(sector);
    }
    EXPECT_EQ(sectors.next(0, 2000), 5U);
    EXPECT_EQ(sectors.next(6, 2000), 1023U);
    EXPECT_EQ(sectors.next(1024, 2000), 1024U);
    EXPECT_EQ(sectors.next(1025, 5000), 5000U); // none
    EXPECT_EQ(sectors.next(1025, 5001), 5000U);
    EXPECT_EQ(sectors.next(5001, 90000), 90000U);
    EXPECT_EQ(sectors.next(7, 7), 7U);
}

} // namespace
