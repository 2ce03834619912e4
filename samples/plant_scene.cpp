#include "plant_scene.h"

#include "drawings.h"
#include "raster.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

#include <algorithm>
#include <random>

namespace samples {

namespace {

struct Light {
    QColor zenith;
    QColor horizon;
    QColor ground;
    QColor tint; ///< laid over everything, with its alpha
    QPointF sun; ///< in shares of the picture
};

Light lightOf(Daylight daylight) {
    switch (daylight) {
    case Daylight::Morning:
        return {QColor(0x7F, 0xA6, 0xC9),
                QColor(0xF4, 0xE3, 0xCF),
                QColor(0x8D, 0x94, 0x90),
                QColor(255, 226, 190, 34),
                {0.16, 0.36}};
    case Daylight::Noon:
        return {QColor(0x3F, 0x86, 0xC6),
                QColor(0xD6, 0xE8, 0xF3),
                QColor(0x97, 0x9C, 0x95),
                QColor(255, 255, 255, 10),
                {0.8, 0.1}};
    case Daylight::Evening:
        break;
    }
    return {QColor(0x2F, 0x3D, 0x66),
            QColor(0xF0, 0x9A, 0x62),
            QColor(0x59, 0x56, 0x5B),
            QColor(60, 30, 60, 70),
            {0.7, 0.5}};
}

// Paints on a sheet of 160 by 100 units; the ground begins at 68.
class Scene {
  public:
    Scene(QSize pixels, const Light& light)
        : light_(light), image_(pixels, QImage::Format_RGB32), painter_(&image_) {
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.setRenderHint(QPainter::SmoothPixmapTransform);
        painter_.scale(pixels.width() / 160.0, pixels.height() / 100.0);
        painter_.setPen(Qt::NoPen);
    }

    void sky();
    void farBuildings();
    void ground();
    void hall(const QRectF& box);
    void pipeBridge();
    void put(const Drawing& drawing, const QRectF& box);
    QImage developed();

  private:
    void grain();

