// Fills and strokes outlines with a context's pen, brush and drawing mode.
#pragma once

#include "metafile/bounds/drawing_costs.h"
#include "metafile/drawing/device_context.h"

namespace metafile {

enum class ShapePart { Fill, Stroke, FillAndStroke };

class ShapePainter {
  public:
    // The canvas must outlive the painter.
    explicit ShapePainter(Canvas& canvas) : canvas_(canvas) {}

    // The outline is in image pixels; open figures are closed for filling. Spends work before.
    void draw(const QPainterPath& outline, const DeviceContext& context, ShapePart part);

    // The outline's inside with that brush instead of the context's.
    void fill(const QPainterPath& outline, const Brush& brush, const DeviceContext& context);

    // The outline's inside in one colour, whatever the drawing mode.
    void fill(const QPainterPath& outline, QRgb colour, const DeviceContext& context);

    // The same for letters: with smooth edges even where they look like rectangles.
    void fillSmoothly(const QPainterPath& outline, QRgb colour, const DeviceContext& context);

    // What stroking the outline with the context's pen would cover.
    QPainterPath widened(const QPainterPath& outline, const DeviceContext& context);

    // Turns the colours of the inside into their opposites.
    void invert(const QPainterPath& outline, const DeviceContext& context);

    // Somebody else has used the painter, or the context's clip is another: set it anew.
    void forgetClip() { clipSet_ = false; }

  private:
    void prepare(const DeviceContext& context);
    void paintFill(const QPainterPath& outline, const Brush& brush, const DeviceContext& context);
    void paintStroke(const QPainterPath& outline, const DeviceContext& context);
    void spend(const QPainterPath& outline, EdgeLook look);

    Canvas& canvas_;
    bool clipSet_ = false;
};

} // namespace metafile
