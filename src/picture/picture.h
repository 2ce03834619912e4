// Bytes -> picture. A picture is recognised by its content, never by its file's name, measured from
// its headers or decoded once, and then painted at any size.
//
// Errors: DecodeError; nothing else escapes for the bytes' sake. Sizes are checked before memory is
// taken. Neither measure() nor decode() needs a QGuiApplication.
//
// Threads: sniff(), measure(), decode() and decodeFor() may be called by any number at once. A
// Picture belongs to one thread at a time, because it keeps what it drew last; a copy of it is
// independent. Threads that draw metafiles must end before the QGuiApplication does.
#pragma once

#include "imaging/picture_facts.h"

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <cstddef>
#include <optional>
#include <span>

class QPainter;
class QRectF;

namespace picture {

using imaging::DecodeError;
using imaging::kMaximumPixels;
using imaging::PictureFacts;
using imaging::PictureKind;
using imaging::TwipSize;

class Picture {
  public:
    Picture(PictureFacts facts, QImage image);

    // A metafile: its file's bytes, which are played whenever the picture is shown at another size.
    Picture(PictureFacts facts, QByteArray metafile);

    const PictureFacts& facts() const { return facts_; }

    // A raster picture as it was decoded, maybe with alpha; null for a metafile.
    const QImage& image() const { return image_; }

    // The whole picture fitted into `box` device pixels, proportions kept. A raster picture is
    // never enlarged; a metafile is drawn at that size, on white paper, as far as it can be read.
    // Needs a QGuiApplication for metafiles.
    QImage scaledTo(QSize box) const;

    // Whether the metafile could not be drawn to its end the last time: it is cut short, or asks
    // for more work than any honest one. False for raster pictures.
    bool isDrawnInPart() const { return drawnInPart_; }

    // Paints the whole picture into `target`, whatever its proportions. A metafile is drawn anew
    // only when the target's size in device pixels is another than the last time.
    void paint(QPainter& painter, const QRectF& target) const;

    // The same on white paper, for a painter whose device keeps shapes, like a PDF file: a
    // metafile's lines, areas and letters stay shapes, unless something in it needs the pixels
    // beneath. `pixels` says how fine the rest is, over the whole target. Draws anew each time.
    void print(QPainter& painter, const QRectF& target, QSize pixels) const;

  private:
    QImage drawnAt(QSize size) const;

    PictureFacts facts_;
    QImage image_;
    QByteArray metafile_;
    mutable QImage drawn_; // the metafile at the size that was asked for last
    mutable bool drawnInPart_ = false;
};

// What kind of picture the bytes begin like.
std::optional<PictureKind> sniff(std::span<const std::byte> bytes);

// Kind and size from the headers; takes no memory for pixels.
PictureFacts measure(std::span<const std::byte> bytes);

Picture decode(std::span<const std::byte> bytes);

// The same for showing the picture fitted into `box` pixels or less, upright: of a JPG only as many
// pixels are decoded as that takes, so that image() may be smaller than facts().pixels.
Picture decodeFor(std::span<const std::byte> bytes, QSize box);

} // namespace picture
