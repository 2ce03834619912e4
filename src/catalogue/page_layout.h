// Where the headings and pictures of a catalogue stand on its pages. Pure arithmetic in points (72
// to an inch), from the upper left corner of the sheet.
//
// A page has columns of cells, each a picture with its name and its facts below. A heading never
// stands apart from the first row of its pictures.
#pragma once

#include <QRectF>
#include <QSizeF>

#include <cstddef>
#include <span>
#include <vector>

namespace catalogue {

inline constexpr double kPointsPerInch = 72;
inline constexpr double kPictureHeight = 100;
inline constexpr double kLineHeight = 12; // of a cell's name and facts

struct PlacedHeading {
    std::size_t section = 0;
    QRectF place;
};

struct PlacedPicture {
    std::size_t section = 0;
    std::size_t picture = 0; // within its section
    QRectF place;            // of the picture itself; two lines follow below
};

struct Page {
    std::vector<PlacedHeading> headings;
    std::vector<PlacedPicture> pictures;
    std::size_t firstSection = 0; // of what stands at the page's top
};

struct PageFrame {
    QRectF title;  // on the first page: above everything else
    QRectF header; // on the others
    QRectF footer;
};

PageFrame frameOf(QSizeF sheet);

// `pictures` of each section. At least one page. The first of several sections has no heading if it
// has no pictures: the title stands for it. A sheet that is too small for a row gets rows all the
// same, one a page.
std::vector<Page> layOut(std::span<const std::size_t> pictures, QSizeF sheet);

} // namespace catalogue
