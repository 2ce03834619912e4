// The control `LeadControl`: shows one picture, enlarged or reduced by the zoom factor, over a
// checkerboard where it is see-through. Only what can be seen of it is painted.
//
// A click with the left button zooms in by 1.5, one with any other button out; the wheel does so
// with Ctrl, around the pointer like the click. Dragging, the wheel, the scroll bars and the arrow
// keys move a picture that is larger than the control.
#pragma once

#include "editing/bitmap_editor/display_levels.h"

#include <QAbstractScrollArea>
#include <QPoint>
#include <QRectF>

namespace editing {

class LeadControl : public QAbstractScrollArea {
    Q_OBJECT

  public:
    static constexpr double kZoomStep = 1.5;

    explicit LeadControl(QWidget* parent);

    // The zoom factor stays.
    void setPicture(const DisplayLevels& picture);

    // Shows the picture at its own size, or so small that all of it can be seen. `picture` may have
    // gone through setPicture() before the control had its size.
    void showWhole();

    // Device-independent pixels of the screen to one of the picture.
    double zoomFactor() const { return factor_; }

    // Around the middle of what is seen. Nothing happens at the ends: no side of the picture
    // becomes shorter than a few pixels, and no pixel larger than a thumbnail.
    void zoomIn();
    void zoomOut();

    // Where the whole picture lies, in coordinates of the viewport.
    QRectF placeOfPicture() const;

  signals:
    void zoomed(double factor);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

  private:
    struct Press {
        Qt::MouseButton button = Qt::NoButton; // none: no button is down
        QPoint pointer;
        QPoint scrolled;
        bool isDrag = false;
    };

    bool isSensible(double factor) const;
    void zoomTo(double factor, const QPointF& anchor);
    QPointF middle() const;
    QPoint scrolled() const;
    void scrollTo(const QPointF& topLeft);
    void updateScrollBars();
    QSize roomForPicture() const;
    void updatePointer();

    DisplayLevels picture_;
    double factor_ = 1;
    Press press_;
    int wheel_ = 0; // eighths of a degree that have not made a step yet
};

} // namespace editing
