// render: a picture file of any of the seven types as PNG.
#include "compound/error.h"
#include "picture/picture.h"
#include "tool/command.h"
#include "tool/library_arguments.h"
#include "tool/output_file.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

using compound::Error;
using compound::ErrorCode;

constexpr int kMaximumSide = 32767; // pixels; QPainter's coordinates end there

int inProportion(int side, int other, int total) {
    const double scaled = static_cast<double>(side) * other / std::max(total, 1);
    return std::clamp(static_cast<int>(std::lround(scaled)), 1, kMaximumSide);
}

// The box to fit the picture into. A side that is not given follows from the other one.
QSize boxFor(const Arguments& arguments, QSize pixels) {
    const int width = arguments.numberOf(Option::Width, kMaximumSide);
    const int height = arguments.numberOf(Option::Height, kMaximumSide);
    if (width == 0 && height == 0)
        return pixels;
    if (height == 0)
        return {width, inProportion(width, pixels.height(), pixels.width())};
    if (width == 0)
        return {inProportion(height, pixels.width(), pixels.height()), height};
    return {width, height};
}

QByteArray toPng(const QImage& image, const std::filesystem::path& path) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG"))
        throw Error(ErrorCode::Failed, path, "the picture cannot be written as PNG");
    return bytes;
}

} // namespace

ExitStatus renderPicture(const Invocation& invocation) {
    const std::filesystem::path source = invocation.argument(0);
    const std::filesystem::path target = invocation.argument(1);
    boxFor(invocation.arguments, {1, 1}); // wrong numbers are told before the file is read
    const std::vector<std::byte> bytes = readPictureFile(source);
    QImage image;
    try {
        const picture::Picture picture = picture::decode(bytes);
        const QSize box = boxFor(invocation.arguments, picture.facts().pixels);
        if (qint64{box.width()} * box.height() > picture::kMaximumPixels)
            throw Error(ErrorCode::TooLarge, target, "the picture would have too many pixels");
        image = picture.scaledTo(box);
        if (picture.isDrawnInPart())
            complain(invocation.console,
                     source.string() + ": cut short or asking for too much; drawn in part");
    } catch (const picture::DecodeError& error) {
        throw Error(ErrorCode::InvalidPicture, source, error.what());
    }
    const QByteArray png = toPng(image, target);
    writeOutputFile(target, std::as_bytes(std::span(png.constData(), std::size_t(png.size()))),
                    invocation.arguments.has(Option::Replace) ? IfFileExists::Replace
                                                              : IfFileExists::Refuse);
    return ExitStatus::Done;
}

} // namespace tool
