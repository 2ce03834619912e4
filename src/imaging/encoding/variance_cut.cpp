#include "imaging/encoding/variance_cut.h"

#include <queue>

namespace imaging {

namespace {

// A part of the bins and the best way to cut it in two.
struct Box {
    std::span<ColourBin> bins;
    ColourSums sums;
    std::size_t axis = 0;  // an index of ColourBin::levels
    std::size_t level = 0; // where the second half begins
    double gain = -1;      // variance that the cut takes away; negative: cannot be cut

    bool operator<(const Box& other) const { return gain < other.gain; }
};

using Levels = std::array<ColourSums, ColourBin::kLevels>;

// Tries all places along one axis.
void findCut(Box& box, const Levels& levels, std::size_t axis) {
    const double whole = box.sums.squareOfMean();
    ColourSums before;
    for (std::size_t level = 1; level < levels.size(); ++level) {
        before.add(levels[level - 1]);
        ColourSums behind = box.sums;
        behind.count -= before.count;
        behind.red -= before.red;
        behind.green -= before.green;
        behind.blue -= before.blue;
        if (before.count < 1 || behind.count < 1) {
            continue;
        }
        const double gain = before.squareOfMean() + behind.squareOfMean() - whole;
        if (gain > box.gain) {
            box.gain = gain;
            box.axis = axis;
            box.level = level;
        }
    }
}

Box boxOf(std::span<ColourBin> bins) {
    Box box;
    box.bins = bins;
    std::array<Levels, 3> levels;
    for (const ColourBin& bin : bins) {
        box.sums.add(bin);
        for (std::size_t axis = 0; axis < levels.size(); ++axis) {
            levels[axis][bin.levels[axis]].add(bin);
        }
    }
    for (std::size_t axis = 0; axis < levels.size(); ++axis) {
        findCut(box, levels[axis], axis);
    }
    return box;
}

} // namespace

std::vector<Colour> cutByVariance(std::vector<ColourBin> bins, std::size_t most) {
    std::priority_queue<Box> boxes;
    if (!bins.empty()) {
        boxes.push(boxOf(bins));
    }
    while (!boxes.empty() && boxes.size() < most && boxes.top().gain >= 0) {
        const Box box = boxes.top();
        boxes.pop();
        const auto second =
            std::partition(box.bins.begin(), box.bins.end(),
                           [&](const ColourBin& bin) { return bin.levels[box.axis] < box.level; });
        const auto size = static_cast<std::size_t>(second - box.bins.begin());
        boxes.push(boxOf(box.bins.first(size)));
        boxes.push(boxOf(box.bins.subspan(size)));
    }
    std::vector<Colour> colours;
    for (; !boxes.empty(); boxes.pop()) {
        colours.push_back(boxes.top().sums.mean());
    }
    return colours;
}

} // namespace imaging
