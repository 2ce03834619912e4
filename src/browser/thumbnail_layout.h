// The arithmetic of the thumbnail grid and of its pages. Lengths in twips.
#pragma once

#include "app/twips.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace browser {

inline constexpr double kCellPitch = 960; // from one cell's left or upper edge to the next one's
inline constexpr double kCellSide = 900;
inline constexpr double kGridInset = 60; // of the first cell from the area's corner

struct GridSize {
    int columns = 0;
    int rows = 0;

    bool operator==(const GridSize&) const = default;
};

// Highest index of the thumbnails, -1 for a grid without cells. 16 bits hold any real screen.
std::int16_t thumbnailCount(const GridSize& grid);

// The grid that an area of that size holds. Space for the scroll bar is kept free at the right.
GridSize gridFor(double areaWidth, double areaHeight);

// Where a cell stands, relative to what the area's left and top are relative to.
app::TwipRect cellRect(const app::TwipRect& area, const GridSize& grid, int index);

// Pages are cut by element index: a group's own two streams count, though they are not shown.
// Page 1 is the first.
std::size_t startIndexOf(int page, std::size_t cells);

// The page to which an element belongs; `cells` is not 0. The page before may show it as well.
int pageOf(std::size_t element, std::size_t cells);

// Whether the page from element `start` on shows the picture with that element index.
bool isOnPage(std::span<const std::size_t> pictureIndexes, std::size_t start, std::size_t cells,
              std::size_t element);

// The last page on which some picture is shown; `pictureIndexes` ascending. At least 1.
int lastPage(std::span<const std::size_t> pictureIndexes, std::size_t cells);

// How many of the pictures at the beginning of the page from element `start` on stand at the end of
// the page before as well: that one takes pictures until its cells are full, and so goes past its
// own elements where some of them are no pictures.
int repeatedPictures(std::span<const std::size_t> pictureIndexes, std::size_t start,
                     std::size_t cells);

// Where the selection moves within one page.
enum class Step { Left, Right, Up, Down, First, Last };

struct Move {
    int cell = 0;
    int pages = 0; // -1, 0 or 1: the page to which `cell` belongs, relative to the present one
};

// From `cell` (-1: none) on a page with `filled` cells in a grid of `columns`.
Move moveFrom(int cell, int filled, int columns, int cells, Step step);

} // namespace browser
