#include "browser/thumbnail_layout.h"

#include <algorithm>
#include <limits>

namespace browser {
namespace {

constexpr double kColumnBound = 285;
constexpr double kRowBound = 15;

// Steps that fit into `length` while at least `bound` is left, the first in any case, less one.
int cellsAlong(double length, double pitch, double bound) {
    int steps = 0;
    do {
        length -= pitch;
        ++steps;
    } while (length >= bound);
    return steps - 1;
}

} // namespace

std::int16_t thumbnailCount(const GridSize& grid) {
    const int cells = std::min<int>(grid.columns * grid.rows, std::numeric_limits<short>::max());
    return static_cast<std::int16_t>(cells - 1);
}

GridSize gridFor(double areaWidth, double areaHeight, const CellSize& cell) {
    return {cellsAlong(areaWidth - kGridInset, cell.side + kCellGap, kColumnBound),
            cellsAlong(areaHeight - kGridInset, cell.side + cell.nameHeight + kCellGap, kRowBound)};
}

CellSize fittingCell(const CellSize& wanted, double areaWidth, double areaHeight) {
    const double widest = areaWidth - kGridInset - kCellGap - kColumnBound;
    const double highest = areaHeight - kGridInset - kCellGap - kRowBound - wanted.nameHeight;
    const double least = std::min(wanted.side, kCellSide);
    return {std::max(least, std::min({wanted.side, widest, highest})), wanted.nameHeight};
}

app::TwipRect cellRect(const app::TwipRect& area, const GridSize& grid, int index,
                       const CellSize& cell) {
    const int columns = std::max(1, grid.columns);
    const int row = index / columns;
    const int column = index % columns;
    const double height = cell.side + cell.nameHeight;
    return {area.left + kGridInset + (cell.side + kCellGap) * column,
            area.top + kGridInset + (height + kCellGap) * row, cell.side, height};
}

std::size_t startIndexOf(int page, std::size_t cells) {
    return cells * static_cast<std::size_t>(std::max(1, page) - 1);
}

int pageOf(std::size_t element, std::size_t cells) {
    return static_cast<int>(element / cells) + 1;
}

bool isOnPage(std::span<const std::size_t> pictureIndexes, std::size_t start, std::size_t cells,
              std::size_t element) {
    const auto first = std::lower_bound(pictureIndexes.begin(), pictureIndexes.end(), start);
    const auto shown =
        std::min<std::ptrdiff_t>(pictureIndexes.end() - first, static_cast<std::ptrdiff_t>(cells));
    return std::binary_search(first, first + shown, element);
}

int lastPage(std::span<const std::size_t> pictureIndexes, std::size_t cells) {
    if (pictureIndexes.empty() || cells == 0) {
        return 1;
    }
    return pageOf(pictureIndexes.back(), cells);
}

int moveFrom(int from, const ShownRange& shown, int columns, Step step) {
    const int last = shown.all - 1;
    if (step == Step::Last) {
        return last;
    }
    if (step == Step::First) {
        return 0;
    }
    if (from < 0) {
        return shown.first;
    }
    const bool backwards = step == Step::Left || step == Step::Up;
    const int distance = step == Step::Up || step == Step::Down ? std::max(1, columns) : 1;
    const int target = backwards ? from - distance : from + distance;
    if (target < 0) {
        return from;
    }
    if (target > last) {
        // The row below is shorter: its end is the nearest there is.
        const auto rowOf = [&](int position) { return (position - shown.first) / distance; };
        return step == Step::Down && rowOf(last) > rowOf(from) ? last : from;
    }
    return target;
}

int scrolledFirst(const ShownRange& shown, const GridSize& grid, int rows) {
    const int columns = std::max(1, grid.columns);
    const auto rowsOf = [columns](int pictures) {
        return (std::max(0, pictures) + columns - 1) / columns;
    };
    const int below = rowsOf(shown.all - shown.first - shown.count);
    const int above = rowsOf(shown.first);
    return std::max(0, shown.first + std::clamp(rows, -above, below) * columns);
}

} // namespace browser
