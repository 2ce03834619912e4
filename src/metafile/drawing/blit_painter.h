// Pictures and other blocks of pixels.
#pragma once

#include "metafile/drawing/device_context.h"

namespace metafile {

class BlitPainter {
  public:
    // The canvas must outlive the painter.
    explicit BlitPainter(Canvas& canvas) : canvas_(canvas) {}

    // All spend work before, keep to the context's clip, and use the canvas's painter.
    void draw(const RasterBlit& blit, const DeviceContext& context);
    void draw(const AlphaBlit& blit, const DeviceContext& context);
    void draw(const GradientFill& fill, const DeviceContext& context);
    void draw(const FloodFill& fill, const DeviceContext& context);

  private:
    struct Place;

    Place placeOf(const Destination& destination, const DeviceContext& context) const;
    void begin(const DeviceContext& context);
    void spendPicture(const QImage& image, const Place& place);
    QImage layer(const QImage& image, const QRectF& part, const Place& place, const QRect& box,
                 const DeviceContext& context);
    QImage patternLayer(const QRect& box, const DeviceContext& context);
    void combine(const RasterBlit& blit, const Place& place, const DeviceContext& context);
    void drawTriangle(const std::array<GradientVertex, 3>& corners, const DeviceContext& context);
    void drawBand(const GradientVertex& from, const GradientVertex& to, GradientKind kind,
                  const DeviceContext& context);

    Canvas& canvas_;
};

} // namespace metafile
