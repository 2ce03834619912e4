#include "tool/picture_input.h"

#include "compound/error.h"
#include "platform/native_disk.h"
#include "store/picture_operations.h"

#include <QBuffer>

#include <algorithm>
#include <cmath>
#include <utility>

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
    if (width == 0 && height == 0) {
        return pixels;
    }
    if (height == 0) {
        return {width, inProportion(width, pixels.height(), pixels.width())};
    }
    if (width == 0) {
        return {inProportion(height, pixels.width(), pixels.height()), height};
    }
    return {width, height};
}

} // namespace

InputPicture readPicture(const std::filesystem::path& source, const std::filesystem::path& target,
                         const Invocation& invocation) {
    boxFor(invocation.arguments, {1, 1}); // wrong numbers are told before the file is read
    return readPicture(store::readPictureFile(platform::nativeDisk(), source), source, target,
                       invocation);
}

InputPicture readPicture(base::Bytes bytes, const std::filesystem::path& source,
                         const std::filesystem::path& target, const Invocation& invocation) {
    InputPicture input;
    input.file = std::move(bytes);
    try {
        const picture::Picture picture = picture::decode(input.file);
        input.facts = picture.facts();
        const QSize box = boxFor(invocation.arguments, input.facts.pixels);
        if (qint64{box.width()} * box.height() > picture::kMaximumPixels) {
            throw Error(ErrorCode::TooLarge, target, "the picture would have too many pixels");
        }
        input.image = picture.scaledTo(box);
        if (picture.isDrawnInPart()) {
            complain(invocation.console,
                     source.string() + ": cut short or asking for too much; drawn in part");
        }
    } catch (const picture::DecodeError& error) {
        throw Error(ErrorCode::InvalidPicture, source, error.what());
    }
    return input;
}

std::vector<std::byte> toPng(const QImage& image, const std::filesystem::path& target) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG")) {
        throw Error(ErrorCode::Failed, target, "the picture cannot be written as PNG");
    }
    const auto* begin = reinterpret_cast<const std::byte*>(bytes.constData());
    return {begin, begin + bytes.size()};
}

} // namespace tool
