// Writes the pictures of the demonstration library: one folder for every group.

#include "catalogue.h"
#include "metafile_writer.h"
#include "raster.h"
#include "raster_writer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <stdexcept>

namespace samples {

namespace {

constexpr int kTwipsPerPixel = 15;

QSize sizeOf(const Drawing& drawing, int width) {
    return {width, qRound(width * drawing.size.height() / drawing.size.width())};
}

// A photograph has the proportions of its camera, whatever it shows.
QSize photographSize(int width, double height) {
    return {width, qRound(width * height)};
}

// Icons are drawn anew for every size; scaled-down outlines would turn grey.
QByteArray icon(const Drawing& drawing, int largest) {
    std::vector<QImage> frames;
    for (const int side : {16, 24, 32, 48}) {
        if (side <= largest) {
            frames.push_back(rendered(drawing, {side, side}));
        }
    }
    return iconOf(frames);
}

QByteArray bitmap(const Drawing& drawing, const Entry& entry) {
    const QImage picture = onGround(rendered(drawing, sizeOf(drawing, entry.width)), Qt::white);
    switch (entry.depth) {
    case Depth::Colours16:
        return paletteBmp(reduced(picture, 16, Transparency::None));
    case Depth::Colours256:
        return paletteBmp(reduced(picture, 256, Transparency::None));
    case Depth::TrueColour:
        break;
    }
    return trueColourBmp(picture);
}

QByteArray drawn(const Drawing& drawing, const Entry& entry, const QString& kind) {
    if (kind == "wmf") {
        return wmfOf(drawing, entry.width * kTwipsPerPixel);
    }
    if (kind == "emf") {
        return emfOf(drawing, entry.width * kTwipsPerPixel);
    }
    if (kind == "ico") {
        return icon(drawing, entry.width);
    }
    if (kind == "cur") {
        return cursorOf(rendered(drawing, {entry.width, entry.width}), {1, 1});
    }
    if (kind == "bmp") {
        return bitmap(drawing, entry);
    }
    if (kind == "gif") {
        const QImage picture = rendered(drawing, sizeOf(drawing, entry.width));
        return gifOf(reduced(picture, 256, Transparency::OneIndex));
    }
    if (kind == "jpg") {
        return jpgOf(studioShot(drawing, photographSize(entry.width, 0.75)), 88);
    }
    throw std::invalid_argument("there is no picture of the kind " + kind.toStdString());
}

QByteArray bytesOf(const Entry& entry) {
    if (const auto* daylight = std::get_if<Daylight>(&entry.content)) {
        return jpgOf(plantScene(photographSize(entry.width, 0.625), *daylight), 86);
    }
    return drawn(std::get<Drawing>(entry.content), entry, QFileInfo(entry.file).suffix());
}

void write(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        throw std::runtime_error(path.toStdString() + ": " + file.errorString().toStdString());
    }
}

void writeLibrary(const QString& folder) {
    for (const Group& group : catalogue()) {
        const QDir target(folder + "/" + group.folder);
        if (!target.mkpath(".")) {
            throw std::runtime_error("cannot make the folder " + target.path().toStdString());
        }
        for (const Entry& entry : group.entries) {
            write(target.filePath(entry.file), bytesOf(entry));
        }
    }
}

} // namespace

} // namespace samples

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: txs_make_samples FOLDER\n", stderr);
        return 2;
    }
    try {
        samples::writeLibrary(QCoreApplication::arguments().at(1));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "txs_make_samples: %s\n", error.what());
        return 1;
    }
    return 0;
}
