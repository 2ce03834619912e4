#include "browser/thumbnail_layout.h"

#include <algorithm>
#include <limits>

namespace browser {
namespace {

// Steps that fit into `length` while at least `bound` is left, the first in any case, less one.
int cellsAlong(double length, double bound) {
    int steps = 0;
    do {
        length -= kCellPitch;
        ++steps;
    } while (length >= bound);
    return steps - 1;
}

} // namespace

std::int16_t thumbnailCount(const GridSize& grid) {
    const int cells = std::min<int>(grid.columns * grid.rows, std::numeric_limits<short>::max());
    return static_cast<std::int16_t>(cells - 1);
}

GridSize gridFor(double areaWidth, double areaHeight) {
    constexpr double kColumnBound = 285;
    constexpr double kRowBound = 15;
    return {cellsAlong(areaWidth - kGridInset, kColumnBound),
            cellsAlong(areaHeight - kGridInset, kRowBound)};
}

app::TwipRect cellRect(const app::TwipRect& area, const GridSize& grid, int index) {
    const int columns = std::max(1, grid.columns);
    const int row = index / columns;
    const int column = index % columns;
    return {area.left + kGridInset + kCellPitch * column, area.top + kGridInset + kCellPitch * row,
            kCellSide, kCellSide};
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

int repeatedPictures(std::span<const std::size_t> pictureIndexes, std::size_t start,
                     std::size_t cells) {
    if (start < cells) {
        return 0;
    }
    const auto positionOf = [pictureIndexes](std::size_t element) {
        return std::lower_bound(pictureIndexes.begin(), pictureIndexes.end(), element) -
               pictureIndexes.begin();
    };
    const auto behindPageBefore = positionOf(start - cells) + static_cast<std::ptrdiff_t>(cells);
    return static_cast<int>(std::max<std::ptrdiff_t>(0, behindPageBefore - positionOf(start)));
}

Move moveFrom(int cell, int filled, int columns, int cells, Step step) {
    const int last = std::max(0, filled - 1);
    if (step == Step::Last) {
        return {last, 0};
    }
    if (step == Step::First || cell < 0) {
        return {0, 0};
    }
    const bool backwards = step == Step::Left || step == Step::Up;
    const int distance = step == Step::Up || step == Step::Down ? std::max(1, columns) : 1;
    const int target = backwards ? cell - distance : cell + distance;
    if (target < 0) {
        return {step == Step::Left ? cells - 1 : target + cells, -1};
    }
    if (target >= cells) {
        return {target - cells, 1};
    }
    if (target > last) {
        // The row below is shorter: its end is the nearest there is.
        const bool hasRowBelow = step == Step::Down && last / columns > cell / columns;
        return {hasRowBelow ? last : cell, 0};
    }
    return {target, 0};
}

} // namespace browser
