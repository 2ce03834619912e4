#include "catalogue/page_layout.h"

#include <algorithm>

namespace catalogue {
namespace {

constexpr double kMargin = 43; // 15 mm
constexpr double kTitleHeight = 54;
constexpr double kHeaderHeight = 26;
constexpr double kFooterHeight = 28;
constexpr double kHeadingHeight = 24;
constexpr double kAboveHeading = 14;
constexpr double kGutter = 12;
constexpr double kBelowRow = 10;
constexpr double kNarrowestCell = 100;
constexpr double kRowHeight = kPictureHeight + 2 * kLineHeight + kBelowRow;

class Layouter {
  public:
    explicit Layouter(QSizeF sheet)
        : sheet_(sheet),
          width_(std::max(kNarrowestCell, sheet.width() - 2 * kMargin)),
          columns_(std::max(1, static_cast<int>((width_ + kGutter) / (kNarrowestCell + kGutter)))) {
        turnPage(0);
    }

    // Of a section with so many pictures.
    void addHeading(std::size_t index, std::size_t pictures) {
        const double above = isAtTop() ? 0 : kAboveHeading;
        const double row = pictures > 0 ? kRowHeight : 0;
        if (!fits(above + kHeadingHeight + row)) {
            turnPage(index);
        } else {
            y_ += above;
        }
        pages_.back().headings.push_back({index, {kMargin, y_, width_, kHeadingHeight}});
        y_ += kHeadingHeight;
    }

    void add(std::size_t index, std::size_t pictures) {
        for (std::size_t i = 0; i < pictures; ++i) {
            const int column = static_cast<int>(i % static_cast<std::size_t>(columns_));
            if (column == 0 && !fits(kRowHeight)) {
                turnPage(index);
            }
            const double cell = (width_ - kGutter * (columns_ - 1)) / columns_;
            pages_.back().pictures.push_back(
                {index, i, {kMargin + column * (cell + kGutter), y_, cell, kPictureHeight}});
            if (column == columns_ - 1 || i + 1 == pictures) {
                y_ += kRowHeight;
            }
        }
    }

    std::vector<Page> take() { return std::move(pages_); }

  private:
    bool isAtTop() const {
        return pages_.back().headings.empty() && pages_.back().pictures.empty();
    }

    // What is alone on its page is not moved on for ever.
    bool fits(double height) const {
        return isAtTop() || y_ + height <= sheet_.height() - kMargin - kFooterHeight;
    }

    void turnPage(std::size_t section) {
        pages_.emplace_back().firstSection = section;
        y_ = kMargin + (pages_.size() == 1 ? kTitleHeight : kHeaderHeight);
    }

    QSizeF sheet_;
    double width_;
    int columns_;
    double y_ = 0;
    std::vector<Page> pages_;
};

} // namespace

PageFrame frameOf(QSizeF sheet) {
    const double width = std::max(kNarrowestCell, sheet.width() - 2 * kMargin);
    const double footer = sheet.height() - kMargin - kLineHeight;
    return {{kMargin, kMargin, width, kTitleHeight},
            {kMargin, kMargin, width, kHeaderHeight},
            {kMargin, footer, width, kLineHeight}};
}

std::vector<Page> layOut(std::span<const std::size_t> pictures, QSizeF sheet) {
    Layouter layouter(sheet);
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        if (i > 0 || pictures.size() == 1 || pictures[i] > 0) {
            layouter.addHeading(i, pictures[i]);
        }
        layouter.add(i, pictures[i]);
    }
    return layouter.take();
}

} // namespace catalogue
