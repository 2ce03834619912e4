// Little-endian writing of a file in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <utility>
#include <vector>

namespace imaging {

class ByteWriter {
  public:
    std::size_t size() const { return bytes_.size(); }

    void u8(std::uint32_t value) { put(value, 1); }
    void u16(std::uint32_t value) { put(value, 2); }
    void u32(std::uint32_t value) { put(value, 4); }
    void i32(std::int32_t value) { put(static_cast<std::uint32_t>(value), 4); }
    void u32s(std::initializer_list<std::uint32_t> values) {
        for (const std::uint32_t value : values) {
            u32(value);
        }
    }
    void zeros(std::size_t count) { bytes_.resize(bytes_.size() + count); }
    void append(std::span<const std::byte> bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }

    // `count` zero bytes at the end, to be filled in; valid until the next call.
    std::span<std::byte> room(std::size_t count) {
        zeros(count);
        return std::span(bytes_).last(count);
    }

    // For what is coming: a large picture would be copied whenever the vector grows.
    void reserve(std::size_t count) { bytes_.reserve(bytes_.size() + count); }

    std::vector<std::byte> take() { return std::move(bytes_); }

  private:
    void put(std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i, value >>= 8U) {
            bytes_.push_back(static_cast<std::byte>(value & 0xFFU));
        }
    }

    std::vector<std::byte> bytes_;
};

} // namespace imaging
