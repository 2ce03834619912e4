// A picture's or stream's bytes, filled by whoever makes them. Unlike a vector's they are not
// cleared first, which would be a tenth of the time that it takes to read a picture.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace base {

class Bytes {
  public:
    Bytes() = default;

    // `size` bytes of any value: the maker fills all of them.
    explicit Bytes(std::size_t size)
        : bytes_(size == 0 ? nullptr : new std::byte[size]), size_(size) {}

    // A copy of what somebody has made as a vector.
    Bytes(const std::vector<std::byte>& content) : Bytes(content.size()) {
        std::copy(content.begin(), content.end(), begin());
    }

    Bytes(const Bytes& other) : Bytes(other.size_) {
        std::copy(other.begin(), other.end(), begin());
    }
    Bytes(Bytes&& other) noexcept
        : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
    Bytes& operator=(Bytes other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~Bytes() = default;

    std::byte* data() { return bytes_.get(); }
    const std::byte* data() const { return bytes_.get(); }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    std::byte* begin() { return data(); }
    std::byte* end() { return data() + size_; }
    const std::byte* begin() const { return data(); }
    const std::byte* end() const { return data() + size_; }

    friend bool operator==(const Bytes& one, const Bytes& other) {
        return std::equal(one.begin(), one.end(), other.begin(), other.end());
    }

  private:
    std::unique_ptr<std::byte[]> bytes_;
    std::size_t size_ = 0;
};

} // namespace base
