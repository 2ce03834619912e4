#include "browser/main_layout.h"

#include <algorithm>

namespace browser {
namespace {

constexpr double kBelowArea = 735; // from the area's lower edge to the window's
constexpr double kGap = 105;       // between tree and preview, and between the columns

constexpr double kLeastWidth = 1305; // of either column
constexpr double kLeastTreeHeight = 405;
constexpr double kLeastPreviewHeight = 900;
constexpr double kBesidesTree = 1305; // of the window's height, besides tree and preview

} // namespace

WindowSize atLeastMinimum(const WindowSize& window) {
    return {std::max(window.width, kMinimumWindowWidth),
            std::max(window.height, kMinimumWindowHeight)};
}

Columns boundedColumns(const Columns& columns, const WindowSize& window) {
    const double widest = window.width - 2 * kMargin - kGap - kLeastWidth;
    const double highest = window.height - kBesidesTree - kLeastTreeHeight;
    return {std::max(kLeastWidth, std::min(columns.leftWidth, widest)),
            std::max(kLeastPreviewHeight, std::min(columns.previewHeight, highest))};
}

MainLayout layoutFor(const WindowSize& window, const Columns& columns) {
    const double w = window.width;
    const double h = window.height;
    const auto [leftWidth, previewHeight] = boundedColumns(columns, window);
    const double rightLeft = kMargin + leftWidth + kGap;
    const double scrollTop = kTopMargin + kScrollBarInset;
    const double treeHeight = h - kBesidesTree - previewHeight;
    const double previewTop = kTopMargin + treeHeight + kGap;
    const double labelTop = previewTop + previewHeight + 45;
    const double columnHeight = h - kTopMargin - kBelowArea;
    return {
        .tvwGruppen = {kMargin, kTopMargin, leftWidth, treeHeight},
        .imgVorschau = {kMargin, previewTop, leftWidth, previewHeight},
        .lblAktuell = {kMargin, labelTop, leftWidth, kLabelHeight},
        .lvwInfo = {rightLeft, kTopMargin, w - rightLeft - kMargin, h - 825},
        .thumbnailArea = {rightLeft, kTopMargin, w - rightLeft - kMargin, columnHeight},
        .imgScroll = {w - 450, scrollTop, kScrollBarWidth, h - scrollTop - 795},
        .betweenColumns = {kMargin + leftWidth, kTopMargin, kGap, columnHeight},
        .abovePreview = {kMargin, kTopMargin + treeHeight, leftWidth, kGap},
        .statusLine = {kMargin, kTopMargin + columnHeight + 45, w - 2 * kMargin, kStatusLineHeight},
    };
}

double surfaceOffset(double menuBarHeight) {
    return std::max(0.0, (kBelowArea - menuBarHeight - kTopMargin - kStatusLineHeight) / 2);
}

} // namespace browser
