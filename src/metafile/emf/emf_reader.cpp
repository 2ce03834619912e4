#include "metafile/emf/emf_reader.h"

#include "metafile/emf/emf_records.h"
#include "metafile/records/stock_objects.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace metafile {

namespace {

constexpr std::uint32_t kHeader = 1;
constexpr std::uint32_t kEndOfFile = 14;
constexpr std::uint32_t kComment = 70;
constexpr std::uint32_t kPlusIdentifier = 0x2B464D45; // "EMF+"
constexpr std::size_t kSmallestHeader = 88;

// Pixels of the device per millimetre of it, along one axis. Longer headers tell thousandths of
// millimetres as well, but writers reckon the frame by the whole ones.
double density(const imaging::ByteReader& in, std::size_t axis) {
    constexpr double kUsual = 96 / 25.4;
    const double pixels = in.i32(72 + 4 * axis);
    const double millimetres = in.i32(80 + 4 * axis);
    if (pixels <= 0 || millimetres <= 0) {
        return kUsual;
    }
    const double value = pixels / millimetres;
    return value > 0.01 && value < 10000 ? value : kUsual;
}

// Whether hardly anything of what is drawn lies in the frame.
bool isBeside(const QRectF& frame, const QRectF& bounds) {
    constexpr double kLeastShare = 0.25;
    if (!(bounds.width() > 1) || !(bounds.height() > 1)) {
        return false;
    }
    const QRectF seen = frame & bounds;
    const double smaller =
        std::min(bounds.width() * bounds.height(), frame.width() * frame.height());
    return seen.width() * seen.height() < kLeastShare * smaller;
}

// Some writers turn the device's y axis round and tell the frame as it was meant: what is drawn
// fills it when it is mirrored. Others forget the frame altogether, which is then moved to where
// something is, as large as it is.
void fitToBounds(EmfLayout& layout, const QRectF& bounds) {
    constexpr double kFilled = 0.5;
    if (!isBeside(layout.frame, bounds)) {
        return;
    }
    const QRectF turned(bounds.left(), -bounds.bottom(), bounds.width(), bounds.height());
    const QRectF filled = turned & layout.frame;
    layout.mirrored =
        filled.width() * filled.height() >= kFilled * layout.frame.width() * layout.frame.height();
    if (!layout.mirrored) {
        layout.frame.moveTopLeft(bounds.topLeft());
    }
}

bool isPlus(const imaging::ByteReader& comment) {
    return comment.has(8, 8) && comment.u32(8) >= 4 && comment.u32(12) == kPlusIdentifier;
}

void readComment(const imaging::ByteReader& in, RecordSink& sink) {
    if (!isPlus(in)) {
        return;
    }
    const auto rest = in.rest(16);
    sink.takePlus(rest.first(std::min<std::size_t>(rest.size(), in.u32(8) - 4)));
}

void readRecord(const EmfRecord& record, EmfReading& reading) {
    if (record.type == kComment) {
        readComment(record.in, reading.sink);
        return;
    }
    for (const auto read :
         {readEmfState, readEmfObject, readEmfShape, readEmfText, readEmfBitmap}) {
        if (read(record, reading)) {
            return;
        }
    }
}

template <typename Read>
FileEnd forEachRecord(std::span<const std::byte> bytes, RecordSink* sink, Read read) {
    constexpr std::size_t kSmallest = 8;
    const imaging::ByteReader in(bytes);
    std::size_t at = 0;
    while (in.has(at, kSmallest)) {
        const std::uint32_t type = in.u32(at);
        const std::size_t size = in.u32(at + 4);
        if (type == kEndOfFile) {
            return FileEnd::Reached;
        }
        if (size < kSmallest || !in.has(at, size)) {
            return FileEnd::Missing;
        }
        try {
            read(EmfRecord{type, imaging::ByteReader(in.part(at, size))});
        } catch (const imaging::DecodeError&) {
            // The others make the picture still.
            if (sink != nullptr) {
                sink->leaveOut();
            }
        }
        at += size;
    }
    return FileEnd::Missing;
}

} // namespace

const Palette* EmfReading::palette() const {
    if (!selectedPalette) {
        return nullptr;
    }
    const auto found = palettes.find(*selectedPalette);
    return found == palettes.end() ? nullptr : &found->second;
}

QRgb EmfReading::colourAt(const imaging::ByteReader& in, std::size_t at) const {
    return meantColour(in.u32(at), palette());
}

QPointF pointAt(const imaging::ByteReader& in, std::size_t at) {
    return {double{1} * in.i32(at), double{1} * in.i32(at + 4)};
}

QRectF rectangleAt(const imaging::ByteReader& in, std::size_t at) {
    return {pointAt(in, at), pointAt(in, at + 8)};
}

