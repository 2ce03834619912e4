#pragma once

#include <QByteArray>

#include <cstdint>

namespace samples {

/// Bytes of a file format with the lowest byte first.
class LittleEndian {
  public:
    LittleEndian& u8(std::uint8_t value) {
        bytes_.append(static_cast<char>(value));
        return *this;
    }
    LittleEndian& u16(std::uint16_t value) {
        return u8(static_cast<std::uint8_t>(value & 0xFF))
            .u8(static_cast<std::uint8_t>(value >> 8));
    }
    LittleEndian& u32(std::uint32_t value) {
        return u16(static_cast<std::uint16_t>(value & 0xFFFF))
            .u16(static_cast<std::uint16_t>(value >> 16));
    }
    LittleEndian& i16(int value) { return u16(static_cast<std::uint16_t>(value)); }
    LittleEndian& i32(int value) { return u32(static_cast<std::uint32_t>(value)); }
    LittleEndian& raw(const QByteArray& bytes) {
        bytes_.append(bytes);
        return *this;
    }

    const QByteArray& bytes() const { return bytes_; }

  private:
    QByteArray bytes_;
};

} // namespace samples
