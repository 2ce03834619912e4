// The arithmetic of the thumbnail grid and of its pages. Lengths in twips.
#pragma once

#include "app/twips.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace browser {

inline constexpr double kCellSide = 900; // of a cell, as long as nobody wants another size
inline constexpr double kCellGap = 60;   // between two cells
inline constexpr double kGridInset = 60; // of the first cell from the area's corner

// A cell holds a square for the picture and below it, if wished, its name.
struct CellSize {
    double side = kCellSide;
    double nameHeight = 0;

    bool operator==(const CellSize&) const = default;
};

struct GridSize {
    int columns = 0;
    int rows = 0;

    bool operator==(const GridSize&) const = default;
};

// Highest index of the thumbnails, -1 for a grid without cells. 16 bits hold any real screen.
std::int16_t thumbnailCount(const GridSize& grid);

// The grid that an area of that size holds. Space for the scroll bar is kept free at the right.
GridSize gridFor(double areaWidth, double areaHeight, const CellSize& cell = {});

// The same cell, or as large a one as the area has room for.
CellSize fittingCell(const CellSize& wanted, double areaWidth, double areaHeight);

// Where a cell stands, relative to what the area's left and top are relative to.
app::TwipRect cellRect(const app::TwipRect& area, const GridSize& grid, int index,
                       const CellSize& cell = {});

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

// What of the group's pictures is on the screen, by their positions in the group.
struct ShownRange {
    int first = 0;
    int count = 0;
    int all = 0;
};

// Where the selection moves.
enum class Step { Left, Right, Up, Down, First, Last };

// The position to go to from the picture at position `from` (-1: none that is shown), in a grid of
// `columns`; it may not be on the screen. Something is shown.
int moveFrom(int from, const ShownRange& shown, int columns, Step step);

// The position of the first picture on the screen after scrolling by so many rows (up if negative),
// as far as there is anything to be seen beyond.
int scrolledFirst(const ShownRange& shown, const GridSize& grid, int rows);

} // namespace browser
