// Bounded little-endian reading of a file in memory: whoever reads past the end gets a DecodeError.
#pragma once

#include "imaging/picture_facts.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace imaging {

class ByteReader {
  public:
    explicit ByteReader(std::span<const std::byte> bytes) : bytes_(bytes) {}

    std::size_t size() const { return bytes_.size(); }
    bool has(std::size_t at, std::size_t count) const {
        return at <= bytes_.size() && count <= bytes_.size() - at;
    }

    std::uint8_t u8(std::size_t at) const { return static_cast<std::uint8_t>(get(at, 1)); }
    std::uint16_t u16(std::size_t at) const { return static_cast<std::uint16_t>(get(at, 2)); }
    std::uint32_t u32(std::size_t at) const { return get(at, 4); }
    std::int16_t i16(std::size_t at) const { return static_cast<std::int16_t>(u16(at)); }
    std::int32_t i32(std::size_t at) const { return static_cast<std::int32_t>(u32(at)); }

    // `count` bytes from `at` on; DecodeError when there are fewer.
    std::span<const std::byte> part(std::size_t at, std::size_t count) const {
        require(at, count);
        return bytes_.subspan(at, count);
    }
    // From `at` to the end, maybe none.
    std::span<const std::byte> rest(std::size_t at) const {
        return at < bytes_.size() ? bytes_.subspan(at) : std::span<const std::byte>();
    }

  private:
    void require(std::size_t at, std::size_t count) const {
        if (!has(at, count)) {
            throw DecodeError("the picture is cut short");
        }
    }
    std::uint32_t get(std::size_t at, std::size_t count) const {
        require(at, count);
        std::uint32_t value = 0;
        for (std::size_t i = count; i-- > 0;) {
            value = value << 8U | std::to_integer<std::uint32_t>(bytes_[at + i]);
        }
        return value;
    }

    std::span<const std::byte> bytes_;
};

} // namespace imaging
