#include "drawings.h"

#include <cmath>
#include <numbers>

namespace samples {

namespace {

QPointF around(QPointF centre, double radius, double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    return centre + QPointF(radius * std::cos(angle), radius * std::sin(angle));
}

// A face with a light crescent, the front of every round casing.
void casing(Sketch& sketch, QPointF centre, double radius, const Colours& colours) {
    const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
    sketch.noLine().fill(colours.dark).ellipse(box);
    sketch.fill(colours.base).circle(centre - QPointF(radius, radius) * 0.06, radius * 0.9);
    sketch.line(colours.light, radius * 0.11);
    sketch.arc(box.adjusted(radius * .24, radius * .24, -radius * .24, -radius * .24), 185, 285);
    sketch.line(kInk).noFill().ellipse(box);
}

void feet(Sketch& sketch, const QRectF& plate) {
    sketch.line(kInk).fill(kShade).rect(plate);
}

void flange(Sketch& sketch, const QRectF& box, const Colours& colours) {
    sketch.line(kInk).fill(colours.dark).roundedRect(box, 1.2);
}

void boltCircle(Sketch& sketch, QPointF centre, double radius, int count) {
    sketch.noLine().fill(kInk);
    for (int bolt = 0; bolt < count; ++bolt) {
        sketch.circle(around(centre, radius, 360.0 * bolt / count + 22.5), 1.5);
    }
}

Drawing mirrored(Drawing drawing) {
    for (auto& shape : drawing.shapes) {
        for (auto& point : shape.points) {
            point.setX(drawing.size.width() - point.x());
        }
        if (shape.outline == Outline::Ellipse) {
            const double left = shape.points[1].x();
            shape.points[1].setX(shape.points[0].x());
            shape.points[0].setX(left);
        }
    }
    return drawing;
}

} // namespace

Drawing centrifugalPump(const Colours& body, Facing outlet) {
    Sketch sketch;
    sketch.line(kInk).fill(body.dark).polygon({{31, 70}, {63, 70}, {72, 90}, {22, 90}});
    feet(sketch, {14, 88, 66, 7});
    sketch.lyingCylinder({50, 17, 38, 18}, body);
    flange(sketch, {86, 11, 7, 30}, body);
    casing(sketch, {46, 49}, 33, body);
    boltCircle(sketch, {46, 49}, 26.5, 8);
    casing(sketch, {46, 49}, 13, kSteel);
    sketch.noLine().fill(kInk).circle({46, 49}, 3.6);
    auto drawing = sketch.take();
    return outlet == Facing::Right ? drawing : mirrored(std::move(drawing));
}

Drawing pumpWithMotor(const Colours& body, const Colours& motorBody) {
    Sketch sketch({140, 100});
    feet(sketch, {6, 86, 128, 8});
    sketch.line(kInk).fill(body.dark).polygon({{22, 68}, {46, 68}, {52, 86}, {16, 86}});
    sketch.place(motor(motorBody), {62, 26, 78, 62});
    sketch.lyingCylinder({48, 52, 26, 11}, kSteel);
    sketch.uprightCylinder({29, 14, 13, 20}, body);
    flange(sketch, {24, 8, 23, 7}, body);
    casing(sketch, {35, 54}, 25, body);
    boltCircle(sketch, {35, 54}, 20, 8);
    casing(sketch, {35, 54}, 9, kSteel);
    return sketch.take();
}

Drawing pumpSymbol(const Colours& body) {
    Sketch sketch;
    sketch.line(kInk, 3).polyline({{1, 50}, {99, 50}});
    sketch.fill(body.light).circle({50, 50}, 36);
    sketch.fill(body.base).polygon({{32, 19}, {86, 50}, {32, 81}});
    return sketch.take();
}

Drawing meteringPump(const Colours& body) {
    Sketch sketch;
    feet(sketch, {12, 88, 76, 7});
    sketch.lyingCylinder({8, 42, 38, 42}, body, 6);
    sketch.line(body.dark, Sketch::kFine);
    for (const double rib : steps(15, 42, 6)) {
        sketch.polyline({{rib, 47}, {rib, 79}});
    }
    casing(sketch, {27, 34}, 12, kSteel);
    sketch.line(kInk, Sketch::kFine).polyline({{27, 34}, {33, 27}});
    sketch.uprightCylinder({63, 14, 12, 74}, kSteel, 1);
    sketch.line(kInk).fill(body.dark).roundedRect({44, 44, 14, 38}, 2);
    sketch.uprightCylinder({56, 36, 27, 52}, body, 5);
    flange(sketch, {59, 8, 20, 8}, kSteel);
    sketch.noLine().fill(kPaper).polygon({{63, 66}, {76, 66}, {69.5, 54}});
    return sketch.take();
}

Drawing gearPump(const Colours& body) {
    Sketch sketch;
    sketch.lyingCylinder({3, 41, 94, 18}, body);
    flange(sketch, {2, 35, 7, 30}, body);
    flange(sketch, {91, 35, 7, 30}, body);
    sketch.line(kInk).fill(body.base).roundedRect({22, 6, 56, 88}, 28);
    sketch.noLine().fill(body.light).roundedRect({27, 11, 46, 78}, 23);
    for (const QPointF centre : {QPointF(50, 33.5), QPointF(50, 66.5)}) {
        const double shift = centre.y() > 50 ? 22.5 : 0;
        std::vector<QPointF> teeth;
        for (int tooth = 0; tooth < 8; ++tooth) {
            for (const auto& [radius, degrees] :
                 {std::pair{14.0, -15.0}, {19.0, -9.0}, {19.0, 9.0}, {14.0, 15.0}}) {
                teeth.push_back(around(centre, radius, 45.0 * tooth + shift + degrees));
            }
        }
        sketch.line(kInk, 1.8).fill(kSteel.base).polygon(teeth);
        sketch.fill(body.dark).circle(centre, 5);
    }
    return sketch.take();
}

Drawing submersiblePump(const Colours& body) {
    Sketch sketch;
    sketch.line(kInk, 3).noFill().arc({38, 2, 24, 18}, 180, 360);
    sketch.uprightCylinder({30, 12, 40, 54}, body, 7);
    sketch.line(body.dark, Sketch::kFine);
    for (const double rib : steps(22, 62, 7)) {
        sketch.polyline({{34, rib}, {66, rib}});
    }
    sketch.line(kInk).fill(body.dark).polygon(
        {{30, 64}, {70, 64}, {80, 76}, {80, 86}, {20, 86}, {20, 76}});
    sketch.lyingCylinder({76, 68, 15, 15}, body);
    flange(sketch, {89, 63, 7, 25}, body);
    sketch.line(kInk).fill(kSteel.base);
    for (const double foot : steps(24, 76, 22)) {
        sketch.rect({foot, 86, 8, 10});
    }
    return sketch.take();
}

Drawing motor(const Colours& body) {
    Sketch sketch({130, 100});
    feet(sketch, {28, 84, 72, 8});
    sketch.line(kInk).fill(body.dark).polygon({{38, 74}, {90, 74}, {94, 84}, {34, 84}});
    sketch.lyingCylinder({1, 45, 24, 12}, kSteel, 1.5);
    sketch.lyingCylinder({22, 26, 10, 50}, body, 3);
    sketch.lyingCylinder({96, 24, 28, 54}, body, 9);
    sketch.lyingCylinder({30, 20, 70, 62}, body, 5);
    sketch.line(body.dark, Sketch::kFine);
    for (const double rib : steps(28, 76, 7)) {
        sketch.polyline({{35, rib}, {95, rib}});
    }
    sketch.line(kInk).fill(body.dark).roundedRect({50, 6, 30, 19}, 2.5);
    sketch.noLine().fill(body.light).rect({54, 10, 22, 3.4});
    sketch.line(kInk, Sketch::kFine).fill(kPaper).rect({52, 46, 26, 15});
    sketch.line(kShade, 1.2).polyline({{56, 51}, {74, 51}}).polyline({{56, 56}, {68, 56}});
    return sketch.take();
}

Drawing motorSymbol(const Colours& body) {
    Sketch sketch;
    sketch.line(kInk, 3).polyline({{50, 86}, {50, 99}});
    sketch.fill(body.base).circle({50, 46}, 41);
    sketch.noLine().fill(body.light).circle({50, 46}, 31);
    sketch.line(kInk, 4.6).letter('M', {36, 31, 28, 30});
    return sketch.take();
}

Drawing fan(const Colours& body) {
    Sketch sketch;
    feet(sketch, {16, 90, 60, 6});
    sketch.line(kInk).fill(body.dark).polygon({{30, 76}, {60, 76}, {68, 90}, {24, 90}});
    sketch.line(kInk).fill(body.base).rect({46, 8, 48, 26});
    sketch.noLine().fill(body.light).rect({50, 11.5, 40, 5.5});
    flange(sketch, {90, 4, 7, 34}, body);
    casing(sketch, {45, 48}, 40, body);
    sketch.line(kInk, 1.8).fill(kPaper).circle({45, 48}, 28);
    for (int blade = 0; blade < 6; ++blade) {
        const double turn = 60.0 * blade;
        sketch.line(kInk, 1.3).fill(kSteel.base);
        sketch.polygon({around({45, 48}, 6, turn - 30), around({45, 48}, 17, turn - 22),
                        around({45, 48}, 26, turn - 4), around({45, 48}, 26, turn + 20),
                        around({45, 48}, 15, turn + 16), around({45, 48}, 6, turn + 30)});
    }
    sketch.line(kInk, 1.8).fill(body.dark).circle({45, 48}, 7);
    return sketch.take();
}

Drawing compressor(const Colours& body) {
    Sketch sketch;
    sketch.line(kInk).fill(kShade).rect({20, 84, 9, 11}).rect({71, 84, 9, 11});
    sketch.lyingCylinder({5, 54, 90, 34}, body, 15);
    sketch.place(motor(kSteel), {48, 20, 46, 35});
    sketch.uprightCylinder({16, 22, 26, 32}, body, 2);
    sketch.line(body.dark, Sketch::kFine);
    for (const double rib : steps(28, 50, 5)) {
        sketch.polyline({{19, rib}, {39, rib}});
    }
    sketch.line(kInk).fill(body.dark).roundedRect({12, 14, 34, 10}, 2);
    sketch.line(kInk).noFill().polyline({{29, 14}, {29, 6}, {7, 6}, {7, 58}});
    sketch.line(kInk, Sketch::kFine).fill(kPaper).circle({50, 71}, 9);
    sketch.polyline({{50, 71}, {55, 66}});
    return sketch.take();
}

} // namespace samples
