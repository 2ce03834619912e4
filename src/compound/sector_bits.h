// A set of numbers below 1024, one bit each: sectors of the stretch that one FAT sector describes,
// which are fewer where sectors are small.
// Whole words are looked at, so that the next member and the runs of members cost next to nothing.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace compound {

class SectorBits {
  public:
    static constexpr std::uint32_t kCapacity = 1024; // entries of the largest FAT sector

    // Numbers that lie in a row.
    struct Run {
        std::uint32_t start = 0;
        std::uint32_t length = 0;
    };

    bool contains(std::uint32_t number) const {
        return ((words_[number / kBits] >> number % kBits) & 1U) != 0;
    }

    // Whether that changed anything.
    bool insert(std::uint32_t number) {
        const bool isNew = !contains(number);
        words_[number / kBits] |= std::uint64_t{1} << number % kBits;
        size_ += isNew ? 1U : 0U;
        return isNew;
    }
    bool erase(std::uint32_t number) {
        const bool wasMember = contains(number);
        words_[number / kBits] &= ~(std::uint64_t{1} << number % kBits);
        size_ -= wasMember ? 1U : 0U;
        return wasMember;
    }

    std::uint32_t size() const { return size_; }

    // The first member, or the first number that is none, from `from` on; kCapacity without one.
    std::uint32_t next(std::uint32_t from) const { return find(from, 0); }
    std::uint32_t nextGap(std::uint32_t from) const { return find(from, ~std::uint64_t{0}); }

    std::uint32_t countBefore(std::uint32_t end) const {
        std::uint32_t count = 0;
        for (std::uint32_t word = 0; word * kBits < end; ++word) {
            const std::uint32_t rest = end - word * kBits;
            const std::uint64_t kept =
                rest < kBits ? (std::uint64_t{1} << rest) - 1 : ~std::uint64_t{0};
            count += static_cast<std::uint32_t>(std::popcount(words_[word] & kept));
        }
        return count;
    }

    // The first `enough` members before `end` that lie in a row, or the longest run there.
    Run runBefore(std::uint32_t end, std::uint32_t enough) const {
        Run longest;
        for (std::uint32_t at = next(0); at < end && longest.length < enough; at = next(at)) {
            const std::uint32_t start = at;
            at = std::min(nextGap(start), end);
            if (at - start > longest.length) {
                longest = {start, std::min(at - start, enough)};
            }
        }
        return longest;
    }

  private:
    static constexpr std::uint32_t kBits = 64;

    // The first bit from `from` on that differs from those of `skipped`.
    std::uint32_t find(std::uint32_t from, std::uint64_t skipped) const {
        std::uint64_t seen = ~std::uint64_t{0} << from % kBits;
        for (std::uint32_t word = from / kBits; word < words_.size(); ++word) {
            const std::uint64_t found = (words_[word] ^ skipped) & seen;
            if (found != 0) {
                return word * kBits + static_cast<std::uint32_t>(std::countr_zero(found));
            }
            seen = ~std::uint64_t{0};
        }
        return kCapacity;
    }

    std::array<std::uint64_t, kCapacity / kBits> words_{};
    std::uint32_t size_ = 0;
};

} // namespace compound
