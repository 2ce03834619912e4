#include "browser/main_layout.h"

#include <algorithm>

namespace browser {
namespace {

constexpr double kBelowArea = 735; // from the area's lower edge to the window's

} // namespace

WindowSize atLeastMinimum(const WindowSize& window) {
    return {std::max(window.width, kMinimumWindowWidth),
            std::max(window.height, kMinimumWindowHeight)};
}

MainLayout layoutFor(const WindowSize& window) {
    const double w = window.width;
    const double h = window.height;
    const double scrollTop = kTopMargin + kScrollBarInset;
    const double treeHeight = h - 4305;
    const double previewTop = kTopMargin + treeHeight + 105;
    const double labelTop = previewTop + kPreviewHeight + 45;
    return {
        .tvwGruppen = {kMargin, kTopMargin, kLeftColumnWidth, treeHeight},
        .imgVorschau = {kMargin, previewTop, kLeftColumnWidth, kPreviewHeight},
        .lblAktuell = {kMargin, labelTop, kLeftColumnWidth, kLabelHeight},
        .lvwInfo = {kRightColumnLeft, kTopMargin, w - 3465, h - 825},
        .thumbnailArea = {kRightColumnLeft, kTopMargin, w - kRightColumnLeft - kMargin,
                          h - kTopMargin - kBelowArea},
        .imgScroll = {w - 450, scrollTop, kScrollBarWidth, h - scrollTop - 795},
    };
}

double surfaceOffset(double menuBarHeight) {
    return std::max(0.0, (kBelowArea - menuBarHeight - kTopMargin) / 2);
}

} // namespace browser
