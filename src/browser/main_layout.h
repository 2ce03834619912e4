// Where the parts of the main window stand. Pure arithmetic in twips, from the window's size W x H
// (menu bar included); the positions are relative to the surface below the menu bar.
//
// The user may move the edge between the columns, and that between tree and preview.
//
// Left column: tree, large preview, label. Right column: either the picture list, or the thumbnail
// area with the scroll bar inside its right edge.
#pragma once

#include "app/twips.h"

namespace browser {

inline constexpr double kMinimumWindowWidth = 4770;
inline constexpr double kMinimumWindowHeight = 4710;

// What the design fixes; everything else follows from the window's size.
inline constexpr double kMargin = 165;
inline constexpr double kTopMargin = 90;
inline constexpr double kLeftColumnWidth = 3030;
inline constexpr double kRightColumnLeft = 3300;
inline constexpr double kPreviewHeight = 3000;
inline constexpr double kLabelHeight = 330;
inline constexpr double kScrollBarWidth = 225;
inline constexpr double kScrollBarInset = 60;
inline constexpr double kStatusLineHeight = 270;

struct WindowSize {
    double width = 0;
    double height = 0;

    bool operator==(const WindowSize&) const = default;
};

// Where the two edges are that the user can move; at first where the design has them.
struct Columns {
    double leftWidth = kLeftColumnWidth;
    double previewHeight = kPreviewHeight;

    bool operator==(const Columns&) const = default;
};

struct MainLayout {
    app::TwipRect tvwGruppen;
    app::TwipRect imgVorschau;
    app::TwipRect lblAktuell;
    app::TwipRect lvwInfo;
    app::TwipRect thumbnailArea;
    app::TwipRect imgScroll;
    app::TwipRect betweenColumns; // the gaps in which the edges are taken
    app::TwipRect abovePreview;
    app::TwipRect statusLine; // in the free space below all
};

// Raises each dimension that is too small; the other one stays.
WindowSize atLeastMinimum(const WindowSize& window);

// What of the columns a window of that size has room for: as much of tree, preview and pictures as
// the smallest window shows by the design, where they have as much at all.
Columns boundedColumns(const Columns& columns, const WindowSize& window);

// Takes of the columns what there is room for.
MainLayout layoutFor(const WindowSize& window, const Columns& columns = {});

// How far the surface is moved down so that the free space above its contents and around the status
// line is the same, for a menu bar of that height.
double surfaceOffset(double menuBarHeight);

} // namespace browser
