// A set of sector numbers: what a transaction has taken and what it frees. Sectors lie close
// together, so that a bit for each of the 1024 around a member, and a pointer for each 1024 of the
// file, take less memory than a node for each member; every operation takes constant time.
//
// No errors but for want of memory; a failed insert() leaves the set as it was.
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

    // Inserting a member changes nothing.
    void insert(std::uint32_t sector) {
        const std::size_t block = sector / kBlock;
        if (block >= blocks_.size()) {
            blocks_.resize(block + 1);
        }
        if (!blocks_[block]) {
            blocks_[block] = std::make_unique<std::bitset<kBlock>>();
        }
        size_ += contains(sector) ? 0U : 1U;
        blocks_[block]->set(sector % kBlock);
    }

    // Whether the sector was a member.
    bool erase(std::uint32_t sector) {
        if (!contains(sector)) {
            return false;
        }
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
