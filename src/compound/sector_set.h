// A set of sector numbers: what a transaction has taken and what it frees. Sectors lie close
// together, so that a bit for each of the 1024 around a member, and a pointer for each 1024 of the
// file, take less memory than a node for each member; every operation takes constant time.
//
// No errors but for want of memory; a failed insert() leaves the set as it was.
#pragma once

#include "compound/sector_bits.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace compound {

class SectorSet {
  public:
    bool contains(std::uint32_t sector) const {
        const std::size_t block = sector / kBlock;
        return block < blocks_.size() && blocks_[block] &&
               blocks_[block]->contains(sector % kBlock);
    }

    // Inserting a member changes nothing.
    void insert(std::uint32_t sector) {
        const std::size_t block = sector / kBlock;
        if (block >= blocks_.size()) {
            blocks_.resize(block + 1);
        }
        if (!blocks_[block]) {
            blocks_[block] = std::make_unique<SectorBits>();
        }
        size_ += blocks_[block]->insert(sector % kBlock) ? 1U : 0U;
    }

    // Whether the sector was a member.
    bool erase(std::uint32_t sector) {
        if (!contains(sector)) {
            return false;
        }
        blocks_[sector / kBlock]->erase(sector % kBlock);
        --size_;
        return true;
    }

    // The first member from `from` on that lies before `end`; `end` without one.
    std::uint32_t next(std::uint32_t from, std::uint32_t end) const {
        while (from < end && from / kBlock < blocks_.size()) {
            const auto& block = blocks_[from / kBlock];
            const std::uint32_t found = block ? block->next(from % kBlock) : kBlock;
            from += found - from % kBlock;
            if (found < kBlock) {
                return from < end ? from : end;
            }
        }
        return end;
    }

    void clear() {
        blocks_.clear();
        size_ = 0;
    }

    std::size_t size() const { return size_; }

  private:
    static constexpr std::uint32_t kBlock = SectorBits::kCapacity;
    std::vector<std::unique_ptr<SectorBits>> blocks_;
    std::size_t size_ = 0;
};

} // namespace compound
