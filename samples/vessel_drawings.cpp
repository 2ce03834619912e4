#include "drawings.h"

#include <algorithm>

namespace samples {

namespace {

void leg(Sketch& sketch, double left, double top, double bottom) {
    sketch.line(kInk).fill(kShade).rect({left, top, 6, bottom - top - 3});
    sketch.rect({left - 3, bottom - 4, 12, 4});
}

// A standing vessel: domed top and bottom, weld seams, the light from the left.
void standingVessel(Sketch& sketch, const QRectF& box, const Colours& body) {
    const double dome = box.width() * 0.3;
    sketch.uprightCylinder(box, body, dome);
    sketch.line(body.dark, Sketch::kFine);
    sketch.polyline({{box.left() + 1.5, box.top() + dome}, {box.right() - 1.5, box.top() + dome}});
    sketch.polyline(
        {{box.left() + 1.5, box.bottom() - dome}, {box.right() - 1.5, box.bottom() - dome}});
}

// A window with its share filled from below.
void sightGlass(Sketch& sketch, const QRectF& box, double level) {
    sketch.noLine().fill(kPaper).roundedRect(box, 3);
    const double height = box.height() * std::clamp(level, 0.0, 1.0);
    if (height > 0) {
        const QRectF liquid(box.left(), box.bottom() - height, box.width(), height);
        sketch.fill(kWater.base).roundedRect(liquid, 2.5);
        sketch.fill(kWater.light).rect({liquid.left() + 1.5, liquid.top() + 1.5, 3, height - 4});
    }
    sketch.line(kInk, Sketch::kFine).noFill().roundedRect(box, 3);
    for (int mark = 1; mark < 4; ++mark) {
        const double y = box.bottom() - box.height() * mark / 4;
        sketch.polyline({{box.right() - 4, y}, {box.right(), y}});
    }
}

void flame(Sketch& sketch, QPointF foot, double height) {
    const auto at = [&](double x, double y) { return foot + QPointF(x, y) * height; };
    sketch.line(kRed.dark, Sketch::kFine).fill(kAmber.base);
    sketch.polygon({at(-.28, -.02), at(-.38, -.28), at(-.27, -.52), at(-.17, -.42), at(-.06, -1),
                    at(.14, -.66), at(.2, -.48), at(.28, -.58), at(.38, -.28), at(.28, -.02)});
    sketch.noLine().fill(QColor(0xFB, 0xE3, 0xA6));
    sketch.polygon({at(-.12, -.04), at(-.18, -.2), at(-.02, -.52), at(.16, -.22), at(.12, -.04)});
}

} // namespace

Drawing tank(const Colours& body, double level) {
    Sketch sketch({80, 100});
    leg(sketch, 17, 74, 98);
    leg(sketch, 57, 74, 98);
    sketch.uprightCylinder({34, 3, 12, 8}, kSteel);
    sketch.line(kInk).fill(kShade).rect({37, 86, 6, 9});
    standingVessel(sketch, {9, 8, 62, 79}, body);
    sightGlass(sketch, {33, 30, 14, 36}, level);
    return sketch.take();
}

Drawing lyingTank(const Colours& body) {
    Sketch sketch({150, 90});
    sketch.line(kInk).fill(kShade);
    sketch.polygon({{28, 68}, {46, 68}, {50, 86}, {24, 86}});
    sketch.polygon({{104, 68}, {122, 68}, {126, 86}, {100, 86}});
    sketch.uprightCylinder({68, 6, 16, 12}, kSteel);
    sketch.line(kInk).fill(kSteel.dark).roundedRect({63, 3, 26, 6}, 1.5);
    sketch.lyingCylinder({4, 16, 142, 58}, body, 22);
    sketch.line(body.dark, Sketch::kFine);
    for (const double seam : {27.0, 75.0, 123.0}) {
        sketch.polyline({{seam, 17.5}, {seam, 72.5}});
    }
    sketch.line(kInk, Sketch::kFine)
        .fill(kAmber.base)
        .polygon({{99, 33}, {110, 44}, {99, 55}, {88, 44}});
    return sketch.take();
}

Drawing silo(const Colours& body) {
    Sketch sketch({70, 100});
    leg(sketch, 13, 62, 98);
    leg(sketch, 51, 62, 98);
    sketch.line(kInk).fill(body.dark).polygon({{9, 22}, {26, 6}, {44, 6}, {61, 22}});
    sketch.fill(body.base).polygon({{9, 62}, {61, 62}, {41, 90}, {29, 90}});
    sketch.noLine().fill(body.light).polygon({{16, 64}, {26, 64}, {33, 84}, {30, 84}});
    sketch.uprightCylinder({9, 21, 52, 43}, body);
    sketch.line(body.dark, 1.2);
    for (const double rib : steps(28, 62, 7)) {
        sketch.polyline({{11, rib}, {59, rib}});
    }
    sketch.line(kInk).fill(kSteel.base).rect({27, 88, 16, 7});
    return sketch.take();
}

Drawing agitatorVessel(const Colours& body) {
    Sketch sketch;
    leg(sketch, 24, 72, 98);
    leg(sketch, 70, 72, 98);
    standingVessel(sketch, {16, 24, 68, 64}, body);
    sketch.line(kInk, Sketch::kFine).fill(kPaper).roundedRect({29, 36, 42, 42}, 8);
    sketch.noLine().fill(kWater.base).roundedRect({30, 48, 40, 29}, 7);
    sketch.fill(kWater.light).rect({30, 47, 40, 4});
    sketch.line(kInk, 3).polyline({{50, 22}, {50, 68}});
    sketch.line(kInk, Sketch::kFine).fill(kSteel.light);
    sketch.ellipse({35, 64, 15, 7}).ellipse({50, 64, 15, 7});
    sketch.line(kInk).fill(kBlue.base).roundedRect({39, 2, 22, 16}, 3);
    sketch.noLine().fill(kBlue.light).rect({42, 5, 16, 3.5});
    sketch.line(kInk).fill(kSteel.dark).rect({43, 17, 14, 8});
    return sketch.take();
}

Drawing sphereTank(const Colours& body) {
    Sketch sketch;
    for (const double left : {16.0, 34.0, 60.0, 78.0}) {
        leg(sketch, left, 52, 98);
    }
    sketch.line(kInk, Sketch::kFine).polyline({{19, 88}, {37, 66}}).polyline({{81, 88}, {63, 66}});
    sketch.noLine().fill(body.dark).circle({50, 43}, 38);
    sketch.fill(body.base).circle({46.5, 40.5}, 33.5);
    sketch.fill(body.light).ellipse({25, 17, 24, 19});
    sketch.line(body.dark, Sketch::kFine).noFill().arc({12, 33, 76, 20}, 0, 180);
    sketch.line(kInk).circle({50, 43}, 38);
    sketch.fill(kSteel.base).rect({44, 1, 12, 6});
    return sketch.take();
}

Drawing tubeHeatExchanger(const Colours& body) {
    Sketch sketch({150, 80});
    sketch.line(kInk).fill(kShade).polygon({{46, 54}, {58, 54}, {61, 76}, {43, 76}});
    sketch.polygon({{96, 54}, {108, 54}, {111, 76}, {93, 76}});
    sketch.uprightCylinder({42, 4, 13, 20}, kWater);
    sketch.uprightCylinder({99, 56, 13, 19}, kWater);
    sketch.uprightCylinder({13, 58, 12, 18}, kRed);
    sketch.uprightCylinder({13, 3, 12, 18}, kRed);
    sketch.lyingCylinder({3, 18, 34, 42}, body, 16);
    sketch.lyingCylinder({114, 18, 33, 42}, body, 16);
    sketch.lyingCylinder({32, 18, 87, 42}, body);
    sketch.line(kInk).fill(body.dark);
    sketch.roundedRect({30, 12, 7, 54}, 1.5).roundedRect({114, 12, 7, 54}, 1.5);
    sketch.line(kInk, Sketch::kFine).fill(kPaper).roundedRect({46, 27, 59, 24}, 3);
    sketch.line(kRed.base, 2.2);
    for (const double tube : steps(32, 50, 4.7)) {
        sketch.polyline({{49, tube}, {102, tube}});
    }
    return sketch.take();
}

Drawing plateHeatExchanger(const Colours& body) {
    Sketch sketch;
    sketch.line(kInk).fill(kShade).rect({10, 90, 80, 6});
    sketch.lyingCylinder({2, 20, 16, 11}, kRed);
    sketch.lyingCylinder({2, 70, 16, 11}, kRed);
    sketch.lyingCylinder({82, 20, 16, 11}, kWater);
    sketch.lyingCylinder({82, 70, 16, 11}, kWater);
    for (int plate = 0; plate < 7; ++plate) {
        sketch.line(kInk, Sketch::kFine).fill(plate % 2 == 0 ? kRed.light : kWater.light);
        sketch.rect({27 + 6.6 * plate, 14, 6.6, 74});
    }
    sketch.uprightCylinder({15, 6, 13, 86}, body, 2);
    sketch.uprightCylinder({72, 6, 13, 86}, body, 2);
    sketch.line(kInk).fill(kSteel.dark).rect({10, 11, 80, 5}).rect({10, 84, 80, 5});
    return sketch.take();
}

Drawing coilHeater(const Colours& body) {
    Sketch sketch;
    leg(sketch, 20, 76, 98);
    leg(sketch, 74, 76, 98);
    standingVessel(sketch, {12, 5, 76, 84}, body);
    sketch.line(kInk, Sketch::kFine).fill(kPaper).roundedRect({24, 24, 52, 48}, 8);
    std::vector<QPointF> coil{{96, 30}, {64, 30}};
    for (int turn = 0; turn < 4; ++turn) {
        const double y = 30 + 9.0 * turn;
        const auto left = arcPoints({30, y, 9, 4.5}, 270, 90);
        const auto right = arcPoints({60, y + 4.5, 9, 4.5}, -90, 90);
        coil.insert(coil.end(), left.begin(), left.end());
        coil.insert(coil.end(), right.begin(), right.end());
    }
    coil.emplace_back(96, 66);
    sketch.line(kInk, 5.4).polyline(coil);
    sketch.line(kRed.base, 3.2).polyline(coil);
    return sketch.take();
}

Drawing boiler(const Colours& body) {
    Sketch sketch({130, 100});
    sketch.line(kInk).fill(kShade).rect({8, 88, 114, 7});
    sketch.uprightCylinder({98, 3, 15, 34}, kSteel);
    sketch.line(kInk).fill(kSteel.dark).rect({95, 1, 21, 5});
    sketch.lyingCylinder({12, 28, 108, 60}, body, 10);
    sketch.line(body.dark, Sketch::kFine);
    for (const double seam : {66.0, 84.0, 102.0}) {
        sketch.polyline({{seam, 29.5}, {seam, 86.5}});
    }
    sketch.line(kInk).fill(kSteel.base).circle({37, 59}, 22);
    sketch.fill(QColor(0x3A, 0x2C, 0x2A)).circle({37, 59}, 16);
    flame(sketch, {37, 72}, 25);
    sketch.line(kInk, Sketch::kFine).fill(kPaper).circle({75, 46}, 8);
    sketch.polyline({{75, 46}, {79, 42}});
    sketch.uprightCylinder({66, 16, 10, 12}, kRed);
    sketch.line(kInk).fill(kRed.dark).rect({61, 12, 20, 5});
    return sketch.take();
}

Drawing coolingTower(const Colours& body) {
    Sketch sketch;
    const auto tower = [](double in) {
        return std::vector<QPointF>{{28 + in, 26}, {31 + in, 44}, {28 + in, 62}, {20 + in, 80},
                                    {12 + in, 93}, {88 - in, 93}, {80 - in, 80}, {72 - in, 62},
                                    {69 - in, 44}, {72 - in, 26}};
    };
    sketch.noLine().fill(QColor(0xE4, 0xEA, 0xEF)).circle({42, 15}, 11).circle({56, 12}, 10);
    sketch.circle({68, 9}, 8).rect({38, 14, 24, 12});
    sketch.line(kInk).fill(body.base).polygon(tower(0));
    sketch.noLine()
        .fill(body.light)
        .polygon({{34, 28}, {43, 28}, {44, 44}, {41, 62}, {36, 76}, {24, 76}, {33, 62}, {36, 44}});
    sketch.fill(body.dark).polygon(
        {{62, 28}, {70.8, 28}, {67.8, 44}, {70.8, 62}, {78, 78}, {68, 78}, {62, 62}, {60, 44}});
    sketch.line(kInk).fill(body.dark).ellipse({28, 22, 44, 8});
    sketch.fill(kShade);
    for (const double column : steps(16, 84, 13)) {
        sketch.polygon({{column, 82}, {column + 4, 82}, {column + 8, 94}, {column - 2, 94}});
    }
    sketch.fill(kWater.base).roundedRect({6, 91, 88, 6}, 2);
    return sketch.take();
}

Drawing conveyor(const Colours& body) {
    Sketch sketch({150, 80});
    leg(sketch, 28, 50, 78);
    leg(sketch, 116, 50, 78);
    for (const double left : {22.0, 60.0, 98.0}) {
        sketch.line(kInk, Sketch::kFine).fill(kAmber.base).rect({left, 9, 26, 21});
        sketch.noLine().fill(kAmber.light).rect({left + 10, 10, 6, 19});
    }
    sketch.line(kInk).fill(QColor(0x4A, 0x55, 0x60)).roundedRect({3, 30, 144, 24}, 12);
    sketch.fill(body.base).roundedRect({7, 34, 136, 16}, 8);
    sketch.line(kInk, Sketch::kFine).fill(kSteel.light);
    for (const double roller : steps(15, 140, 20)) {
        sketch.circle({roller, 42}, 6);
    }
    return sketch.take();
}

Drawing screwConveyor(const Colours& body) {
    Sketch sketch({150, 80});
    leg(sketch, 24, 56, 78);
    leg(sketch, 88, 56, 78);
    sketch.line(kInk).fill(body.dark).polygon({{14, 6}, {50, 6}, {42, 28}, {22, 28}});
    sketch.fill(body.dark).rect({97, 54, 16, 18});
    sketch.lyingCylinder({8, 26, 108, 32}, body, 4);
    sketch.line(kInk, Sketch::kFine).fill(kPaper).roundedRect({16, 31, 92, 22}, 3);
    sketch.line(kInk, 2.4).polyline({{16, 42}, {124, 42}});
    sketch.line(kInk, Sketch::kFine).fill(kSteel.base);
    for (const double turn : steps(20, 96, 13)) {
        sketch.polygon({{turn, 33}, {turn + 5, 33}, {turn + 12, 51}, {turn + 7, 51}});
    }
    sketch.place(motor(kBlue), {112, 26, 38, 29});
    return sketch.take();
}

Drawing pointerWith(const Drawing& thing) {
    Sketch sketch;
    sketch.place(thing, {34, 34, 64, 64});
    sketch.line(kInk, 4).fill(kPaper);
    sketch.polygon({{2, 2}, {2, 50}, {14, 39}, {22, 56}, {31, 52}, {23, 35}, {38, 35}});
    return sketch.take();
}

} // namespace samples