double realAt(const imaging::ByteReader& in, std::size_t at) {
    constexpr double kMost = 1e9;
    const double value = std::bit_cast<float>(in.u32(at));
    if (!std::isfinite(value)) {
        throw imaging::DecodeError("a number in the metafile cannot be read");
    }
    return std::clamp(value, -kMost, kMost);
}

QTransform transformAt(const imaging::ByteReader& in, std::size_t at) {
    return {realAt(in, at),      realAt(in, at + 4),  realAt(in, at + 8),
            realAt(in, at + 12), realAt(in, at + 16), realAt(in, at + 20)};
}

std::vector<QRect> regionAt(const imaging::ByteReader& in, std::size_t at) {
    constexpr std::size_t kRectangle = 16;
    std::size_t next = at + in.u32(at);
    std::vector<QRect> rectangles;
    for (std::uint32_t left = in.u32(at + 8); left > 0 && in.has(next, kRectangle); --left) {
        // Wild corners are bounded: their differences must fit an integer.
        const auto edge = [&](std::size_t offset) {
            return std::clamp(in.i32(next + offset), -0x3FFFFFFF, 0x3FFFFFFF);
        };
        rectangles.emplace_back(QPoint(edge(0), edge(4)), QPoint(edge(8) - 1, edge(12) - 1));
        next += kRectangle;
    }
    return rectangles;
}

std::span<const std::byte> partAt(const imaging::ByteReader& in, std::size_t at) {
    const std::size_t offset = in.u32(at);
    // What is cut off at the end is missing in the picture only.
    const auto rest = in.rest(offset);
    return rest.first(std::min<std::size_t>(rest.size(), in.u32(at + 4)));
}

bool isEmf(std::span<const std::byte> bytes) {
    constexpr std::uint32_t kSignature = 0x464D4520; // " EMF"
    const imaging::ByteReader in(bytes);
    return in.has(0, 44) && in.u32(0) == kHeader && in.u32(40) == kSignature;
}

EmfLayout readEmfLayout(std::span<const std::byte> bytes) {
    const imaging::ByteReader in(bytes);
    if (!in.has(0, kSmallestHeader) || in.u32(0) != kHeader) {
        throw imaging::DecodeError("the metafile's header cannot be read");
    }
    constexpr double kHundredths = 100;
    EmfLayout layout;
    layout.pixelsPerMillimetre = {density(in, 0), density(in, 1)};
    const double across = layout.pixelsPerMillimetre.width() / kHundredths;
    const double down = layout.pixelsPerMillimetre.height() / kHundredths;
    const QRectF frame = rectangleAt(in, 24);
    layout.frame = QRectF(frame.left() * across, frame.top() * down, frame.width() * across,
                          frame.height() * down);
    if (!(layout.frame.width() > 0) || !(layout.frame.height() > 0)) {
        layout.frame = rectangleAt(in, 8).adjusted(0, 0, 1, 1);
    } else {
        fitToBounds(layout, rectangleAt(in, 8));
    }
    if (!(layout.frame.width() > 0) || !(layout.frame.height() > 0)) {
        throw imaging::DecodeError("the metafile's frame is empty");
    }
    return layout;
}

FileEnd readEmf(std::span<const std::byte> bytes, RecordSink& sink) {
    EmfReading reading{sink, {}, std::nullopt};
    return forEachRecord(bytes, &sink,
                         [&](const EmfRecord& record) { readRecord(record, reading); });
}

DrawingWithoutPlus drawingWithoutPlus(std::span<const std::byte> bytes) {
    constexpr std::array kDrawing{2U,  3U,  4U,  5U,  6U,  7U,  8U,  15U, 41U,  42U,  43U,  44U,
                                  45U, 46U, 47U, 53U, 54U, 55U, 56U, 62U, 63U,  64U,  71U,  72U,
                                  73U, 74U, 76U, 77U, 78U, 79U, 80U, 81U, 83U,  84U,  85U,  86U,
                                  87U, 88U, 89U, 90U, 91U, 92U, 96U, 97U, 108U, 114U, 116U, 118U};
    DrawingWithoutPlus where = DrawingWithoutPlus::Nowhere;
    bool plusBegan = false;
    forEachRecord(bytes, nullptr, [&](const EmfRecord& record) {
        plusBegan = plusBegan || (record.type == kComment && isPlus(record.in));
        if (where == DrawingWithoutPlus::Nowhere &&
            std::binary_search(kDrawing.begin(), kDrawing.end(), record.type)) {
            where = plusBegan ? DrawingWithoutPlus::Behind : DrawingWithoutPlus::Before;
        }
    });
    return where;
}

void readPlusComments(std::span<const std::byte> bytes, RecordSink& sink) {
    forEachRecord(bytes, &sink, [&](const EmfRecord& record) {
        if (record.type == kComment) {
            readComment(record.in, sink);
        }
    });
}

} // namespace metafile
