#include "metafile_writer.h"

#include "little_endian.h"

#include <QSize>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <stdexcept>
#include <vector>

namespace samples {

namespace {

// A drawing in logical units, ready to be recorded.
struct Sheet {
    QSize size;
    Drawing drawing;
};

Sheet sheetOf(const Drawing& drawing, int width) {
    const double height = width * drawing.size.height() / drawing.size.width();
    if (std::max<double>(width, height) > std::numeric_limits<std::int16_t>::max()) {
        throw std::length_error("the drawing is too large for 16-bit coordinates");
    }
    const QSize size(width, static_cast<int>(std::lround(height)));
    return {size, fitted(drawing, QRectF(QPointF(), QSizeF(size)), size)};
}

int rounded(double value) {
    return static_cast<int>(std::lround(value));
}

std::uint32_t colourRef(const QColor& colour) {
    return static_cast<std::uint32_t>(colour.red() | colour.green() << 8 | colour.blue() << 16);
}

constexpr std::uint16_t kSolidPen = 0;
constexpr std::uint16_t kNullPen = 5;
constexpr std::uint16_t kSolidBrush = 0;
constexpr std::uint16_t kNullBrush = 1;

class WmfRecorder {
  public:
    enum class Function : std::uint16_t {
        EndOfFile = 0x0000,
        SetMapMode = 0x0103,
        SetBackgroundMode = 0x0102,
        SetPolygonFillMode = 0x0106,
        SelectObject = 0x012D,
        DeleteObject = 0x01F0,
        SetWindowOrigin = 0x020B,
        SetWindowExtent = 0x020C,
        CreatePen = 0x02FA,
        CreateBrush = 0x02FC,
        Polygon = 0x0324,
        Polyline = 0x0325,
        Ellipse = 0x0418,
    };

    void record(Function function, const LittleEndian& parameters = {}) {
        const QByteArray& content = parameters.bytes();
        const auto words = static_cast<std::uint32_t>(3 + content.size() / 2);
        longest_ = std::max(longest_, words);
        records_.u32(words).u16(static_cast<std::uint16_t>(function)).raw(content);
    }

    void shape(const Shape& shape);

    // Behind the placeable header and the standard one, which count what was recorded.
    QByteArray file(QSize size) const;

  private:
    using Slot = std::optional<std::uint16_t>;

    // A new object goes to the lowest free slot of the player's table.
    std::uint16_t create(Function function, const LittleEndian& parameters);
    // Selects the new object before the one that it replaces is deleted: a player refuses to delete
    // what is in use. So three slots are enough.
    void use(Slot& current, std::uint16_t next);

