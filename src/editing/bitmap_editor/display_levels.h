// A picture made ready for painting at any scale: beside the picture itself its halves, quarters,
// ... (of one that is longer than 200,000 pixels only those below 100,000) so that showing it small
// neither leaves out pixels nor reads them all.
#pragma once

#include <QImage>

#include <vector>

class QPainter;
class QRect;
class QRectF;

namespace editing {

class DisplayLevels {
  public:
    DisplayLevels() = default; // no picture

    // Shares the picture's pixels; the smaller levels take another third of them, or as many again
    // where it is but a pixel wide or high. May be made on any thread. Where memory is short there
    // are fewer levels.
    explicit DisplayLevels(const QImage& picture);

    bool isEmpty() const { return levels_.empty(); }
    QSize size() const { return isEmpty() ? QSize() : levels_.front().size(); }
    bool hasAlpha() const { return !isEmpty() && levels_.front().hasAlphaChannel(); }

    // Paints the whole picture into `place`, of which only what lies in `visible` is touched;
    // device-independent pixels. From twice the size on every pixel is a sharp square.
    void paint(QPainter& painter, const QRectF& place, const QRect& visible) const;

  private:
    const QImage& levelFor(double scale) const;

    std::vector<QImage> levels_; // from the largest to the smallest
};

} // namespace editing
