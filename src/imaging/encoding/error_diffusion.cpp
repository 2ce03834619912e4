#include "imaging/encoding/error_diffusion.h"

#include "imaging/encoding/nearest_colour.h"

namespace imaging {

namespace {

Colour withinCube(Colour colour) {
    const auto part = [](float value) { return std::clamp(value, 0.0F, 255.0F); };
    return {part(colour.red), part(colour.green), part(colour.blue)};
}

// Half of each error is passed on, in the shares of Floyd and Steinberg: enough to break up the
// bands of even gradients, while passing on all of it costs detailed photographs more in noise than
// the eye gains by truer areas. Rows alternate in direction, so that no pattern runs one way.
class Diffusion {
  public:
    Diffusion(int width, std::span<const Colour> colours)
        : width_(width),
          colours_(colours),
          nearest_(colours),
          here_(static_cast<std::size_t>(width) + 2),
          below_(static_cast<std::size_t>(width) + 2) {}

    void runRight(const QRgb* in, uchar* out) {
        for (int x = 0; x < width_; ++x) {
            show(in[x], out[x], x, 1);
        }
        goDown();
    }

    void runLeft(const QRgb* in, uchar* out) {
        for (int x = width_ - 1; x >= 0; --x) {
            show(in[x], out[x], x, -1);
        }
        goDown();
    }

  private:
    void show(QRgb pixel, uchar& out, int x, int ahead) {
        if (isSeenThrough(pixel)) {
            out = static_cast<uchar>(colours_.size());
            return;
        }
        Colour* const at = here_.data() + x + 1;
        Colour* const under = below_.data() + x + 1;
        const Colour wanted = withinCube(toColour(pixel) + *at);
        const std::size_t index = nearest_.of(wanted);
        out = static_cast<uchar>(index);
        const Colour error = (wanted - colours_[index]) * 0.5F;
        at[ahead] = at[ahead] + error * (7.0F / 16);
        under[-ahead] = under[-ahead] + error * (3.0F / 16);
        under[0] = under[0] + error * (5.0F / 16);
        under[ahead] = under[ahead] + error * (1.0F / 16);
    }

    void goDown() {
        std::swap(here_, below_);
        std::fill(below_.begin(), below_.end(), Colour{});
    }

    int width_;
    std::span<const Colour> colours_;
    NearestColour nearest_;
    std::vector<Colour> here_; // what this row's pixels are given, from one beside the first
    std::vector<Colour> below_;
};

} // namespace

void diffuse(const QImage& image, std::span<const QRgb> colours, QImage& indexes) {
    std::vector<Colour> exact(colours.size());
    std::transform(colours.begin(), colours.end(), exact.begin(), toColour);
    Diffusion diffusion(image.width(), exact);
    for (int y = 0; y < image.height(); ++y) {
        const auto* in = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        if (y % 2 == 0) {
            diffusion.runRight(in, indexes.scanLine(y));
        } else {
            diffusion.runLeft(in, indexes.scanLine(y));
        }
    }
}

} // namespace imaging
