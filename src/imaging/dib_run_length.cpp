#include "imaging/dib_run_length.h"

#include "imaging/new_image.h"

#include <algorithm>
#include <utility>

namespace imaging {

namespace {

// Where the next pixel goes; rows count from the bottom.
class Canvas {
  public:
    Canvas(const DibHeader& header, const std::vector<QRgb>& palette)
        : header_(header),
          palette_(palette),
          image_(newImage({header.width, header.height}, QImage::Format_ARGB32)) {}

    bool isFull() const { return y_ >= header_.height; }

    // How many pixels the row still takes.
    unsigned room() const { return static_cast<unsigned>(header_.width - x_); }

    // What sticks out of the row is dropped.
    void put(unsigned index) {
        if (x_ >= header_.width || isFull()) {
            return;
        }
        const int row = header_.topDown ? y_ : header_.height - 1 - y_;
        reinterpret_cast<QRgb*>(image_.scanLine(row))[x_] =
            index < palette_.size() ? palette_[index] : qRgb(0, 0, 0);
        ++x_;
    }

    void newRow() {
        x_ = 0;
        ++y_;
    }

    // Stops at the edges, so that no number of moves overflows.
    void move(int dx, int dy) {
        x_ = std::min(x_ + dx, header_.width);
        y_ = std::min(y_ + dy, header_.height);
    }

    QImage take() { return std::move(image_); }

  private:
    const DibHeader& header_;
    const std::vector<QRgb>& palette_;
    QImage image_;
    int x_ = 0;
    int y_ = 0;
};

class Runs {
  public:
    Runs(std::span<const std::byte> data, bool nibbles, Canvas& canvas)
        : data_(data), nibbles_(nibbles), canvas_(canvas) {}

    // Plays everything up to the end mark, the end of the data or the last row.
    void play() {
        while (at_ + 1 < data_.size() && !canvas_.isFull()) {
            const unsigned count = next();
            const unsigned value = next();
            if (count > 0) {
                repeat(count, value);
            } else if (value == kEndOfRow) {
                canvas_.newRow();
            } else if (value == kEndOfBitmap) {
                return;
            } else if (value == kDelta) {
                moveOn();
            } else {
                copy(value);
            }
        }
    }

  private:
    static constexpr unsigned kEndOfRow = 0;
    static constexpr unsigned kEndOfBitmap = 1;
    static constexpr unsigned kDelta = 2;

    unsigned next() { return at_ < data_.size() ? std::to_integer<unsigned>(data_[at_++]) : 0; }

    void repeat(unsigned count, unsigned value) {
        const unsigned fitting = std::min(count, canvas_.room());
        for (unsigned i = 0; i < fitting; ++i) {
            canvas_.put(!nibbles_ ? value : i % 2 == 0 ? value >> 4U : value & 0xFU);
        }
    }

    void moveOn() {
        const unsigned dx = next();
        const unsigned dy = next();
        canvas_.move(static_cast<int>(dx), static_cast<int>(dy));
    }

    // Literal pixels, padded to an even number of bytes.
    void copy(unsigned count) {
        const std::size_t bytes = nibbles_ ? (count + 1) / 2 : count;
        for (unsigned i = 0; i < count; ++i) {
            const std::size_t from = at_ + (nibbles_ ? i / 2 : i);
            if (from >= data_.size()) {
                break;
            }
            const auto byte = std::to_integer<unsigned>(data_[from]);
            canvas_.put(!nibbles_ ? byte : i % 2 == 0 ? byte >> 4U : byte & 0xFU);
        }
        at_ += bytes + bytes % 2;
    }

    std::span<const std::byte> data_;
    bool nibbles_;
    Canvas& canvas_;
    std::size_t at_ = 0;
};

} // namespace

QImage readRunLengths(std::span<const std::byte> data, const DibHeader& header,
                      const std::vector<QRgb>& palette) {
    if (data.size() < 2) {
        throw DecodeError("the bitmap has no pixels");
    }
    Canvas canvas(header, palette);
    Runs(data, header.compression == DibCompression::Rle4, canvas).play();
    return canvas.take();
}

} // namespace imaging
