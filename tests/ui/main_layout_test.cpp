#include "app/number_text.h"
#include "browser/main_layout.h"
#include "browser/picture_list.h"
#include "browser/thumbnail_layout.h"
#include "commands/command_tables.h"
#include "commands/enabling.h"
#include "startup/options.h"

#include <gtest/gtest.h>
#include <numeric>

namespace {

using namespace browser;
using app::TwipRect;

TEST(MainLayout, FollowsTheWindowSize) {
    const MainLayout layout = layoutFor({13500, 9600});
    EXPECT_EQ(layout.tvwGruppen.height, 9600 - 4305);
    EXPECT_EQ(layout.imgVorschau.top, layout.tvwGruppen.top + layout.tvwGruppen.height + 105);
    EXPECT_EQ(layout.lblAktuell.top, layout.imgVorschau.top + layout.imgVorschau.height + 45);
    EXPECT_EQ(layout.lvwInfo.width, 13500 - 3465);
    EXPECT_EQ(layout.lvwInfo.height, 9600 - 825);
    EXPECT_EQ(layout.imgScroll.left, 13500 - 450);
    EXPECT_EQ(layout.imgScroll.top + layout.imgScroll.height, 9600 - 795);
    EXPECT_EQ(layout.thumbnailArea.left + layout.thumbnailArea.width, 13500 - 165);
    EXPECT_EQ(layout.thumbnailArea.top + layout.thumbnailArea.height, 9600 - 735);
    // Both views of the pictures stand in the same place, the columns end at the same height.
    EXPECT_EQ(layout.thumbnailArea, layout.lvwInfo);
    EXPECT_EQ(layout.lblAktuell.top + layout.lblAktuell.height,
              layout.lvwInfo.top + layout.lvwInfo.height);
}

TEST(MainLayout, KeepsItsPartsApartAndInSightWhereverTheirEdgesAreMoved) {
    constexpr Columns kWanted[] = {{}, {-1e9, -1e9}, {1e9, 1e9}, {6000, 1200}, {1e9, 0}, {0, 1e9}};
    for (const Columns& wanted : kWanted) {
        for (const WindowSize& window : {WindowSize{4770, 4710}, {9000, 9000}, {30000, 20000}}) {
            const MainLayout layout = layoutFor(window, wanted);
            const TwipRect& tree = layout.tvwGruppen;
            const TwipRect& preview = layout.imgVorschau;
            EXPECT_GE(tree.height, 405);
            EXPECT_GE(preview.height, 900);
            EXPECT_GE(tree.width, 1305);
            EXPECT_GE(layout.lvwInfo.width, 1305);
            EXPECT_EQ(tree.top + tree.height, layout.abovePreview.top);
            EXPECT_EQ(layout.abovePreview.top + layout.abovePreview.height, preview.top);
            EXPECT_EQ(tree.left + tree.width, layout.betweenColumns.left);
            EXPECT_EQ(layout.betweenColumns.left + 105, layout.thumbnailArea.left);
            EXPECT_EQ(layout.lblAktuell.top + layout.lblAktuell.height,
                      layout.lvwInfo.top + layout.lvwInfo.height);
            EXPECT_EQ(layout.lvwInfo.left + layout.lvwInfo.width, window.width - 165);
        }
    }
}

TEST(MainLayout, RaisesOnlyTheDimensionThatIsTooSmall) {
    EXPECT_EQ(atLeastMinimum({4000, 9000}), (WindowSize{4770, 9000}));
    EXPECT_EQ(atLeastMinimum({9000, 4000}), (WindowSize{9000, 4710}));
    EXPECT_EQ(atLeastMinimum({4770, 4710}), (WindowSize{4770, 4710}));
}

TEST(MainLayout, SmallestWindowStillHasAColumnOfThumbnails) {
    const TwipRect area = layoutFor(atLeastMinimum({0, 0})).thumbnailArea;
    EXPECT_EQ(gridFor(area.width, area.height), (GridSize{1, 3}));
}

TEST(ThumbnailGrid, CountsColumnsAndRowsByTheirBounds) {
    EXPECT_EQ(gridFor(4000, 4000).columns, 3); // 2980, 2020, 1060, 100
    EXPECT_EQ(gridFor(2000, 4000).columns, 1);
    EXPECT_EQ(gridFor(60 + 1245, 4000).columns, 1);
    EXPECT_EQ(gridFor(60 + 1244, 4000).columns, 0);
    EXPECT_EQ(gridFor(4000, 60 + 975).rows, 1); // 15 is left: one more step
    EXPECT_EQ(gridFor(4000, 60 + 974).rows, 0);
    EXPECT_EQ(thumbnailCount({0, 5}), -1);
    EXPECT_EQ(thumbnailCount({3, 4}), 11);
}

TEST(ThumbnailGrid, CellsOfAnySizeFillTheAreaAndStayInIt) {
    EXPECT_EQ(gridFor(4000, 4000, {450, 0}), (GridSize{7, 7}));
    EXPECT_EQ(gridFor(4000, 4000, {900, 500}).rows, 2);
    for (const WindowSize& window : {WindowSize{4770, 4710}, {9000, 9000}, {30000, 20000}}) {
        const TwipRect area = layoutFor(window).thumbnailArea;
        for (const CellSize& wanted : {CellSize{600, 0}, {900, 510}, {2250, 510}, {3840, 600}}) {
            const CellSize cell = fittingCell(wanted, area.width, area.height);
            const GridSize grid = gridFor(area.width, area.height, cell);
            ASSERT_GT(grid.columns * grid.rows, 0) << window.width << ' ' << wanted.side;
            const TwipRect last = cellRect({}, grid, grid.columns * grid.rows - 1, cell);
            EXPECT_LE(last.left + last.width, area.width - kScrollBarWidth - kScrollBarInset);
            EXPECT_LE(last.top + last.height, area.height);
        }
    }
}

TEST(ThumbnailGrid, CellsStandInRowsFromTheAreasCorner) {
    const TwipRect area{3300, 90, 4000, 4000};
    EXPECT_EQ(cellRect(area, {3, 4}, 0), (TwipRect{3360, 150, 900, 900}));
    EXPECT_EQ(cellRect(area, {3, 4}, 2), (TwipRect{3360 + 1920, 150, 900, 900}));
    EXPECT_EQ(cellRect(area, {3, 4}, 3), (TwipRect{3360, 150 + 960, 900, 900}));
}

TEST(ThumbnailPages, LastPageIsTheLastThatShowsAPicture) {
    std::vector<std::size_t> indexes(10);
    std::iota(indexes.begin(), indexes.end(), 2); // behind the group's own two streams
    EXPECT_EQ(lastPage(indexes, 4), 3);           // elements 8 to 11
    EXPECT_EQ(lastPage(indexes, 12), 1);
    // Elements that are no pictures make no page of their own.
    const std::vector<std::size_t> two{0, 1};
    EXPECT_EQ(lastPage(two, 2), 1);
    EXPECT_EQ(lastPage({}, 4), 1);
    EXPECT_EQ(lastPage(indexes, 0), 1);
    EXPECT_EQ(startIndexOf(1, 4), 0U);
    EXPECT_EQ(startIndexOf(3, 4), 8U);
}

TEST(ThumbnailMoves, GoThroughTheGroupAndStayWhereItEnds) {
    // Three columns; the second of two pages, which begins with the sixth picture, has two rows.
    constexpr ShownRange kShown{5, 4, 9};
    const auto move = [&](int from, Step step) { return moveFrom(from, kShown, 3, step); };
    EXPECT_EQ(move(-1, Step::Down), 5);
    EXPECT_EQ(move(5, Step::Down), 8);
    EXPECT_EQ(move(6, Step::Down), 8) << "the shorter row below";
    EXPECT_EQ(move(8, Step::Down), 8);
    EXPECT_EQ(move(8, Step::Right), 8);
    EXPECT_EQ(move(5, Step::Left), 4);
    EXPECT_EQ(move(6, Step::Up), 3);
    EXPECT_EQ(move(2, Step::Up), 2);
    EXPECT_EQ(move(-1, Step::First), 0);
    EXPECT_EQ(move(-1, Step::Last), 8);
    EXPECT_EQ(moveFrom(4, {0, 6, 8}, 3, Step::Down), 7);
    EXPECT_EQ(moveFrom(5, {0, 6, 8}, 3, Step::Down), 7) << "the shorter row on the next page";
}

TEST(ThumbnailRows, ScrollAsFarAsThereIsAnythingToSee) {
    constexpr GridSize kGrid{3, 2};
    EXPECT_EQ(scrolledFirst({0, 6, 20}, kGrid, 1), 3);
    EXPECT_EQ(scrolledFirst({0, 6, 20}, kGrid, 100), 15) << "the last row is short";
    EXPECT_EQ(scrolledFirst({15, 5, 20}, kGrid, 1), 15);
    EXPECT_EQ(scrolledFirst({4, 6, 20}, kGrid, -1), 1); // a page need not begin with a row
    EXPECT_EQ(scrolledFirst({4, 6, 20}, kGrid, -100), 0);
    EXPECT_EQ(scrolledFirst({0, 4, 4}, kGrid, 1), 0);
}

TEST(PictureListColumns, TakeTheirSharesOfTheWidth) {
    const auto widths = columnWidths(9000);
    EXPECT_DOUBLE_EQ(widths[0], 3000);
    EXPECT_DOUBLE_EQ(widths[1], 6000 / 5.6);
    EXPECT_DOUBLE_EQ(widths[2], 2000);
    EXPECT_DOUBLE_EQ(widths[3], 1200);
    EXPECT_DOUBLE_EQ(widths[4], 1200);
}

TEST(PictureListColumns, CutKilobytesAtTheCommaOnly) {
    app::overrideDecimalSeparator(u',');
    EXPECT_EQ(kilobytesText(1536), "1 KB");
    EXPECT_EQ(kilobytesText(500), "0 KB");
    EXPECT_EQ(kilobytesText(2048), "2 KB");
    app::overrideDecimalSeparator(u'.');
    EXPECT_EQ(kilobytesText(1536), "1.5 KB");
    app::overrideDecimalSeparator(std::nullopt);
}

TEST(EditItem, IsOffForWhatTheMenuCannotEdit) {
    using commands::allowsEditing;
    using Cause = commands::EditItemCause;
    EXPECT_FALSE(allowsEditing("GIF", Cause::Group));
    EXPECT_FALSE(allowsEditing("GIF", Cause::Thumbnail));
    EXPECT_FALSE(allowsEditing("WMF", Cause::Group));
    EXPECT_TRUE(allowsEditing("WMF", Cause::Thumbnail));
    EXPECT_TRUE(allowsEditing("EMF", Cause::Group));
}

TEST(Commands, AreOfferedWithoutAGroupUnlessTheirFirstStepNeedsOne) {
    using commands::Command;
    using commands::Selection;
    EXPECT_TRUE(commands::isOffered(Command::NewGroup, Selection::None));
    EXPECT_TRUE(commands::isOffered(Command::GroupFromFolder, Selection::None));
    EXPECT_TRUE(commands::isOffered(Command::ImportGroup, Selection::None));
    EXPECT_FALSE(commands::isOffered(Command::AddPicture, Selection::None));
    EXPECT_TRUE(commands::isOffered(Command::AddPicture, Selection::Group));
}

TEST(CommandLine, TakesItsOptionsAndRefusesOthers) {
    using startup::Options;
    using startup::parseOptions;
    using startup::SingleDash;
    const Options picture =
        parseOptions({"-platform", "offscreen", "--screenshot", "a.png"}, SingleDash::PassOver);
    EXPECT_EQ(picture.task, Options::Task::Run);
    EXPECT_EQ(picture.screenshotFile, "a.png");
    EXPECT_EQ(parseOptions({"--version"}, SingleDash::Refuse).task, Options::Task::ShowVersion);
    EXPECT_EQ(parseOptions({"-h"}, SingleDash::PassOver).task, Options::Task::ShowHelp);
    const Options import = parseOptions({"/tmp/Pumps.STG"}, SingleDash::Refuse);
    EXPECT_EQ(import.task, Options::Task::Run);
    EXPECT_EQ(import.groupFile, "/tmp/Pumps.STG");
    const std::vector<std::vector<std::string>> wrong{{"--screenshot"},
                                                      {"--no-such"},
                                                      {"file"},
                                                      {"a.stg", "b.stg"},
                                                      {"a.stg", "file"},
                                                      {"-x"},
                                                      {"a.stg", "--screenshot", "a.png"},
                                                      {"a.stg", "--automation"},
                                                      {"--automation", "--screenshot", "a.png"}};
    for (const auto& arguments : wrong) {
        const Options options = parseOptions(arguments, SingleDash::Refuse);
        EXPECT_EQ(options.task, Options::Task::Refuse) << arguments[0];
        EXPECT_FALSE(options.complaint.empty());
    }
}

} // namespace
