#include "drawings.h"

#include <cmath>
#include <numbers>

namespace samples {

namespace {

constexpr double kAxis = 66; // the height of the pipe's axis on the valves' sheets

// The two triangles that stand for a valve, tip to tip, with pipe ends on both sides.
void bowTie(Sketch& sketch, const Colours& body) {
    sketch.line(kInk).fill(kSteel.base).rect({1, kAxis - 7, 14, 14}).rect({85, kAxis - 7, 14, 14});
    sketch.fill(body.base).polygon({{13, kAxis - 21}, {50, kAxis}, {13, kAxis + 21}});
    sketch.fill(body.base).polygon({{87, kAxis - 21}, {50, kAxis}, {87, kAxis + 21}});
    sketch.noLine().fill(body.light);
    sketch.polygon({{17, kAxis - 14}, {31, kAxis - 6}, {17, kAxis - 6}});
    sketch.polygon({{83, kAxis - 14}, {69, kAxis - 6}, {83, kAxis - 6}});
}

void stem(Sketch& sketch, double top) {
    sketch.line(kInk, 3.2).polyline({{50, kAxis}, {50, top}});
}

QPointF onDial(QPointF centre, double radius, double share) {
    const double angle = (150 + 240 * share) * std::numbers::pi / 180;
    return centre + QPointF(radius * std::cos(angle), radius * std::sin(angle));
}

// A flanged body around the axis with a round window for a ball or a disc.
void flangedBody(Sketch& sketch, const Colours& body) {
    sketch.lyingCylinder({3, kAxis - 14, 94, 28}, body);
    sketch.line(kInk).fill(body.dark);
    sketch.roundedRect({2, kAxis - 24, 8, 48}, 1.5).roundedRect({90, kAxis - 24, 8, 48}, 1.5);
    sketch.fill(body.base).circle({50, kAxis}, 27);
}

} // namespace

Drawing handValve(const Colours& body) {
    Sketch sketch;
    stem(sketch, 26);
    bowTie(sketch, body);
    sketch.line(kInk).fill(body.dark).roundedRect({20, 18, 60, 9}, 4.5);
    sketch.fill(kSteel.base).roundedRect({45, 12, 10, 20}, 2);
    return sketch.take();
}

Drawing motorValve(const Colours& body) {
    Sketch sketch;
    stem(sketch, 36);
    bowTie(sketch, body);
    sketch.line(kInk).fill(body.base).circle({50, 22}, 19.5);
    sketch.noLine().fill(body.light).circle({50, 22}, 14.5);
    sketch.line(kInk, 2.8).letter('M', {43, 15, 14, 14});
    return sketch.take();
}

Drawing diaphragmValve(const Colours& body) {
    Sketch sketch;
    stem(sketch, 30);
    bowTie(sketch, body);
    auto dome = arcPoints({22, 6, 56, 50}, 180, 360);
    sketch.line(kInk).fill(body.base).polygon(dome);
    sketch.noLine().fill(body.light).polygon(arcPoints({30, 12, 22, 36}, 180, 270));
    sketch.line(kInk).fill(body.dark).roundedRect({18, 29, 64, 6}, 2);
    return sketch.take();
}

Drawing threeWayValve(const Colours& body) {
    Sketch sketch;
    sketch.line(kInk).fill(kSteel.base);
    sketch.rect({1, 43, 14, 14}).rect({85, 43, 14, 14}).rect({43, 85, 14, 14});
    sketch.fill(body.base).polygon({{13, 29}, {50, 50}, {13, 71}});
    sketch.polygon({{87, 29}, {50, 50}, {87, 71}});
    sketch.fill(body.light).polygon({{29, 87}, {50, 50}, {71, 87}});
    sketch.line(kInk, 3.2).polyline({{50, 50}, {50, 18}});
    sketch.line(kInk).fill(body.dark).roundedRect({28, 10, 44, 9}, 4.5);
    return sketch.take();
}

Drawing checkValve(const Colours& body) {
    Sketch sketch;
    sketch.line(kInk).fill(kSteel.base).rect({1, 43, 16, 14}).rect({83, 43, 16, 14});
    sketch.fill(kPaper).rect({15, 26, 70, 48});
    sketch.fill(body.base).polygon({{15, 26}, {85, 50}, {15, 74}});
    sketch.noLine().fill(body.light).polygon({{19, 33}, {42, 42}, {19, 42}});
    sketch.line(kInk, 4.5).polyline({{85, 26}, {85, 74}});
    sketch.line(kInk).polyline({{32, 12}, {68, 12}});
    sketch.noLine().fill(kInk).polygon({{64, 5}, {78, 12}, {64, 19}});
    return sketch.take();
}

Drawing safetyValve(const Colours& body) {
    Sketch sketch;
    sketch.line(kInk).fill(kSteel.base).rect({35, 84, 14, 15}).rect({83, 49, 15, 14});
    sketch.fill(body.base).polygon({{21, 86}, {42, 56}, {63, 86}});
    sketch.fill(body.light).polygon({{85, 36}, {42, 56}, {85, 76}});
    sketch.line(kInk, 2.8).noFill();
    sketch.polyline(
        {{42, 56}, {42, 48}, {31, 44}, {53, 37}, {31, 30}, {53, 23}, {42, 19}, {42, 9}});
    sketch.line(kInk).fill(body.dark).roundedRect({26, 4, 32, 8}, 3);
    return sketch.take();
}

Drawing ballValve(const Colours& body, Position position) {
    Sketch sketch;
    stem(sketch, 28);
    flangedBody(sketch, body);
    sketch.line(kInk, 1.8).fill(kSteel.light).circle({50, kAxis}, 20);
    sketch.fill(kWater.base);
    if (position == Position::Open) {
        sketch.rect({31.5, kAxis - 7.5, 37, 15});
    } else {
        sketch.fill(kSteel.dark).rect({42.5, kAxis - 18.5, 15, 37});
    }
    sketch.line(kInk).fill(body.dark);
    if (position == Position::Open) {
        sketch.roundedRect({42, 19, 54, 10}, 4);
    } else {
        sketch.roundedRect({44, 2, 12, 32}, 4);
    }
    return sketch.take();
}

Drawing butterflyValve(const Colours& body, Position position) {
    Sketch sketch;
    stem(sketch, 30);
    flangedBody(sketch, body);
    sketch.line(kInk, 1.8).fill(position == Position::Open ? kWater.light : kPaper);
    sketch.circle({50, kAxis}, 20);
    sketch.fill(kSteel.dark);
    if (position == Position::Open) {
        sketch.roundedRect({31, kAxis - 3.5, 38, 7}, 3.5);
    } else {
        sketch.roundedRect({46.5, kAxis - 19, 7, 38}, 3.5);
    }
    sketch.line(kInk).fill(body.dark).roundedRect({26, 10, 48, 21}, 4);
    sketch.noLine().fill(body.light).roundedRect({31, 14, 38, 5}, 2);
    return sketch.take();
}

Drawing gauge(double share) {
    Sketch sketch;
    const QPointF centre(50, 44);
    sketch.uprightCylinder({43, 82, 14, 11}, kSteel);
    sketch.line(kInk).fill(kSteel.dark).rect({38, 91, 24, 7});
    sketch.fill(kSteel.base).circle(centre, 42);
    sketch.line(kInk, Sketch::kFine).fill(kPaper).circle(centre, 34);
    sketch.line(kGreen.base, 4).arc({22, 16, 56, 56}, 210, 318);
    sketch.line(kRed.base, 4).arc({22, 16, 56, 56}, 330, 390);
    sketch.line(kInk, Sketch::kFine);
    for (int mark = 0; mark <= 8; ++mark) {
        sketch.polyline({onDial(centre, 25, mark / 8.0), onDial(centre, 31, mark / 8.0)});
    }
    sketch.line(kInk, 3.4).polyline({onDial(centre, -7, share), onDial(centre, 23, share)});
    sketch.noLine().fill(kInk).circle(centre, 4.5);
    return sketch.take();
}

Drawing instrument(Quantity quantity) {
    Sketch sketch;
    sketch.line(kInk, 2.6).polyline({{50, 80}, {50, 99}});
    sketch.fill(kPaper).circle({50, 43}, 40);
    const Colours& colours = quantity == Quantity::Temperature ? kRed
                             : quantity == Quantity::Level     ? kWater
                             : quantity == Quantity::Flow      ? kGreen
                                                               : kAmber;
    sketch.noLine().fill(colours.base).polygon(arcPoints({13, 6, 74, 74}, 15, 165));
    sketch.line(kInk, 2.6).noFill().circle({50, 43}, 40);
    sketch.line(kInk, 4.2).letter(static_cast<char>(quantity), {30, 24, 18, 26});
    sketch.letter('I', {50, 24, 18, 26});
    return sketch.take();
}

Drawing thermometer(double share) {
    Sketch sketch;
    sketch.line(kInk).fill(kPaper).roundedRect({40, 4, 20, 72}, 10);
    sketch.fill(kRed.base).circle({50, 80}, 15.5);
    const double top = 68 - 56 * share;
    sketch.noLine().roundedRect({45.5, top, 9, 80 - top}, 4.5);
    sketch.fill(kRed.light).circle({45, 76}, 4);
    sketch.line(kInk, Sketch::kFine);
    for (int mark = 0; mark <= 6; ++mark) {
        sketch.polyline({{66, 12 + 8.0 * mark}, {mark % 2 == 0 ? 78.0 : 73.0, 12 + 8.0 * mark}});
    }
    return sketch.take();
}

Drawing straightPipe(const Colours& body) {
    Sketch sketch({140, 60});
    sketch.lyingCylinder({4, 17, 132, 26}, body);
    sketch.line(kInk).fill(body.dark);
    sketch.roundedRect({2, 9, 8, 42}, 1.5).roundedRect({130, 9, 8, 42}, 1.5);
    sketch.noLine().fill(kPaper).polygon(
        {{58, 26}, {72, 26}, {72, 21}, {86, 30}, {72, 39}, {72, 34}, {58, 34}});
    return sketch.take();
}

Drawing pipeElbow(const Colours& body) {
    Sketch sketch;
    const auto bend = [&](double outer, double inner, const QColor& colour) {
        auto points = arcPoints({97 - outer, 97 - outer, 2 * outer, 2 * outer}, 180, 270);
        const auto back = arcPoints({97 - inner, 97 - inner, 2 * inner, 2 * inner}, 270, 180);
        points.insert(points.end(), back.begin(), back.end());
        sketch.fill(colour).polygon(points);
    };
    sketch.noLine();
    bend(80, 42, body.base);
    bend(76, 68, body.light);
    bend(51, 42, body.dark);
    sketch.line(kInk).noFill();
    sketch.arc({17, 17, 160, 160}, 180, 270).arc({55, 55, 84, 84}, 180, 270);
    sketch.line(kInk).fill(body.dark);
    sketch.roundedRect({9, 90, 54, 8}, 1.5).roundedRect({90, 9, 8, 54}, 1.5);
    return sketch.take();
}

Drawing pipeTee(const Colours& body) {
    Sketch sketch;
    sketch.uprightCylinder({34, 50, 32, 44}, body);
    sketch.lyingCylinder({5, 20, 90, 34}, body);
    sketch.noLine().fill(body.base).rect({38.5, 46, 19, 10});
    sketch.line(kInk).fill(body.dark);
    sketch.roundedRect({2, 12, 8, 50}, 1.5).roundedRect({90, 12, 8, 50}, 1.5);
    sketch.roundedRect({25, 90, 50, 8}, 1.5);
    return sketch.take();
}

} // namespace samples
