#pragma once

#include <QColor>
#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <vector>

/// The sample drawings as lists of plain shapes, so that the raster and the vector pictures of one
/// thing come from one description.
namespace samples {

/// What a shape is: its points are a closed outline, an open line, or (for an ellipse) the top left
/// and the bottom right corner of its box.
enum class Outline { Polygon, Polyline, Ellipse };

/// One shape in the units of its drawing, y downwards. A line of width 0 is not drawn; an invalid
/// fill leaves the inside empty.
struct Shape {
    Outline outline = Outline::Polygon;
    std::vector<QPointF> points;
    QColor line;
    double lineWidth = 0;
    QColor fill;
};

/// A drawing: the size of its sheet in units (100 for most sides) and its shapes from back to
/// front.
struct Drawing {
    QSizeF size{100, 100};
    std::vector<Shape> shapes;
};

/// The colours of one material or state.
struct Colours {
    QColor base;
    QColor light;
    QColor dark;
};

extern const QColor kInk;    ///< all outlines
extern const QColor kPaper;  ///< white faces of instruments
extern const QColor kShade;  ///< floors, bases and other quiet parts
extern const Colours kBlue;  ///< painted cast iron
extern const Colours kSteel; ///< stainless steel
extern const Colours kGreen; ///< running, open
extern const Colours kAmber; ///< insulation, warnings
extern const Colours kRed;   ///< fault, closed
extern const Colours kWater;

/// Collects shapes with a current line and a current fill.
class Sketch {
  public:
    static constexpr double kStrong = 2.6; ///< outlines, in units
    static constexpr double kFine = 1.5;   ///< details, in units

    explicit Sketch(QSizeF size = {100, 100}) { drawing_.size = size; }

    Sketch& line(const QColor& colour, double width = kStrong);
    Sketch& noLine();
    Sketch& fill(const QColor& colour);
    Sketch& noFill();

    Sketch& rect(const QRectF& box);
    Sketch& roundedRect(const QRectF& box, double radius);
    Sketch& ellipse(const QRectF& box);
    Sketch& circle(QPointF centre, double radius);
    Sketch& polygon(std::vector<QPointF> points);
    Sketch& polyline(std::vector<QPointF> points);
    /// Part of an ellipse as an open line; degrees, clockwise from three o'clock.
    Sketch& arc(const QRectF& box, double fromDegrees, double toDegrees);
    /// The capital letter in strokes of the current line, fitted into the box. The letters F, I, L,
    /// M, P and T are known; any other throws std::invalid_argument.
    Sketch& letter(char letter, const QRectF& box);
    /// Puts the other drawing on this one, fitted into the box without distortion.
    Sketch& place(const Drawing& drawing, const QRectF& box);

    /// A body with light from the left: upright or lying cylinder with an outline.
    Sketch& uprightCylinder(const QRectF& box, const Colours& colours, double radius = 0);
    Sketch& lyingCylinder(const QRectF& box, const Colours& colours, double radius = 0);

    Drawing take() { return std::move(drawing_); }

  private:
    Sketch& add(Outline outline, std::vector<QPointF> points);

    Drawing drawing_;
    QColor line_;
    double lineWidth_ = 0;
    QColor fill_;
};

/// The points of an arc of an ellipse; degrees, clockwise from three o'clock.
std::vector<QPointF> arcPoints(const QRectF& box, double fromDegrees, double toDegrees);

/// The values from, from + step, ... below end.
std::vector<double> steps(double from, double end, double step);

/// The drawing moved and scaled so that it sits in the middle of the box.
Drawing fitted(const Drawing& drawing, const QRectF& box, QSizeF sheet);

} // namespace samples
