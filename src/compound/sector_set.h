// A set of sector numbers, an eighth of a byte for each in the neighbourhood of a member.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace compound {

class SectorSet {
  public:
    bool contains(std::uint32_t sector) const {
        const std::size_t block = sector / kBlock;
        return block < blocks_.size() && blocks_[block] && (*blocks_[block])[sector % kBlock];
    }

    void insert(std::uint32_t sector) {
        const std::size_t block = sector / kBlock;
        if (block >= blocks_.size())
            blocks_.resize(block + 1);
        if (!blocks_[block])
            blocks_[block] = std::make_unique<std::bitset<kBlock>>();
        size_ += contains(sector) ? 0U : 1U;
        blocks_[block]->set(sector % kBlock);
    }

    // Whether the sector was a member.
    bool erase(std::uint32_t sector) {
        if (!contains(sector))
            return false;
        blocks_[sector / kBlock]->reset(sector % kBlock);
        --size_;
        return true;
    }

    void clear() {
        blocks_.clear();
        size_ = 0;
    }

    std::size_t size() const { return size_; }

  private:
    static constexpr std::size_t kBlock = 1024;
    std::vector<std::unique_ptr<std::bitset<kBlock>>> blocks_;
    std::size_t size_ = 0;
};

} // namespace compound
