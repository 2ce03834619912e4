// Fields that several EMF+ records and objects share. For the EMF+ reader alone.
#pragma once

#include "imaging/byte_reader.h"
#include "metafile/plus/plus_records.h"

namespace metafile {

// Reads forwards; DecodeError past the end.
class PlusCursor {
  public:
    explicit PlusCursor(std::span<const std::byte> bytes) : in_(bytes) {}

    std::uint8_t u8() { return in_.u8(advance(1)); }
    std::uint16_t u16() { return in_.u16(advance(2)); }
    std::int16_t i16() { return in_.i16(advance(2)); }
    std::uint32_t u32() { return in_.u32(advance(4)); }
    std::int32_t i32() { return in_.i32(advance(4)); }

    // DecodeError unless it is a finite number; wild ones are bounded.
    double real();
    QPointF point();         // two reals
    QRectF rectangle();      // left, top, width, height as reals
    QRectF smallRectangle(); // the same as 16-bit integers
    QTransform transform();
    QRgb colour() { return u32(); }
    PlusUnit unit();
    QString text(std::size_t units);

    // A number of things that each take at least `size` bytes: DecodeError when so many cannot be
    // there.
    std::size_t count(std::size_t size);

    std::span<const std::byte> bytes(std::size_t count) { return in_.part(advance(count), count); }
    std::span<const std::byte> rest() const { return in_.rest(at_); }
    std::size_t left() const { return in_.rest(at_).size(); }

  private:
    std::size_t advance(std::size_t count) {
        const std::size_t at = at_;
        at_ += count;
        return at;
    }

    imaging::ByteReader in_;
    std::size_t at_ = 0;
};

enum class PlusPoints { Real, Small, Relative };

// Relative points are told as steps from the one before.
std::vector<QPointF> readPlusPoints(PlusCursor& in, std::size_t count, PlusPoints kind);

PlusUnit plusUnitOf(std::uint32_t value);

// One object's data, without what a record says around it.
PlusObject readPlusObject(unsigned type, std::span<const std::byte> data);

} // namespace metafile
