// Which of a few colours is nearest to a given one, asked very many times.
#pragma once

#include "imaging/encoding/colour.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace imaging {

// Cuts the colour cube into cells and keeps, for those that are asked for, the colours that can be
// nearest to a point in it; then only these are compared.
class NearestColour {
  public:
    // From 1 to 256 colours, copied.
    explicit NearestColour(std::span<const Colour> colours);

    // The number of the nearest colour; the first one of several. The parts of `colour` lie in
    // 0..255.
    std::size_t of(Colour colour);

  private:
    static constexpr int kCellBits = 5; // of each part's eight
    static constexpr std::size_t kCells = std::size_t{1} << (3 * kCellBits);

    struct Cell {
        std::uint32_t first = 0;
        std::uint32_t count = 0; // 0: not asked for yet
    };

    void fill(Cell& cell, std::size_t index);

    std::vector<Colour> colours_;
    std::vector<Cell> cells_;
    std::vector<std::uint8_t> candidates_; // of all cells, one after the other
};

} // namespace imaging
