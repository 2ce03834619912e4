// JPG through Qt's reader, turned upright as its EXIF orientation says.
#include "imaging/byte_reader.h"
#include "imaging/decoders.h"
#include "imaging/new_image.h"
#include "imaging/quiet_reading.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>

namespace imaging {

namespace {

constexpr qint64 kMostMemory = qint64{200} << 20; // of decoding one picture, in bytes

// What the frame and the first scan say ([ITU-T T.81] B.2.2 and B.2.3).
struct FrameHeader {
    bool hasManyScans = true;   // progressive, or not all components in the first scan
    double samplesPerPixel = 3; // of all components, after subsampling
};

double samplesPerPixel(const ByteReader& in, std::size_t frameAt) {
    const std::size_t components = in.u8(frameAt + 9);
    double samples = 0;
    double most = 1;
    for (std::size_t i = 0; i < components; ++i) {
        const int factors = in.u8(frameAt + 11 + 3 * i);
        const double density = (factors >> 4) * (factors & 0xF);
        samples += density;
        most = std::max(most, density);
    }
    return samples / most;
}

// Walks the segments up to the first scan; assumes the worst of what it cannot find.
FrameHeader readFrameHeader(const ByteReader& in) {
    constexpr int kStartOfScan = 0xDA;
    FrameHeader frame;
    bool isProgressive = true;
    int components = 0;
    for (std::size_t at = 2; in.has(at, 10) && in.u8(at) == 0xFF;) {
        const int marker = in.u8(at + 1);
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (isFrame) {
            isProgressive = marker % 4 == 2;
            components = in.u8(at + 9);
            frame.samplesPerPixel = samplesPerPixel(in, at);
        } else if (marker == kStartOfScan) {
            frame.hasManyScans = isProgressive || in.u8(at + 4) < components;
            break;
        }
        at += marker == 0xFF ? 1 : 2 + (std::size_t{in.u8(at + 2)} << 8U | in.u8(at + 3));
    }
    return frame;
}

// Scans that complete each other keep two bytes for every sample beside the picture; turning takes
// a second picture.
void requireSensibleMemory(const ByteReader& in, QSize size, bool isTurned) {
    constexpr double kBytesPerPixel = 4;
    const FrameHeader frame = readFrameHeader(in);
    const double kept = frame.hasManyScans ? 2 * frame.samplesPerPixel : 0;
    const double turning = isTurned ? kBytesPerPixel : 0;
    const double pixels = double(size.width()) * size.height();
    if (pixels * (kBytesPerPixel + std::max(kept, turning)) > double(kMostMemory)) {
        throw DecodeError("the JPG picture takes more than 200 megabytes to decode");
    }
}

// A reader over the bytes; both live as long as this does.
struct Reader {
    explicit Reader(std::span<const std::byte> bytes)
        : data(QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                       static_cast<qsizetype>(bytes.size()))),
          buffer(&data),
          reader(&buffer, "JPG") {
        reader.setAutoTransform(true);
        size = reader.size();
        if (!size.isValid()) {
            throw DecodeError("the JPG picture's header cannot be read");
        }
        requireSensibleSize(size.width(), size.height());
        const bool isTurned = reader.transformation() != QImageIOHandler::TransformationNone;
        requireSensibleMemory(ByteReader(bytes), size, isTurned);
        if (reader.transformation().testFlag(QImageIOHandler::TransformationRotate90)) {
            size.transpose();
        }
    }

    PictureFacts facts() const {
        const bool gray = reader.imageFormat() == QImage::Format_Grayscale8;
        return rasterFacts(PictureKind::Jpg, size, gray ? 8 : 24);
    }

    QuietReading quiet;
    QByteArray data;
    QBuffer buffer;
    QImageReader reader;
    QSize size;
};

// What to have the reader make of a picture of `stored` pixels (before it is turned) that is shown
// in `box` (after that). The library below decodes a half, a quarter or an eighth at a fraction of
// the cost; everything between them it would scale afterwards.
QSize readingSize(QSize stored, QSize upright, QSize box) {
    const QSize shown = upright.scaled(box, Qt::KeepAspectRatio).expandedTo({1, 1});
    int divisor = 1;
    while (divisor < 8 && upright.width() / (2 * divisor) >= shown.width() &&
           upright.height() / (2 * divisor) >= shown.height()) {
        divisor *= 2;
    }
    return QSize(stored.width() / divisor, stored.height() / divisor).expandedTo({1, 1});
}

} // namespace

PictureFacts measureJpg(std::span<const std::byte> bytes) {
    return Reader(bytes).facts();
}

RasterPicture decodeJpg(std::span<const std::byte> bytes, QSize box) {
    limitReaders();
    Reader reader(bytes);
    const PictureFacts facts = reader.facts();
    if (!box.isEmpty()) {
        reader.reader.setScaledSize(readingSize(reader.reader.size(), reader.size, box));
    }
    const QImage image = reader.reader.read();
    if (image.isNull()) {
        throw DecodeError("the JPG picture cannot be read");
    }
    return {facts, image};
}

} // namespace imaging