    Light light_;
    QImage image_;
    QPainter painter_;
    std::mt19937 random_{20}; // a fixed seed: its numbers are the same on every system
};

void Scene::sky() {
    QLinearGradient gradient(0, 0, 0, 70);
    gradient.setColorAt(0, light_.zenith);
    gradient.setColorAt(1, light_.horizon);
    painter_.fillRect(QRectF(0, 0, 160, 70), gradient);
    const QPointF sun(light_.sun.x() * 160, light_.sun.y() * 100);
    QRadialGradient glow(sun, 46);
    glow.setColorAt(0, QColor(255, 250, 235, 240));
    glow.setColorAt(0.1, QColor(255, 244, 220, 150));
    glow.setColorAt(1, QColor(255, 240, 220, 0));
    painter_.fillRect(QRectF(0, 0, 160, 70), glow);
    for (const QRectF& cloud : {QRectF(18, 10, 56, 9), QRectF(34, 15, 64, 6), QRectF(96, 25, 58, 7),
                                QRectF(4, 31, 40, 5)}) {
        painter_.save();
        painter_.translate(cloud.center());
        painter_.scale(cloud.width() / 2, cloud.height() / 2);
        QRadialGradient puff(QPointF(0, 0), 1);
        puff.setColorAt(0, QColor(255, 255, 255, 120));
        puff.setColorAt(1, QColor(255, 255, 255, 0));
        painter_.setBrush(puff);
        painter_.drawEllipse(QRectF(-1, -1, 2, 2));
        painter_.restore();
    }
}

void Scene::farBuildings() {
    QColor haze = light_.horizon.darker(118);
    for (int house = 0; house < 19; ++house) {
        const double height = 5.0 + static_cast<double>(random_() % 90) / 10;
        haze.setAlpha(170);
        painter_.fillRect(QRectF(house * 8.6 - 2, 69 - height, 9.2, height), haze);
    }
    for (const double chimney : {24.0, 29.0, 118.0}) {
        painter_.fillRect(QRectF(chimney, 36, 1.8, 33), haze);
    }
}

void Scene::ground() {
    QLinearGradient gradient(0, 68, 0, 100);
    gradient.setColorAt(0, light_.ground.lighter(122));
    gradient.setColorAt(1, light_.ground.darker(128));
    painter_.fillRect(QRectF(0, 68, 160, 32), gradient);
    painter_.setBrush(QColor(255, 214, 90, 130));
    painter_.drawPolygon(QPolygonF({{0, 92.6}, {160, 87}, {160, 87.8}, {0, 93.8}}));
}

void Scene::hall(const QRectF& box) {
    QLinearGradient wall(box.topLeft(), box.bottomRight());
    wall.setColorAt(0, QColor(0xC3, 0xCB, 0xD1));
    wall.setColorAt(1, QColor(0x86, 0x92, 0x9C));
    painter_.fillRect(box, wall);
    painter_.fillRect(QRectF(box.left(), box.top(), box.width(), 2.2), QColor(0x38, 0x5F, 0x88));
    for (const double rib : steps(box.left() + 1.6, box.right(), 1.6)) {
        painter_.fillRect(QRectF(rib, box.top() + 2.2, 0.25, box.height() - 2.2),
                          QColor(30, 40, 50, 46));
    }
    const QColor glass(0x4A, 0x66, 0x7E);
    for (const double window : steps(box.left() + 4, box.right() - 6, 8.4)) {
        painter_.fillRect(QRectF(window, box.top() + 7, 6, 4.2), glass);
    }
    painter_.fillRect(QRectF(box.left() + 6, box.bottom() - 12, 12, 12), QColor(0x5C, 0x68, 0x73));
    for (const double slat : steps(box.bottom() - 11, box.bottom(), 1.5)) {
        painter_.fillRect(QRectF(box.left() + 6, slat, 12, 0.3), QColor(20, 28, 36, 90));
    }
}

void Scene::pipeBridge() {
    const auto pipe = [this](double top, double height, const Colours& colours) {
        QLinearGradient round(0, top, 0, top + height);
        round.setColorAt(0, colours.base);
        round.setColorAt(0.3, colours.light);
        round.setColorAt(1, colours.dark.darker(125));
        painter_.fillRect(QRectF(46, top, 114, height), round);
    };
    pipe(53.5, 2.2, kSteel);
    pipe(56.5, 1.6, kGreen);
    pipe(58.8, 2.4, kAmber);
    const QColor beam(0x4B, 0x55, 0x5F);
    painter_.fillRect(QRectF(46, 61.4, 114, 1.2), beam);
    for (const double post : {50.0, 78.0, 106.0, 134.0}) {
        painter_.fillRect(QRectF(post, 52, 1.5, 22), beam);
        painter_.fillRect(QRectF(post + 5, 52, 1.1, 20), beam.lighter(120));
        painter_.fillRect(QRectF(post, 52, 6, 0.9), beam);
    }
}

void Scene::put(const Drawing& drawing, const QRectF& box) {
    painter_.save();
    painter_.translate(box.center().x() + box.width() * 0.12, box.bottom() - 0.4);
    painter_.scale(box.width() * 0.62, box.height() * 0.07);
    QRadialGradient shadow(QPointF(0, 0), 1);
    shadow.setColorAt(0, QColor(12, 18, 24, 150));
    shadow.setColorAt(1, QColor(12, 18, 24, 0));
    painter_.setBrush(shadow);
    painter_.drawEllipse(QRectF(-1, -1, 2, 2));
    painter_.restore();
    const QSize pixels = (box.size() * (image_.width() / 160.0)).toSize();
    const QImage picture = rendered(drawing, pixels);
    painter_.drawImage(box, picture);
}

// Noise of a sensor, stronger in the dark.
void Scene::grain() {
    for (int y = 0; y < image_.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image_.scanLine(y));
        for (int x = 0; x < image_.width(); ++x) {
            const int noise = static_cast<int>(random_() % 13) - 6;
            const auto part = [noise](int value) {
                return std::clamp(value + noise * (320 - value) / 320, 0, 255);
            };
            row[x] = qRgb(part(qRed(row[x])), part(qGreen(row[x])), part(qBlue(row[x])));
        }
    }
}

QImage Scene::developed() {
    painter_.fillRect(QRectF(0, 0, 160, 100), light_.tint);
    QRadialGradient corners(QPointF(80, 50), 104);
    corners.setColorAt(0.55, QColor(0, 0, 0, 0));
    corners.setColorAt(1, QColor(0, 0, 0, 110));
    painter_.fillRect(QRectF(0, 0, 160, 100), corners);
    painter_.end();
    grain();
    return image_;
}

} // namespace

QImage plantScene(QSize pixels, Daylight daylight) {
    Scene scene(pixels, lightOf(daylight));
    scene.sky();
    scene.farBuildings();
    scene.ground();
    scene.put(coolingTower(kSteel), {116, 28, 40, 41});
    scene.hall({-4, 40, 62, 32});
    scene.put(sphereTank(kSteel), {92, 40, 30, 33});
    scene.pipeBridge();
    scene.put(tank(kSteel, 0.6), {60, 38, 30, 40});
    scene.put(lyingTank(kBlue), {96, 58, 48, 26});
    scene.put(pumpWithMotor(kBlue, kGreen), {22, 72, 30, 20});
    return scene.developed();
}

} // namespace samples