    LittleEndian records_;
    std::uint32_t longest_ = 0;
    std::array<bool, 3> used_{};
    Slot pen_;
    Slot brush_;
};

std::uint16_t WmfRecorder::create(Function function, const LittleEndian& parameters) {
    record(function, parameters);
    const auto slot = std::find(used_.begin(), used_.end(), false);
    *slot = true;
    return static_cast<std::uint16_t>(slot - used_.begin());
}

void WmfRecorder::use(Slot& current, std::uint16_t next) {
    record(Function::SelectObject, LittleEndian().u16(next));
    if (current) {
        record(Function::DeleteObject, LittleEndian().u16(*current));
        used_.at(*current) = false;
    }
    current = next;
}

void WmfRecorder::shape(const Shape& shape) {
    const bool drawsLine = shape.lineWidth > 0;
    use(pen_, create(Function::CreatePen, LittleEndian()
                                              .u16(drawsLine ? kSolidPen : kNullPen)
                                              .i16(rounded(shape.lineWidth))
                                              .i16(0)
                                              .u32(colourRef(shape.line))));
    use(brush_,
        create(Function::CreateBrush, LittleEndian()
                                          .u16(shape.fill.isValid() ? kSolidBrush : kNullBrush)
                                          .u32(colourRef(shape.fill))
                                          .u16(0)));
    LittleEndian content;
    if (shape.outline == Outline::Ellipse) {
        // bottom, right, top, left: the parameters stand in reverse
        for (const QPointF& corner : {shape.points.at(1), shape.points.at(0)}) {
            content.i16(rounded(corner.y())).i16(rounded(corner.x()));
        }
        record(Function::Ellipse, content);
    } else {
        content.u16(static_cast<std::uint16_t>(shape.points.size()));
        for (const QPointF& point : shape.points) {
            content.i16(rounded(point.x())).i16(rounded(point.y()));
        }
        record(shape.outline == Outline::Polygon ? Function::Polygon : Function::Polyline, content);
    }
}

QByteArray WmfRecorder::file(QSize size) const {
    LittleEndian placeable;
    placeable.u32(0x9AC6CDD7).u16(0).i16(0).i16(0).i16(size.width()).i16(size.height());
    placeable.u16(1440).u32(0);
    std::uint16_t checksum = 0;
    for (qsizetype at = 0; at < placeable.bytes().size(); at += 2) {
        const auto low = static_cast<unsigned char>(placeable.bytes()[at]);
        const auto high = static_cast<unsigned char>(placeable.bytes()[at + 1]);
        checksum = static_cast<std::uint16_t>(checksum ^ (low | high << 8));
    }
    placeable.u16(checksum);
    constexpr std::uint16_t kHeaderWords = 9;
    const auto words = static_cast<std::uint32_t>(kHeaderWords + records_.bytes().size() / 2);
    placeable.u16(1).u16(kHeaderWords).u16(0x0300).u32(words);
    placeable.u16(static_cast<std::uint16_t>(used_.size())).u32(longest_).u16(0);
    return placeable.raw(records_.bytes()).bytes();
}

class EmfRecorder {
  public:
    enum class Type : std::uint32_t {
        Header = 1,
        SetWindowExtent = 9,
        SetWindowOrigin = 10,
        SetViewportExtent = 11,
        SetViewportOrigin = 12,
        EndOfFile = 14,
        SetMapMode = 17,
        SetBackgroundMode = 18,
        SetPolygonFillMode = 19,
        SelectObject = 37,
        CreatePen = 38,
        CreateBrush = 39,
        DeleteObject = 40,
        Ellipse = 42,
        Polygon16 = 86,
        Polyline16 = 87,
    };

    void record(Type type, const LittleEndian& parameters) {
        const auto size = static_cast<std::uint32_t>(8 + parameters.bytes().size());
        records_.u32(static_cast<std::uint32_t>(type)).u32(size).raw(parameters.bytes());
        ++count_;
    }

    void shape(const Shape& shape);

    // Behind the header, which counts what was recorded.
    QByteArray file(QSize size) const;

  private:
    static constexpr std::uint32_t kPen = 1; // places in the table of objects; 0 is the file
    static constexpr std::uint32_t kBrush = 2;
    static constexpr std::uint32_t kStockNullBrush = 0x80000005;
    static constexpr std::uint32_t kStockNullPen = 0x80000008;

