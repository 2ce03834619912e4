#include "metafile/wmf/wmf_reader.h"

#include "base/picture_units.h"
#include "metafile/bounds/work_budget.h"
#include "metafile/records/stock_objects.h"
#include "metafile/wmf/wmf_records.h"
#include "platform/thread_time.h"

#include <algorithm>

namespace metafile {

namespace {

constexpr std::uint32_t kPlaceableKey = 0x9AC6CDD7;
constexpr std::size_t kPlaceableHeader = 22;
constexpr std::size_t kHeader = 18;
constexpr std::size_t kSmallestRecord = 6;
constexpr std::size_t kMostHandles = 65536;
constexpr double kTwipsPerInch = base::kTwipsPerInch;

bool isPlaceable(const imaging::ByteReader& in) {
    return in.has(0, kPlaceableHeader) && in.u32(0) == kPlaceableKey;
}

// The standard header: memory or disk, nine words long, version 1.0 or 3.0.
bool isStandardHeader(const imaging::ByteReader& in, std::size_t at) {
    if (!in.has(at, kHeader)) {
        return false;
    }
    const std::uint16_t type = in.u16(at);
    const std::uint16_t version = in.u16(at + 4);
    return (type == 1 || type == 2) && in.u16(at + 2) == kHeader / 2 &&
           (version == 0x0100 || version == 0x0300);
}

void readRecord(const WmfRecord& record, WmfReading& reading) {
    for (const auto read :
         {readWmfState, readWmfObject, readWmfShape, readWmfText, readWmfBitmap}) {
        if (read(record, reading)) {
            return;
        }
    }
}

enum class Next { Read, Stop };

template <typename Read>
FileEnd forEachRecord(std::span<const std::byte> bytes, RecordSink* sink, Read read) {
    const imaging::ByteReader in(bytes);
    std::size_t at = isPlaceable(in) ? kPlaceableHeader + kHeader : kHeader;
    while (in.has(at, kSmallestRecord)) {
        const std::size_t size = std::size_t{in.u32(at)} * 2;
        const std::uint16_t type = in.u16(at + 4);
        if (type == 0) {
            return FileEnd::Reached;
        }
        if (size < kSmallestRecord || !in.has(at, size)) {
            return FileEnd::Missing;
        }
        try {
            if (read(WmfRecord{type, imaging::ByteReader(in.part(at, size))}) == Next::Stop) {
                return FileEnd::Reached;
            }
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

// The first window that the records set, if any.
std::optional<QRectF> firstWindow(std::span<const std::byte> bytes) {
    constexpr std::uint16_t kSetWindowOrg = 0x020B;
    constexpr std::uint16_t kSetWindowExt = 0x020C;
    std::optional<QPointF> origin;
    std::optional<QPointF> extent;
    bool drawing = false;
    forEachRecord(bytes, nullptr, [&](const WmfRecord& record) {
        if (record.type == kSetWindowOrg && !origin) {
            origin = pointBackwards(record.in, 6);
        }
        if (record.type == kSetWindowExt && !extent) {
            extent = pointBackwards(record.in, 6);
        }
        // The two may come in either order, but both before something is drawn.
        drawing = drawing || (record.type >> 8U >= 2 && record.type != kSetWindowOrg &&
                              record.type != kSetWindowExt);
        return extent && (origin || drawing) ? Next::Stop : Next::Read;
    });
    if (!extent || extent->x() == 0 || extent->y() == 0) {
        return std::nullopt;
    }
    return QRectF(origin.value_or(QPointF()), QSizeF(extent->x(), extent->y()));
}

// The box around what the records draw. Throws WorkExhausted when reading them takes too long.
class DrawnBox : public RecordSink {
  public:
    void take(const Record& record) override {
        budget_.spendRecord();
        if (const auto* line = std::get_if<LineTo>(&record)) {
            grow(line->point);
        } else if (const auto* move = std::get_if<MoveTo>(&record)) {
            grow(move->point);
        } else if (const auto* box = std::get_if<Box>(&record)) {
            growBy(box->rectangle);
        } else if (const auto* text = std::get_if<Text>(&record)) {
            grow(text->reference);
        } else if (const auto* poly = std::get_if<Poly>(&record)) {
            std::for_each(poly->points.begin(), poly->points.end(),
                          [this](QPointF point) { grow(point); });
        } else if (const auto* blit = std::get_if<RasterBlit>(&record)) {
            growBy({blit->destination.topLeft, QSizeF(blit->part.size())});
        }
        // Pictures have been decoded on the way.
        if (!std::holds_alternative<LineTo>(record) && !std::holds_alternative<MoveTo>(record)) {
            budget_.lookAtClock();
        }
    }
    void takePlus(std::span<const std::byte>) override {}
    void leaveOut() override { budget_.lookAtClock(); }

    QRectF box() const { return drawn_.isEmpty() ? QRectF(0, 0, 32, 32) : drawn_; }

  private:
    void growBy(const QRectF& rectangle) {
        grow(rectangle.topLeft());
        grow(rectangle.bottomRight());
    }
    void grow(QPointF point) {
        const QRectF pixel(point, QSizeF(1, 1));
        drawn_ = drawn_.isNull() ? pixel : drawn_.united(pixel);
    }

    WorkBudget budget_{platform::processorSecondsOfThisThread};
    QRectF drawn_;
};

QRectF windowOf(std::span<const std::byte> bytes) {
    if (const auto window = firstWindow(bytes)) {
        return *window;
    }
    DrawnBox search;
    try {
        readWmf(bytes, search);
    } catch (const WorkExhausted&) {
        return search.box(); // of what could be drawn in the same time
    }
    return search.box();
}

} // namespace

bool WmfRecord::hasBitmap() const {
    // The upper half of a type is the number of words that the record has without one.
    constexpr std::size_t kWords = 3;
    return in.size() / 2 != (static_cast<std::size_t>(type) >> 8U) + kWords;
}

std::size_t WmfReading::takeHandle() {
    const auto free = std::find(usedHandles.begin(), usedHandles.end(), false);
    const auto handle = static_cast<std::size_t>(free - usedHandles.begin());
    if (free != usedHandles.end()) {
        *free = true;
    } else if (handle < kMostHandles) {
        usedHandles.push_back(true);
    }
    return handle;
}

const Palette* WmfReading::palette() const {
    if (!selectedPalette) {
        return nullptr;
    }
    const auto found = palettes.find(*selectedPalette);
    return found == palettes.end() ? nullptr : &found->second;
}

QRgb WmfReading::colourAt(const imaging::ByteReader& in, std::size_t at) const {
    // Some files leave out the last byte.
    const std::uint32_t kind = in.has(at + 3, 1) ? in.u8(at + 3) : 0U;
    return meantColour(in.u16(at) | std::uint32_t{in.u8(at + 2)} << 16U | kind << 24U, palette());
}

QPointF pointBackwards(const imaging::ByteReader& in, std::size_t at) {
    return {double{1} * in.i16(at + 2), double{1} * in.i16(at)};
}

QSizeF sizeBackwards(const imaging::ByteReader& in, std::size_t at) {
    return {double{1} * in.i16(at + 2), double{1} * in.i16(at)};
}

QRectF rectangleBackwards(const imaging::ByteReader& in, std::size_t at) {
    return {pointBackwards(in, at + 4), pointBackwards(in, at)};
}

bool isWmf(std::span<const std::byte> bytes) {
    const imaging::ByteReader in(bytes);
    return isPlaceable(in) || isStandardHeader(in, 0);
}

WmfLayout readWmfLayout(std::span<const std::byte> bytes) {
    const imaging::ByteReader in(bytes);
    if (!isStandardHeader(in, isPlaceable(in) ? kPlaceableHeader : 0)) {
        throw imaging::DecodeError("the metafile's header cannot be read");
    }
    if (!isPlaceable(in)) {
        return {windowOf(bytes), 0};
    }
    WmfLayout layout;
    layout.unitsPerInch = in.u16(14) == 0 ? kTwipsPerInch : in.u16(14);
    layout.window = QRectF(QPointF(in.i16(6), in.i16(8)), QPointF(in.i16(10), in.i16(12)));
    if (layout.window.width() == 0 || layout.window.height() == 0) {
        layout.window = windowOf(bytes);
    }
    return layout;
}

std::vector<std::byte> readEmbeddedEmf(std::span<const std::byte> bytes) {
    constexpr std::uint16_t kEscape = 0x0626;
    constexpr std::uint16_t kComment = 0x000F;
    constexpr std::uint32_t kIdentifier = 0x43464D57; // "WMFC"
    constexpr std::uint32_t kEnhancedMetafile = 1;
    std::vector<std::byte> found;
    std::size_t missing = 0;
    forEachRecord(bytes, nullptr, [&](const WmfRecord& record) {
        const imaging::ByteReader& in = record.in;
        const bool isPart = record.type == kEscape && in.has(0, 44) && in.u16(6) == kComment &&
                            in.u32(10) == kIdentifier && in.u32(14) == kEnhancedMetafile;
        if (!isPart) {
            return Next::Read;
        }
        const auto part = in.part(44, in.u32(32));
        found.insert(found.end(), part.begin(), part.end());
        missing = in.u32(36);
        return missing == 0 ? Next::Stop : Next::Read;
    });
    return missing == 0 ? found : std::vector<std::byte>();
}

FileEnd readWmf(std::span<const std::byte> bytes, RecordSink& sink) {
    WmfReading reading{sink, {}, {}, {}, std::nullopt};
    return forEachRecord(bytes, &sink, [&](const WmfRecord& record) {
        readRecord(record, reading);
        return Next::Read;
    });
}

} // namespace metafile