    LittleEndian records_;
    std::uint32_t count_ = 0;
};

LittleEndian boxOf(const std::vector<QPointF>& points) {
    QRectF box(points.front(), QSizeF());
    for (const QPointF& point : points) {
        box.setLeft(std::min(box.left(), point.x()));
        box.setRight(std::max(box.right(), point.x()));
        box.setTop(std::min(box.top(), point.y()));
        box.setBottom(std::max(box.bottom(), point.y()));
    }
    LittleEndian content;
    content.i32(rounded(box.left())).i32(rounded(box.top()));
    return content.i32(rounded(box.right())).i32(rounded(box.bottom()));
}

void EmfRecorder::shape(const Shape& shape) {
    const bool drawsLine = shape.lineWidth > 0;
    if (drawsLine) {
        const auto width = rounded(shape.lineWidth);
        record(Type::CreatePen, LittleEndian().u32(kPen).u32(kSolidPen).i32(width).i32(0).u32(
                                    colourRef(shape.line)));
    }
    if (shape.fill.isValid()) {
        record(Type::CreateBrush,
               LittleEndian().u32(kBrush).u32(kSolidBrush).u32(colourRef(shape.fill)).u32(0));
    }
    record(Type::SelectObject, LittleEndian().u32(drawsLine ? kPen : kStockNullPen));
    record(Type::SelectObject, LittleEndian().u32(shape.fill.isValid() ? kBrush : kStockNullBrush));
    LittleEndian content = boxOf(shape.points);
    if (shape.outline == Outline::Ellipse) {
        record(Type::Ellipse, content);
    } else {
        content.u32(static_cast<std::uint32_t>(shape.points.size()));
        for (const QPointF& point : shape.points) {
            content.i16(rounded(point.x())).i16(rounded(point.y()));
        }
        record(shape.outline == Outline::Polygon ? Type::Polygon16 : Type::Polyline16, content);
    }
    // An object in use must not be deleted, hence the stock ones first.
    record(Type::SelectObject, LittleEndian().u32(kStockNullPen));
    record(Type::SelectObject, LittleEndian().u32(kStockNullBrush));
    if (drawsLine) {
        record(Type::DeleteObject, LittleEndian().u32(kPen));
    }
    if (shape.fill.isValid()) {
        record(Type::DeleteObject, LittleEndian().u32(kBrush));
    }
}

QByteArray EmfRecorder::file(QSize size) const {
    // The reference device has 96 pixels per inch: a pixel is 15 units wide.
    constexpr int kUnitsPerPixel = 15;
    constexpr int kDeviceWidth = 1920;
    constexpr int kDeviceHeight = 1080;
    const auto hundredths = [](int twips) { return rounded(twips * 2540.0 / 1440); };
    constexpr std::uint32_t kHeaderSize = 100;
    LittleEndian file;
    file.u32(static_cast<std::uint32_t>(Type::Header)).u32(kHeaderSize);
    file.i32(0).i32(0);
    file.i32(size.width() / kUnitsPerPixel - 1).i32(size.height() / kUnitsPerPixel - 1);
    file.i32(0).i32(0).i32(hundredths(size.width())).i32(hundredths(size.height()));
    file.u32(0x464D4520).u32(0x00010000);
    file.u32(static_cast<std::uint32_t>(kHeaderSize + records_.bytes().size())).u32(count_ + 1);
    file.u16(3).u16(0).u32(0).u32(0).u32(0);
    file.i32(kDeviceWidth).i32(kDeviceHeight).i32(508).i32(286);
    file.u32(0).u32(0).u32(0); // no pixel format, no OpenGL
    return file.raw(records_.bytes()).bytes();
}

} // namespace

QByteArray wmfOf(const Drawing& drawing, int width) {
    using Function = WmfRecorder::Function;
    const Sheet sheet = sheetOf(drawing, width);
    WmfRecorder recorder;
    recorder.record(Function::SetMapMode, LittleEndian().u16(8));
    recorder.record(Function::SetWindowOrigin, LittleEndian().i16(0).i16(0));
    recorder.record(Function::SetWindowExtent,
                    LittleEndian().i16(sheet.size.height()).i16(sheet.size.width()));
    recorder.record(Function::SetBackgroundMode, LittleEndian().u16(1));
    recorder.record(Function::SetPolygonFillMode, LittleEndian().u16(2));
    for (const Shape& shape : sheet.drawing.shapes) {
        recorder.shape(shape);
    }
    recorder.record(Function::EndOfFile);
    return recorder.file(sheet.size);
}

QByteArray emfOf(const Drawing& drawing, int width) {
    using Type = EmfRecorder::Type;
    const Sheet sheet = sheetOf(drawing, width);
    EmfRecorder recorder;
    recorder.record(Type::SetMapMode, LittleEndian().u32(8));
    recorder.record(Type::SetWindowOrigin, LittleEndian().i32(0).i32(0));
    recorder.record(Type::SetWindowExtent,
                    LittleEndian().i32(sheet.size.width()).i32(sheet.size.height()));
    recorder.record(Type::SetViewportOrigin, LittleEndian().i32(0).i32(0));
    recorder.record(Type::SetViewportExtent,
                    LittleEndian().i32(sheet.size.width() / 15).i32(sheet.size.height() / 15));
    recorder.record(Type::SetBackgroundMode, LittleEndian().u32(1));
    recorder.record(Type::SetPolygonFillMode, LittleEndian().u32(2));
    for (const Shape& shape : sheet.drawing.shapes) {
        recorder.shape(shape);
    }
    recorder.record(Type::EndOfFile, LittleEndian().u32(0).u32(16).u32(20));
    return recorder.file(sheet.size);
}

} // namespace samples
